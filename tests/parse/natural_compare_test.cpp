// Natural-order comparison and the digit-run helpers under it.
#include <tql70/gparse.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

TEST(NaturalCompare, OrderTable)
{
    struct Case { const char* a; const char* b; int expected; };
    const Case cases[] = {
        {"file9", "file10", -1},
        {"file10.txt", "file9.txt", 1},    // same text after the numbers: by value
        {"a01", "a1", 1},                  // equal numbers: the longer text wins
        {"x10a", "x9b", -1},               // different texts after: "1" against "9"
        {"x10A", "x9a", -1},               // ... and that test is case-sensitive
        {"abc", "ab", 1}, {nullptr, "", 0}, {nullptr, "a", -1},
        {"1", "~", 1}, {"a0", "az", 1}, // digits after letters and punctuation
        {"1", "\xff", 1}, {"\xe9", "z", 1},             // ... and after bytes >= 128
        {"Z", "_", 1},                                  // letters compare lower-cased
        {"n2147483647", "n2147483646", 1},
        {"n2147483648", "n2147483647", 0}, // values above INT_MAX saturate
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.a ? c.a : "(null)") << " vs " << (c.b ? c.b : "(null)"));
        EXPECT_EQ(gparse_alpha_numeric_strcasecmp(c.a, c.b), c.expected);
        EXPECT_EQ(gparse_alpha_numeric_strcasecmp(c.b, c.a), -c.expected);
    }
}

TEST(NaturalCompareDigitRun, ReadsTheRun)
{
    struct Case { const char* text; int from, to; int value; int end; };
    const Case cases[] = {
        {"abc123def", 3, 9, 123, 6}, {"12345", 1, 3, 23, 3}, {"abc", 1, 3, 0, 1}, {"123", 3, 1, 0, 3},
        {"12", 0, 100, 12, 2}, {"\xb2" "1", 0, 2, 0, 0}, {"42", -3, 2, 42, 2}, {"2147483648", 0, 10, INT_MAX, 10},
        {"000000000000042", 0, 15, 42, 15}, // leading zeros do not count towards the saturation
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " " << c.from << ".." << c.to);
        int value = -1;
        EXPECT_EQ(gparse_parse_numeric_and_postnumeric_part(c.text, c.from, c.to, &value), c.text + c.end);
        EXPECT_EQ(value, c.value);
    }
    int value = -1;
    EXPECT_EQ(gparse_parse_numeric_and_postnumeric_part(nullptr, 0, 5, &value), nullptr);
    EXPECT_EQ(value, 0);
    const char text[] = "9x";
    EXPECT_EQ(gparse_parse_numeric_and_postnumeric_part(text, 0, 2, nullptr), text + 1);
}

TEST(NaturalCompareDigitRun, AllDigits)
{
    struct Case { const char* text; int from, to; int expected; };
    const Case cases[] = {
        {"12a45", 0, 2, 1}, {"12a45", 0, 3, 0}, {"12a45", 4, 1, 1}, // empty range
        {"12", 0, 5, 0},                      // the NUL is no digit; nothing read past it
        {"+1", 0, 2, 0}, {"1\xb2", 0, 2, 0}, {"12", -3, 2, 1}, {nullptr, 0, 0, 1}, {nullptr, 0, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.text ? c.text : "(null)") << " " << c.from << ".." << c.to);
        EXPECT_EQ(gparse_all_digits(c.text, c.from, c.to), c.expected);
    }
}
