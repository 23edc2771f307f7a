// File-name parts: extensions, prefixes, trailing separators, repair of
// control characters, quoting and lower-casing.
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/zq_paths.h>

#include <QString>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

TEST(FileNameParts, Extensions)
{
    char* ext = gfile_getext("dir.d/a.b.c");
    EXPECT_STREQ(ext, "d/a.b.c"); // the first dot of the whole name
    gmem_ee_free(ext);

    struct Case {
        const char* name;
        int pos;
    } cases[] = {{"a.b.c", 4}, {".cfg", 1}, {"dir.d/file", 0}, {"dir.d\\file", 0}, {"d\\f.", 4}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        int pos = -1;
        EXPECT_EQ(gfile_hasext(c.name, &pos), c.pos >= 1);
        EXPECT_EQ(pos, c.pos);
    }

    char out[64];
    gfile_stripext("dir.d/file.txt", out);
    EXPECT_STREQ(out, "dir.d/file");

    char name[64] = "d/file.txt";
    EXPECT_STREQ(gfile_filext(name, 0, "cfg"), "d\\file.txt");
    EXPECT_STREQ(gfile_filext(name, 1, "cfg"), "d\\file.cfg");
    std::strcpy(name, "d.x/file");
    EXPECT_STREQ(gfile_filext(name, 0, "cfg"), "d.x\\file.cfg");
}

TEST(FileNameParts, Prefixes)
{
    int pos = -1;
    EXPECT_EQ(gfile_hasdrv("C:file", &pos), 1);
    EXPECT_EQ(pos, 2);
    EXPECT_EQ(gfile_hasdrv("C:\\d\\file", &pos), 1);
    EXPECT_EQ(pos, 5);

    char out[64];
    gfile_stripdrv("C:\\d\\file", out);
    EXPECT_STREQ(out, "file");

    char name[64] = "file.txt";
    gfile_fildrv(name, 0, "C:/data");
    EXPECT_STREQ(name, "C:\\data\\file.txt");
    gfile_fildrv(name, 0, "D:\\other\\");
    EXPECT_STREQ(name, "C:\\data\\file.txt"); // kept without replace
    gfile_fildrv(name, 1, "D:\\other\\");
    EXPECT_STREQ(name, "D:\\other\\file.txt");

    EXPECT_EQ(gfile_hasfullpath("/x"), 1);
    EXPECT_EQ(gfile_hasfullpath("z:x"), 1);
    EXPECT_EQ(gfile_hasfullpath("1:x"), 0);
    EXPECT_EQ(gfile_hasfullpath(nullptr), 0);
    EXPECT_LT(gfile_file_name_strcmp("ABC", "abd"), 0);
    EXPECT_EQ(gfile_file_name_strncmp("ABCx", "abcy", 3), 0);
}

TEST(FileNameParts, TrailingSeparators)
{
    struct Case {
        const char* in;
        const char* stripped;
    } cases[] = {{"C:\\", "C:\\"}, {"C:/", "C:\\"}, {"1:\\", "1:"}, {"d\\\\", "d\\"}, {"d/", "d"}, {"\\", ""}, {"/", "/"}, {"", ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.in);
        char dir[16];
        std::strcpy(dir, c.in);
        EXPECT_EQ(gfile_strip_dir_name(dir), 1);
        EXPECT_STREQ(dir, c.stripped);
    }
    EXPECT_EQ(gfile_strip_dir_name(nullptr), 1);
    EXPECT_EQ(gfile_strip_dir_name_qt(QString("C:/")), QString("C:/"));
    EXPECT_EQ(gfile_strip_dir_name_qt(QString("d/")), QString("d"));
    EXPECT_EQ(gfile_strip_dir_name_and_convert_qt(QString("a/b/")), QString("a\\b"));

    // Only the last character is looked at; an empty name stays empty.
    for (const auto& [in, out] : {std::pair{"a/b/", "a/b\\"}, {"a", "a\\"}, {"", ""}}) {
        char dir[16];
        std::strcpy(dir, in);
        gfile_prepare_dir_name(dir);
        EXPECT_STREQ(dir, out);
    }

    char name[16] = "a/b/c";
    EXPECT_EQ(convertFileName(name), name);
    EXPECT_STREQ(name, "a\\b\\c");
    EXPECT_FALSE(gfile_allow_spaces_in_files());
}

TEST(FileNameParts, ControlCharacterRepairQuotingAndCase)
{
    char* path = strdup("C:\tmp\new\x07\x08\x0b\x0c\r");
    ASSERT_EQ(gfile_fix_path(&path), 1);
    EXPECT_STREQ(path, "C:\\\\tmp\\\\new\\\\a\\\\b\\\\v\\\\f\\\\r");
    std::free(path);

    // Results of 1024 bytes or more are refused and the path is left alone:
    // 341 line feeds repaired to three bytes each, and one more byte.
    const std::string long_text = std::string(341, '\n') + "x";
    path = strdup(long_text.c_str());
    EXPECT_EQ(gfile_fix_path(&path), 0);
    EXPECT_EQ(std::string(path), long_text);
    std::free(path);
    EXPECT_EQ(gfile_fix_path(nullptr), 0);

    EXPECT_STREQ(ZQ_quote_argument("a\"b"), "\"a\\\"b\"");
    const std::string big(5000, '\\');
    EXPECT_EQ(std::strlen(ZQ_quote_argument(big.c_str())), 10002u);
    char* copy = ZQ_quote_argument_copy(nullptr);
    EXPECT_STREQ(copy, "\"\"");
    gmem_ee_free(copy);
    copy = ZQ_quote_argument_copy("t\tab");
    EXPECT_STREQ(copy, "\"t\tab\"");
    gmem_ee_free(copy);

    char text[] = "MiXeD \xc9";
    EXPECT_STREQ(ZQ_strlwr(text), "mixed \xc9");
    copy = ZQ_stringcopy(nullptr);
    EXPECT_STREQ(copy, "");
    gmem_ee_free(copy);
}

} // namespace
