// Configuration files: where each level's file is, the line format,
// includes, add-ons, precedence, write-back and its data safety, and the
// reload after a change of directory. Every file lives in the fixture's
// temporary folder (HOME, ZQTARVEX_DIR and the current directory).
#include "env/env_test_support.h"

#include "support/child_process.h"

#include "env/env_store.h"

#include <tql70/gmem.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <unistd.h>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

class ConfigFiles : public EnvTest {
protected:
    std::string write(const std::string& relative, const std::string& text)
    {
        return sandbox_.write_file(relative, text);
    }
    std::string ee(const char* name, int level = GUI_ENV_ANY) { return get(nullptr, name, level); }
};

TEST_F(ConfigFiles, LevelsLineFormatPrecedenceIncludesAndAddons)
{
    write("root/config/zqtarvex.cfg", "# site\nSHARED=site\n  A = 1\nB  =  2  \n// C=3\nno equals here\nx\n+\\" +
                                          sandbox_.path().substr(1) + "/root/config/base.cfg\n");
    write("home/zqtarvex/config/zqtarvex.cfg", "SHARED=home\n");
    write("zqtarvex.cfg", "shared=local\n+common   # a comment\n+!ignored\n+missing\nLONG=" + std::string(5000, 'l'));
    write("common.cfg", "FROM_COMMON=yes\n");
    write("root/config/base.cfg", "BASE=b\n");
    write("root/config/addons_cfgs/zqtarvex/10-tool.cfg", "TOOL_DIR=%BASE\\tool\n");
    write("root/config/addons_cfgs/zqtarvex/.hidden.cfg", "HIDDEN=1\n");

    CallbackLog log;
    EXPECT_EQ(ee("SHARED"), "local");
    EXPECT_EQ(ee("SHARED", GUI_ENV_SITE), "site");
    EXPECT_EQ(ee("SHARED", GUI_ENV_HOME), "home");
    EXPECT_EQ(ee("  A"), "1"); // leading blanks belong to the name
    EXPECT_EQ(ee("B"), "2");
    EXPECT_EQ(ee("LONG"), std::string(5000, 'l')); // no final line feed
    EXPECT_EQ(ee("FROM_COMMON"), "yes");
    EXPECT_EQ(ee("TOOL_DIR"), "b\\tool"); // add-on values are expanded
    EXPECT_EQ(ee("HIDDEN"), "<-1>");
    ASSERT_FALSE(log.calls.empty());
    EXPECT_EQ(log.calls[0].code, GUI_ENV_ERR_NO_FILE);
    EXPECT_EQ(log.calls[0].name, "missing.cfg");

    // gui_env_open of one level reads only that file.
    EXPECT_EQ(get(gui_env_open("zqtarvex", GUI_ENV_SITE), "SHARED"), "site");
}

TEST_F(ConfigFiles, WriteBackKeepsCommentsAndIncludes)
{
    const std::string local = write("zqtarvex.cfg", "# comment\n+common\nx=1\nkeep = v  \n//c=d\n");
    write("common.cfg", "INC=i\n");
    EXPECT_EQ(gui_env_rm_ee("X", GUI_ENV_LOCAL), 1);
    EXPECT_EQ(gui_env_put_ee("y", "value", GUI_ENV_LOCAL), 1);
    EXPECT_EQ(gui_env_put_ee("INC", "changed", GUI_ENV_LOCAL), 1); // from an include: never written
    EXPECT_EQ(gui_env_deinit(1), 1);
    EXPECT_EQ(read_file(local), "# comment\n+common\nKEEP=v\n//C=d\n\nY=value\n");

    // A new home file is created with its directories.
    fs::create_directories(sandbox_.path() + "/home");
    EXPECT_EQ(gui_env_put_ee("H", "1", GUI_ENV_HOME), 1);
    EXPECT_EQ(gui_env_deinit(1), 1);
    EXPECT_EQ(read_file(sandbox_.path() + "/home/zqtarvex/config/zqtarvex.cfg"), "H=1\n");
}

// A save cut short half-way, by a write error (the file-size limit with
// its signal ignored) or by the signal that ends the process, leaves the
// file as it was and no temporary file beside it.
TEST_F(ConfigFiles, FailedOrKilledSaveLeavesTheFileIntact)
{
    const std::string local = write("zqtarvex.cfg", "A=old\n");
    for (bool killed : {false, true}) {
        SCOPED_TRACE(killed ? "killed" : "failed");
        const ChildResult child = run_in_child([killed] {
            std::signal(SIGXFSZ, killed ? SIG_DFL : SIG_IGN);
            CallbackLog log;
            gui_env_put_ee("A", std::string(100000, 'n').c_str(), GUI_ENV_LOCAL);
            rlimit limit{4096, 4096};
            setrlimit(RLIMIT_FSIZE, &limit);
            const int closed = gui_env_deinit(1);
            std::printf("%d %zu %d", closed, log.calls.size(), log.calls.empty() ? 0 : log.calls[0].code);
        });
        if (killed) {
            EXPECT_EQ(child.signal, SIGXFSZ);
        } else {
            EXPECT_EQ(child.out, "0 1 5");
        }
        EXPECT_EQ(read_file(local), "A=old\n");
        for (const auto& entry : fs::directory_iterator(sandbox_.path())) {
            EXPECT_EQ(entry.path().filename().string().rfind(".tql70-", 0), std::string::npos) << "temporary left";
        }
    }
}

// The default environment is made again from the files after a change of
// directory, and after it was closed while another environment stays open.
TEST_F(ConfigFiles, DefaultEnvironmentIsRemadeFromTheFiles)
{
    write("zqtarvex.cfg", "WHERE=top\n");
    write("sub/zqtarvex.cfg", "WHERE=sub\n");
    EXPECT_EQ(ee("WHERE"), "top");
    EXPECT_EQ(gui_chdir("\"sub\"", 0), 0);
    EXPECT_EQ(ee("WHERE"), "sub");
    EXPECT_EQ(gui_chdir((sandbox_.path() + "/none").c_str(), 0), -1);
    EXPECT_EQ(gui_env_getrlimit(), 1);

    GuiEnv other = gui_env_open("other", kNoFiles);
    gui_env_put(other, "MINE", "m", GUI_ENV_LOCAL);
    EXPECT_EQ(gui_env_put_ee("ONLY_HERE", "x", GUI_ENV_LOCAL), 1);
    GuiEnv first = tql::env::open_environments(); // the default heads the list
    ASSERT_NE(first, other);
    EXPECT_EQ(gui_env_close(first, 0), 1);
    EXPECT_EQ(ee("ONLY_HERE"), "<-1>");
    EXPECT_EQ(ee("WHERE"), "sub");
    EXPECT_EQ(get(other, "MINE"), "m");
}

TEST_F(ConfigFiles, WebBrowser)
{
    const std::string opener = sandbox_.write_file("bin/xdg-open", "#!/bin/sh\n");
    const std::string firefox = sandbox_.write_file("bin/firefox", "#!/bin/sh\n");
    for (const std::string& program : {opener, firefox}) fs::permissions(program, fs::perms::owner_all);
    ScopedEnv path("PATH", sandbox_.path() + "/bin");
    ScopedEnv no_browser("BROWSER", std::nullopt);
    auto browser = [] {
        char* found = gui_env_getwebbrowser();
        const std::string text = found;
        gmem_ee_free(found);
        return text;
    };
    EXPECT_EQ(browser(), opener);
    ScopedEnv list("BROWSER", std::string("nosuch:firefox"));
    EXPECT_EQ(browser(), firefox);
    // The configured browser wins when it names an existing file.
    write("root/config/de_sim.cfg", "WEB_BROWSER=" + sandbox_.path() + "/bin/%NAME\n");
    write("de_sim.cfg", "NAME=xdg-open\n");
    EXPECT_EQ(browser(), opener);
    ScopedEnv empty_path("PATH", sandbox_.path() + "/none");
    write("de_sim.cfg", "NAME=missing\n");
    EXPECT_EQ(browser(), "");
}

// The callback calls of the default environment made from the files now
// in the sandbox.
std::vector<CallbackLog::Call> calls_while_loading()
{
    CallbackLog log;
    gui_env_init();
    return log.calls;
}

TEST_F(ConfigFiles, IncludeCyclesAndDeepChainsAreSkippedAndReported)
{
    // A 65-deep chain: inc0 includes inc1 ... the 64th file is refused.
    for (int i = 0; i < 65; ++i) {
        write("inc" + std::to_string(i) + ".cfg", "D" + std::to_string(i) + "=x\n+inc" + std::to_string(i + 1) + "\n");
    }
    struct Case {
        const char* local;
        int code;
        const char* name;
        const char* defined;
    } cases[] = {
        {"+zqtarvex\nSELF=1\n", GUI_ENV_ERR_INCLUDE_CYCLE, "zqtarvex.cfg -> zqtarvex.cfg", "SELF"},
        {"+other\nMINE=1\n", GUI_ENV_ERR_INCLUDE_CYCLE, "zqtarvex.cfg -> other.cfg -> zqtarvex.cfg", "THEIRS"},
        {"+inc0\n", GUI_ENV_ERR_INCLUDE_DEPTH, "inc63.cfg", "D62"},
    };
    write("other.cfg", "+zqtarvex\nTHEIRS=1\n");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.local);
        write("zqtarvex.cfg", std::string(c.local) + "MINE=1\n");
        const auto calls = calls_while_loading();
        ASSERT_EQ(calls.size(), 1u);
        EXPECT_EQ(calls[0].code, c.code);
        EXPECT_EQ(calls[0].name, c.name);
        EXPECT_NE(ee(c.defined), "<-1>");
        gui_env_deinit(0);
    }
}

TEST_F(ConfigFiles, UnusableFilesAreReportedAndNeverReplaced)
{
    struct Case {
        const char* what;
        fs::perms mode;
        bool read_reported;
    } cases[] = {
        {"unreadable", fs::perms::none, true},
        {"read-only", fs::perms::owner_read | fs::perms::group_read, false},
        {"fifo", fs::perms::owner_read | fs::perms::owner_write, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string local = sandbox_.path() + "/zqtarvex.cfg";
        fs::remove_all(local);
        if (std::string(c.what) == "fifo") {
            ASSERT_EQ(mkfifo(local.c_str(), 0600), 0);
        } else {
            write("zqtarvex.cfg", "A=old\n");
            fs::permissions(local, c.mode);
        }
        const auto calls = calls_while_loading();
        EXPECT_EQ(calls.size(), c.read_reported ? 1u : 0u);
        EXPECT_TRUE(calls.empty() || calls[0].code == GUI_ENV_ERR_READ);
        CallbackLog log;
        gui_env_put_ee("A", "new", GUI_ENV_LOCAL);
        EXPECT_EQ(gui_env_deinit(1), 0);
        ASSERT_EQ(log.calls.size(), 1u);
        EXPECT_EQ(log.calls[0].code, GUI_ENV_ERR_WRITE);
        EXPECT_EQ(log.calls[0].name, local);
        if (fs::is_regular_file(local)) {
            fs::permissions(local, fs::perms::owner_read);
            EXPECT_EQ(read_file(local), "A=old\n");
        }
    }
}

// Every line of a name defined twice is saved; NUL bytes are data, and a
// name holding one defines nothing.
TEST_F(ConfigFiles, SavedValuesReadBackWithDuplicatesAndNulBytes)
{
    using namespace std::string_literals;
    const std::string local = write("zqtarvex.cfg", "A=1\nB=x\0y\nC=3\n\0=1\nA\0=2\nA=2\n"s);
    EXPECT_EQ(ee("C"), "3");
    gui_env_put_ee("A", "new", GUI_ENV_LOCAL);
    EXPECT_EQ(gui_env_deinit(1), 1);
    EXPECT_EQ(read_file(local), "A=new\nB=x\0y\nC=3\n\0=1\nA\0=2\nA=new\n"s);
    EXPECT_EQ(ee("A"), "new");
}

// Two processes save to the same file, whose path is about 3,000 bytes
// long, at once: every variable of both is kept.
TEST_F(ConfigFiles, ConcurrentSavesToALongPathKeepEveryVariable)
{
    std::string deep = sandbox_.path();
    for (int i = 0; i < 15; ++i) {
        deep += "/" + std::string(200, static_cast<char>('a' + i));
    }
    fs::create_directories(deep);
    const std::string file = deep + "/shared.cfg";
    const pid_t other = fork(); // saves as Q while this process saves as P
    const char who = other == 0 ? 'Q' : 'P';
    for (int i = 0; i < 40; ++i) {
        GuiEnv env = gui_env_open(file.c_str(), GUI_ENV_FILE);
        gui_env_put(env, (who + std::to_string(i)).c_str(), "v", GUI_ENV_LOCAL);
        gui_env_close(env, 1);
    }
    if (other == 0) {
        std::_Exit(0);
    }
    waitpid(other, nullptr, 0);
    // Each save adds one variable of its own.
    const std::string text = read_file(file);
    EXPECT_EQ(std::count(text.begin(), text.end(), '='), 80) << text;
}

} // namespace
} // namespace tql_test
