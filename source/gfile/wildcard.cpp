// Wildcard names of the file operations.
#include "gfile/gfile_internal.h"

#include <cstring>

namespace tql::gfile {

bool has_wildcard(const char* name)
{
    return std::strpbrk(name, "*?") != nullptr;
}

bool wildcard_match(const char* name, const char* pattern)
{
    // A '*' that is not last, with the character after it, matches any run
    // followed by that character taken literally (even '?' or '*'). Only
    // the last such '*' met is ever widened: a later one can take whatever
    // an earlier one would, so the match takes time linear in the name for
    // each '*' instead of exponential.
    const char* literal = nullptr; // the character after the last '*'
    const char* resume = nullptr;  // where that '*' run ends so far
    for (;;) {
        if (*pattern == '*' && pattern != literal) {
            if (!pattern[1]) {
                return true; // a final '*' takes the rest
            }
            literal = pattern + 1;
            resume = name;
            pattern = literal;
            continue;
        }
        if (*name && (*pattern == *name || (*pattern == '?' && pattern != literal))) {
            ++pattern;
            ++name;
            continue;
        }
        if (!*name && !*pattern) {
            return true;
        }
        if (!literal || !*resume) {
            return false;
        }
        // The last '*' takes one more character; try again from there.
        name = ++resume;
        pattern = literal;
    }
}

} // namespace tql::gfile
