// Tests of the aerr_ family: coded errors on the pending record, coded
// warnings and messages with their hooks and printouts, and fatal exits.
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace {

// Every call of a recording hook, as "[module|code|message|text]".
std::string g_hook_log;
int g_hook_result = 0;

int recording_hook(char* module, int code, char* message, char* text)
{
    g_hook_log += "[" + std::string(module) + "|" + std::to_string(code) + "|" + message + "|" + text + "]";
    return g_hook_result;
}

using AerrTest = tql_test::ErrorStateTest;

TEST_F(AerrTest, SetAndGetKeepModuleCodeAndFormattedTextUpTo4095Characters)
{
    static const char kModule[] = "MOD";
    const char* module = nullptr;
    int code = 0;
    const char* text = nullptr;
    EXPECT_EQ(aerr_set(kModule, 42, "the message", "%s and %d%%", "100%", 7), 1);
    ASSERT_EQ(aerr_get(&module, &code, &text), 1);
    EXPECT_EQ(module, kModule); // the caller's pointer, not a copy
    EXPECT_EQ(code, 42);
    EXPECT_EQ(tql_test::pending_text(), "100% and 7%");

    EXPECT_EQ(aerr_get_message_function(), nullptr);
    EXPECT_EQ(aerr_set("MOD", 1, "m", nullptr), 1);
    ASSERT_EQ(aerr_get(nullptr, nullptr, &text), 1);
    EXPECT_STREQ(text, "");
    // The formatted text is cut at 4095 characters.
    aerr_set("CUT", 1, "m", "ab%s", std::string(4094, 'y').c_str());
    ASSERT_EQ(aerr_get(nullptr, nullptr, &text), 1);
    EXPECT_EQ(std::string(text), "ab" + std::string(4093, 'y'));
    reset_pending_error();
    EXPECT_EQ(aerr_report(), 0);
}

TEST_F(AerrTest, ReportsArePrintedOrTakenByHooks)
{
    struct Case { const char* name; std::function<void()> body; std::string err; std::string out; };
    const auto hooked = [](LegacyReportFunction (*set)(LegacyReportFunction), int result, int (*call)()) {
        return [=] {
            g_hook_result = result;
            set(recording_hook);
            const int returned = call();
            std::printf("%d %s", returned, g_hook_log.c_str());
        };
    };
    const Case cases[] = {
        {"error with null format", [] { aerr_process_error("GUI", 12, "M", nullptr); }, "ERROR      GUI0012: M\n",
         ""},
        {"long module and code are not cut, message printed as is",
         [] { aerr_process_error("MODULE7", 12345, "50%d", "100%%"); }, "ERROR   MODULE712345 100%: 50%d\n", ""},
        {"warning", [] { std::printf("%d", aerr_process_warning("GUI", 7, "careful", "x=%d", 5)); },
         "WARNING    GUI0007 x=5: careful\n", "10"},
        {"message with empty message", [] { std::printf("%d", aerr_process_message("GUI", 3, "", "hi %s", "x")); },
         "INFO       GUI0003 hi x: \n", "3"},
        {"message function takes it",
         hooked(aerr_set_message_function, 7, [] { return aerr_process_message("GUI", 3, "M", "t"); }), "",
         "7 [GUI|3|M|t]"},
        {"error hook takes a set error",
         hooked(aerr_set_error_function, 1,
                [] { aerr_set("GUI", 12, "M", "T"); return aerr_report() * 10 + aerr_report(); }),
         "", "10 [GUI|12|M|T]"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string out;
        EXPECT_EQ(tql_test::child_stderr(c.body, &out), c.err);
        EXPECT_EQ(out, c.out);
    }
}

TEST_F(AerrTest, FatalErrorsRunTheExitFunctionAndEndWithStatusOne)
{
    struct Case { const char* name; void (*body)(); int status; std::string err; };
    const Case cases[] = {
        {"exit function ends the process itself",
         [] {
             aerr_set_exit_function([] { std::exit(7); });
             aerr_fatal_error("x.c", -3);
         },
         7, "FATAL ERROR: in x.c, line -3\n"},
        {"memory error with exit function",
         [] {
             aerr_set_exit_function([] { std::fputs("exit function\n", stderr); });
             aerr_memory_error();
         },
         1, "FATAL ERROR: out of memory\nexit function\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const tql_test::ChildResult result = tql_test::run_in_child(
            [&] { c.body(); std::fputs("returned", stdout); },
            10);
        EXPECT_TRUE(result.exited);
        EXPECT_EQ(result.exit_status, c.status);
        EXPECT_EQ(result.err, c.err);
        EXPECT_EQ(result.out, "");
    }
}

} // namespace
