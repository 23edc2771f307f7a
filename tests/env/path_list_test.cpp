// Path lists: separators with the drive exception, the two iterators, and
// expanded elements.
#include "env/env_test_support.h"

namespace tql_test {
namespace {

using PathList = EnvTest;

std::vector<std::string> tokens(const char* list)
{
    std::vector<std::string> all;
    for (const char* t = gui_env_get_tok(list); t; t = gui_env_get_tok(nullptr)) all.push_back(t);
    return all;
}

std::vector<std::string> extracted(const char* list)
{
    std::vector<std::string> all;
    char out[256];
    for (int r = gui_env_extract_path(out, list, 0, sizeof out, nullptr); r != -2;
         r = gui_env_extract_path(out, nullptr, 0, sizeof out, nullptr)) {
        EXPECT_EQ(r, 0);
        all.push_back(out);
    }
    return all;
}

TEST_F(PathList, SeparatorsDrivesSmallDestinationsAndExpansion)
{
    using V = std::vector<std::string>;
    struct Case { const char* list; V expected; } cases[] = {
        {"C:\\a;D:/b:e", V{"C:\\a", "D:/b", "e"}}, {"x:y", V{"x", "y"}}, {"c:/x:y", V{"c:/x", "y"}},
        {"C:x", V{"C", "x"}},     // no separator after the colon: not a drive
        {"1:\\x", V{"1", "\\x"}}, // not a letter
        {"a;;b", V{"a", "", "b"}}, {"", V{}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.list);
        EXPECT_EQ(tokens(c.list), c.expected);
        EXPECT_EQ(extracted(c.list), c.expected);
    }
    EXPECT_EQ(gui_env_get_tok(nullptr), nullptr);

    // A destination too small delivers the same element again.
    char out[16];
    EXPECT_EQ(gui_env_extract_path(out, "long;b", 0, 3, nullptr), 5);
    EXPECT_EQ(gui_env_extract_path(out, nullptr, 0, 3, nullptr), 5);
    EXPECT_EQ(gui_env_extract_path(out, nullptr, 0, sizeof out, nullptr), 0);
    EXPECT_STREQ(out, "long");
    EXPECT_EQ(gui_env_extract_path(nullptr, "a", 0, 4, nullptr), -1);

    // Elements are expanded through the caller's environments; a failing
    // one gives -1 and the iteration moves on.
    GuiEnv env = open_env();
    GuiEnv extra = gui_env_open("extra", kNoFiles);
    gui_env_put(extra, "MORE", "\\more", GUI_ENV_LOCAL);
    EXPECT_EQ(gui_env_extract_path(out, "%MISSING;%MORE", 1, sizeof out, env, extra, static_cast<GuiEnv>(nullptr)), -1);
    EXPECT_EQ(gui_env_extract_path(out, nullptr, 1, sizeof out, env, extra, static_cast<GuiEnv>(nullptr)), 0);
    EXPECT_STREQ(out, "\\more");
}

// A process variable, else what the error callback offers for it, else null.
TEST_F(PathList, ProcessVariablesFallBackToTheCallback)
{
    ScopedEnv set("TQL_SYS_SET", std::string("value"));
    ScopedEnv unset("TQL_SYS_UNSET", std::nullopt);
    CallbackLog log;
    EXPECT_STREQ(gui_env_get_sys(nullptr, "TQL_SYS_SET"), "value");
    EXPECT_EQ(gui_env_get_sys(nullptr, "TQL_SYS_UNSET"), nullptr);
    log.replacement = "offered";
    EXPECT_STREQ(gui_env_get_sys(nullptr, "TQL_SYS_UNSET"), "offered");
    ASSERT_EQ(log.calls.size(), 2u);
    EXPECT_EQ(log.calls[1].code, GUI_ENV_ERR_NO_SYSVAR);
    EXPECT_EQ(log.calls[1].name, "TQL_SYS_UNSET");
}

} // namespace
} // namespace tql_test
