// Regular expressions: matches and groups, substitution, the compiled
// hints, the size limit and every fatal message.
#include <tql70/tql_regex.h>

#include "regex/regex_engine.h"
#include "support/child_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

std::string group(const tql_regexp* r, int n)
{
    if (!r->startp[n] || !r->endp[n]) {
        return "<unset>";
    }
    return std::string(r->startp[n], r->endp[n]);
}

struct MatchCase {
    const char* pattern;
    const char* subject;
    std::vector<std::string> groups; // empty: no match; else group 0, 1, ...
};

TEST(RegexTest, MatchesAndGroups)
{
    const MatchCase cases[] = {
        {"a*", "", {""}},
        {"a*", "bbb", {""}},
        {"^ab", "cab", {}},
        {"ab$", "cab", {"ab"}},
        {"ab$", "abc", {}},
        {"x(ab)y", "zxaby", {"xaby", "ab"}},
        {"err.*fail", "an error, then fail and fail", {"error, then fail and fail"}},
        {"a.c", "a\xc3\xa9" "c abc", {"abc"}},
        {"(a|ab)(c|bcd)(d*)", "abcd", {"abcd", "a", "bcd", ""}},
        {"(a|b)*abb", "babaabb", {"babaabb", "a"}},
        {"(a+)+b", "aaac", {}},
        {"(ab)+c", "xababc", {"ababc", "ab"}},
        {"ab?c", "ac abc", {"ac"}},
        {"(x)?y", "y", {"y", "<unset>"}},
        {"[0-9]+\\.[0-9]+", "v 10.25x", {"10.25"}},
        {"[^a-c]+", "abcxyzab", {"xyz"}},
        {"[]a]+", "x]a]", {"]a]"}},
        {"[a-]+", "b-a-", {"-a-"}},
        {"\\.\\*\\\\", "a.*\\", {".*\\"}},
        {"^$", "", {""}},
        {"^[A-Z_][A-Z0-9_]*=", "PATH_2=x", {"PATH_2="}},
        {"^[A-Z_][A-Z0-9_]*=", " PATH=x", {}},
        {"warn|error|fatal", "a fatal error", {"fatal"}},
        {"[a-z]+@[a-z]+\\.(com|org)", "mail bob@site.org now", {"bob@site.org", "org"}},
        {"abc*d", "abccd abd", {"abccd"}},
        {"()", "x", {"", ""}},
        {"a|b|", "c", {""}},
        {"a^b", "a^b", {}},
        {"[0-9]+x", "123 45x", {"45x"}},     // runs of a leading repetition are skipped
        {"a*b", "aac ab", {"ab"}},
        {"x*$", "ab", {""}},
        {"(ab|a)(bc|c)", "xabc", {"abc", "ab", "c"}},
        {"(e|f)rr|wa", "a warn", {"wa", "<unset>"}},
        {"((((((((( a)))))))))", " a", {" a", " a", " a", " a", " a", " a", " a", " a", " a", " a"}},
    };
    for (const MatchCase& c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " on " + c.subject);
        tql_regexp* r = tql_regcomp(c.pattern);
        ASSERT_EQ(tql_regexec(r, c.subject), c.groups.empty() ? 0 : 1);
        for (std::size_t n = 0; n < c.groups.size(); ++n) {
            EXPECT_EQ(group(r, static_cast<int>(n)), c.groups[n]) << "group " << n;
        }
        std::free(r);
    }
}

TEST(RegexTest, SubstitutionAndHints)
{
    tql_regexp* r = tql_regcomp("x(ab)y");
    ASSERT_EQ(tql_regexec(r, "zxaby"), 1);
    const struct {
        const char* text;
        const char* expected;
    } templates[] = {
        {"[\\1]&", "[ab]xaby"}, {"\\&", "&"}, {"\\\\", "\\"}, {"\\q", "\\q"},
        {"\\0-\\2-", "xaby--"}, {"", ""}, {"tail\\", "tail\\"},
    };
    for (const auto& t : templates) {
        SCOPED_TRACE(t.text);
        char out[64];
        std::memset(out, '#', sizeof out);
        tql_regsub(r, t.text, out);
        EXPECT_STREQ(out, t.expected);
        std::size_t size = 0;
        EXPECT_EQ(tql::regex::substitution_size(r, t.text, &size), tql::regex::ErrorCode::none);
        EXPECT_EQ(size, std::strlen(t.expected) + 1);
    }
    EXPECT_EQ(r->regstart, 'x');
    EXPECT_EQ(r->regmust, nullptr);
    EXPECT_EQ(static_cast<unsigned char>(r->program[0]), 0234);
    std::free(r);

    const struct {
        const char* pattern;
        char start;
        char anchored;
        const char* must;
    } hints[] = {
        {"^abc", 0, 1, nullptr},
        {"abc|d", 0, 0, nullptr},
        {".*ab.*cd", 0, 0, "cd"},     // equal lengths: the later run
        {"a*xyz.b", 0, 0, "xyz"},
        {"(a|b)*abb", 0, 0, "abb"},
    };
    for (const auto& h : hints) {
        SCOPED_TRACE(h.pattern);
        r = tql_regcomp(h.pattern);
        EXPECT_EQ(r->regstart, h.start);
        EXPECT_EQ(r->reganch, h.anchored);
        EXPECT_EQ(r->regmust ? std::string(r->regmust, static_cast<std::size_t>(r->regmlen)) : "<none>",
                  h.must ? h.must : "<none>");
        std::free(r);
    }
}

// Every fatal path prints its exact line and aborts.
TEST(RegexTest, FatalMessages)
{
    const struct {
        const char* expected;
        std::function<void()> body;
    } cases[] = {
        {"NULL argument", [] { tql_regcomp(nullptr); }},
        {"regexp too big", [] { tql_regcomp(std::string(32763, 'a').c_str()); }},
        {"too many ()", [] { tql_regcomp("(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)"); }},
        {"unmatched []", [] { tql_regcomp("(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)["); }},
        {"unmatched ()", [] { tql_regcomp("(ab"); }},
        {"unmatched ()", [] { tql_regcomp("ab)"); }},
        {"*+ operand could be empty", [] { tql_regcomp("(a|)*"); }},
        {"nested *?+", [] { tql_regcomp("a**"); }},
        {"invalid [] range", [] { tql_regcomp("[z-a]"); }},
        {"unmatched []", [] { tql_regcomp("[abc"); }},
        {"?+* follows nothing", [] { tql_regcomp("a|*b"); }},
        {"trailing \\", [] { tql_regcomp("ab\\"); }},
        {"NULL parameter", [] { tql_regexec(nullptr, "x"); }},
        {"NULL parameter", [] { tql_regexec(tql_regcomp("a"), nullptr); }},
        {"corrupted program", [] { tql_regexp* r = tql_regcomp("a"); r->program[0] = 0; tql_regexec(r, "a"); }},
        {"memory corruption", [] { tql_regexp* r = tql_regcomp("a"); r->program[4] = 99; tql_regexec(r, "a"); }},
        {"internal foulup", [] { tql_regexp* r = tql_regcomp("a*"); r->program[7] = 9; tql_regexec(r, "a"); }},
        {"corrupted pointers", [] { tql_regexp* r = tql_regcomp("ab"); r->program[5] = r->program[6] = 0; tql_regexec(r, "ab"); }},
        {"NULL parm to regsub", [] { char out[8]; tql_regsub(nullptr, "&", out); }},
        {"NULL parm to regsub", [] { tql_regsub(tql_regcomp("a"), "&", nullptr); }},
        {"damaged regexp fed to regsub", [] { char out[8]; tql_regexp* r = tql_regcomp("a"); r->program[0] = 1; tql_regsub(r, "&", out); }},
        {"damaged match string", [] {
             char subject[] = "xaby";
             char out[8];
             tql_regexp* r = tql_regcomp("a.");
             tql_regexec(r, subject);
             subject[2] = '\0';
             tql_regsub(r, "&", out);
         }},
        {"bye", [] { tql_regerror("bye"); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        const tql_test::ChildResult child = tql_test::run_in_child(c.body);
        EXPECT_FALSE(child.exited);
        EXPECT_EQ(child.signal, SIGABRT);
        EXPECT_EQ(child.err, std::string("\nFATAL ERROR: regexp(3): ") + c.expected);
    }
    // Just under the limit: 1 magic + 3 branch + 3 literal + text + NUL + 3 end.
    tql_regexp* r = tql_regcomp(std::string(32766 - 11, 'a').c_str());
    EXPECT_EQ(tql_regexec(r, "b"), 0);
    std::free(r);
    r = tql_regcomp("(a)(b)(c)(d)(e)(f)(g)(h)(i)");
    ASSERT_EQ(tql_regexec(r, "abcdefghi"), 1);
    EXPECT_EQ(group(r, 9), "i");
    std::free(r);
}

} // namespace
