// Library-form names to native names (tql_native_path, native_path) and
// native names back to the library form (FixFilenameSlashes).
#include <tql70/platform.h>

#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

struct NameCase { const char* in; const char* native; };

const NameCase kCases[] = {
    {"C:\\a\\b", "/a/b"}, {"C:", "/"}, {"C:\\", "/"}, {"C:/", "/"}, {"C:a", "a"}, {"C:a\\b", "a/b"},
    {"c:\\lower\\drive", "/lower/drive"}, {"z:/x", "/x"},
    {"a\\b/c", "a/b/c"}, {"/already/native", "/already/native"}, {"", ""},
    {"1:x", "1:x"},   // not a drive: a digit before the colon
    {":\\x", ":/x"},
    {"ab:\\x", "ab:/x"}, // the colon must be the second character
    {"C", "C"},
    {"x\\C:\\y", "x/C:/y"}, // only a leading drive is removed
};

} // namespace

TEST(TqlNativePath, ConvertsLibraryFormNamesAndRefusesNull)
{
    for (const NameCase& c : kCases) {
        SCOPED_TRACE(std::string("input \"") + c.in + "\"");
        char out[64];
        std::memset(out, '#', sizeof out);
        EXPECT_EQ(tql_native_path(c.in, out), out);
        EXPECT_STREQ(out, c.native);
        // The output is never longer than the input.
        EXPECT_LE(std::strlen(out), std::strlen(c.in));

        char in_place[64];
        std::strcpy(in_place, c.in);
        EXPECT_EQ(tql_native_path(in_place, in_place), in_place);
        EXPECT_STREQ(in_place, c.native);

        EXPECT_EQ(native_path(c.in), c.native);
    }
    char out[8] = "keep";
    EXPECT_EQ(tql_native_path(nullptr, out), nullptr);
    EXPECT_STREQ(out, "keep");
    EXPECT_EQ(tql_native_path("C:\\a", nullptr), nullptr);
    EXPECT_EQ(native_path(nullptr), "");
}

TEST(FixFilenameSlashes, TurnsSlashesIntoBackslashesInPlace)
{
    const NameCase cases[] = {
        {"/a/b", "\\a\\b"}, {"C:/x\\y/", "C:\\x\\y\\"},
        {"plain", "plain"}, {"", ""},
    };
    for (const NameCase& c : cases) {
        SCOPED_TRACE(c.in);
        std::string name = c.in;
        FixFilenameSlashes(&name[0]);
        EXPECT_EQ(name, c.native);
    }
    FixFilenameSlashes(nullptr); // does nothing
}
