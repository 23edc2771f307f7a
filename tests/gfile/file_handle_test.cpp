// File handles and the line readers: modes, status results, CR/LF/CRLF
// ends, over-long lines and the Ctrl-Z end-of-file mark.
#include "support/scoped_env.h"

#include <tql70/gfile.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tql_test {
namespace {

// The lines of `file` as gfile_getline_limited (at most 1,023 characters
// each) or gfile_getline_std_string reads them.
std::vector<std::string> read_lines(const std::string& file, bool std_string)
{
    FILE* fp = nullptr;
    EXPECT_EQ(gfile_filopn(&fp, file.c_str(), GFILE_READ), 1);
    std::vector<std::string> lines;
    char buf[GFILE_LINE_MAX];
    std::string line = "stale";
    while (std_string ? gfile_getline_std_string(fp, &line) : gfile_getline_limited(fp, buf, sizeof buf)) {
        lines.push_back(std_string ? line : std::string(buf));
    }
    gfile_filcls(fp);
    return lines;
}
std::vector<std::string> limited_lines(const std::string& file) { return read_lines(file, false); }
std::vector<std::string> string_lines(const std::string& file) { return read_lines(file, true); }

TEST(FileHandle, LineEndsEndOfFileMarkAndLongLines)
{
    TempDir dir;
    using V = std::vector<std::string>;
    // A TAB is a control character that does not end a line.
    const std::string ends = dir.write_file("ends.txt", "crlf\r\nl\tf\ncr\rtail\n\nlast");
    EXPECT_EQ(limited_lines(ends), (V{"crlf", "l\tf", "cr", "", "last"}));
    EXPECT_EQ(string_lines(ends), (V{"crlf", "l\tf", "cr", "", "last"}));

    const std::string mark = dir.write_file("mark.txt", "one\n\x1a" "after\ntwo\n");
    EXPECT_EQ(limited_lines(mark), V{"one"});
    EXPECT_EQ(string_lines(mark), V{"one"});
    EXPECT_EQ(limited_lines(dir.write_file("stop.txt", "x\x1az\ny\n")), (V{"x", "y"}));
    EXPECT_EQ(limited_lines(dir.write_file("nul.txt", std::string("ab\0cd\nef\n", 9))), (V{"ab", "ef"}));

    const std::string long_line(2000, 'x');
    const std::string huge(5000, 'y');
    const std::string file = dir.write_file("long.txt", long_line + "\nnext\n" + huge + "\r\nend\n");
    EXPECT_EQ(limited_lines(file), (V{std::string(1023, 'x'), "next", std::string(1023, 'y'), "end"}));
    EXPECT_EQ(string_lines(file), (V{long_line, "next", huge, "end"}));

    // A line of exactly 1,023 characters fits and keeps the next line.
    const std::string exact = dir.write_file("exact.txt", std::string(1023, 'e') + "\nafter\n");
    EXPECT_EQ(limited_lines(exact), (V{std::string(1023, 'e'), "after"}));

    const std::string b(20, 'b');
    // A CR just before the stream's 4,096-byte buffer runs out: the line
    // feed is found in the refilled buffer.
    std::string before;
    for (int i = 0; i < 40; ++i) before += std::string(99, 'x') + "\n";
    const std::string crossing = before + std::string(90, 'p') + "\r" + b + "\nnext\n";
    const V refilled = limited_lines(dir.write_file("refill.txt", crossing));
    ASSERT_EQ(refilled.size(), 42u);
    EXPECT_EQ(refilled[40] + "|" + refilled[41], std::string(90, 'p') + "|next");

    // Each end at every offset of the sixteen-byte blocks the search takes
    // and of the byte-by-byte tail after them, alone in its block or not.
    for (size_t at = 0; at < 40; ++at) {
        const std::string a(at, 'a');
        for (const char end : {'\n', '\r', '\0', '\x1a', '\t'}) {
            SCOPED_TRACE(std::to_string(at) + " " + std::to_string(end));
            const std::string text = a + end + b + "\nnext\n";
            const V expected = end == '\n' ? V{a, b, "next"}
                               : end == '\t' ? V{a + "\t" + b, "next"}
                               : end == '\x1a' && at == 0 ? V{}
                                                          : V{a, "next"};
            EXPECT_EQ(limited_lines(dir.write_file("at.txt", text)), expected);
        }
    }
}

TEST(FileHandle, ModesBlocksCharactersAndPositions)
{
    TempDir dir;
    const std::string name = dir.path() + "\\data.bin";
    FILE* fp = nullptr;
    EXPECT_EQ(gfile_filopn(&fp, name.c_str(), 2), 0); // mode 2 opens nothing
    EXPECT_EQ(fp, nullptr);
    ASSERT_EQ(gfile_filopn(&fp, name.c_str(), GFILE_WRITE), 1);
    EXPECT_EQ(gfile_putline(fp, 1, "first"), 1);
    EXPECT_EQ(gfile_putline(fp, 0, "second"), 1);
    EXPECT_EQ(gfile_putfilchr(fp, '!'), 1);
    const int numbers[3] = {1, 2, 3};
    EXPECT_EQ(gfile_putfilbuf(fp, sizeof(int), 3, numbers), 1);
    EXPECT_EQ(gfile_filcls(fp), 1);
    ASSERT_EQ(gfile_filopn(&fp, name.c_str(), GFILE_APPEND), 1);
    EXPECT_EQ(gfile_putline(fp, 0, "+"), 1);
    gfile_filcls(fp);

    ASSERT_EQ(gfile_filopn(&fp, name.c_str(), GFILE_READ), 1);
    char line[GFILE_LINE_MAX];
    ASSERT_EQ(gfile_getline(fp, line), 1);
    EXPECT_STREQ(line, "first");
    long pos = 0;
    EXPECT_EQ(gfile_getfilptr(fp, &pos), 1);
    EXPECT_EQ(gfile_putfilptr(fp, pos + 6), 1);
    char c = 0;
    EXPECT_EQ(gfile_getfilchr(fp, &c), 1);
    EXPECT_EQ(c, '!');
    int read_back[3] = {};
    EXPECT_EQ(gfile_getfilbuf(fp, sizeof(int), 3, read_back), 1);
    EXPECT_EQ(read_back[2], 3);
    EXPECT_EQ(gfile_getfilbuf(fp, 1, 10, line), 1); // a short read at the end succeeds
    EXPECT_EQ(gfile_filend(fp), 1);
    EXPECT_EQ(gfile_getfilchr(fp, &c), 1);
    EXPECT_EQ(static_cast<unsigned char>(c), 0xFF);
    EXPECT_EQ(gfile_filerr(fp), 0);
    EXPECT_EQ(gfile_resetfilptr(fp), 1);
    EXPECT_EQ(gfile_filcls(fp), 1);

    fp = nullptr;
    EXPECT_EQ(gfile_filopn(&fp, (dir.path() + "/missing/x").c_str(), GFILE_READ), 0);
}

} // namespace
} // namespace tql_test
