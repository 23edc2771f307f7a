// Tests of the numbered error codes: the texts of GuiErrno and the system
// error, their printouts, the debug-mode check and the debug banner.
#include "error/error_test_support.h"

#include <tql70/gerror.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

class GerrorTest : public ::testing::Test {
protected:
    void TearDown() override { gerror_set_all_errors(0, 0); }
};

TEST_F(GerrorTest, CodesTextsAndPrintoutsFollowTheRangeRules)
{
    gerror_set_all_errors(5, ENOENT);
    int gui = 0;
    int sys = 0;
    EXPECT_EQ(gerror_get_all_errors(&gui, &sys), ENOENT);
    EXPECT_EQ(gui, 5);
    EXPECT_EQ(sys, ENOENT);
    EXPECT_EQ(gerror_get_system_error(), ENOENT);
    EXPECT_STREQ(gerror_get_system_error_message(), std::strerror(ENOENT));
    gerror_set_system_error(0);
    EXPECT_STREQ(gerror_get_system_error_message(), "system errno out of range");

    const std::string enoent = std::strerror(ENOENT);
    const std::string out_of_range = "GuiErrno out of range";
    // Code 0 fails the range check, so "No error" is never given; 31..124
    // pass it but have no text of their own.
    struct Case { int gui; int sys; std::string text; std::string all; };
    const Case cases[] = {
        {1, ENOENT, "System library call failed", "System library call failed : " + enoent + "\n"},
        {18, 100000, "Message set not specified for message retreival",
         "Message set not specified for message retreival\n"},
        {30, 0, "Clock stop failed", "Clock stop failed\n"}, {124, 0, out_of_range, out_of_range + "\n"},
        {125, ENOENT, out_of_range, enoent + "\n"}, {0, 0, out_of_range, ""}, {INT_MIN, 0, out_of_range, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.gui) + "/" + std::to_string(c.sys));
        EXPECT_EQ(gerror_set_error(c.gui), c.gui);
        EXPECT_EQ(gerror_set_system_error(c.sys), c.sys);
        EXPECT_EQ(gerror_get_error(), c.gui);
        EXPECT_EQ(gerror_get_error_message(), c.text);
        testing::internal::CaptureStderr();
        EXPECT_EQ(gerror_display_all_error_messages(), int(c.all.size()));
        EXPECT_EQ(gerror_display_error_message(), int(c.text.size()) + 1);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.all + c.text + "\n");
    }
}

TEST(DebugModeTest, ValueMustMatchOneListEntryExactly)
{
    const char* const kVar = "TQL70_TEST_DEBUG_MODE";
    const char* const kEnd = nullptr;
    const tql_test::ScopedSettingsStore store({});
    const struct { const char* value; int expected; } cases[] = {
        {"all", 1}, {"error", 1}, {"ALL", 0}, {"error,all", 0}, {"all ", 0}, {"al", 0}, {"", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        const tql_test::ScopedEnv env(kVar, std::string(c.value));
        EXPECT_EQ(is_debug_mode_active_for(kVar, "error", "all", kEnd), c.expected);
    }
    const tql_test::ScopedEnv env(kVar, std::string("all"));
    // The list ends at the first null pointer.
    EXPECT_EQ(is_debug_mode_active_for(kVar, "x", kEnd, "all"), 0);
    const tql_test::ScopedEnv unset(kVar, std::nullopt);
    EXPECT_EQ(is_debug_mode_active_for(kVar, "", "all", kEnd), 0);
    // The settings store stands in for a missing variable.
    const tql_test::ScopedSettingsStore stored({{kVar, "all"}});
    EXPECT_EQ(is_debug_mode_active_for(kVar, "all", kEnd), 1);
}

// The banner is off until the variable matches and then stays on, whatever
// the variable says later.
TEST(DebugModeTest, BannerStaysOnOnceFound)
{
    const tql_test::ScopedSettingsStore store({});
    const tql_test::ScopedEnv unset("ZQTARVEX_DEBUG_MODE", std::nullopt);
    const tql_test::ChildResult result = tql_test::run_in_child([] {
        gerror_set_all_errors(23, ENOENT);
        std::printf("%d", gerror_display_debug_info("a.c", 1));
        setenv("ZQTARVEX_DEBUG_MODE", "all", 1);
        std::printf("%d", gerror_display_debug_info("b.c", 2));
        setenv("ZQTARVEX_DEBUG_MODE", "none", 1);
        std::printf("%d", gerror_display_debug_info("c.c", 3));
        std::exit(0); // through exit, so the child's coverage is kept
    });
    const std::string messages = "Cannot open file : " + std::string(std::strerror(ENOENT)) + "\n";
    EXPECT_EQ(result.out, "011");
    EXPECT_EQ(result.err,
              "\n? Error at line 2 of file b.c\n" + messages + "\n? Error at line 3 of file c.c\n" + messages);
}

} // namespace
