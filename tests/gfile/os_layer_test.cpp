// The portable OS layer: listings, status, directory creation, streams and
// temporary names, on trees built in a temporary directory.
#include "support/scoped_env.h"

#include <tql70/tql_os.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <sys/stat.h>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

std::set<std::string> listing(const std::string& path)
{
    std::set<std::string> names;
    tql_DIR* dir = tql_opendir(path.c_str());
    if (!dir) return {"<null>"};
    while (tql_dirent* entry = tql_readdir(dir)) {
        EXPECT_EQ(entry->d_namlen, std::string(entry->d_name).size());
        names.insert(entry->d_name);
    }
    EXPECT_EQ(tql_readdir(dir), nullptr); // stays at the end
    EXPECT_EQ(tql_closedir(dir), 0);
    return names;
}

TEST(OsLayer, ListingsStatusDirectoriesAndStreams)
{
    static_assert(sizeof(tql_dirent) == 260, "the entry record is 260 bytes");
    TempDir dir;
    dir.write_file("d/a.txt", "a");
    dir.write_file("d/b.txt", "b");
    const std::set<std::string> expected{".", "..", "a.txt", "b.txt"};
    EXPECT_EQ(listing(dir.path() + "/d"), expected);
    EXPECT_EQ(listing("C:" + dir.path() + "\\d\\"), expected);
    EXPECT_EQ(listing(dir.path() + "/d/*"), std::set<std::string>{"<null>"});
    EXPECT_EQ(tql_opendir(nullptr), nullptr);
    EXPECT_EQ(tql_readdir(nullptr), nullptr);
    EXPECT_EQ(tql_closedir(nullptr), 0);

    struct stat st;
    ASSERT_EQ(tql_stat((dir.path() + "\\d\\a.txt").c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 1);
    ASSERT_EQ(tql_stat("C:", &st), 0);
    EXPECT_TRUE(S_ISDIR(st.st_mode));
    EXPECT_EQ(tql_stat((dir.path() + "/none").c_str(), nullptr), -1);
    EXPECT_EQ(tql_stat(nullptr, &st), -1);
    EXPECT_EQ(tql_mkdir(nullptr, 0), -1);

    const std::string made = dir.path() + "/made";
    EXPECT_EQ(tql_mkdir((made + "/").c_str(), 0755), 0);
    EXPECT_TRUE(fs::is_directory(made));
    EXPECT_EQ(tql_mkdir(made.c_str(), 0755), -1); // exists
    EXPECT_EQ(tql_mkdir((dir.path() + "/x/y").c_str(), 0755), -1); // parent missing
    EXPECT_EQ(tql_forceDirectoryToExist((dir.path() + "\\x\\y").c_str()), 0);
    EXPECT_TRUE(fs::is_directory(dir.path() + "/x/y"));

    FILE* f = tql_fopen((dir.path() + "\\d\\a.txt").c_str(), "r");
    ASSERT_NE(f, nullptr);
    char line[8];
    EXPECT_STREQ(tql_fgets(line, sizeof line, f), "a");
    EXPECT_EQ(tql_fclose(f), 0);

    ScopedSettingsStore store({});
    {
        ScopedEnv home("HOME", dir.path() + "/d");
        EXPECT_EQ(listing("anything~"), expected);
    }
    ScopedEnv no_home("HOME", std::nullopt);
    ScopedEnv no_homepath("HOMEPATH", std::nullopt);
    EXPECT_EQ(tql_opendir("~"), nullptr);
}

TEST(OsLayer, TemporaryNames)
{
    TempDir dir;
    ScopedSettingsStore store({});
    ScopedEnv home("HOME", dir.path());
    tmpnam_set_default_prefix("abc");
    tmpnam_set_default_prefix("xy"); // another length: ignored
    const std::string first = tql_tmpnam(nullptr);
    EXPECT_EQ(first.rfind(dir.path() + "/abc", 0), 0u) << first;
    EXPECT_FALSE(fs::exists(first));
    tmpnam_set_default_prefix("xyz"); // same length: replaces
    char buf[4096];
    const std::string second = tql_tmpnam(buf);
    EXPECT_EQ(second.rfind(dir.path() + "/xyz", 0), 0u) << second;
    EXPECT_NE(second, first);
    // The buffer carries the name followed by a random number.
    const std::string with_number = buf;
    ASSERT_GT(with_number.size(), second.size());
    EXPECT_EQ(with_number.compare(0, second.size(), second), 0);
    EXPECT_EQ(with_number.find_first_not_of("0123456789", second.size()), std::string::npos);

    ScopedEnv no_home("HOME", std::nullopt);
    ScopedEnv tmpdir("TMPDIR", dir.path() + "/t");
    EXPECT_EQ(std::string(tql_tmpnam(nullptr)).rfind(dir.path() + "/t/xyz", 0), 0u);
}

} // namespace
} // namespace tql_test
