// The gparse_ string helpers: fixed-width and bounded copies, blank and tab
// clean-up, ASCII case changes and comparisons.
#include <tql70/gparse.h>

#include <cctype>

namespace {

// toupper of a character taken as a signed char: negative values (bytes of
// 128 and above) are left as they are.
int upper_signed(char c)
{
    const signed char value = static_cast<signed char>(c);
    return value >= 0 ? std::toupper(value) : value;
}

} // namespace

extern "C" {

int gparse_stricmp(const char* a, const char* b)
{
    a = a ? a : "";
    b = b ? b : "";
    for (;; ++a, ++b) {
        const int difference = upper_signed(*a) - upper_signed(*b);
        if (difference != 0 || *a == '\0') {
            return difference;
        }
    }
}

} // extern "C"
