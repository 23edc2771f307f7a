// File tests and single-file operations on files built in a temporary
// directory, and the wildcard matcher of the tree operations.
#include "support/child_process.h"
#include "support/scoped_env.h"

#include "gfile/gfile_internal.h"

#include <tql70/gerror.h>
#include <tql70/gfile.h>
#include <tql70/gmem.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

TEST(GfileWildcard, Matching)
{
    using tql::gfile::wildcard_match;
    struct Case { const char* name; const char* pattern; bool match; } cases[] = {
        {"ac", "a*c", true},   {"abd", "a*c", false}, {"", "*", true},       {"", "?", false},
        {"X.TXT", "*.txt", false}, {"ab", "a?c", false}, {"a?", "*?", true},  {"ab", "*?", false},
        {"a*", "**", true},    {"ab", "**", false},   {"abab", "*b", true},  {"abba", "*b", false},
        // many '*' against a long near-miss: answered at once, not after
        // trying every way to share the name among them
        {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*c", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " ~ " + c.pattern);
        EXPECT_EQ(wildcard_match(c.name, c.pattern), c.match);
    }
}

TEST(GfileTests, KindsSizesAndAges)
{
    TempDir dir;
    const std::string file = dir.write_file("f.txt", "12345");
    fs::create_directory(dir.path() + "/d");
    EXPECT_EQ(gfile_exists(file.c_str()), 1);
    EXPECT_EQ(gfile_is_dir((dir.path() + "\\d").c_str()), 1);
    EXPECT_EQ(gfile_type((dir.path() + "/d/").c_str()), GFILE_TYPE_DIRECTORY);
    EXPECT_EQ(gfile_type(file.c_str()), GFILE_TYPE_FILE);
    EXPECT_EQ(gfile_filesize(nullptr), 0);
    EXPECT_EQ(gfile_type(("/" + std::string(1100, 'x')).c_str()), 0);

    // Sizes beyond 2 GB stop at 2,147,483,647 (a sparse file).
    const std::string big = dir.write_file("big", "x");
    ASSERT_EQ(truncate(big.c_str(), 3LL << 30), 0);
    EXPECT_EQ(gfile_filesize(big.c_str()), 2147483647);

    EXPECT_EQ(gfile_is_readable(file.c_str()), 1);
    chmod(file.c_str(), 0200);
    EXPECT_EQ(gfile_is_writable(file.c_str()), 1);
    EXPECT_EQ(gfile_is_executable(file.c_str()), 0);
    chmod(file.c_str(), 0700);
    EXPECT_EQ(gfile_is_executable(file.c_str()), 1);

    const std::string old_file = dir.write_file("old", "o");
    const std::string new_file = dir.write_file("new", "n");
    fs::last_write_time(old_file, fs::file_time_type::clock::now() - std::chrono::hours(2));
    EXPECT_EQ(gfile_is_file_older(new_file.c_str(), old_file.c_str()), 1);
    EXPECT_EQ(gfile_is_file_older(new_file.c_str(), new_file.c_str()), 0);
    EXPECT_EQ(gfile_is_file_older(new_file.c_str(), (dir.path() + "/none").c_str()), 0);

    char* os = gfile_win_os();
    EXPECT_STREQ(os, "Linux");
    gmem_ee_free(os);
    EXPECT_EQ(gfile_cstat(), 0);
    const ChildResult status = run_in_child([] { gfile_fopen_status(); });
    EXPECT_EQ(status.err.rfind("gfile: current number of files open = ", 0), 0u) << status.err;
}

TEST(GfileOperations, CopyMoveEraseAppend)
{
    TempDir dir;
    const std::string src = dir.write_file("src.bin", std::string("bytes\0and\r\nmore", 15));
    fs::last_write_time(src, fs::file_time_type::clock::now() - std::chrono::hours(5));
    const std::string dst = dir.path() + "\\dst.bin";
    ASSERT_EQ(gfile_copy(src.c_str(), dst.c_str()), 1);
    EXPECT_EQ(read_file(dir.path() + "/dst.bin"), read_file(src));
    EXPECT_EQ(fs::last_write_time(dir.path() + "/dst.bin"), fs::last_write_time(src));

    gerror_set_all_errors(0, 0);
    EXPECT_EQ(gfile_copy((dir.path() + "/none").c_str(), dst.c_str()), 0);
    EXPECT_EQ(GuiErrno, 22);
    EXPECT_EQ(gfile_copy(src.c_str(), (dir.path() + "/no/such/dir").c_str()), 0);
    EXPECT_EQ(GuiErrno, 23);
    EXPECT_EQ(read_file(src).size(), 15u); // the source is never harmed

    const std::string moved = dir.path() + "/moved.bin";
    ASSERT_EQ(gfile_move(dst.c_str(), moved.c_str()), 1);
    EXPECT_FALSE(fs::exists(dir.path() + "/dst.bin"));
    EXPECT_EQ(read_file(moved), read_file(src));
    EXPECT_EQ(gfile_erasefil(moved.c_str()), 1);
    EXPECT_EQ(gfile_erasefil(moved.c_str()), 0);
    EXPECT_EQ(GuiErrno, 26);

    const std::string log = dir.path() + "/log.txt";
    EXPECT_EQ(gfile_append_line_to_file(log.c_str(), "one"), 1);
    EXPECT_EQ(gfile_append_line_to_file(log.c_str(), nullptr), 1);
    const std::string more = dir.write_file("more.txt", "two\r\nthree\n");
    EXPECT_EQ(gfile_append_file_to_file(log.c_str(), more.c_str()), 1);
    EXPECT_EQ(read_file(log), "one\ntwothree"); // appended lines lose their ends
    EXPECT_EQ(gfile_append_file_to_file(log.c_str(), (dir.path() + "/none").c_str()), 0);
    EXPECT_EQ(gfile_append_line_to_file((dir.path() + "/no/dir/x").c_str(), "x"), 0);
    gerror_set_all_errors(0, 0);
}

} // namespace
} // namespace tql_test
