// gprj_*: project creation (defaults, own sub-directories, copy lists,
// overwrite), the project test with its version rules and callback, copy,
// delete, and the error codes and texts.
#include <tql70/gprj.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

using namespace tql_test;

namespace {

bool g_accept_other_versions = false;
std::string g_seen;

int accept_callback(const char* current, const char* found, const char* directory)
{
    g_seen = std::string(current) + "|" + found + "|" + fs::path(directory).filename().string();
    return g_accept_other_versions ? 1 : 0;
}

class GprjTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(gprj_init("project", accept_callback), 1);
        g_accept_other_versions = false;
        GprjErrorNo = 0;
    }
    std::string path(const std::string& relative) const { return sandbox_.path() + "/" + relative; }
    // gprj_is_project's answer, version and code as "1 1000 0".
    std::string test_project(const std::string& relative)
    {
        char version[GPRJ_VERSION_SIZE] = "stale";
        GprjErrorNo = 0;
        const int result = gprj_is_project(path(relative).c_str(), version);
        return std::to_string(result) + " '" + version + "' " + std::to_string(GprjErrorNo);
    }

    TempDir sandbox_;
};

} // namespace

TEST_F(GprjTest, CreateAndTestProjects)
{
    ASSERT_EQ(gprj_create(path("p\\").c_str(), nullptr, nullptr, 0), 1);
    for (const char* sub : {"data", "networks", "synthesis", "verification"}) {
        EXPECT_TRUE(fs::is_directory(path("p/") + sub)) << sub;
    }
    EXPECT_EQ(read_file(path("p/project.cfg")), "PROJECT_VERSION=1000\n");

    struct Case {
        const char* name;
        void (*change)(const std::string& project);
        bool accept;
        std::string expected;
    } cases[] = {
        {"fresh project", [](const std::string&) {}, false, "1 '1000' 0"},
        {"without synthesis", [](const std::string& p) { fs::remove(p + "/synthesis"); }, false, "1 '1000' 0"},
        {"without networks", [](const std::string& p) { fs::remove(p + "/networks"); }, false, "0 '' 13"},
        {"blanks around =", [](const std::string& p) { std::ofstream(p + "/project.cfg") << "  PROJECT_VERSION = 1000\n"; },
         false, "0 ' 1000' 0"},
        {"other version", [](const std::string& p) { std::ofstream(p + "/project.cfg") << "\nX=1\nPROJECT_VERSION=999=9\n"; },
         false, "0 '999' 0"},
        {"other version accepted", [](const std::string& p) { std::ofstream(p + "/project.cfg") << "PROJECT_VERSION=999\n"; },
         true, "1 '999' 0"},
        {"no configuration", [](const std::string& p) { fs::remove(p + "/project.cfg"); }, false, "0 '' 18"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(gprj_create(path("q").c_str(), nullptr, nullptr, 1), 1);
        c.change(path("q"));
        g_accept_other_versions = c.accept;
        EXPECT_EQ(test_project("q"), c.expected);
    }
    EXPECT_EQ(g_seen, "1000|999|q");
    EXPECT_EQ(test_project("none"), "0 '' 10");
}

TEST_F(GprjTest, CreateFailuresAndOptions)
{
    sandbox_.write_file("src/file.txt", "content");
    sandbox_.write_file("keep/marker", "old");
    ASSERT_EQ(gprj_create(path("own").c_str(), "a;b\\", nullptr, 0), 1);
    EXPECT_TRUE(fs::is_directory(path("own/a")));
    EXPECT_TRUE(fs::is_directory(path("own/b")));
    EXPECT_FALSE(fs::exists(path("own/data")));

    std::string list = path("src/file.txt") + ",data/copy.txt";
    ASSERT_EQ(gprj_create(path("copied").c_str(), nullptr, list.data(), 0), 1);
    EXPECT_EQ(read_file(path("copied/data/copy.txt")), "content");
    EXPECT_EQ(list.find('/'), std::string::npos); // the caller's list is converted in place

    struct Case {
        const char* name;
        std::string dir;
        const char* subdirs;
        std::string copy_list;
        int overwrite;
        int code;
    } cases[] = {
        {"exists, no overwrite", path("keep"), nullptr, "", 0, 12},
        {"three fields", path("x1"), nullptr, "a,b,c", 0, 7},
        {"one field", path("x2"), nullptr, "a", 0, 7},
        {"copy source missing", path("x3"), nullptr, path("src/none") + ",data", 0, 6},
        {"parent missing", path("no/such/dir"), nullptr, "", 0, 1},
        {"sub-directory parent missing", path("x4"), "m/n", "", 0, 2},
        {"eleven sub-directories", path("x5"), "1;2;3;4;5;6;7;8;9;10;11", "", 0, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string copy_list = c.copy_list;
        GprjErrorNo = 0;
        EXPECT_EQ(gprj_create(c.dir.c_str(), c.subdirs, copy_list.data(), c.overwrite), 0);
        EXPECT_EQ(GprjErrorNo, c.code);
    }
    EXPECT_EQ(read_file(path("keep/marker")), "old");
    ASSERT_EQ(gprj_create(path("keep").c_str(), nullptr, nullptr, 1), 1);
    EXPECT_FALSE(fs::exists(path("keep/marker")));
}

TEST_F(GprjTest, CopyDeleteAndTexts)
{
    ASSERT_EQ(gprj_create(path("a").c_str(), nullptr, nullptr, 0), 1);
    EXPECT_EQ(gprj_copy(path("a").c_str(), path("b/").c_str(), 0), 1);
    EXPECT_EQ(test_project("b"), "1 '1000' 0");
    EXPECT_EQ(gprj_copy(path("a").c_str(), path("b").c_str(), 0), 0);
    EXPECT_EQ(GprjErrorNo, 16);
    EXPECT_EQ(gprj_copy(path("none").c_str(), path("c").c_str(), 0), 0);
    EXPECT_EQ(GprjErrorNo, 8);
    EXPECT_EQ(gprj_copy(path("a").c_str(), path("b").c_str(), 1), 1);
    EXPECT_EQ(gprj_delete(path("b\\").c_str()), 1);
    EXPECT_FALSE(fs::exists(path("b")));
    EXPECT_EQ(gprj_delete(nullptr), 0);
    EXPECT_EQ(GprjErrorNo, 3);
    EXPECT_STREQ(gprj_errstr(0), "No Error.");
    EXPECT_STREQ(gprj_errstr(16), "Bad output project extension.");
    EXPECT_STREQ(gprj_errstr(21), "Write failure.");
    EXPECT_EQ(gprj_errstr(22), nullptr);
    EXPECT_EQ(gprj_errstr(-1), nullptr);
    EXPECT_EQ(gprj_init(nullptr, nullptr), 0);
}
