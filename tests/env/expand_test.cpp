// Expansion of $NAME, %NAME, {$NAME} and {%NAME} references: the passes,
// the dropped character, the trailing colon, cyclic references, buffer
// sizes and the lookup order across environments.
#include "env/env_test_support.h"

#include "support/child_process.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace tql_test {
namespace {

using Expand = EnvTest;

// The expansion of `source` in `env` (no further environments), or
// "<-1>" / "<size N>".
std::string expand(GuiEnv env, const char* source, int size = 8192)
{
    std::vector<char> out(size > 0 ? size : 1, '#');
    const int result = gui_env_expand_str(out.data(), source, size, env, static_cast<GuiEnv>(nullptr));
    if (result == 0) {
        return out.data();
    }
    return result < 0 ? "<-1>" : "<size " + std::to_string(result) + ">";
}

TEST_F(Expand, ReferenceForms)
{
    GuiEnv env = open_env();
    const std::string long_name(70, 'L');
    for (const auto& [name, value] :
         {std::pair<std::string, const char*>{"A", "%B"}, {"B", "x"}, {"NAME", "val"}, {"EMPTY", ""}, {"SELF", "%SELF"},
          {"C", "%D"}, {"D", "%C"}, {"F", "x{%G}y"}, {"G", "<%F>"}, {"H", "%Z%Z"}, {"Z", "z"}, {"S", "$TQL_SELF"},
          {long_name, "long"}}) {
        gui_env_put(env, name.c_str(), value, GUI_ENV_LOCAL);
    }
    ScopedEnv home("TQL_HOME", std::string("/home/u"));
    ScopedEnv self("TQL_SELF", std::string("[$TQL_SELF]"));
    ScopedEnv undefined("UNDEFINED", std::nullopt);
    ScopedEnv root("ZQTARVEX_DIR", std::nullopt);

    struct Case {
        std::string source;
        const char* expected;
    } cases[] = {
        {"%A", "x"},                         // values are expanded again
        {"%NAME%", "val"},                   // the closing % is an empty reference
        {"%MISSING%", "<-1>"},
        {"$TQL_HOME:", "/home/u"},           // one trailing colon is removed
        {"a::", "a:"},                       // only one
        {"$UNDEFINED/x", "x"},               // a failed reference drops one character
        {"%EMPTY/x", "x"},                   // so does an empty value
        {"{$TQL_HOME}/bin", "/home/u/bin"},  // braced forms
        {"${TQL_HOME}", "TQL_HOME}"},        // "$" then "{" is an empty reference
        {"{$TQL_HOME", "/home/u"},           // an unclosed brace ends with the text
        {"$ZQTARVEX_DIR\\config", "\\zqtarvex\\config"},
        {"50% off", "50off"},                // "% " is a failed reference
        {"$TQL_HOME\xe9", "/home/u\xe9"},    // bytes of 128 and above end names
        {"%" + long_name + "!", "long!"},    // name characters past 63 are consumed, not kept
        // A reference met again inside its own value counts as undefined; a
        // name used twice side by side is no cycle.
        {"%SELF", "<-1>"}, {"%C", "<-1>"}, {"%H", "zz"}, {"%S", "["},
        {"%F", "x<y"},                       // the undefined inner %F drops the '>'
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.source);
        EXPECT_EQ(expand(env, c.source.c_str()), c.expected);
    }
    // The callback is asked for the name met again; a replacement it gives
    // is used as it is, never expanded again.
    CallbackLog log;
    log.replacement = "%F";
    EXPECT_EQ(expand(env, "%F"), "x<%F>y");
    EXPECT_EQ(log.calls.back().name, "F");
}

TEST_F(Expand, FailuresAndSizes)
{
    GuiEnv env = open_env();
    gui_env_put(env, "V", "1234", GUI_ENV_LOCAL);
    EXPECT_EQ(gui_env_expand_str_system_only(nullptr, nullptr, 4, env, static_cast<GuiEnv>(nullptr)), -1);
    EXPECT_EQ(expand(env, "%V", 5), "1234");
    char small[5] = "ZZZZ";
    EXPECT_EQ(gui_env_expand_str(small, "%V.", 5, env, static_cast<GuiEnv>(nullptr)), 6);
    EXPECT_STREQ(small, "");

    // In place, and far beyond the first 2048-byte work buffer.
    const std::string big(5000, 'b');
    gui_env_put(env, "BIG", big.c_str(), GUI_ENV_LOCAL);
    std::vector<char> buffer(20000);
    std::strcpy(buffer.data(), "%BIG-%BIG");
    ASSERT_EQ(gui_env_expand_str(buffer.data(), buffer.data(), 20000, env, static_cast<GuiEnv>(nullptr)), 0);
    EXPECT_EQ(std::string(buffer.data()), big + "-" + big);

    // The system-only form leaves %NAME references alone.
    ScopedEnv var("TQL_SYS", std::string("s"));
    char out[16];
    ASSERT_EQ(gui_env_expand_str_system_only(out, "%V{%V}$TQL_SYS", sizeof out, env, static_cast<GuiEnv>(nullptr)), 0);
    EXPECT_STREQ(out, "%V{%V}s");
}

TEST_F(Expand, LookupOrderAndCallback)
{
    GuiEnv env = open_env();
    GuiEnv first = gui_env_open("first", kNoFiles);
    GuiEnv second = gui_env_open("second", kNoFiles);
    gui_env_put(second, "X", "second", GUI_ENV_LOCAL);
    gui_env_put(first, "X", "first", GUI_ENV_LOCAL);
    gui_env_put_ee("X", "default", GUI_ENV_LOCAL);
    gui_env_put_ee("D", "default-only", GUI_ENV_LOCAL);
    char out[64];
    ASSERT_EQ(gui_env_expand_str(out, "%X", 64, env, second, first, static_cast<GuiEnv>(nullptr)), 0);
    EXPECT_STREQ(out, "second");
    // Get and expand in the caller's buffer, from the default environment
    // (the configured web browser gets and expands in one environment).
    gui_env_put_ee("EE", "%D", GUI_ENV_LOCAL);
    EXPECT_EQ(gui_env_get_ee_and_expand("EE", out, nullptr, sizeof out, GUI_ENV_ANY), 0);
    EXPECT_STREQ(out, "default-only");

    // The callback is asked once, after every environment failed, and its
    // replacement is expanded like any value.
    CallbackLog log;
    log.replacement = "[%D]";
    ASSERT_EQ(gui_env_expand_str(out, "%NOWHERE", 64, env, first, static_cast<GuiEnv>(nullptr)), 0);
    EXPECT_STREQ(out, "[default-only]");
    ASSERT_EQ(log.calls.size(), 1u);
    EXPECT_EQ(log.calls[0].code, GUI_ENV_ERR_NO_VAR);
    ScopedEnv unset("TQL_UNSET", std::nullopt);
    ASSERT_EQ(gui_env_expand_str(out, "$tql_unset", 64, env, static_cast<GuiEnv>(nullptr)), 0);
    EXPECT_EQ(log.calls.back().code, GUI_ENV_ERR_NO_SYSVAR);
}

// When the work buffer cannot grow the process ends with a message. The
// address-space limit that provokes it does not work with the sanitizers'
// shadow memory, so their builds skip this test.
TEST_F(Expand, BufferThatCannotGrowEndsTheProcess)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "address-space limits do not work with sanitizers";
#else
    const ChildResult child = run_in_child([] {
        GuiEnv env = gui_env_open("big", 99);
        const std::string big(64u << 20, 'b');
        gui_env_put(env, "BIG", big.c_str(), GUI_ENV_LOCAL);
        // Room for 16 MiB more than the process uses now.
        std::ifstream statm("/proc/self/statm");
        size_t pages = 0;
        statm >> pages;
        const rlim_t room = pages * static_cast<size_t>(sysconf(_SC_PAGESIZE)) + (16u << 20);
        const rlimit limit{room, room};
        setrlimit(RLIMIT_AS, &limit);
        char out[16];
        gui_env_expand_str(out, "%BIG", sizeof out, env, static_cast<GuiEnv>(nullptr));
        std::_Exit(0);
    });
    EXPECT_TRUE(child.exited);
    EXPECT_EQ(child.exit_status, 1);
    EXPECT_EQ(child.err, "\n###  Exceeded internal string buffer size in gui_env  ###\n");
#endif
}

} // namespace
} // namespace tql_test
