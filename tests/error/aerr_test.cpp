// Tests of the aerr_ family: coded errors on the pending record, coded
// warnings and messages with their hooks and printouts, and fatal exits.
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include "support/child_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <unistd.h>

namespace {

const std::string kLong(5000, 'x');

// Every call of a recording hook, as "[module|code|message|text]".
std::string g_hook_log;
int g_hook_result = 0;

int recording_hook(char* module, int code, char* message, char* text)
{
    g_hook_log += "[" + std::string(module) + "|" + std::to_string(code) + "|" + message + "|" + text + "]";
    return g_hook_result;
}

class AerrTest : public tql_test::ErrorStateTest {
protected:
    void clear() override
    {
        ErrorStateTest::clear();
        g_hook_log.clear();
        g_hook_result = 0;
    }
};

TEST_F(AerrTest, SetAndGetKeepModuleCodeAndFormattedText)
{
    static const char kModule[] = "MOD";
    const char* module = "sentinel";
    int code = 777;
    const char* text = "sentinel";
    EXPECT_EQ(aerr_get(&module, &code, &text), 0);
    EXPECT_STREQ(module, "sentinel");
    EXPECT_EQ(code, 777);
    EXPECT_STREQ(text, "sentinel");

    EXPECT_EQ(aerr_set(kModule, 42, "the message", "x%d", 5), 1);
    EXPECT_TRUE(error_pending());
    ASSERT_EQ(aerr_get(&module, &code, &text), 1);
    EXPECT_EQ(module, kModule); // the caller's pointer, not a copy
    EXPECT_EQ(code, 42);
    EXPECT_STREQ(text, "x5");
    std::string pending;
    EXPECT_TRUE(get_pending_error(&pending));
    EXPECT_EQ(pending, "x5");

    EXPECT_EQ(aerr_set("MOD", 1, "m", "%s and %d%%", "100%", 7), 1);
    ASSERT_EQ(aerr_get(nullptr, nullptr, &text), 1);
    EXPECT_STREQ(text, "100% and 7%");

    EXPECT_EQ(aerr_set("MOD", 1, "m", nullptr), 1);
    EXPECT_TRUE(error_pending());
    ASSERT_EQ(aerr_get(nullptr, nullptr, &text), 1);
    EXPECT_STREQ(text, "");

    reset_pending_error();
    EXPECT_EQ(aerr_get(&module, &code, &text), 0);
    EXPECT_EQ(aerr_report(), 0);
}

TEST_F(AerrTest, FormattedTextIsCutAt4095Characters)
{
    for (size_t length : {size_t{4094}, size_t{4095}, size_t{4096}, kLong.size()}) {
        SCOPED_TRACE(length);
        const std::string argument(length, 'y');
        aerr_set("CUT", 1, "m", "%s", argument.c_str());
        const char* text = nullptr;
        ASSERT_EQ(aerr_get(nullptr, nullptr, &text), 1);
        EXPECT_EQ(std::string(text), std::string(std::min<size_t>(length, 4095), 'y'));
    }
    // The limit applies to the formatted text, not to the arguments.
    aerr_set("CUT", 1, "m", "ab%s", std::string(4095, 'y').c_str());
    const char* text = nullptr;
    ASSERT_EQ(aerr_get(nullptr, nullptr, &text), 1);
    EXPECT_EQ(std::string(text), "ab" + std::string(4093, 'y'));
}

TEST_F(AerrTest, HookAccessorsReturnWhatWasSet)
{
    EXPECT_EQ(aerr_set_error_function(recording_hook), recording_hook);
    EXPECT_EQ(aerr_get_error_function(), recording_hook);
    EXPECT_EQ(aerr_set_warning_function(recording_hook), recording_hook);
    EXPECT_EQ(aerr_get_warning_function(), recording_hook);
    EXPECT_EQ(aerr_set_message_function(recording_hook), recording_hook);
    EXPECT_EQ(aerr_get_message_function(), recording_hook);
    EXPECT_EQ(aerr_get_error_function(), recording_hook);
    EXPECT_EQ(aerr_set_message_function(nullptr), nullptr);
    EXPECT_EQ(aerr_get_message_function(), nullptr);
    AerrExitFunction exit_fn = [] {};
    EXPECT_EQ(aerr_set_exit_function(exit_fn), exit_fn);

    // A taken error report ends the pending error without a printout.
    g_hook_result = 1;
    aerr_set("GUI", 12, "M", "T");
    EXPECT_EQ(aerr_report(), 1);
    EXPECT_FALSE(error_pending());
    EXPECT_EQ(aerr_report(), 0);
    EXPECT_EQ(g_hook_log, "[GUI|12|M|T]");
}

TEST_F(AerrTest, ReportsArePrintedOrTakenByHooks)
{
    struct Case {
        const char* name;
        std::function<void()> body;
        std::string err;
        std::string out;
    };
    const Case cases[] = {
        {"error with text", [] { aerr_process_error("GUI", 12, "M", "T%d", 1); }, "ERROR      GUI0012 T1: M\n", ""},
        {"error with null format", [] { aerr_process_error("GUI", 12, "M", nullptr); }, "ERROR      GUI0012: M\n",
         ""},
        {"error with empty text", [] { aerr_process_error("GUI", 12, "M", "%s", ""); }, "ERROR      GUI0012: M\n",
         ""},
        {"long module and code are not cut, message printed as is",
         [] { aerr_process_error("MODULE7", 12345, "50%d", "100%%"); }, "ERROR   MODULE712345 100%: 50%d\n", ""},
        {"negative code", [] { aerr_process_error("GUI", -5, "m", "t"); }, "ERROR      GUI-005 t: m\n", ""},
        {"set then report",
         [] {
             aerr_set("GUI", 2, "M", "T");
             const int first = aerr_report();
             std::printf("%d %d", first, aerr_report());
         },
         "ERROR      GUI0002 T: M\n", "1 0"},
        {"warning", [] { std::printf("%d", aerr_process_warning("GUI", 7, "careful", "x=%d", 5)); },
         "WARNING    GUI0007 x=5: careful\n", "10"},
        {"message with null format", [] { std::printf("%d", aerr_process_message("GUI", 3, "M", nullptr)); },
         "INFO       GUI0003: M\n", "4"},
        {"message with text", [] { std::printf("%d", aerr_process_message("GUI", 3, "", "hello %s", "world")); },
         "INFO       GUI0003 hello world: \n", "3"},
        {"message cut at 4095", [] { aerr_process_message("CUT", 1, "m", "%s", kLong.c_str()); },
         "INFO       CUT0001 " + std::string(4095, 'x') + ": m\n", ""},
        {"message function declines",
         [] {
             aerr_set_message_function(recording_hook);
             const int result = aerr_process_message("GUI", 3, "M", "t");
             std::printf("%d %s", result, g_hook_log.c_str());
         },
         "INFO       GUI0003 t: M\n", "4 [GUI|3|M|t]"},
        {"message function takes it",
         [] {
             g_hook_result = 7;
             aerr_set_message_function(recording_hook);
             const int result = aerr_process_message("GUI", 3, "M", "t");
             std::printf("%d %s", result, g_hook_log.c_str());
         },
         "", "7 [GUI|3|M|t]"},
        {"warning hook declines",
         [] {
             aerr_set_warning_function(recording_hook);
             const int result = aerr_process_warning("GUI", 7, "careful", "t");
             std::printf("%d %s", result, g_hook_log.c_str());
         },
         "WARNING    GUI0007 t: careful\n", "10 [GUI|7|careful|t]"},
        {"warning hook takes it",
         [] {
             g_hook_result = 5;
             aerr_set_warning_function(recording_hook);
             const int result = aerr_process_warning("GUI", 7, "careful", "t");
             std::printf("%d %s", result, g_hook_log.c_str());
         },
         "", "5 [GUI|7|careful|t]"},
        {"error hook declines",
         [] {
             aerr_set_error_function(recording_hook);
             aerr_process_error("GUI", 12, "M", "T");
             std::printf("%d %s", error_pending() ? 1 : 0, g_hook_log.c_str());
         },
         "ERROR      GUI0012 T: M\n", "0 [GUI|12|M|T]"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const tql_test::ChildResult result = tql_test::run_in_child(c.body, 10);
        EXPECT_TRUE(result.exited);
        EXPECT_EQ(result.exit_status, 0);
        EXPECT_EQ(result.err, c.err);
        EXPECT_EQ(result.out, c.out);
    }
}

TEST_F(AerrTest, FatalErrorsRunTheExitFunctionAndEndWithStatusOne)
{
    struct Case {
        const char* name;
        void (*body)();
        int status;
        std::string err;
    };
    const Case cases[] = {
        {"fatal error", [] { aerr_fatal_error("file.c", 42); }, 1, "FATAL ERROR: in file.c, line 42\n"},
        {"fatal error with exit function",
         [] {
             aerr_set_exit_function([] { std::fputs("exit function\n", stderr); });
             aerr_fatal_error("file.c", 42);
         },
         1, "FATAL ERROR: in file.c, line 42\nexit function\n"},
        {"exit function ends the process itself",
         [] {
             aerr_set_exit_function([] { _exit(7); });
             aerr_fatal_error("x.c", -3);
         },
         7, "FATAL ERROR: in x.c, line -3\n"},
        {"memory error", [] { aerr_memory_error(); }, 1, "FATAL ERROR: out of memory\n"},
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
            [&] {
                c.body();
                std::fputs("returned", stdout);
            },
            10);
        EXPECT_TRUE(result.exited);
        EXPECT_EQ(result.exit_status, c.status);
        EXPECT_EQ(result.err, c.err);
        EXPECT_EQ(result.out, "");
    }
}

} // namespace
