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
    while (*name) {
        if (*pattern == '*') {
            // A final '*' takes the rest. Otherwise the character after the
            // '*' is compared literally (even '?' or '*') at each place.
            const char after = pattern[1];
            if (!after) {
                return true;
            }
            if (*name == after && wildcard_match(name + 1, pattern + 2)) {
                return true;
            }
            ++name;
        } else if (*pattern == '?' || *pattern == *name) {
            ++pattern;
            ++name;
        } else {
            return false;
        }
    }
    return !*pattern || (pattern[0] == '*' && !pattern[1]);
}

} // namespace tql::gfile
