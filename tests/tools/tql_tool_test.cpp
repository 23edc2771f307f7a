// The tql command line: exit statuses, outputs and usage errors.
#include "support/scoped_env.h"

#include <tql70/process_env.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>

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

TEST(TqlTool, HelpAndVersion)
{
    const ToolRun help = tql("--help");
    EXPECT_EQ(help.status, 0);
    for (const char* command : {"tql version", "tql getenv NAME", "tql errors"}) {
        EXPECT_NE(help.out.find(command), std::string::npos) << command;
    }
    const ToolRun version = tql("version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, std::string(kps_version_str("")) + "\n");
}

TEST(TqlTool, GetenvReadsProcessThenStore)
{
    tql_test::ScopedSettingsStore store({{"TQL_TOOL_STORED", "from-store"}});
    tql_test::ScopedEnv set("TQL_TOOL_SET", std::string("from-env"));
    tql_test::ScopedEnv unset("TQL_TOOL_UNSET", std::nullopt);

    EXPECT_EQ(tql("getenv TQL_TOOL_SET").out, "from-env\n");
    const ToolRun stored = tql("getenv TQL_TOOL_STORED");
    EXPECT_EQ(stored.status, 0);
    EXPECT_EQ(stored.out, "from-store\n");
    const ToolRun missing = tql("getenv TQL_TOOL_UNSET", true);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "tql: TQL_TOOL_UNSET is not defined\n");
}

TEST(TqlTool, ErrorsListsEveryCode)
{
    const ToolRun errors = tql("errors");
    EXPECT_EQ(errors.status, 0);
    EXPECT_NE(errors.out.find(" 23  Cannot open file\n"), std::string::npos);
    EXPECT_NE(errors.out.find("  0  GuiErrno out of range\n"), std::string::npos);
    EXPECT_NE(errors.out.find(" 30  Clock stop failed\n"), std::string::npos);
    size_t lines = 0;
    for (char c : errors.out) {
        lines += c == '\n';
    }
    EXPECT_EQ(lines, 31u);
}

TEST(TqlTool, ExpandAndPathForms)
{
    tql_test::ScopedSettingsStore store({});
    tql_test::TempDir sandbox;
    tql_test::ScopedEnv home("HOME", sandbox.path());
    tql_test::ScopedEnv root("ZQTARVEX_DIR", sandbox.path());
    tql_test::ScopedEnv dir("TQL_TOOL_DIR", std::string("/opt/zq"));
    tql_test::ScopedEnv unset("TQL_TOOL_UNSET", std::nullopt);
    EXPECT_EQ(tql("expand '$TQL_TOOL_DIR/bin:'").out, "/opt/zq/bin\n");
    EXPECT_EQ(tql("expand '{$TQL_TOOL_DIR}x'").out, "/opt/zqx\n");
    const ToolRun nothing = tql("expand '$TQL_TOOL_UNSET'", true);
    EXPECT_EQ(nothing.status, 1);
    EXPECT_EQ(nothing.out, "tql: '$TQL_TOOL_UNSET' expands to nothing\n");

    EXPECT_EQ(tql("path native 'C:\\a\\b'").out, "/a/b\n");
    EXPECT_EQ(tql("path canon 'C:/x//y/'").out, "C:\\x\\y\n");
    EXPECT_EQ(tql("path canon ./", true).status, 1);
}

TEST(TqlTool, FileCommands)
{
    tql_test::TempDir dir;
    dir.write_file("src/a.txt", "abc");
    dir.write_file("src/sub/b.txt", std::string(4096, 'b'));
    const std::string src = dir.path() + "/src";
    EXPECT_EQ(tql("cp " + src + " " + dir.path() + "/copy").status, 1); // a directory needs -r
    EXPECT_EQ(tql("cp " + src + " " + dir.path() + "/copy -r").status, 0);
    EXPECT_EQ(tql("cp " + src + "/a.txt " + dir.path() + "/one.txt").status, 0);
    const ToolRun missing = tql("cp " + dir.path() + "/none " + dir.path() + "/x", true);
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.out.find("tql: cannot copy " + dir.path() + "/none"), std::string::npos);

    const ToolRun du = tql("du " + dir.path() + "/copy");
    EXPECT_EQ(du.status, 0);
    EXPECT_GE(std::stoi(du.out), 4);
    EXPECT_EQ(tql("du " + dir.path() + "/none").status, 1);
    const ToolRun df = tql("df " + dir.path());
    EXPECT_EQ(df.status, 0);
    EXPECT_GT(std::stoi(df.out), 0);

    EXPECT_EQ(tql("rm " + dir.path() + "/copy").status, 1); // a directory needs -r
    EXPECT_EQ(tql("rm " + dir.path() + "/copy -r").status, 0);
    EXPECT_EQ(tql("rm " + dir.path() + "/one.txt").status, 0);
    EXPECT_EQ(tql("rm " + dir.path() + "/one.txt").status, 1);
}

TEST(TqlTool, EnvironmentCommands)
{
    tql_test::TempDir dir;
    tql_test::ScopedSettingsStore store({});
    tql_test::ScopedEnv home("HOME", dir.path() + "/home");
    tql_test::ScopedEnv root("ZQTARVEX_DIR", dir.path() + "/root");
    tql_test::ScopedEnv custom("KPS_CUSTOM_DIR", std::nullopt);
    tql_test::ScopedCurrentDirectory cwd(dir.path());
    dir.write_file("root/config/zqtarvex.cfg", "EDITOR=vi\nDIR=%EDITOR.d\n");
    dir.write_file("zqtarvex.cfg", "EDITOR=nano\n");

    const ToolRun all = tql("env");
    EXPECT_EQ(all.status, 0);
    EXPECT_NE(all.out.find("EDITOR=nano\n    from local level, zqtarvex.cfg\n    shadows site level, " + dir.path() +
                           "/root/config/zqtarvex.cfg (vi)\n"),
              std::string::npos)
        << all.out;
    EXPECT_NE(all.out.find("DIR=%EDITOR.d\n    expands to: nano.d\n"), std::string::npos) << all.out;
    EXPECT_EQ(tql("env get editor --level site").out, "vi\n");
    EXPECT_EQ(tql("env NOPE", true).status, 1);

    EXPECT_EQ(tql("env set NEW value --level local --save").status, 0);
    EXPECT_EQ(tql("env rm EDITOR --level local --save").status, 0);
    EXPECT_EQ(tql("env get EDITOR").out, "vi\n");
    EXPECT_EQ(tql("env get NEW").out, "value\n");

    const ToolRun files = tql("env files");
    EXPECT_NE(files.out.find("site    exists  " + dir.path() + "/root/config/zqtarvex.cfg"), std::string::npos);
    EXPECT_NE(files.out.find("home    missing " + dir.path() + "/home/zqtarvex/config/zqtarvex.cfg"),
              std::string::npos);
    EXPECT_EQ(tql("env set A --level nowhere", true).status, 2);
}

TEST(TqlTool, NameCommands)
{
    EXPECT_EQ(tql("name check identifier abc_1").out, "valid\n");
    const ToolRun bad = tql("name check identifier 1abc");
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.out, "`1' illegal: valid characters are alphanumeric or _ with non-numeric first character\n");
    EXPECT_EQ(tql("name check node 'a!b'").status, 0);
    EXPECT_EQ(tql("name check design a.b").status, 1);
    EXPECT_EQ(tql("name check design a.b --allow-dot").status, 0);
    EXPECT_EQ(tql("name fix workspace 'my work:space'").out, "my_work_space\n");
    EXPECT_EQ(tql("name check planet x", true).status, 2);
}

TEST(TqlTool, ParseAndNumberCommands)
{
    tql_test::TempDir dir;
    const std::string file = dir.write_file("data.txt", "a=12;2.5 x\n\nk!comment\n");
    EXPECT_EQ(tql("parse --seps '; ' --marks = --end '!' " + file).out,
              "line 1: 5 fields\n  0  text     a\n  1  text     =\n  2  integer  12\n  3  number   2.5\n"
              "  4  text     x\nline 2: 0 fields\nline 3: 1 field\n  0  text     k\n");
    EXPECT_EQ(tql("parse " + dir.path() + "/none", true).status, 1);
    EXPECT_EQ(tql("parse --seps", true).status, 2);

    const ToolRun fmt = tql("num fmt 123.456 13 2");
    EXPECT_EQ(fmt.status, 0);
    EXPECT_NE(fmt.out.find("gparse_dbltoas 1  \"123.46\"\n"), std::string::npos) << fmt.out;
    EXPECT_NE(tql("num fmt 0 10 2").out.find("gparse_dbltoas 1  \"     0.00\"\n"), std::string::npos);
    EXPECT_EQ(tql("num fmt x 10 2", true).status, 2);
}

TEST(TqlTool, BadArgumentsAreUsageErrors)
{
    struct Case {
        const char* arguments;
        const char* message;
    } cases[] = {
        {"", "usage: tql COMMAND"},
        {"frobnicate", "tql: unknown command 'frobnicate'"},
        {"getenv", "tql: getenv takes one variable name\nusage: tql getenv NAME\n"},
        {"getenv A B", "tql: getenv takes one variable name"},
        {"version extra", "tql: version takes no arguments"},
        {"errors extra", "tql: errors takes no arguments"},
        {"expand", "tql: expand takes one text"},
        {"cp a", "tql: cp takes a source and a destination"},
        {"rm", "tql: rm takes one path"},
        {"du", "tql: du takes one directory"},
        {"df a b", "tql: df takes one directory"},
        {"path canon", "tql: path takes 'native' or 'canon' and one path"},
        {"path up x", "tql: path takes 'native' or 'canon' and one path"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments);
        const ToolRun run = tql(c.arguments, true);
        EXPECT_EQ(run.status, 2);
        EXPECT_NE(run.out.find(c.message), std::string::npos) << run.out;
    }
}

} // namespace

namespace {

// tql env check, warnings for skipped includes, failures with the native
// path and the system's reason, and file states in tql env files.
TEST(TqlTool, EnvironmentCheckAndFailureMessages)
{
    tql_test::TempDir dir;
    tql_test::ScopedSettingsStore store({});
    tql_test::ScopedEnv home("HOME", dir.path() + "/home");
    tql_test::ScopedEnv root("ZQTARVEX_DIR", dir.path() + "/root");
    tql_test::ScopedEnv custom("KPS_CUSTOM_DIR", std::nullopt);
    tql_test::ScopedEnv unset("TQL_TOOL_UNSET", std::nullopt);
    tql_test::ScopedCurrentDirectory cwd(dir.path());
    dir.write_file("zqtarvex.cfg", "+zqtarvex\nA=%A\nC=%D\nD=%C/x\nU=%NOPE $TQL_TOOL_UNSET %A%\n");
    dir.write_file("home/zqtarvex/config/zqtarvex.cfg/x", "");

    const ToolRun check = tql("env check");
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.out, "undefined: %NOPE in U at zqtarvex.cfg:5\n"
                         "undefined: $TQL_TOOL_UNSET in U at zqtarvex.cfg:5\n"
                         "cycle: A -> A\n    A at zqtarvex.cfg:2\n"
                         "cycle: C -> D -> C\n    C at zqtarvex.cfg:3\n    D at zqtarvex.cfg:4\n");
    const ToolRun listing = tql("env", true);
    EXPECT_EQ(listing.status, 0);
    EXPECT_NE(listing.out.find("tql: warning: include cycle skipped: zqtarvex.cfg -> zqtarvex.cfg\n"),
              std::string::npos)
        << listing.out;
    EXPECT_NE(listing.out.find("tql: warning: cannot read " + dir.path() +
                               "/home/zqtarvex/config/zqtarvex.cfg: Is a directory\n"),
              std::string::npos);
    EXPECT_NE(tql("env files").out.find("home    directory " + dir.path() + "/home/zqtarvex/config/zqtarvex.cfg"),
              std::string::npos);

    chmod((dir.path() + "/zqtarvex.cfg").c_str(), 0444);
    const ToolRun refused = tql("env set A 1 --level local --save", true);
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.out.find("tql: cannot write " + dir.path() + "/zqtarvex.cfg: Permission denied\n"),
              std::string::npos)
        << refused.out;
    dir.write_file("root/config/zqtarvex.cfg", "B=%A\n");
    chmod((dir.path() + "/zqtarvex.cfg").c_str(), 0644);
    dir.write_file("zqtarvex.cfg", "A=1\n");
    EXPECT_EQ(tql("env check").out, "no cycles or undefined references\n");
}

} // namespace
