// Tests of the aerr_ family: coded errors on the pending record and fatal
// exits (the printouts and hooks are checked with the handlers).
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

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
    EXPECT_STREQ(text, "100% and 7%");

    EXPECT_EQ(aerr_get_message_function(), nullptr);
    // The formatted text is cut at 4095 characters.
    aerr_set("CUT", 1, "m", "ab%s", std::string(4094, 'y').c_str());
    EXPECT_EQ(tql_test::pending_text(), "ab" + std::string(4093, 'y'));
}

TEST_F(AerrTest, FatalErrorsRunTheExitFunctionAndEndWithStatusOne)
{
    struct Case { void (*report)(); std::string err; };
    const Case cases[] = {
        {[] { aerr_fatal_error("x.c", -3); }, "FATAL ERROR: in x.c, line -3\n"},
        {aerr_memory_error, "FATAL ERROR: out of memory\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.err);
        const tql_test::ChildResult result = tql_test::run_in_child(
            [&] {
                aerr_set_exit_function([] { std::fputs("exit function\n", stderr); });
                c.report();
            },
            10);
        EXPECT_TRUE(result.exited);
        EXPECT_EQ(result.exit_status, 1); // 0 if the call returned
        EXPECT_EQ(result.err, c.err + "exit function\n");
    }
}

} // namespace
