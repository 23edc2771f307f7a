// gfile_cp, gfile_rm and gfile_chmod on trees built in a temporary
// directory.
#include "support/scoped_env.h"

#include <tql70/gfile.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sys/stat.h>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

// Every file and directory below `root`, relative, directories with '/'.
std::set<std::string> tree(const std::string& root)
{
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        names.insert(fs::relative(entry.path(), root).string() + (entry.is_directory() ? "/" : ""));
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

    const std::string txt = dir_.path() + "/txt";
    fs::create_directory(txt);
    EXPECT_EQ(gfile_cp((src_ + "/*.txt").c_str(), (txt + "/").c_str(), 1), 1); // not into sub/
    EXPECT_EQ(tree(txt), std::set<std::string>{"a.txt"});
    EXPECT_EQ(gfile_cp((src_ + "/*.txt").c_str(), (txt + "/none").c_str(), 0), 0); // needs a directory
    EXPECT_EQ(gfile_cp((src_ + "/missing").c_str(), txt.c_str(), 0), 0);
    EXPECT_EQ(gfile_cp(("/" + std::string(1100, 'x')).c_str(), txt.c_str(), 0), 0);
}

TEST_F(GfileTree, CopyDirectoryTrees)
{
    const std::string copy = dir_.path() + "/copy";
    EXPECT_EQ(gfile_cp(src_.c_str(), copy.c_str(), 0), 0); // not without recursive
    EXPECT_FALSE(fs::exists(copy));
    const std::string plain = dir_.write_file("plain", "p");
    EXPECT_EQ(gfile_cp(src_.c_str(), plain.c_str(), 1), 0);

    EXPECT_EQ(gfile_cp(src_.c_str(), copy.c_str(), 1), 1);
    EXPECT_EQ(tree(copy), tree(src_));
    std::ifstream deep(copy + "/sub/deep/d.txt");
    std::string text;
    deep >> text;
    EXPECT_EQ(text, "d");

    // Into an existing tree that already has the subdirectory: fails there,
    // keeping what was copied before.
    const std::string partial = dir_.path() + "/partial";
    fs::create_directories(partial + "/sub");
    EXPECT_EQ(gfile_cp(src_.c_str(), partial.c_str(), 1), 0);
    EXPECT_TRUE(fs::exists(partial + "/sub"));
    EXPECT_EQ(tree(src_).size(), 6u); // the source is untouched
}

TEST_F(GfileTree, RemoveAndChmod)
{
    fs::create_directory_symlink(src_ + "/sub", dir_.path() + "/outside_link");
    const std::string victim = dir_.path() + "/victim";
    fs::create_directory(victim);
    fs::create_directory_symlink(src_ + "/sub", victim + "/link");
    std::ofstream(victim + "/f.txt") << "x";
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
    stat((src_ + "/sub/deep").c_str(), &st);
    EXPECT_NE(st.st_mode & 0777, 0400u); // not matched by *.txt
    EXPECT_EQ(gfile_chmod((src_ + "/sub/c.txt").c_str(), 0600), 1);
    EXPECT_EQ(gfile_chmod((src_ + "/none").c_str(), 0600), 0);
    EXPECT_EQ(gfile_chmod((dir_.path() + "/nodir/*.txt").c_str(), 0600), 0);
    EXPECT_EQ(gfile_rm(src_.c_str(), 1), 1);
    EXPECT_FALSE(fs::exists(src_));
}

} // namespace
} // namespace tql_test
