// Tests of the pending error: its setters and the joining of parts, reading
// it back, location lines, and reports through hooks or on stderr.
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include <gtest/gtest.h>

#include <QChar>
#include <QString>

#include <cstdio>
#include <functional>
#include <string>

namespace {

using tql_test::child_stderr;
using tql_test::pending_text;
using PendingErrorTest = tql_test::ErrorStateTest;

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
    set_pending_error("");
    EXPECT_TRUE(error_pending());
    EXPECT_FALSE(get_pending_error(nullptr));
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
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.set();
        const bool was_pending = error_pending();
        add_error_location_info(c.location);
        EXPECT_EQ(pending_text(), c.expected);
        EXPECT_EQ(error_pending(), was_pending);
    }
    set_pending_error("x");
    add_error_location_info("inner");
    add_error_location_info("outer");
    EXPECT_EQ(pending_text(), "outer\ninner\nx");

    // A report keeps the message, so the record still counts as a coded
    // error and a location is glued on without a line feed.
    aerr_set_error_function([](char*, int, char*, char*) { return 1; });
    aerr_set("GUI", 12, "M", "T");
    report_pending_error();
    EXPECT_FALSE(error_pending());
    add_error_location_info("L");
    EXPECT_EQ(pending_text(), "L");
}

void print_state() { std::printf("pending=%d text=[%s]", error_pending() ? 1 : 0, pending_text().c_str()); }

// What the recording hook saw; it also reads the pending error while the
// report is in progress, which deadlocks if the lock is held.
int g_hook_result = 0;
std::string g_hook_seen;

int recording_hook(char* module, int code, char* message, char* text)
{
    g_hook_seen = "[" + std::string(module) + "|" + std::to_string(code) + "|" + message + "|" + text +
                  "|during=" + pending_text() + "] ";
    return g_hook_result;
}

TEST_F(PendingErrorTest, ReportsGoToHooksOrStderr)
{
    const std::string cleared = "pending=0 text=[]";
    const std::string kept = "pending=1 text=[keep]";
    struct Case { const char* name; std::function<void()> body; std::string err; std::string out; };
    const Case cases[] = {
        {"report_error QString", [] { report_error(QString("caf") + QChar(0xE9)); },
         "ERROR         -001 caf\xC3\xA9: \n", cleared},
        {"report_error two parts", [] { report_error("a", "b"); }, "ERROR         -001 a\nb: \n", cleared},
        {"nothing pending", [] { set_pending_error("keep"); reset_pending_error(); report_pending_error(); }, "",
         "pending=0 text=[keep]"},
        {"report_warning", [] { set_pending_error("keep"); report_warning("careful\n"); }, "WARNING careful\n",
         kept},
        {"report_warning empty", [] { set_pending_error("keep"); report_warning(""); }, "", kept},
        {"error hook declines", [] { aerr_set_error_function(recording_hook); report_error("disk full"); },
         "ERROR         -001 disk full: \n", "[|-1||disk full|during=disk full] " + cleared},
        {"warning hook takes it",
         [] { g_hook_result = 1; set_pending_error("keep"); aerr_set_warning_function(recording_hook); report_warning("w\n"); },
         "", "[|-1||w\n|during=keep] " + kept},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string out;
        const std::string err = child_stderr(
            [&] { c.body(); std::fputs(g_hook_seen.c_str(), stdout); print_state(); },
            &out);
        EXPECT_EQ(err, c.err);
        EXPECT_EQ(out, c.out);
    }
}

} // namespace
