// The tql command line: exit statuses, outputs and usage errors.
#include "support/scoped_env.h"

#include <tql70/gfile.h>
#include <tql70/process_env.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct ToolRun {
    int status;
    std::string out;
};

// Runs tql with `arguments` (already shell-quoted), stderr merged or not.
ToolRun tql(const std::string& arguments, bool merge_stderr = false)
{
    const std::string command =
        std::string(TQL_BINARY) + " " + arguments + (merge_stderr ? " 2>&1" : " 2>/dev/null");
    FILE* pipe = popen(command.c_str(), "r");
    ToolRun run{-1, ""};
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        run.out.append(buffer, n);
    }
    const int raw = pclose(pipe);
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return run;
}

// One command line, its exit status, and a text its output must hold
// (with `whole`, the entire output). Stderr is merged into the output.
struct ToolCase {
    std::string arguments;
    int status;
    std::string expected;
    bool whole = false;
};

void check(const ToolCase& r)
{
    SCOPED_TRACE(r.arguments);
    const ToolRun run = tql(r.arguments, true);
    EXPECT_EQ(run.status, r.status);
    if (r.whole) {
        EXPECT_EQ(run.out, r.expected);
    } else {
        EXPECT_NE(run.out.find(r.expected), std::string::npos) << run.out;
    }
}

TEST(TqlTool, InformationCommands)
{
    tql_test::SandboxInstallation sandbox;
    tql_test::ScopedSettingsStore store({{"TQL_TOOL_STORED", "from-store"}});
    tql_test::ScopedEnv set("TQL_TOOL_SET", std::string("/opt/zq"));
    tql_test::ScopedEnv unset("TQL_TOOL_UNSET", std::nullopt);
    const ToolCase runs[] = {
        {"--help", 0, "\n  getenv    print a process variable"},
        {"--version", 0, std::string(kps_version_str("")) + "\n", true},
        {"version", 0, std::string(kps_version_str("")) + "\n", true},
        {"getenv TQL_TOOL_SET", 0, "/opt/zq\n", true},
        {"getenv TQL_TOOL_STORED", 0, "from-store\n", true},
        {"errors", 0, " 23  Cannot open file\n"},
        {"expand '$TQL_TOOL_SET/bin:'", 0, "/opt/zq/bin\n", true},
        {"path native 'C:\\a\\b'", 0, "/a/b\n", true},
        {"path canon 'C:/x//y/'", 0, "C:\\x\\y\n", true},
    };
    for (const ToolCase& r : runs) {
        check(r);
    }
}

TEST(TqlTool, FileCommands)
{
    tql_test::TempDir dir;
    dir.write_file("src/a.txt", "abc");
    dir.write_file("src/sub/b.txt", std::string(4096, 'b'));
    dir.write_file("out/sub", "a file where the copy needs a directory");
    const std::string d = dir.path();
    const ToolCase runs[] = {
        {"cp " + d + "/src " + d + "/copy", 1, ""}, // a directory needs -r
        {"cp " + d + "/src " + d + "/copy -r", 0, ""},
        // A failed tree walk names the entry it stopped at and the reason.
        {"cp " + d + "/src " + d + "/out -r", 1,
         "tql: cannot copy " + d + "/src: " + d + "/out/sub: Error writing file (File exists)\n", true},
        {"rm " + d + "/copy -r", 0, ""},
        {"rm " + d + "/src/a.txt", 0, ""},
        {"rm " + d + "/src/a.txt", 1, ""},
    };
    EXPECT_GE(std::stoi(tql("du " + d + "/src").out), 4);
    EXPECT_GT(std::stoi(tql("df " + d).out), 0);
    for (const ToolCase& r : runs) {
        check(r);
    }
}

TEST(TqlTool, EnvironmentCommands)
{
    tql_test::SandboxInstallation dir;
    dir.write_file("root/config/zqtarvex.cfg", "EDITOR=vi\nDIR=%EDITOR.d\nBIN=C:\\t\\bin\nTOOL=%BIN\\tql\n");
    dir.write_file("zqtarvex.cfg", "EDITOR=nano\n");
    const std::string site = dir.path() + "/root/config/zqtarvex.cfg";
    const ToolCase runs[] = {
        {"env", 0, "EDITOR=nano\n    from local level, zqtarvex.cfg\n    shadows site level, " + site + " (vi)\n"},
        {"env", 0, "DIR=%EDITOR.d\n    expands to: nano.d\n"},
        {"env", 0, "BIN=C:\\t\\bin\n    native: /t/bin\n    from site"},
        {"env TOOL", 0, "TOOL=%BIN\\tql\n    expands to: C:\\t\\bin\\tql  (native: /t/bin/tql)\n"},
        {"env get editor --level site", 0, "vi\n", true},
        {"env set NEW value --level local --save", 0, ""},
        {"env rm EDITOR --level local --save", 0, ""},
        {"env get EDITOR", 0, "vi\n", true},
        {"env get NEW", 0, "value\n", true},
        {"env files", 0, "site    used               " + site},
        {"env set A --level nowhere", 2, ""},
    };
    for (const ToolCase& r : runs) {
        check(r);
    }
}

TEST(TqlTool, NameParseAndNumberCommands)
{
    tql_test::TempDir dir;
    const std::string file = dir.write_file("data.txt", "a=12;2.5 x\n\nk!comment\n");
    const ToolCase runs[] = {
        {"name check identifier abc_1", 0, "valid\n", true},
        {"name check design a.b", 1, ""},
        {"name check design a.b --allow-dot", 0, ""},
        {"name fix workspace 'my work:space'", 0, "my_work_space\n", true},
        {"parse --seps '; ' --marks = --end '!' " + file, 0,
         "line 1: 5 fields\n  0  text     a\n  1  text     =\n  2  integer  12\n  3  number   2.5\n"
         "  4  text     x\nline 2: 0 fields\nline 3: 1 field\n  0  text     k\n",
         true},
        {"num fmt 123 13 2", 0, "gparse_dbltoas 1  \"123.00\"\n"},
        {"num fmt 123 13 2", 0, "gparse_inttoas 1  \"123\"\n"}, // an integer text is also formatted as one
    };
    for (const ToolCase& r : runs) {
        check(r);
    }
}

// tql crypt in a private installation, a header it makes read back by
// gfile_encrypted.
TEST(TqlTool, CryptCommands)
{
    tql_test::SandboxInstallation dir("", "/site");

    const ToolRun line = tql("crypt encrypt 'hello world'");
    ASSERT_EQ(line.status, 0);
    EXPECT_EQ(tql("crypt decrypt " + line.out).out, "hello world\n");
    EXPECT_EQ(tql("crypt header x alpha").status, 2);

    const ToolRun header = tql("crypt header 42 alpha");
    ASSERT_EQ(header.out.compare(0, 3, "@& "), 0);
    FILE* file = std::fopen(dir.write_file("marked.txt", header.out + "body\n").c_str(), "r");
    int number = 0;
    char word[32] = "";
    EXPECT_EQ(gfile_encrypted(file, &number, word), 1);
    EXPECT_EQ(number, 42);
    EXPECT_STREQ(word, "alpha");
    std::fclose(file);
}

} // namespace

TEST(TqlTool, MathEvaluatesOneFunctionWithTheErrorState)
{
    const ToolCase runs[] = {
        {"math cdnolog 0 0", 0, "0 0\nematherr 1\n", true},
        {"math gmath_cdnopwr 0 0 0 0", 0, "0 0\nematherr 0\n", true},
        {"math magxy 3e38 3e38", 0, "9.99999968e+37\nematherr 0\n", true},
        {"math eeround -2.5", 0, "-3\nematherr 0\n", true},
        {"math snolog -1", 0, "0\nematherr 1\n", true},
        {"math snolog", 2, "tql: snolog takes 1 argument\n"},
        {"math snolog x", 2, "tql: 'x' is not a number\n"},
        {"math nosuch 1", 2, "tql: unknown math function 'nosuch'\n"},
    };
    for (const ToolCase& r : runs) {
        check(r);
    }
}

TEST(TqlTool, Grep)
{
    tql_test::TempDir dir;
    const std::string file = dir.write_file("log.txt", "PATH=/bin\nmail bob@site.org\nzxabyz\n");
    const ToolCase runs[] = {
        {"grep 'x(ab)y' " + file, 0, "zxabyz\n", true},
        {"grep -o '[a-z]+@[a-z]+' " + file, 0, "bob@site\n", true},
        {"grep -s '<\\1>&' 'x(ab)y' " + file + " " + file, 0, file + ":<ab>xaby\n" + file + ":<ab>xaby\n", true},
        {"grep '^PATH=' " + file + " " + dir.path() + "/missing", 2, file + ":PATH=/bin\n"},
        {"grep nothing " + file, 1, "", true},
        {"grep 'a**' " + file, 2, "tql: bad pattern 'a**': nested *?+\n", true},
    };
    for (const ToolCase& r : runs) {
        check(r);
    }
}

TEST(TqlTool, HashCommands)
{
    tql_test::TempDir dir;
    const std::string db = dir.path() + "/t.db";
    const std::string foreign = dir.write_file("foreign", std::string(300, 'f'));
    const ToolCase runs[] = {
        {"hash put " + db + " one 'first value'", 0, "", true},
        {"hash put " + db + " 'tab\tkey' 'a\\b'", 0, "", true},
        {"hash get " + db + " one", 0, "first value\n", true},
        {"hash dump " + db, 0, "tab\\x09key\ta\\\\b\n"},
        {"hash stat " + db, 0, "pairs           2\n"},
        {"hash stat " + foreign, 1, "tql: cannot open " + foreign + ": Invalid argument\n", true},
    };
    for (const ToolCase& r : runs) {
        check(r);
    }
}

namespace {

// tql env check, warnings for skipped includes, failures with the native
// path and the system's reason, and file states in tql env files.
TEST(TqlTool, EnvironmentCheckAndFailureMessages)
{
    tql_test::SandboxInstallation dir;
    tql_test::ScopedEnv unset("TQL_TOOL_UNSET", std::nullopt);
    dir.write_file("zqtarvex.cfg", "+zqtarvex\nA=%A\nC=%D\nD=%C/x\nU=%NOPE $TQL_TOOL_UNSET %A%\n");
    dir.write_file("home/zqtarvex/config/zqtarvex.cfg/x", "");

    const ToolRun report = tql("env check");
    EXPECT_EQ(report.status, 1);
    EXPECT_EQ(report.out, "undefined: %NOPE in U at zqtarvex.cfg:5\n"
                         "undefined: $TQL_TOOL_UNSET in U at zqtarvex.cfg:5\n"
                         "cycle: A -> A\n    A at zqtarvex.cfg:2\n"
                         "cycle: C -> D -> C\n    C at zqtarvex.cfg:3\n    D at zqtarvex.cfg:4\n");
    check({"env", 0, "tql: warning: include cycle skipped: zqtarvex.cfg -> zqtarvex.cfg\n"});
    check({"env", 0, "tql: warning: cannot read " + dir.path() + "/home/zqtarvex/config/zqtarvex.cfg: Is a directory\n"});

    chmod((dir.path() + "/zqtarvex.cfg").c_str(), 0444);
    check({"env set A 1 --level local --save", 1, "tql: cannot write " + dir.path() + "/zqtarvex.cfg: Permission denied\n"});
    dir.write_file("root/config/zqtarvex.cfg", "B=%A\n");
    chmod((dir.path() + "/zqtarvex.cfg").c_str(), 0644);
    dir.write_file("zqtarvex.cfg", "A=1\n");
    EXPECT_EQ(tql("env check").out, "no cycles or undefined references\n");
}

} // namespace

// Every command's own help, a usage error and a failure, through the real
// binary: status 0, 2 and 1, and the messages that go with them.
TEST(TqlTool, EveryCommandHasHelpUsageErrorAndFailure)
{
    tql_test::SandboxInstallation dir("", "/site");
    tql_test::ScopedEnv unset("TQL_TOOL_UNSET", std::nullopt);
    const std::string none = dir.path() + "/none";
    const std::string db = dir.path() + "/t.db";
    ASSERT_EQ(tql("hash put " + db + " k v").status, 0);
    const struct {
        const char* name;
        std::string usage_error; // arguments after the name, and the message
        const char* usage_message;
        std::string failure; // arguments after the name; empty: cannot fail
        std::string failure_message;
    } cases[] = {
        {"env", "get", "wrong number of arguments for env get", "NOPE", "tql: NOPE is not defined\n"},
        {"version", "extra", "version takes no arguments", "", ""},
        {"getenv", "", "getenv takes one variable name", "TQL_TOOL_UNSET", "tql: TQL_TOOL_UNSET is not defined\n"},
        {"errors", "extra", "errors takes no arguments", "", ""},
        {"expand", "", "expand takes one text", "'$TQL_TOOL_UNSET'", "tql: '$TQL_TOOL_UNSET' expands to nothing\n"},
        {"name", "check planet x", "the kind is one of", "check identifier 1abc", "`1' illegal"},
        {"parse", "--seps", "Missing value after '--seps'.", none, "tql: cannot open " + none + ": No such file or directory\n"},
        {"num", "fmt x 10 2", "num takes fmt", "", ""},
        {"cp", "--recursive a b", "Unknown option 'recursive'.", none + " " + dir.path() + "/x",
         "tql: cannot copy " + none + ": No such file or directory\n"},
        {"rm", "", "rm takes one path", dir.path(), "tql: cannot remove " + dir.path() + ": is a directory (-r for a tree)\n"},
        {"du", "", "du takes one directory", none, "tql: " + none + " is not a directory\n"},
        {"df", "a b", "df takes one directory", none, "tql: " + none + " is not a directory\n"},
        {"math", "", "math takes a function name", "", ""},
        {"path", "up x", "path takes 'native' or 'canon'", "canon ./", "tql: './' reduces to nothing\n"},
        {"grep", "", "grep takes a pattern", "nothing " + db + ".absent", "tql: cannot read " + db + ".absent"},
        {"crypt", "", "crypt takes encrypt or decrypt", "decrypt 'x*'", "unsupported character"},
        {"hash", "", "hash takes dump FILE", "get " + db + " nokey", "tql: " + db + " has no key 'nokey'\n"},
        {"msg", "", "msg takes a set", "errors 1", "tql: cannot open the message catalogue: "},
        {"prj", "", "prj takes new, test", "test " + none, "tql: " + none + " is not a project: "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string name = c.name;
        const ToolRun help = tql(name + " --help", true);
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.out.rfind("usage: tql " + name, 0), 0u) << help.out;
        EXPECT_NE(help.out.find("\nexample:\n  tql " + name), std::string::npos) << help.out;
        EXPECT_NE(help.out.find("exit status: 0 done, 1 the operation failed, 2 a usage error\n"), std::string::npos);

        const ToolRun wrong = tql(name + " " + c.usage_error, true);
        const std::string try_help = "\nTry 'tql " + name + " --help'.\n";
        EXPECT_EQ(wrong.status, 2);
        EXPECT_EQ(wrong.out.rfind(std::string("tql: ") + c.usage_message, 0), 0u) << wrong.out;
        ASSERT_GE(wrong.out.size(), try_help.size());
        EXPECT_EQ(wrong.out.substr(wrong.out.size() - try_help.size()), try_help);

        if (!c.failure.empty()) {
            const ToolRun failed = tql(name + " " + c.failure, true);
            EXPECT_EQ(failed.status, name == "grep" ? 2 : 1);
            EXPECT_NE(failed.out.find(c.failure_message), std::string::npos) << failed.out;
        }
    }
    const std::pair<const char*, const char*> global[] = {
        {"", "tql: no command given\nTry 'tql --help'.\n"},
        {"frobnicate", "tql: unknown command 'frobnicate'\nTry 'tql --help'.\n"},
        {"--frobnicate", "tql: Unknown option 'frobnicate'.\nTry 'tql --help'.\n"},
        {"help frobnicate", "tql: unknown command 'frobnicate'\nTry 'tql --help'.\n"},
    };
    for (const auto& [arguments, message] : global) {
        check({arguments, 2, message, true});
    }
    check({"help cp", 0, "usage: tql cp SRC DST [-r]\n"});
}

// A tree walk shows its count and current entry on a terminal, and nothing
// when standard error is not one; an empty configuration says where it
// looked.
TEST(TqlTool, ProgressOnlyOnATerminalAndAnEmptyEnvironmentSaysWhereItLooked)
{
    tql_test::SandboxInstallation dir("", "/site");
    dir.write_file("tree/a/one.txt", "1");
    dir.write_file("tree/b/two.txt", "2");
    const std::string tree = dir.path() + "/tree";
    check({"cp -r " + tree + " " + dir.path() + "/copy", 0, "", true});

    int master = -1;
    const pid_t child = forkpty(&master, nullptr, nullptr, nullptr);
    ASSERT_GE(child, 0);
    if (child == 0) {
        execl(TQL_BINARY, "tql", "rm", tree.c_str(), "-r", static_cast<char*>(nullptr));
        _exit(127);
    }
    std::string shown;
    char buffer[512];
    ssize_t n;
    while ((n = read(master, buffer, sizeof buffer)) > 0) {
        shown.append(buffer, static_cast<size_t>(n));
    }
    int raw = 0;
    waitpid(child, &raw, 0);
    close(master);
    EXPECT_TRUE(WIFEXITED(raw) && WEXITSTATUS(raw) == 0);
    EXPECT_EQ(shown.rfind("\r\033[K1  " + tree + "/", 0), 0u) << shown;
    ASSERT_GE(shown.size(), 4u);
    EXPECT_EQ(shown.substr(shown.size() - 4), "\r\033[K");
    EXPECT_FALSE(gfile_exists(tree.c_str()));

    dir.write_file("site/config/zqtarvex.cfg/inside", "a directory where the file should be");
    check({"env", 0,
           "no configuration file defines a variable; the files looked for:\n"
           "site    not a regular file " + dir.path() + "/site/config/zqtarvex.cfg (Is a directory)\n"
           "custom  missing            " + dir.path() + "/site/custom/config/zqtarvex.cfg\n"
           "home    missing            " + dir.path() + "/zqtarvex/config/zqtarvex.cfg\n"
           "local   missing            zqtarvex.cfg\n"});
}
