// Tests of the numbered error codes: the texts of GuiErrno and the system
// error, their printouts, the debug-mode check and the debug banner.
#include "error/error_test_support.h"

#include <tql70/gerror.h>

#include "support/child_process.h"
#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

namespace {

const char kOutOfRange[] = "GuiErrno out of range";

using tql_test::child_stderr;

class GerrorTest : public ::testing::Test {
protected:
    void TearDown() override { gerror_set_all_errors(0, 0); }
};

TEST_F(GerrorTest, CodesAndSystemTexts)
{
    EXPECT_EQ(gerror_set_error(23), 23);
    EXPECT_EQ(GuiErrno, 23);
    EXPECT_EQ(gerror_set_system_error(EACCES), EACCES);
    EXPECT_STREQ(gerror_get_system_error_message(), std::strerror(EACCES));
    gerror_set_all_errors(5, ENOENT);
    int gui = 0;
    int sys = 0;
    EXPECT_EQ(gerror_get_all_errors(&gui, &sys), ENOENT);
    EXPECT_EQ(gui, 5);
    EXPECT_EQ(sys, ENOENT);
    EXPECT_EQ(gerror_get_error(), 5);
    EXPECT_EQ(gerror_get_system_error(), ENOENT);
    EXPECT_STREQ(gerror_get_system_error_message(), std::strerror(ENOENT));
    for (int code : {0, -1, 100000, INT_MIN}) {
        SCOPED_TRACE(code);
        gerror_set_system_error(code);
        EXPECT_STREQ(gerror_get_system_error_message(), "system errno out of range");
    }
}

TEST_F(GerrorTest, LibraryTextsFollowTheRangeRule)
{
    const struct {
        int code;
        const char* text;
    } known[] = {
        {1, "System library call failed"},
        {2, "Unable to allocate memory for message retrieval"},
        {7, "Unable to get ZQTARVEX_LANGUAGE variable for message retrieval"},
        {18, "Message set not specified for message retreival"},
        {21, "Failed to retrieve message"},
        {22, "Cannot find file"},
        {28, "Unable to seek to beginning of file"},
        {30, "Clock stop failed"},
    };
    for (const auto& k : known) {
        SCOPED_TRACE(k.code);
        gerror_set_error(k.code);
        EXPECT_STREQ(gerror_get_error_message(), k.text);
    }
    // Code 0 fails the range check, so "No error" is never given.
    for (int code : {0, -1, 125, 1000, INT_MIN, INT_MAX}) {
        SCOPED_TRACE(code);
        gerror_set_error(code);
        EXPECT_STREQ(gerror_get_error_message(), kOutOfRange);
    }
    for (int code = 31; code <= 124; ++code) {
        SCOPED_TRACE(code);
        gerror_set_error(code);
        const char* text = gerror_get_error_message();
        ASSERT_NE(text, nullptr);
        EXPECT_STRNE(text, "");
    }

    // 31..124 pass the range check and are printed; 0 and 125 are not.
    std::string expected;
    for (int code : {0, 1, 30, 31, 77, 124, 125}) {
        gerror_set_all_errors(code, 0);
        if (code >= 1 && code <= 124) {
            expected += std::string(gerror_get_error_message()) + "\n";
        }
        expected += "|";
    }
    EXPECT_EQ(child_stderr([] {
                  for (int code : {0, 1, 30, 31, 77, 124, 125}) {
                      gerror_set_all_errors(code, 0);
                      gerror_display_all_error_messages();
                      std::fputs("|", stderr);
                  }
              }),
              expected);
}

TEST_F(GerrorTest, Printouts)
{
    const std::string enoent = std::strerror(ENOENT);
    struct Case {
        int gui;
        int sys;
        std::string all;
        std::string one;
    };
    const Case cases[] = {
        {23, ENOENT, "Cannot open file : " + enoent + "\n", "Cannot open file\n"},
        {23, 0, "Cannot open file\n", "Cannot open file\n"},
        {23, 100000, "Cannot open file\n", "Cannot open file\n"},
        {0, ENOENT, enoent + "\n", "GuiErrno out of range\n"},
        {125, ENOENT, enoent + "\n", "GuiErrno out of range\n"},
        {0, 0, "", "GuiErrno out of range\n"},
        {-1, -1, "", "GuiErrno out of range\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.gui) + "/" + std::to_string(c.sys));
        EXPECT_EQ(child_stderr([&] {
                      gerror_set_all_errors(c.gui, c.sys);
                      gerror_display_all_error_messages();
                  }),
                  c.all);
        EXPECT_EQ(child_stderr([&] {
                      gerror_set_all_errors(c.gui, c.sys);
                      gerror_display_error_message();
                  }),
                  c.one);
    }
}

TEST(DebugModeTest, ValueMustMatchOneListEntryExactly)
{
    const char* const kVar = "TQL70_TEST_DEBUG_MODE";
    const tql_test::ScopedSettingsStore store({});
    struct Case {
        const char* value;
        int expected;
    };
    const Case cases[] = {
        {"all", 1}, {"error", 1}, {"ALL", 0}, {"Error", 0}, {"error,all", 0},
        {"all ", 0}, {"al", 0}, {"", 0}, {"none", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        const tql_test::ScopedEnv env(kVar, std::string(c.value));
        EXPECT_EQ(is_debug_mode_active_for(kVar, "error", "all", static_cast<const char*>(nullptr)), c.expected);
    }

    const tql_test::ScopedEnv env(kVar, std::string("all"));
    EXPECT_EQ(is_debug_mode_active_for(kVar, static_cast<const char*>(nullptr)), 0);
    // The list ends at the first null pointer.
    EXPECT_EQ(is_debug_mode_active_for(kVar, "x", static_cast<const char*>(nullptr), "all"), 0);
    EXPECT_EQ(is_debug_mode_active_for(kVar, "x", "y", "z", "all", static_cast<const char*>(nullptr)), 1);
    {
        const tql_test::ScopedEnv empty(kVar, std::string(""));
        EXPECT_EQ(is_debug_mode_active_for(kVar, "", static_cast<const char*>(nullptr)), 1);
    }
    {
        const tql_test::ScopedEnv unset(kVar, std::nullopt);
        EXPECT_EQ(is_debug_mode_active_for(kVar, "", "all", static_cast<const char*>(nullptr)), 0);
    }
}

TEST(DebugModeTest, SettingsStoreStandsInForAMissingVariable)
{
    const char* const kVar = "TQL70_TEST_DEBUG_MODE";
    const tql_test::ScopedSettingsStore store({{kVar, "all"}});
    {
        const tql_test::ScopedEnv unset(kVar, std::nullopt);
        EXPECT_EQ(is_debug_mode_active_for(kVar, "all", static_cast<const char*>(nullptr)), 1);
        EXPECT_EQ(is_debug_mode_active_for(kVar, "error", static_cast<const char*>(nullptr)), 0);
    }
    const tql_test::ScopedEnv env(kVar, std::string("none"));
    EXPECT_EQ(is_debug_mode_active_for(kVar, "all", static_cast<const char*>(nullptr)), 0);
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

    EXPECT_EQ(child_stderr([] {
                  setenv("ZQTARVEX_DEBUG_MODE", "error", 1);
                  gerror_set_all_errors(0, 0);
                  gerror_display_debug_info("b.c", 42);
              }),
              banner(42, "b.c", ""));
}

TEST(DebugModeTest, BannerSwitchedOnFromTheSettingsStore)
{
    const tql_test::ScopedSettingsStore store({{"ZQTARVEX_DEBUG_MODE", "all"}});
    const tql_test::ScopedEnv unset("ZQTARVEX_DEBUG_MODE", std::nullopt);
    EXPECT_EQ(child_stderr([] {
                  gerror_set_all_errors(22, 0);
                  gerror_display_debug_info("c.c", 7);
              }),
              banner(7, "c.c", "Cannot find file\n"));
}

} // namespace
