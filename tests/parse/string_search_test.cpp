// tql_strcmp, tql_strcasestr and strrstr: null-tolerant comparisons and
// searches whose results point into the caller's strings.
#include <tql70/string_search.h>

#include <gtest/gtest.h>

#include <string>

TEST(TqlStrcmp, NullIsEmptyAndResultsAreMinusOneZeroOne)
{
    struct Case {
        const char* a;
        const char* b;
        int expected;
    };
    const Case cases[] = {
        {nullptr, "", 0}, {nullptr, "x", -1},
        {"abz", "abcdef", 1}, // far apart: still exactly -1/1
        {"\x80", "a", 1},     // unsigned bytes
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.a ? c.a : "(null)") << " vs " << (c.b ? c.b : "(null)"));
        EXPECT_EQ(tql_strcmp(c.a, c.b), c.expected);
        EXPECT_EQ(tql_strcmp(c.b, c.a), -c.expected);
    }
}

TEST(TqlStrcasestr, FindsWithoutRegardToCase)
{
    const char hello[] = "Hello";
    EXPECT_EQ(tql_strcasestr(hello, "LL"), hello + 2);
    EXPECT_EQ(tql_strcasestr(hello, "helloo"), nullptr);
    // Empty or null needle: the haystack; null or empty haystack: null.
    EXPECT_EQ(tql_strcasestr(hello, nullptr), hello);
    EXPECT_EQ(tql_strcasestr(nullptr, "a"), nullptr);
    EXPECT_EQ(tql_strcasestr("", ""), nullptr);
    // Long strings, past any small work buffer, with a long needle too.
    std::string haystack(100000, 'a');
    haystack.replace(haystack.size() - 6, 6, "NeEdLe");
    const std::string needle = std::string(2100, 'A') + "needle";
    EXPECT_EQ(tql_strcasestr(haystack.c_str(), needle.c_str()), haystack.c_str() + haystack.size() - needle.size());
    EXPECT_EQ(tql_strcasestr(haystack.c_str(), "needlex"), nullptr);
}

TEST(Strrstr, FindsTheLastOccurrence)
{
    const char abc[] = "abcabc";
    EXPECT_EQ(strrstr(abc, "bc"), abc + 4);
    EXPECT_EQ(strrstr(abc, "abcabc"), abc);
    EXPECT_EQ(strrstr(abc, "abcabcd"), nullptr); // needle longer than haystack
    EXPECT_EQ(strrstr(abc, "Bc"), nullptr);      // case matters
    EXPECT_EQ(strrstr(nullptr, "a"), nullptr);
    const char aaa[] = "aaaa";
    EXPECT_EQ(strrstr(aaa, "aa"), aaa + 2); // overlapping candidates
    // An empty needle gives the needle itself, whatever the haystack.
    const char empty[] = "";
    EXPECT_EQ(strrstr(nullptr, empty), empty);
}
