// String searches and comparisons that tolerate null arguments.
#include <tql70/string_search.h>

#include <cctype>
#include <cstring>
#include <string>

namespace {

std::string lowered(const char* text)
{
    std::string copy(text);
    for (char& c : copy) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return copy;
}

} // namespace

extern "C" {

char* tql_strcasestr(const char* haystack, const char* needle)
{
    if (!haystack || !*haystack) {
        return nullptr;
    }
    if (!needle || !*needle) {
        return const_cast<char*>(haystack);
    }
    // Lowering keeps every character in place, so the offset of the match
    // in the lowered copy is its offset in the caller's haystack.
    const std::string hay = lowered(haystack);
    const std::string pin = lowered(needle);
    const char* hit = std::strstr(hay.c_str(), pin.c_str());
    return hit ? const_cast<char*>(haystack) + (hit - hay.c_str()) : nullptr;
}

int tql_strcmp(const char* a, const char* b)
{
    const bool a_empty = !a || !*a;
    const bool b_empty = !b || !*b;
    if (a_empty || b_empty) {
        return a_empty == b_empty ? 0 : (a_empty ? -1 : 1);
    }
    const int order = std::strcmp(a, b);
    return (order > 0) - (order < 0);
}

char* strrstr(const char* haystack, const char* needle)
{
    if (!needle || !*needle) {
        return const_cast<char*>(needle);
    }
    if (!haystack) {
        return nullptr;
    }
    const size_t hay_length = std::strlen(haystack);
    const size_t needle_length = std::strlen(needle);
    if (needle_length > hay_length) {
        return nullptr;
    }
    for (const char* start = haystack + (hay_length - needle_length);; --start) {
        if (std::memcmp(start, needle, needle_length) == 0) {
            return const_cast<char*>(start);
        }
        if (start == haystack) {
            return nullptr;
        }
    }
}

} // extern "C"
