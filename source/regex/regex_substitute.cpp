// Substitution of the last match into a template: `&` and `\0` to `\9`
// name the match and its groups, `\\` and `\&` give the plain character.
#include "regex_engine.h"
#include "regex_program.h"

#include <cstring>

namespace tql::regex {

namespace {

// Walks the template, handing each plain character and each referenced
// text to `out(text, length)`.
template <typename Out>
ErrorCode walk(const tql_regexp* r, const char* text, Out&& out)
{
    if (!r || !text) {
        return ErrorCode::null_substitution_argument;
    }
    if (static_cast<unsigned char>(r->program[0]) != TQL_REGEXP_MAGIC) {
        return ErrorCode::damaged_substitution_program;
    }
    while (const char c = *text++) {
        int group = -1;
        if (c == '&') {
            group = 0;
        } else if (c == '\\' && *text >= '0' && *text <= '9') {
            group = *text++ - '0';
        }
        if (group < 0) {
            const bool escaped = c == '\\' && (*text == '\\' || *text == '&');
            out(escaped ? text++ : text - 1, 1);
            continue;
        }
        const char* start = r->startp[group];
        const char* end = r->endp[group];
        if (!start || !end) {
            continue;
        }
        const std::size_t length = end >= start ? static_cast<std::size_t>(end - start) : 0;
        if (end < start || strnlen(start, length) < length) {
            return ErrorCode::damaged_match_string;
        }
        out(start, length);
    }
    return ErrorCode::none;
}

} // namespace

ErrorCode substitute(const tql_regexp* r, const char* text, char* destination)
{
    if (!destination) {
        return ErrorCode::null_substitution_argument;
    }
    const ErrorCode error = walk(r, text, [&destination](const char* part, std::size_t length) {
        std::memcpy(destination, part, length);
        destination += length;
    });
    if (error == ErrorCode::none) {
        *destination = '\0';
    }
    return error;
}

ErrorCode substitution_size(const tql_regexp* r, const char* text, std::size_t* size)
{
    std::size_t total = 1;
    const ErrorCode error = walk(r, text, [&total](const char*, std::size_t length) { total += length; });
    *size = total;
    return error;
}

} // namespace tql::regex
