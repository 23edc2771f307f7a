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
        {nullptr, nullptr, 0}, {nullptr, "", 0}, {"", nullptr, 0}, {"", "", 0},
        {"", "x", -1}, {nullptr, "x", -1}, {"x", "", 1}, {"x", nullptr, 1},
        {"b", "a", 1}, {"a", "b", -1}, {"abc", "abc", 0},
        {"abc", "abd", -1}, {"abz", "abcdef", 1},     // far apart: still exactly -1/1
        {"ab", "abc", -1}, {"abc", "ab", 1},         // prefixes
        {"A", "a", -1},                               // byte-wise, case matters
        {"\x80", "a", 1}, {"a", "\xff", -1}, {"\xe9t\xe9", "ete", 1}, // unsigned bytes
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.a ? c.a : "(null)") << " vs " << (c.b ? c.b : "(null)"));
        EXPECT_EQ(tql_strcmp(c.a, c.b), c.expected);
    }
}

TEST(TqlStrcasestr, FindsWithoutRegardToCase)
{
    const char hello[] = "Hello";
    EXPECT_EQ(tql_strcasestr(hello, "LL"), hello + 2);
    EXPECT_EQ(tql_strcasestr(hello, "hello"), hello);
    EXPECT_EQ(tql_strcasestr(hello, "O"), hello + 4);
    EXPECT_EQ(tql_strcasestr(hello, "helloo"), nullptr);
    EXPECT_EQ(tql_strcasestr(hello, "xyz"), nullptr);
    const char path[] = "C:\\Program Files\\ZQTARVEX\\bin";
    EXPECT_EQ(tql_strcasestr(path, "zqtarvex\\"), path + 17);

    // Empty or null needle: the haystack; null or empty haystack: null.
    EXPECT_EQ(tql_strcasestr(hello, ""), hello);
    EXPECT_EQ(tql_strcasestr(hello, nullptr), hello);
    EXPECT_EQ(tql_strcasestr(nullptr, "a"), nullptr);
    EXPECT_EQ(tql_strcasestr("", "a"), nullptr);
    EXPECT_EQ(tql_strcasestr("", ""), nullptr);
    EXPECT_EQ(tql_strcasestr(nullptr, nullptr), nullptr);
}

TEST(TqlStrcasestr, LongStringsMatchNearTheEnd)
{
    for (size_t length : {2047u, 2048u, 2049u, 5000u, 100000u}) {
        SCOPED_TRACE(length);
        std::string haystack(length, 'a');
        haystack.replace(length - 6, 6, "NeEdLe");
        std::string needle(3000 < length ? 2100 : 3, 'A');  // a long needle too
        needle += "needle";
        const char* hit = tql_strcasestr(haystack.c_str(), "NEEDLE");
        EXPECT_EQ(hit, haystack.c_str() + length - 6);
        hit = tql_strcasestr(haystack.c_str(), needle.c_str());
        EXPECT_EQ(hit, haystack.c_str() + length - needle.size());
        EXPECT_EQ(tql_strcasestr(haystack.c_str(), "needlex"), nullptr);
    }
}

TEST(Strrstr, FindsTheLastOccurrence)
{
    const char abc[] = "abcabc";
    EXPECT_EQ(strrstr(abc, "bc"), abc + 4);
    EXPECT_EQ(strrstr(abc, "abc"), abc + 3);
    EXPECT_EQ(strrstr(abc, "abcabc"), abc);
    EXPECT_EQ(strrstr(abc, "c"), abc + 5);
    EXPECT_EQ(strrstr(abc, "a"), abc + 3);
    EXPECT_EQ(strrstr(abc, "cab"), abc + 2);
    const char front[] = "xyzabc";
    EXPECT_EQ(strrstr(front, "xyz"), front);      // match at index 0
    EXPECT_EQ(strrstr(abc, "abcabcd"), nullptr);  // needle longer than haystack
    EXPECT_EQ(strrstr(abc, "Bc"), nullptr);       // case matters
    EXPECT_EQ(strrstr("", "a"), nullptr);
    EXPECT_EQ(strrstr(nullptr, "a"), nullptr);
    const char aaa[] = "aaaa";
    EXPECT_EQ(strrstr(aaa, "aa"), aaa + 2);       // overlapping candidates

    // An empty needle gives the needle itself, whatever the haystack.
    const char empty[] = "";
    EXPECT_EQ(strrstr(abc, empty), empty);
    EXPECT_EQ(strrstr(nullptr, empty), empty);
}
