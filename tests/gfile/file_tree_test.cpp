// gfile_cp, gfile_rm and gfile_chmod on trees built in a temporary
// directory.
#include "support/scoped_env.h"

#include <tql70/gerror.h>
#include <tql70/gfile.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

// Every file and directory below `root`, relative, directories with '/',
// symbolic links (never followed) with '@'.
std::set<std::string> tree(const std::string& root)
{
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const fs::file_status status = entry.symlink_status();
        const char* mark = fs::is_symlink(status) ? "@" : fs::is_directory(status) ? "/" : "";
        names.insert(entry.path().lexically_relative(root).string() + mark);
    }
    return names;
}

class GfileTree : public ::testing::Test {
protected:
    void SetUp() override
    {
        src_ = dir_.path() + "/src";
        dir_.write_file("src/a.txt", "a");
        dir_.write_file("src/b.log", "b");
        dir_.write_file("src/sub/c.txt", "c");
        dir_.write_file("src/sub/deep/d.txt", "d");
    }
    TempDir dir_;
    std::string src_;
};

TEST_F(GfileTree, CopyFileAndWildcards)
{
    const std::string out = dir_.path() + "/out";
    fs::create_directory(out);
    EXPECT_EQ(gfile_cp((src_ + "/a.txt").c_str(), out.c_str(), 0), 1);     // into a directory
    EXPECT_EQ(gfile_cp((src_ + "\\b.log").c_str(), (out + "/renamed").c_str(), 0), 1);
    EXPECT_EQ(tree(out), (std::set<std::string>{"a.txt", "renamed"}));
    EXPECT_EQ(gfile_cp(src_.c_str(), (dir_.path() + "/copy").c_str(), 0), 0); // a tree needs recursive
    EXPECT_EQ(gfile_cp(src_.c_str(), (out + "/a.txt").c_str(), 1), 0);        // and no file in the way

    const std::string txt = dir_.path() + "/txt";
    fs::create_directory(txt);
    EXPECT_EQ(gfile_cp((src_ + "/*.txt").c_str(), (txt + "/").c_str(), 1), 1); // not into sub/
    EXPECT_EQ(tree(txt), std::set<std::string>{"a.txt"});
    EXPECT_EQ(gfile_cp((src_ + "/*.txt").c_str(), (txt + "/none").c_str(), 0), 0); // needs a directory
    EXPECT_EQ(gfile_cp((src_ + "/missing").c_str(), txt.c_str(), 0), 0);
    EXPECT_EQ(gfile_cp(("/" + std::string(1100, 'x')).c_str(), txt.c_str(), 0), 0);
}

TEST_F(GfileTree, RemoveAndChmod)
{
    const std::string victim = dir_.path() + "/victim";
    dir_.write_file("victim/f.txt", "x");
    fs::create_directory_symlink(src_ + "/sub", victim + "/link");
    EXPECT_EQ(gfile_rm(victim.c_str(), 0), 0); // not without recursive
    EXPECT_EQ(gfile_rm(victim.c_str(), 1), 1);
    EXPECT_FALSE(fs::exists(victim));
    EXPECT_TRUE(fs::exists(src_ + "/sub/deep/d.txt")); // the link was not followed

    EXPECT_EQ(gfile_rm((src_ + "\\*.txt").c_str(), 1), 1); // only the top level
    EXPECT_EQ(tree(src_), (std::set<std::string>{"b.log", "sub/", "sub/c.txt", "sub/deep/", "sub/deep/d.txt"}));
    EXPECT_EQ(gfile_rm((src_ + "/b.log").c_str(), 0), 1);
    EXPECT_EQ(gfile_rm((src_ + "/b.log").c_str(), 0), 0);

    EXPECT_EQ(gfile_chmod((src_ + "/sub/*.txt").c_str(), 0400), 1);
    struct stat st;
    stat((src_ + "/sub/c.txt").c_str(), &st);
    EXPECT_EQ(st.st_mode & 0777, 0400u);
    EXPECT_EQ(gfile_chmod((src_ + "/none").c_str(), 0600), 0);
    EXPECT_EQ(gfile_chmod((dir_.path() + "/nodir/*.txt").c_str(), 0600), 0);
}

// `levels` nested directories `name` under `root` with a file "leaf" of
// `bytes` bytes at the bottom, made level by level so the innermost path may
// exceed the system's path limit.
void make_chain(const std::string& root, int levels, const std::string& name, size_t bytes)
{
    int fd = open(root.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < levels; ++i) {
        mkdirat(fd, name.c_str(), 0755);
        const int next = openat(fd, name.c_str(), O_RDONLY | O_DIRECTORY);
        close(fd);
        fd = next;
    }
    const int leaf = openat(fd, "leaf", O_WRONLY | O_CREAT, 0644);
    EXPECT_EQ(write(leaf, std::string(bytes, 'x').data(), bytes), static_cast<ssize_t>(bytes));
    close(leaf);
    close(fd);
}

// The depth of such a chain and the size of its leaf (-1 when missing).
std::pair<int, long> measure_chain(const std::string& root, const std::string& name)
{
    int fd = open(root.c_str(), O_RDONLY | O_DIRECTORY);
    int depth = 0;
    for (int next; (next = openat(fd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW)) >= 0; ++depth) {
        close(fd);
        fd = next;
    }
    struct stat st;
    const long size = fstatat(fd, "leaf", &st, 0) == 0 ? static_cast<long>(st.st_size) : -1;
    close(fd);
    return {depth, size};
}

TEST_F(GfileTree, LinksInsideTreesAreCopiedAsLinks)
{
    const std::string outside = dir_.path() + "/outside";
    dir_.write_file("outside/big.txt", "o");
    const struct { const char* name; std::string target; } cases[] = {
        {"to_outside", outside},    // would copy a folder into the tree
        {"ping", "pong"},           // two links naming each other: a loop
        {"pong", "ping"},
    };
    for (const auto& c : cases) fs::create_symlink(c.target, src_ + "/sub/" + c.name);
    const std::string copy = dir_.path() + "/copy";
    ASSERT_EQ(gfile_cp(src_.c_str(), copy.c_str(), 1), 1);
    EXPECT_EQ(tree(copy), tree(src_));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path link = copy + "/sub/" + c.name;
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_EQ(fs::read_symlink(link).string(), c.target);
    }
}

// 2,000 levels: paths far over the system's path limit.
TEST(GfileTreeDepth, LongAndDeepTreesAreCopiedMeasuredAndRemoved)
{
    TempDir dir;
    const std::string src = dir.path() + "/src";
    const std::string copy = dir.path() + "/copy";
    fs::create_directory(src);
    make_chain(src, 2000, "dd", 70000);
    // Few descriptors: a walk that kept one open per level would run out.
    struct rlimit saved;
    getrlimit(RLIMIT_NOFILE, &saved);
    const struct rlimit few = {64, saved.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    const int copied = gfile_cp(src.c_str(), copy.c_str(), 1);
    const int kilobytes = gfile_dirsize(copy.c_str());
    setrlimit(RLIMIT_NOFILE, &saved);
    EXPECT_EQ(copied, 1) << gfile_error_path();
    EXPECT_EQ(measure_chain(copy, "dd"), std::make_pair(2000, 70000L));
    EXPECT_GE(kilobytes, 68); // the leaf was reached
    EXPECT_EQ(gfile_rm(copy.c_str(), 1), 1) << gfile_error_path();
    EXPECT_EQ(gfile_rm(src.c_str(), 1), 1) << gfile_error_path();
    EXPECT_FALSE(fs::exists(src) || fs::exists(copy));
}

// A failed walk sets the error, the system error and the entry where it
// stopped (in library form); the next call clears that entry.
TEST_F(GfileTree, WalkFailureNamesTheEntryAndTheReason)
{
    const auto expect_stop = [](int result, int code, int system_error, const std::string& entry) {
        EXPECT_EQ(result, 0);
        EXPECT_EQ(gerror_get_error(), code);
        EXPECT_EQ(gerror_get_system_error(), system_error);
        std::string stopped_at = gfile_error_path();
        std::replace(stopped_at.begin(), stopped_at.end(), '\\', '/');
        EXPECT_EQ(stopped_at, entry);
    };
    // A copy into its own tree stops where it meets its destination.
    expect_stop(gfile_cp(src_.c_str(), (src_ + "/sub/in").c_str(), 1), 25, EINVAL, src_ + "/sub/in");
    EXPECT_EQ(gfile_cp(src_.c_str(), (dir_.path() + "/none").c_str(), 0), 0);
    EXPECT_STREQ(gfile_error_path(), "");
    fs::remove_all(src_ + "/sub/in");
    // A FIFO is refused, not read.
    mkfifo((src_ + "/sub/deep/pipe").c_str(), 0644);
    expect_stop(gfile_cp(src_.c_str(), (dir_.path() + "/out").c_str(), 1), 23, EOPNOTSUPP, src_ + "/sub/deep/pipe");
    if (geteuid() != 0) { // root ignores permissions
        fs::remove(src_ + "/sub/deep/pipe");
        chmod((src_ + "/sub/deep").c_str(), 0555);
        expect_stop(gfile_rm(src_.c_str(), 1), 26, EACCES, src_ + "/sub/deep/d.txt");
    }
}

} // namespace
} // namespace tql_test
