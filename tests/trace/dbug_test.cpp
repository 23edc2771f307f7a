// dbug: trace and debug lines for each control flag, whole lines from
// several threads with their shared profile written on the pop, the profile
// at exit, the assertion text, and the macros compiled out.
#include <tql70/dbug.h>

#include "support/child_process.h"
#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern "C" int dbug_off_double(int x);

namespace {

using tql_test::read_file;
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

// What "d:t" writes for one call of outer().
const std::string kFullTrace = ">outer\nouter: calc: start\n| >inner\n| inner: info: x=1\n| <inner\n<outer\n";

// dbugmon.out after `calls` calls of outer(): the header, then one line per
// function in name order with its calls and milliseconds.
std::regex profile_after(const std::string& calls)
{
    const std::string line = " +" + calls + " +[0-9]+\\.[0-9]{3}  ";
    return std::regex("       calls   milliseconds  function\n" + line + "inner\n" + line + "outer\n");
}

TEST(Dbug, ControlFlagsSelectTheLines)
{
    TempDir dir;
    const std::string out = dir.path() + "/trace.out";
    const struct {
        const char* control;
        std::string expected;
    } cases[] = {
        {"d:t", kFullTrace},
        {"d:f,outer", "outer: calc: start\n"},
        {"t:f,inner", "| >inner\n| <inner\n"},
        {"t,1", ">outer\n<outer\n"},
        {"-#d,calc:n:P", "dbug_test: 1: outer: calc: start\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.control);
        DBUG_PUSH((std::string(c.control) + ":o," + out).c_str());
        outer();
        DBUG_POP();
        EXPECT_EQ(read_file(out), c.expected);
    }
    // Nothing is pushed after the pops, and the compiled-out C caller
    // traces nothing.
    EXPECT_EQ(dbug_off_double(21), 42);
    EXPECT_EQ(_db_on_, 0);
}

// The profile, written on the pop, counts the calls of every thread.
TEST(Dbug, ThreadsKeepTheirNestingAndWholeLinesAndShareTheProfile)
{
    const tql_test::SandboxInstallation dir; // the current directory
    DBUG_PUSH("d:t:g:o,trace.out");
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
    std::istringstream lines(read_file("trace.out"));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_NE(("\n" + kFullTrace).find("\n" + line + "\n"), std::string::npos) << line;
    }
    EXPECT_EQ(count, 4 * 200 * 6);
    EXPECT_TRUE(std::regex_match(read_file("dbugmon.out"), profile_after("800")));
}

TEST(Dbug, FailedAssertionPrintsItsPlaceAndAborts)
{
    const int assert_line = __LINE__ + 1;
    const auto child = tql_test::run_in_child([] { const int two = 2; DBUG_ASSERT(two == 3); });
    EXPECT_EQ(child.signal, SIGABRT);
    EXPECT_EQ(child.err, "dbug_test " + std::string(__FILE__) + "(" + std::to_string(assert_line) +
                             "): assertion 'two == 3' failed\n");
}

// Runs itself again in a new process with ZQTARVEX_DBUG set, where this
// test alone runs and its first DBUG_ENTER pushes the variable; those
// settings are never popped, so their profile is written at exit.
TEST(Dbug, EnvironmentIsPushedAtFirstUseAndProfiledAtExit)
{
    if (std::getenv("DBUG_TEST_AGAIN")) {
        outer();
        return;
    }
    const tql_test::SandboxInstallation dir; // the current directory
    const std::string command = "DBUG_TEST_AGAIN=1 ZQTARVEX_DBUG='t:g:o,env.out' " +
                                std::filesystem::read_symlink("/proc/self/exe").string() +
                                " --gtest_filter=Dbug.EnvironmentIsPushedAtFirstUseAndProfiledAtExit >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(read_file("env.out"), ">outer\n| >inner\n| <inner\n<outer\n");
    EXPECT_TRUE(std::regex_match(read_file("dbugmon.out"), profile_after("1")));
}

} // namespace
