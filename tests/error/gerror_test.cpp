// Tests of the numbered error codes: the texts of GuiErrno and the system
// error, their printouts, the debug-mode check and the debug banner.
#include "error/error_test_support.h"

#include <tql70/gerror.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using tql_test::child_stderr;

class GerrorTest : public ::testing::Test {
protected:
    void TearDown() override { gerror_set_all_errors(0, 0); }
};

TEST_F(GerrorTest, CodesAndTextsFollowTheRangeRules)
{
    gerror_set_all_errors(5, ENOENT);
    int gui = 0;
    int sys = 0;
    EXPECT_EQ(gerror_get_all_errors(&gui, &sys), ENOENT);
    EXPECT_EQ(gui, 5);
    EXPECT_EQ(sys, ENOENT);
    EXPECT_EQ(gerror_get_system_error(), ENOENT);
    EXPECT_EQ(gerror_set_system_error(EACCES), EACCES);
    EXPECT_STREQ(gerror_get_system_error_message(), std::strerror(EACCES));
    gerror_set_system_error(0);
    EXPECT_STREQ(gerror_get_system_error_message(), "system errno out of range");

    const struct { int code; const char* text; } cases[] = {
        {1, "System library call failed"}, {18, "Message set not specified for message retreival"},
        {30, "Clock stop failed"},
        // Code 0 fails the range check, so "No error" is never given.
        {0, "GuiErrno out of range"}, {125, "GuiErrno out of range"}, {INT_MIN, "GuiErrno out of range"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(gerror_set_error(c.code), c.code);
        EXPECT_STREQ(gerror_get_error_message(), c.text);
    }
}

TEST_F(GerrorTest, Printouts)
{
    const std::string enoent = std::strerror(ENOENT);
    // 31..124 have no text of their own but pass the range check, so they
    // are printed with the out-of-range text.
    const std::string text124 = "GuiErrno out of range";
    struct Case { int gui; int sys; std::string all; std::string one; };
    const Case cases[] = {
        {23, ENOENT, "Cannot open file : " + enoent + "\n", "Cannot open file\n"},
        {23, 100000, "Cannot open file\n", "Cannot open file\n"}, {124, 0, text124 + "\n", text124 + "\n"},
        {125, ENOENT, enoent + "\n", "GuiErrno out of range\n"}, {0, 0, "", "GuiErrno out of range\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.gui) + "/" + std::to_string(c.sys));
        EXPECT_EQ(child_stderr([&] { gerror_set_all_errors(c.gui, c.sys); gerror_display_all_error_messages(); }),
                  c.all);
        EXPECT_EQ(child_stderr([&] { gerror_set_all_errors(c.gui, c.sys); gerror_display_error_message(); }),
                  c.one);
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
    EXPECT_EQ(is_debug_mode_active_for(kVar, "x", "y", "z", "all", kEnd), 1);
    const tql_test::ScopedEnv unset(kVar, std::nullopt);
    EXPECT_EQ(is_debug_mode_active_for(kVar, "", "all", kEnd), 0);
    // The settings store stands in for a missing variable.
    const tql_test::ScopedSettingsStore stored({{kVar, "all"}});
    EXPECT_EQ(is_debug_mode_active_for(kVar, "all", kEnd), 1);
}

std::string banner(int line, const char* file, const std::string& messages)
{
    return "\n? Error at line " + std::to_string(line) + " of file " + file + "\n" + messages;
}

TEST(DebugModeTest, BannerStaysOnOnceFound)
{
    const tql_test::ScopedSettingsStore store({});
    const tql_test::ScopedEnv unset("ZQTARVEX_DEBUG_MODE", std::nullopt);
    const std::string messages = "Cannot open file : " + std::string(std::strerror(ENOENT)) + "\n";
    EXPECT_EQ(child_stderr([] {
                  gerror_set_all_errors(23, ENOENT);
                  gerror_display_debug_info("a.c", 1);
                  for (const char* value : {"ALL", "error,all", "", "all", "none"}) {
                      setenv("ZQTARVEX_DEBUG_MODE", value, 1);
                      gerror_display_debug_info(value, 2);
                  }
                  unsetenv("ZQTARVEX_DEBUG_MODE");
                  gerror_display_debug_info("unset", 3);
              }),
              banner(2, "all", messages) + banner(2, "none", messages) + banner(3, "unset", messages));
}

} // namespace
