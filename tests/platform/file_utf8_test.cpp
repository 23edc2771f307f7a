// The file calls of the platform module take library-form names (either
// separator, optional drive prefix) and reach the native file.
#include "platform/platform.h"

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using tql_test::TempDir;

namespace {

// "C:\tmp\x\..." for the native "/tmp/x/...": the form the library builds.
std::string library_form(const std::string& native)
{
    std::string name = "C:" + native;
    std::replace(name.begin(), name.end(), '/', '\\');
    return name;
}

// The first line of a file opened by fopen_utf8, or "<not opened>".
std::string first_line(const std::string& name)
{
    FILE* f = fopen_utf8(name.c_str(), "r");
    if (!f) return "<not opened>";
    char line[256] = "";
    std::fgets(line, sizeof line, f);
    std::fclose(f);
    return line;
}

} // namespace

TEST(FileUtf8, FopenAndIsDirectoryThroughLibraryNames)
{
    TempDir dir;
    const std::string native = dir.write_file("sub dir/Größe.txt", "hello");
    const std::string base = library_form(dir.path());
    for (const std::string& name : {native, "c:" + native, base + "/sub dir\\Größe.txt"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(first_line(name), "hello");
    }

    FILE* out = fopen_utf8((base + "\\sub dir\\new.txt").c_str(), "w");
    ASSERT_NE(out, nullptr);
    std::fputs("written", out);
    std::fclose(out);
    EXPECT_EQ(first_line(dir.path() + "/sub dir/new.txt"), "written");

    errno = 0;
    EXPECT_EQ(first_line(base + "\\missing.txt"), "<not opened>");
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(fopen_utf8(native.c_str(), nullptr), nullptr);

    EXPECT_TRUE(is_directory_utf8((base + "\\sub dir\\").c_str()));
    EXPECT_TRUE(is_directory_utf8("C:")); // the root
    EXPECT_FALSE(is_directory_utf8((base + "\\sub dir\\new.txt").c_str()));
    EXPECT_FALSE(is_directory_utf8(""));
}

TEST(FileUtf8, OpenAndUnlink)
{
    TempDir dir;
    const std::string name = library_form(dir.path()) + "\\made.bin";
    const std::string native = dir.path() + "/made.bin";

    const int fd = open_utf8(name.c_str(), O_CREAT | O_EXCL | O_WRONLY, 0600);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(::write(fd, "abc", 3), 3);
    ::close(fd);
    struct stat st;
    ASSERT_EQ(::stat(native.c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 3);

    errno = 0;
    EXPECT_EQ(open_utf8(name.c_str(), O_CREAT | O_EXCL | O_WRONLY, 0600), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(unlink_utf8(name.c_str()), 0);
    EXPECT_NE(::access(native.c_str(), F_OK), 0);
    errno = 0;
    EXPECT_EQ(unlink_utf8(name.c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(open_utf8(nullptr, O_RDONLY, 0), -1);
    EXPECT_EQ(unlink_utf8(nullptr), -1);
}

TEST(FileUtf8, FileSizeIncludingSizesBeyondTwoGigabytes)
{
    TempDir dir;
    const std::string base = library_form(dir.path());
    EXPECT_EQ(filesize_utf8((base + "\\missing").c_str()), -1);

    // A sparse file of 3 GiB + 7 bytes: hardly any blocks on disk.
    const int fd = ::open((dir.path() + "/sparse").c_str(), O_CREAT | O_WRONLY, 0600);
    ASSERT_GE(fd, 0);
    const long long big = 3LL * 1024 * 1024 * 1024 + 7;
    const int rc = ::ftruncate(fd, static_cast<off_t>(big));
    ::close(fd);
    if (rc != 0) GTEST_SKIP() << "the temporary file system cannot hold a sparse file of 3 GiB";
    EXPECT_EQ(filesize_utf8((base + "\\sparse").c_str()), big);
}
