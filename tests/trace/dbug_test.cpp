// dbug: trace and debug lines for each control flag, whole lines from
// several threads, the profile file, the assertion text, and the macros
// compiled out.
#include <tql70/dbug.h>

#include "support/child_process.h"
#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern "C" int dbug_off_double(int x);

namespace {

using tql_test::read_file;
using tql_test::ScopedCurrentDirectory;
using tql_test::TempDir;

int inner(int x)
{
    DBUG_ENTER("inner");
    DBUG_PRINT("info", ("x=%d", x));
    DBUG_RETURN(x + 1);
}

void outer()
{
    DBUG_ENTER("outer");
    DBUG_PRINT("calc", ("start"));
    inner(1);
    DBUG_VOID_RETURN;
}

TEST(Dbug, ControlFlagsSelectTheLines)
{
    TempDir dir;
    const std::string out = dir.path() + "/trace.out";
    const struct {
        const char* control;
        const char* expected;
    } cases[] = {
        {"d:t", ">outer\nouter: calc: start\n| >inner\n| inner: info: x=1\n| <inner\n<outer\n"},
        {"d:f,outer", "outer: calc: start\n"},
        {"t:f,inner", "| >inner\n| <inner\n"},
        {"t,1", ">outer\n<outer\n"},
        {"-#d,calc:n:P", "dbug_test: 1: outer: calc: start\n"},
        {"g", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.control);
        ScopedCurrentDirectory cwd(dir.path());
        DBUG_PUSH((std::string(c.control) + ":o," + out).c_str());
        outer();
        DBUG_POP();
        EXPECT_EQ(read_file(out), c.expected);
    }
    // Nothing pushed: nothing written, the compiled-out C caller neither.
    outer();
    EXPECT_EQ(dbug_off_double(21), 42);
    EXPECT_EQ(_db_on_, 0);
}

TEST(Dbug, ThreadsKeepTheirNestingAndWholeLines)
{
    TempDir dir;
    const std::string out = dir.path() + "/trace.out";
    DBUG_PUSH(("d:t:o," + out).c_str());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 200; ++i) {
                outer();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    DBUG_POP();
    const std::set<std::string> allowed = {">outer", "outer: calc: start", "| >inner", "| inner: info: x=1",
                                           "| <inner", "<outer"};
    std::istringstream lines(read_file(out));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_TRUE(allowed.count(line)) << line;
    }
    EXPECT_EQ(count, 4 * 200 * 6);
}

// The calls that dbugmon.out gives `function`; -1 when it has no line.
long long profiled_calls(const std::string& function)
{
    std::istringstream profile(read_file("dbugmon.out"));
    std::string header;
    std::getline(profile, header);
    EXPECT_EQ(header.substr(header.find_first_not_of(' ')), "calls   milliseconds  function");
    long long calls = 0;
    double milliseconds = 0;
    for (std::string name; profile >> calls >> milliseconds >> name;) {
        if (name == function) {
            return calls;
        }
    }
    return -1;
}

TEST(Dbug, ProfileIsWrittenOnPopAndAtExit)
{
    TempDir dir;
    ScopedCurrentDirectory cwd(dir.path());
    DBUG_PUSH("g");
    outer();
    outer();
    DBUG_POP();
    EXPECT_EQ(profiled_calls("outer"), 2);
    EXPECT_EQ(profiled_calls("inner"), 2);

    const auto child = tql_test::run_in_child([] {
        DBUG_PUSH("g");
        inner(0);
        std::exit(0);
    });
    EXPECT_TRUE(child.exited);
    EXPECT_EQ(profiled_calls("inner"), 1);
    EXPECT_EQ(profiled_calls("outer"), -1);
}

TEST(Dbug, FailedAssertionPrintsItsPlaceAndAborts)
{
    const int assert_line = __LINE__ + 1;
    const auto child = tql_test::run_in_child([] { const int two = 2; DBUG_ASSERT(two == 3); });
    EXPECT_FALSE(child.exited);
    EXPECT_EQ(child.signal, SIGABRT);
    EXPECT_EQ(child.err, "dbug_test " + std::string(__FILE__) + "(" + std::to_string(assert_line) +
                             "): assertion 'two == 3' failed\n");
}

// Runs itself again in a new process with ZQTARVEX_DBUG set, where this
// test alone runs and its first DBUG_ENTER pushes the variable.
TEST(Dbug, EnvironmentIsPushedAtFirstUse)
{
    if (std::getenv("DBUG_TEST_AGAIN")) {
        outer();
        return;
    }
    TempDir dir;
    const std::string out = dir.path() + "/env.out";
    const std::string command = "DBUG_TEST_AGAIN=1 ZQTARVEX_DBUG='t:o," + out + "' " +
                                std::filesystem::read_symlink("/proc/self/exe").string() +
                                " --gtest_filter=Dbug.EnvironmentIsPushedAtFirstUse >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(read_file(out), ">outer\n| >inner\n| <inner\n<outer\n");
}

} // namespace
