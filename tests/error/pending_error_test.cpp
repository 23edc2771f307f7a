// Tests of the pending error: its setters and the joining of parts, reading
// it back and location lines.
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include <gtest/gtest.h>

#include <QChar>
#include <QString>

#include <functional>
#include <string>

namespace {

using tql_test::pending_text;
using PendingErrorTest = tql_test::ErrorStateTest;

int taking_hook(char*, int, char*, char*) { return 1; }

struct SetCase { const char* name; std::function<void()> set; std::string expected; };

TEST_F(PendingErrorTest, SettersReplaceTheErrorAndJoinParts)
{
    const SetCase cases[] = {
        {"std::string", [] { set_pending_error(std::string("disk full")); }, "disk full"},
        {"QString in the local encoding", [] { set_pending_error(QString("caf") + QChar(0xE9)); }, "caf\xC3\xA9"},
        {"second part starts with a line feed", [] { set_pending_error("a", "\nb"); }, "a\nb"},
        {"empty first part", [] { set_pending_error("", "b"); }, "b"},
        {"empty second part still adds a line feed", [] { set_pending_error(std::string("a"), std::string("")); },
         "a\n"},
        {"three parts, empty middle", [] { set_pending_error("a", "", "c"); }, "a\n\nc"},
        {"line feeds are not doubled", [] { set_pending_error("\n", "\n", "x"); }, "\n\nx"},
        {"no lock", [] { set_pending_error_no_lock("no lock"); }, "no lock"},
    };
    for (const SetCase& c : cases) {
        SCOPED_TRACE(c.name);
        aerr_set("OLD", 9, "old message", "old text");
        c.set();
        EXPECT_EQ(pending_text(), c.expected);
        const char* module = nullptr;
        int code = 0;
        ASSERT_EQ(aerr_get(&module, &code, nullptr), 1);
        EXPECT_STREQ(module, "");
        EXPECT_EQ(code, -1);
    }
    // get_pending_error answers for the text, not the flag.
    reset_pending_error();
    EXPECT_EQ(aerr_get(nullptr, nullptr, nullptr), 0);
    EXPECT_TRUE(get_pending_error(nullptr));
}

TEST_F(PendingErrorTest, LocationLinesArePrepended)
{
    struct Case { const char* name; std::function<void()> set; const char* location; std::string expected; };
    const Case cases[] = {
        {"plain", [] { set_pending_error("x"); }, "L", "L\nx"},
        {"plain text starting with a line feed", [] { set_pending_error("\nx"); }, "L", "L\nx"},
        {"empty location", [] { set_pending_error("x"); }, "", "x"},
        {"coded error is glued on", [] { aerr_set("MOD", 5, "msg", "x"); }, "L", "Lx"},
        {"coded error with empty message", [] { aerr_set("MOD", 5, "", "x"); }, "L", "L\nx"},
        {"reset coded error keeps its message", [] { aerr_set("MOD", 5, "msg", "x"); reset_pending_error(); },
         "L", "Lx"},
        // A report keeps the message too, so the record still counts as a
        // coded error and a location is glued on without a line feed.
        {"reported coded error", [] { aerr_set_error_function(taking_hook); aerr_process_error("GUI", 12, "M", "T"); },
         "L", "L"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.set();
        const bool was_pending = error_pending();
        add_error_location_info(c.location);
        EXPECT_EQ(pending_text(), c.expected);
        EXPECT_EQ(error_pending(), was_pending);
    }
}

} // namespace
