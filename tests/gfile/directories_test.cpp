// Directory operations on trees built in a temporary directory.
#include "support/child_process.h"
#include "support/scoped_env.h"

#include <tql70/gfile.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <unistd.h>
#include <sys/stat.h>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

TEST(GfileDirectories, MkdirAndCreatability)
{
    TempDir dir;
    ScopedCurrentDirectory cd(dir.path());
    ScopedSettingsStore store({});
    char path[256] = "a/b/c";
    // The functions rewrite their argument, so each call gets a fresh copy.
    const auto fresh = [&path](const std::string& text) {
        std::snprintf(path, sizeof path, "%s", text.c_str());
        return path;
    };
    EXPECT_EQ(gfile_mkdir(path, 0, 0755), 0); // a\b is missing
    EXPECT_STREQ(path, "a\\b\\c");             // converted in place
    EXPECT_FALSE(fs::exists("a"));
    EXPECT_EQ(gfile_mkdir(path, 1, 0755), 1);
    EXPECT_TRUE(fs::is_directory("a/b/c"));

    ScopedEnv home("TQL_MKDIR_HOME", dir.path() + "/home");
    fs::create_directory(dir.path() + "/home");
    EXPECT_EQ(gfile_mkdir(fresh("$TQL_MKDIR_HOME\\x"), 0, 0755), 1);
    EXPECT_TRUE(fs::is_directory(dir.path() + "/home/x"));
    EXPECT_EQ(gfile_mkdir(fresh("%TQL_MKDIR_HOME%/y/z"), 1, 0755), 1);
    EXPECT_TRUE(fs::is_directory(dir.path() + "/home/y/z"));

    ScopedEnv unset("TQL_NOSUCH", std::nullopt);
    const ChildResult child = run_in_child([] { char missing[] = "%TQL_NOSUCH%\\x"; std::printf("%d", gfile_mkdir(missing, 1, 0755)); });
    EXPECT_EQ(child.out, "0");
    EXPECT_EQ(child.err, "gfile:gfile_expand_dir could not expand TQL_NOSUCH\n");

    // A rooted path is walked from its third character: "\xtmp\q" builds
    // "\tmp\q" from "tmp", dropping the first letter of the first component.
    fs::create_directory(dir.path() + "/mp");
    std::string rooted = "\\x" + dir.path().substr(1) + "/mp/made";
    rooted[2] = dir.path()[1];
    EXPECT_EQ(gfile_mkdir(fresh("/" + rooted.substr(1)), 0, 0755), 1);
    EXPECT_TRUE(fs::is_directory(dir.path() + "/mp/made"));

    // Creatability: whether gfile_mkdir could make a path, creating nothing.
    fs::create_directories("w/exists");
    EXPECT_EQ(gfile_makebledir(fresh("w/exists/one/two"), 1), 1);
    EXPECT_EQ(gfile_makebledir(fresh("w/exists/one/two"), 0), 0);
    EXPECT_FALSE(fs::exists("w/exists/one")); // nothing is created

    fs::permissions("w/exists", fs::perms::owner_write, fs::perm_options::remove);
    if (access("w/exists", W_OK) != 0) { // root may write anyway
        EXPECT_EQ(gfile_makebledir(fresh("w/exists/new"), 1), 0);
    }
    dir.write_file("w/file", "x");
    EXPECT_EQ(gfile_makebledir(fresh("w/file/sub"), 1), 0);
}

TEST(GfileDirectories, SizesAndPaths)
{
    TempDir dir;
    dir.write_file("t/a", std::string(3000, 'a'));
    dir.write_file("t/sub/b", std::string(5000, 'b'));
    dir.write_file("t/.hidden/c", std::string(100000, 'c'));
    fs::create_directory_symlink(dir.path() + "/t", dir.path() + "/t/sub/loop");
    const int kb = gfile_dirsize((dir.path() + "/t").c_str());
    EXPECT_GE(kb, 7);        // both files, and directory entries
    EXPECT_LT(kb, 7 + 100);  // not the hidden directory's contents
    const ChildResult missing = run_in_child([&] { gfile_dirsize((dir.path() + "/none").c_str()); });
    EXPECT_EQ(missing.err, "gfile: " + dir.path() + "/none is not a directory \n");

    std::string name = dir.path() + "/t";
    EXPECT_GT(gfile_freedir_space(&name[0]), 0);
    const ChildResult none = run_in_child([&] {
        std::string gone = dir.path() + "/none";
        std::printf("%d", gfile_freedir_space(&gone[0]));
    });
    EXPECT_EQ(none.out, "0");
    EXPECT_NE(none.err.find(" The directory "), std::string::npos);

    const fs::path before = fs::current_path();
    char buffer[4096];
    std::snprintf(buffer, sizeof buffer, "%s/t/sub/", dir.path().c_str());
    EXPECT_EQ(gfile_setdefpath(buffer), 1);
    EXPECT_EQ(std::string(buffer), fs::canonical(dir.path() + "/t/sub").string() + "\\");
    EXPECT_EQ(fs::current_path(), before);
    std::snprintf(buffer, sizeof buffer, "%s/none", dir.path().c_str());
    EXPECT_EQ(gfile_setdefpath(buffer), 0);
    buffer[0] = '\0';
    EXPECT_EQ(gfile_setdefpath(buffer), 0);

    {
        ScopedCurrentDirectory cd(dir.path());
        std::string expected = fs::current_path().string() + "/";
        for (char& c : expected) c = c == '/' ? '\\' : c;
        EXPECT_EQ(gfile_getdefpath(buffer, sizeof buffer), 1);
        EXPECT_EQ(std::string(buffer), expected);
        EXPECT_EQ(gfile_getdefpath(buffer, static_cast<int>(expected.size())), 0); // no room for the NUL
        EXPECT_EQ(gfile_getdefpath(nullptr, 10), 0);
    }
    gmain_exit_list();
}

} // namespace
} // namespace tql_test
