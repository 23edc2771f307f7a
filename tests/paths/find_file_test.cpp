// Search for files along path lists.
#include "support/scoped_env.h"

#include <tql70/gmem.h>
#include <tql70/zq_paths.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

std::string found(const char* name, const std::string& list, int accept_dirs)
{
    char* hit = ZQ_find_file(name, list.empty() ? nullptr : list.c_str(), accept_dirs);
    const std::string result = hit ? hit : "<none>";
    gmem_ee_free(hit);
    return result;
}

TEST(FindFile, SearchesThePathListInOrderOrTheCurrentDirectory)
{
    TempDir dir;
    const std::string a = dir.path() + "/a";
    const std::string b = dir.path() + "/b";
    dir.write_file("b/tool.cfg", "x");
    dir.write_file("a/other", "x");
    fs::create_directories(dir.path() + "/a/sub");
    fs::create_symlink(b + "/tool.cfg", a + "/linked.cfg");

    const std::string list = a + ";" + b + "//";
    auto library = [](std::string path) { for (char& c : path) c = c == '/' ? '\\' : c; return path; };
    EXPECT_EQ(found("tool.cfg", list, 0), library(b) + "\\tool.cfg");
    EXPECT_EQ(found("linked.cfg", list, 0), "<none>"); // links to files are refused
    EXPECT_EQ(found("sub", list, 0), "<none>");
    EXPECT_EQ(found("sub", list, 1), library(a) + "\\sub");
    EXPECT_EQ(found("", list, 1), "<none>");

    // Absolute names are tested as they are, after clean-up.
    EXPECT_EQ(found((b + "//tool.cfg").c_str(), "", 0), library(b) + "\\tool.cfg");
    EXPECT_EQ(found((a + "/sub").c_str(), "", 0), "<none>");

    // Long entries make the candidate buffer grow.
    const std::string deep = dir.path() + "/" + std::string(150, 'd');
    dir.write_file(std::string(150, 'd') + "/deep.cfg", "x");
    EXPECT_EQ(found("deep.cfg", a + ";" + deep, 0), library(deep) + "\\deep.cfg");

    // No list: the current directory only.
    ScopedCurrentDirectory cd(a);
    EXPECT_EQ(found("other", "", 0), ".\\other");
    EXPECT_EQ(found("tool.cfg", "", 0), "<none>");
}

} // namespace
} // namespace tql_test
