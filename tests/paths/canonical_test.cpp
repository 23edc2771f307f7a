// Canonical path forms, the canonical directory name and path equality.
#include "support/scoped_env.h"

#include <tql70/gmem.h>
#include <tql70/zq_paths.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

// The library form of a native absolute path.
std::string library_form(std::string path)
{
    for (char& c : path) c = c == '/' ? '\\' : c;
    return path;
}

TEST(PathCanonical, FixupPath)
{
    struct Case { const char* in; const char* out; } cases[] = {
        {"a//b/./c/", "a\\b\\c"}, {"\\\\srv\\share\\", "\\\\srv\\share"}, {"//srv/share", "\\srv\\share"},
        {"a\\.", "a\\."},       {"\\", ""},                                {"//.//x", "\\x"},
        {"\\\\", ""},           {"a\\.\\", "a"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.in);
        std::string text = c.in;
        ZQ_fixup_path(&text[0]);
        EXPECT_STREQ(text.c_str(), c.out);
    }
    ZQ_fixup_path(nullptr);
}

TEST(PathCanonical, CanonicalPathsAndDirectoryNames)
{
    TempDir dir;
    ScopedCurrentDirectory cd(dir.path());
    const std::string here = library_form(fs::current_path().string());
    char out[1024] = "untouched";
    EXPECT_EQ(ZQ_canonical_path("./", out), nullptr);
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(ZQ_canonical_path(nullptr, out), nullptr);
    struct Case { const char* in; std::string out; } cases[] = {
        {".", here + "\\."}, {"././a", here + "\\a"}, {"../x", here + "\\..\\x"}, {"/abs/./z/", "\\abs\\z"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.in);
        ASSERT_EQ(ZQ_canonical_path(c.in, out), out);
        EXPECT_EQ(std::string(out), c.out);
    }
    EXPECT_EQ(ZQ_path_is_absolute("C:foo"), 1);
    EXPECT_EQ(ZQ_path_is_absolute("1:x"), 0);
    ZQ_get_directory_from_file("sub/dir\\file.txt", out);
    EXPECT_EQ(std::string(out), here + "\\sub\\dir");
    ZQ_get_directory_from_file(nullptr, out);
    EXPECT_EQ(std::string(out), here + "\\.");
    EXPECT_STREQ(ZQ_get_basename_from_file("a/b\\c.txt"), "c.txt");
    EXPECT_EQ(ZQ_get_basename_from_file(nullptr), nullptr);

    // The canonical directory name follows the disk and is cached.
    fs::create_directories(dir.path() + "/Real/Sub");
    fs::create_directory_symlink(dir.path() + "/Real", dir.path() + "/link");
    const std::string real = library_form(fs::canonical(dir.path()).string() + "/Real/Sub");

    char* name = ZQ_get_canonical_directory_name((dir.path() + "/link/Sub").c_str());
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(std::string(name), real); // link resolved, case kept (not lower-cased)
    gmem_ee_free(name);

    // A missing directory gives the caller's name, and the answer is cached
    // under that name without regard to case: creating the directory later
    // does not change it.
    const std::string missing = dir.path() + "/Later";
    gmem_ee_free(ZQ_get_canonical_directory_name(missing.c_str()));
    fs::create_directory(missing);
    std::string other_case = missing;
    other_case.replace(other_case.size() - 5, 5, "LATER");
    name = ZQ_get_canonical_directory_name(other_case.c_str());
    EXPECT_EQ(std::string(name), missing);
    gmem_ee_free(name);

    ASSERT_NE(ZQ_canonical_path_force((dir.path() + "/link/Sub/file.txt").c_str(), out), nullptr);
    EXPECT_EQ(std::string(out), real + "\\file.txt");
}

TEST(PathCanonical, PathsAreSame)
{
    EXPECT_EQ(ZQ_paths_are_same("C:/X/f.txt", "c:\\x", 1), 1);
    EXPECT_EQ(ZQ_paths_are_same("/A//b/", "\\a\\B", 0), 1);
    EXPECT_EQ(ZQ_paths_are_same("/f.txt", "\\", 1), 0);           // the leading separator is never cut
    EXPECT_EQ(ZQ_paths_are_same("\\\\f", "\\", 1), 0);              // nor the UNC pair's
    EXPECT_EQ(ZQ_paths_are_same("\\\\srv\\share\\f", "\\\\SRV\\share", 1), 1);
    EXPECT_EQ(ZQ_paths_are_same("./", "x", 0), 0);
    EXPECT_EQ(gdir_compare_paths("C:/Dir/", "c:\\dir"), 1);
    EXPECT_EQ(gdir_compare_paths("a\\\\", "a"), 0); // only one trailing separator goes
}

} // namespace
} // namespace tql_test
