// The gparse_ string helpers: bounded and fixed-width copies, clean-up, case
// changes and comparisons. Every writer runs on a buffer pre-filled with
// canary bytes, so a test also shows which bytes it left alone.
#include <tql70/gparse.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <functional>
#include <string>

using namespace std::string_literals;

namespace {

struct WriteCase {
    const char* label;
    const char* initial;  // buffer content before the call (null: canaries only)
    std::function<void(char* buffer)> call;
    std::string expected; // the leading bytes after the call, NULs included
};

// Runs the call on a 64-byte buffer and checks that it holds `expected`
// followed by exactly what was there before.
void run(const WriteCase& c)
{
    SCOPED_TRACE(c.label);
    char buffer[64];
    std::memset(buffer, '#', sizeof buffer);
    if (c.initial) std::memcpy(buffer, c.initial, std::strlen(c.initial) + 1);
    const std::string before(buffer, sizeof buffer);
    c.call(buffer);
    const std::string after(buffer, sizeof buffer);
    EXPECT_EQ(after.substr(0, c.expected.size()), c.expected);
    EXPECT_EQ(after.substr(c.expected.size()), before.substr(c.expected.size())) << "bytes past the stated end changed";
}

} // namespace

TEST(GparseStringHelpersCopy, DistinctBuffers)
{
    const char* src = "abcdef";
    const WriteCase cases[] = {
        {"cpystr null", nullptr, [](char* o) { gparse_cpystr(nullptr, o); }, "\0"s},
        {"strncpy n=0 writes nothing", "xy", [&](char* o) { gparse_strncpy(src, 0, o); }, ""},
        {"strncpy one over: no padding", nullptr, [&](char* o) { gparse_strncpy(src, 7, o); }, "abcdef\0"s},
        {"cpystrl n=0 gives empty", "xy", [&](char* o) { gparse_cpystrl(src, o, 0); }, "\0"s},
        {"cpystrn pads", nullptr, [](char* o) { gparse_cpystrn("abc", 5, o); }, "abc  \0"s},
        {"szstrlj skips blanks only", nullptr, [](char* o) { gparse_szstrlj("  \tab", 5, o); }, "\tab  \0"s},
        {"szstrrj pads left", nullptr, [](char* o) { gparse_szstrrj("ab", 4, o); }, "  ab\0"s},
        {"szstrrj cuts", nullptr, [&](char* o) { gparse_szstrrj(src, 4, o); }, "abcd\0"s},
        {"addstr", nullptr, [](char* o) { gparse_addstr("ab", "\xe9z", o); }, "ab\xe9z\0"s},
        {"addstrn fills from b", nullptr, [](char* o) { gparse_addstrn("ab", "cdef", 4, o); }, "abcd\0"s},
        {"addstrn n=1 cuts a", nullptr, [](char* o) { gparse_addstrn("ab", "cdef", 1, o); }, "a\0"s},
        {"strncat", "ab", [](char* o) { gparse_strncat("xyz", 4, o); }, "abxy\0"s},
        {"strncat dst at n", "abcd", [](char* o) { gparse_strncat("xyz", 4, o); }, ""},
        {"strtostr from > to", nullptr, [&](char* o) { gparse_strtostr(src, 3, 2, o); }, "\0"s},
        {"strtostr past the end", nullptr, [&](char* o) { gparse_strtostr(src, 4, 40, o); }, "ef\0"s},
        {"strpbl keeps tabs", nullptr, [](char* o) { gparse_strpbl("\t a \t", o); }, "\t a \t\0"s},
        {"strpbl null writes nothing", "xy", [](char* o) { gparse_strpbl(nullptr, o); }, ""},
    };
    for (const WriteCase& c : cases) run(c);
}

TEST(GparseStringHelpersCopy, InPlace)
{
    const WriteCase cases[] = {
        {"cpystrl cuts", "abcdef", [](char* b) { gparse_cpystrl(b, b, 3); }, "abc\0"s},
        {"cpystrl shorter untouched", "ab", [](char* b) { gparse_cpystrl(b, b, 3); }, ""},
        {"cpystrn pads", "ab", [](char* b) { gparse_cpystrn(b, 4, b); }, "ab  \0"s},
        {"szstrlj", "  ab", [](char* b) { gparse_szstrlj(b, 4, b); }, "ab  \0"s},
        {"szstrrj pads", "ab", [](char* b) { gparse_szstrrj(b, 5, b); }, "   ab\0"s},
        {"addstr out == b", "cd", [](char* b) { gparse_addstr("ab", b, b); }, "abcd\0"s},
        {"addstr b inside a", "abc", [](char* b) { gparse_addstr(b, b + 1, b); }, "abcbc\0"s},
        {"addstrn out == b", "cd", [](char* b) { gparse_addstrn("xyz", b, 6, b); }, "xyzcd \0"s},
        {"strncat self", "ab", [](char* b) { gparse_strncat(b, 3, b); }, "aba\0"s},
        {"strtostr", "abcdef", [](char* b) { gparse_strtostr(b, 2, 3, b); }, "cd\0"s},
        {"strptab", "a\tb\t\t", [](char* b) { gparse_strptab(b); }, "a b  \0"s},
        {"setstrlength beyond the text", "ab", [](char* b) { EXPECT_EQ(gparse_setstrlength(b, 4), b); }, "ab\0#\0"s},
        {"setstrlength negative", "ab", [](char* b) { EXPECT_EQ(gparse_setstrlength(b, -1), b); }, ""},
    };
    for (const WriteCase& c : cases) run(c);
    gparse_strptab(nullptr);
    EXPECT_EQ(gparse_setstrlength(nullptr, 2), nullptr);
}

TEST(GparseStringHelpersCase, AsciiOnlyAndEndPointer)
{
    char text[] = "az@[`{AZ09 \xe9\xc9";
    EXPECT_EQ(gparse_lowtoup(text), text + std::strlen(text));
    EXPECT_STREQ(text, "AZ@[`{AZ09 \xe9\xc9");
    EXPECT_EQ(gparse_uptolow(text), text + std::strlen(text));
    EXPECT_STREQ(text, "az@[`{az09 \xe9\xc9");
    EXPECT_EQ(gparse_uptolow(nullptr), nullptr);
    EXPECT_EQ(gparse_lowtoup(nullptr), nullptr);
    EXPECT_EQ(gparse_strlength(nullptr), 0);
}

TEST(GparseStringHelpersCompare, Tables)
{
    struct Case { const char* a; const char* b; int eqlstr, simstr, simstr2, stricmp; };
    const Case cases[] = {
        {"abc", "ABC", 0, 1, 1, 0}, {nullptr, "", 1, 1, 1, 0}, {nullptr, "   ", 0, 1, 0, -' '},
        {"  abc ", "ABC", 0, 1, 0, ' ' - 'A'}, {"a b", "a  b", 0, 0, 0, 'B' - ' '},
        {"\tabc", "abc", 0, 0, 0, '\t' - 'A'}, {"ab", "abc", 0, 0, 0, -'C'},
        {"[", "a", 0, 0, 0, '[' - 'A'},          // upper-casing puts "[" after letters
        {"\xe9", "\xc9", 0, 0, 0, -23 - -55},    // no folding above ASCII; signed bytes
    };
    for (const Case& c : cases) {
        for (int swap = 0; swap < 2; ++swap) {
            const char* a = swap ? c.b : c.a;
            const char* b = swap ? c.a : c.b;
            SCOPED_TRACE(testing::Message() << '"' << (a ? a : "(null)") << "\" vs \"" << (b ? b : "(null)") << '"');
            EXPECT_EQ(gparse_eqlstr(a, b), c.eqlstr);
            EXPECT_EQ(gparse_simstr(a, b), c.simstr);
            EXPECT_EQ(gparse_simstr2(a, b), c.simstr2);
            EXPECT_EQ(gparse_stricmp(a, b), swap ? -c.stricmp : c.stricmp);
        }
    }
}

TEST(GparseStringHelpersCompare, IntcmpAndTabpos)
{
    EXPECT_EQ(gparse_intcmp(INT_MIN, INT_MAX), -1); // no subtraction overflow
    EXPECT_EQ(gparse_intcmp(INT_MAX, INT_MIN), 1);
    EXPECT_EQ(gparse_intcmp(-5, -5), 0);
    EXPECT_EQ(gparse_tabpos(INT_MIN) + gparse_tabpos(-16), 0);
    int count = 0;
    for (int col = -1000; col <= 1000; ++col) count += gparse_tabpos(col);
    EXPECT_EQ(count, 34); // -8 and the 33 columns 0, 8, ..., 256
}
