// Fuzz target for the regular-expression engine. The input is a mode byte,
// then the pattern, the subject and the template separated by NUL bytes.
// Every pattern goes through the error-returning compiler; a compiled one
// is matched against the subject under a step limit that grows with the
// input size (backtracking is exponential for some patterns by nature; the
// limit keeps each run polynomial without changing what a match is), the
// match must lie inside the subject with its groups nested in it, and the
// substitution must fill exactly the size it announces.
//
// With the mode byte's low bit set, pattern and subject are first mapped
// onto small alphabets and the result is compared with std::regex
// (ECMAScript), where both define the same thing: literals a, b, c and the
// characters escaped with a backslash that are not letters or digits,
// `.`, `^`, `$`, groups, `|`, greedy `*`, `+`, `?`, and bracket sets without
// backslashes or `[`, not starting with `]` or `-` and without `--`
// (ECMAScript reads `[]`, `[^]` and a leading `-` as a range start
// differently, and the C++ library takes `[.` `[:` `[=` in a set as POSIX
// classes);
// subjects without line terminators. Only the whole match is
// compared: ECMAScript resets a repeated group's captures on each
// iteration, this engine keeps the last value set.
#include "regex/regex_engine.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <regex>
#include <string>
#include <vector>

namespace {

using tql::regex::ErrorCode;

void check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

std::vector<std::string> split(const uint8_t* data, size_t size)
{
    std::vector<std::string> parts(1);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == 0 && parts.size() < 3) {
            parts.emplace_back();
        } else if (data[i] != 0) {
            parts.back() += static_cast<char>(data[i]);
        }
    }
    parts.resize(3);
    return parts;
}

bool in_ecmascript_subset(const std::string& pattern)
{
    bool in_set = false;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (c == '\\' && (in_set || i + 1 == pattern.size() || std::isalnum(static_cast<unsigned char>(pattern[i + 1])))) {
            return false;
        }
        if (c == '\\') {
            ++i;
        } else if (!in_set && c == '[') {
            in_set = true;
            const size_t first = pattern.compare(i + 1, 1, "^") == 0 ? i + 2 : i + 1;
            if (pattern.compare(first, 1, "]") == 0 || pattern.compare(first, 1, "-") == 0) {
                return false;
            }
        } else if (in_set && (c == '[' || (c == '-' && pattern.compare(i + 1, 1, "-") == 0))) {
            return false;
        } else if (in_set && c == ']') {
            in_set = false;
        }
    }
    return true;
}

void compare_with_std_regex(tql_regexp* r, const std::string& pattern, const std::string& subject, bool matched)
{
    if (pattern.size() > 20 || !in_ecmascript_subset(pattern)) {
        return;
    }
    std::regex reference;
    try {
        reference.assign(pattern, std::regex::ECMAScript);
    } catch (const std::regex_error&) {
        return;
    }
    std::smatch found;
    const bool expected = std::regex_search(subject, found, reference);
    check(matched == expected);
    if (matched) {
        check(r->startp[0] - subject.c_str() == found.position(0));
        check(r->endp[0] - r->startp[0] == found.length(0));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > 3072) {
        return 0;
    }
    const bool differential = data[0] & 1;
    std::vector<std::string> parts = split(data + 1, size - 1);
    std::string& pattern = parts[0];
    std::string& subject = parts[1];
    const std::string& text = parts[2];
    if (differential) {
        static const char pattern_alphabet[] = "abc.()|*+?[]^-\\$";
        static const char subject_alphabet[] = "abc.";
        for (char& c : pattern) {
            c = pattern_alphabet[static_cast<unsigned char>(c) % 16];
        }
        for (char& c : subject) {
            c = subject_alphabet[static_cast<unsigned char>(c) % 4];
        }
        subject.resize(std::min<size_t>(subject.size(), 12)); // the C++ library backtracks exponentially too
    }

    const tql::regex::CompileResult compiled = tql::regex::compile(pattern.c_str());
    if (compiled.error != ErrorCode::none) {
        check(compiled.compiled == nullptr && *tql::regex::error_message(compiled.error) != '\0');
        return 0;
    }
    tql_regexp* r = compiled.compiled;
    check(static_cast<unsigned char>(r->program[0]) == TQL_REGEXP_MAGIC);

    const tql::regex::MatchResult result = tql::regex::match(r, subject.c_str(), 2000 * (size + 1));
    if (result.error == ErrorCode::step_limit) {
        std::free(r);
        return 0;
    }
    check(result.error == ErrorCode::none);
    if (result.matched) {
        const char* begin = subject.c_str();
        const char* end = begin + subject.size();
        check(r->startp[0] && r->endp[0] && begin <= r->startp[0] && r->startp[0] <= r->endp[0] && r->endp[0] <= end);
        for (int n = 1; n < TQL_NSUBEXP; ++n) {
            if (r->startp[n] && r->endp[n]) {
                check(begin <= r->startp[n] && r->startp[n] <= r->endp[n] && r->endp[n] <= end);
            }
        }
        std::size_t needed = 0;
        check(tql::regex::substitution_size(r, text.c_str(), &needed) == ErrorCode::none);
        std::vector<char> out(needed + 1, '#');
        check(tql::regex::substitute(r, text.c_str(), out.data()) == ErrorCode::none);
        check(std::strlen(out.data()) + 1 == needed && out[needed] == '#');
    }
    if (differential) {
        compare_with_std_regex(r, pattern, subject, result.matched);
    }
    std::free(r);
    return 0;
}
