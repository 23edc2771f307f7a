// The gparse_ string helpers: fixed-width and bounded copies, blank and tab
// clean-up, ASCII case changes and comparisons.
//
// Copies go through memmove throughout: several helpers work in place, and
// a caller that hands overlapping buffers to the others gets the text it
// asked for instead of a smeared one.
#include <tql70/gparse.h>
#include <tql70/gmem.h>
#include <tql70/string_search.h>

#include <cctype>
#include <climits>
#include <cstring>

namespace {

const char* or_empty(const char* text)
{
    return text ? text : "";
}

// Lengths and widths below 0 count as 0.
size_t width_of(int n)
{
    return n > 0 ? static_cast<size_t>(n) : 0;
}

// strlen, but reads no further than `limit` characters: the result is
// min(strlen(text), limit).
size_t length_up_to(const char* text, size_t limit)
{
    return ::strnlen(text, limit);
}

// toupper of a character taken as a signed char: negative values (bytes of
// 128 and above) are left as they are.
int upper_signed(char c)
{
    const signed char value = static_cast<signed char>(c);
    return value >= 0 ? std::toupper(value) : value;
}

char ascii_upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char ascii_lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The first n characters of src (fewer when it is shorter) padded with
// blanks to exactly n and terminated: n + 1 bytes written.
void fixed_width_copy(const char* src, size_t n, char* dst)
{
    const size_t length = length_up_to(src, n);
    std::memmove(dst, src, length);
    std::memset(dst + length, ' ', n - length);
    dst[n] = '\0';
}

// The text between leading and trailing blanks: its start and its length.
const char* trimmed(const char* text, size_t* length)
{
    while (*text == ' ') {
        ++text;
    }
    size_t end = std::strlen(text);
    while (end > 0 && text[end - 1] == ' ') {
        --end;
    }
    *length = end;
    return text;
}

bool equal_ignoring_ascii_case(const char* a, const char* b, size_t length)
{
    for (size_t i = 0; i < length; ++i) {
        if (ascii_upper(a[i]) != ascii_upper(b[i])) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" {

void gparse_cpystr(const char* src, char* dst)
{
    if (!dst) {
        return;
    }
    src = or_empty(src);
    std::memmove(dst, src, std::strlen(src) + 1);
}

void gparse_strncpy(const char* src, int n, char* dst)
{
    if (!dst || n <= 0) {
        return;
    }
    src = or_empty(src);
    // A text of exactly n characters and a longer one both end up as n
    // characters and a NUL at dst[n]; a shorter one is copied with its NUL
    // and nothing after it is touched.
    const size_t length = length_up_to(src, width_of(n));
    std::memmove(dst, src, length);
    dst[length] = '\0';
}

void gparse_cpystrl(const char* src, char* dst, int n)
{
    if (!dst) {
        return;
    }
    if (dst == src) {
        const size_t limit = width_of(n);
        if (length_up_to(dst, limit + 1) > limit) {
            dst[limit] = '\0';
        }
        return;
    }
    if (n <= 0) {
        dst[0] = '\0';
        return;
    }
    gparse_strncpy(src, n, dst);
}

void gparse_cpystrn(const char* src, int n, char* dst)
{
    if (!dst) {
        return;
    }
    fixed_width_copy(or_empty(src), width_of(n), dst);
}

void gparse_szstrlj(const char* src, int n, char* dst)
{
    if (!dst) {
        return;
    }
    src = or_empty(src);
    while (*src == ' ') {
        ++src;
    }
    fixed_width_copy(src, width_of(n), dst);
}

void gparse_szstrrj(const char* src, int n, char* dst)
{
    if (!dst) {
        return;
    }
    src = or_empty(src);
    const size_t width = width_of(n);
    const size_t length = length_up_to(src, width + 1);
    if (length > width) {
        std::memmove(dst, src, width);
        dst[width] = '\0';
        return;
    }
    // Move the text first: in place, the blanks go where its head was.
    const size_t pad = width - length;
    std::memmove(dst + pad, src, length);
    std::memset(dst, ' ', pad);
    dst[width] = '\0';
}

void gparse_addstr(const char* a, const char* b, char* out)
{
    if (!out) {
        return;
    }
    a = or_empty(a);
    b = or_empty(b);
    // b may be out itself (or lie inside a's place in out), so it is saved
    // before a is written.
    const size_t b_size = std::strlen(b) + 1;
    char* saved = static_cast<char*>(gmem_ee_malloc(1, b_size));
    if (!saved) {
        out[0] = '\0';
        return;
    }
    std::memcpy(saved, b, b_size);
    const size_t a_length = std::strlen(a);
    std::memmove(out, a, a_length);
    std::memcpy(out + a_length, saved, b_size);
    gmem_ee_free(saved);
}

void gparse_addstrn(const char* a, const char* b, int n, char* out)
{
    if (!out) {
        return;
    }
    a = or_empty(a);
    b = or_empty(b);
    const size_t width = width_of(n);
    const size_t a_length = length_up_to(a, width);
    if (a_length >= width) {
        fixed_width_copy(a, width, out);
        return;
    }
    // The tail is written before the head: when out is b, b is read before
    // a lands on it; when out is a, the tail starts at a's NUL and leaves
    // a's characters in place.
    fixed_width_copy(b, width - a_length, out + a_length);
    std::memmove(out, a, a_length);
}

void gparse_strncat(const char* src, int n, char* dst)
{
    if (!dst) {
        return;
    }
    src = or_empty(src);
    const size_t limit = width_of(n);
    const size_t dst_length = length_up_to(dst, limit);
    if (dst_length >= limit) {
        return;
    }
    const size_t added = length_up_to(src, limit - dst_length);
    std::memmove(dst + dst_length, src, added);
    dst[dst_length + added] = '\0';
}

void gparse_strtostr(const char* text, int from, int to, char* out)
{
    if (!out) {
        return;
    }
    text = or_empty(text);
    const size_t start = width_of(from);
    if (to < 0 || start > static_cast<size_t>(to) || length_up_to(text, start) < start) {
        out[0] = '\0';
        return;
    }
    const size_t count = static_cast<size_t>(to) - start + 1;
    const size_t length = length_up_to(text + start, count);
    std::memmove(out, text + start, length);
    out[length] = '\0';
}

void gparse_strpbl(const char* src, char* dst)
{
    if (!src || !dst) {
        return;
    }
    size_t length = 0;
    const char* start = trimmed(src, &length);
    std::memmove(dst, start, length);
    dst[length] = '\0';
}

void gparse_strptab(char* text)
{
    for (; text && *text; ++text) {
        if (*text == '\t') {
            *text = ' ';
        }
    }
}

char* gparse_lowtoup(char* text)
{
    if (!text) {
        return nullptr;
    }
    for (; *text; ++text) {
        *text = ascii_upper(*text);
    }
    return text;
}

char* gparse_uptolow(char* text)
{
    if (!text) {
        return nullptr;
    }
    for (; *text; ++text) {
        *text = ascii_lower(*text);
    }
    return text;
}

int gparse_strlength(const char* text)
{
    const size_t length = std::strlen(or_empty(text));
    return length > static_cast<size_t>(INT_MAX) ? INT_MAX : static_cast<int>(length);
}

char* gparse_setstrlength(char* text, int n)
{
    if (text && n >= 0) {
        text[n] = '\0';
    }
    return text;
}

int gparse_eqlstr(const char* a, const char* b)
{
    return tql_strcmp(a, b) == 0 ? 1 : 0;
}

int gparse_stricmp(const char* a, const char* b)
{
    a = or_empty(a);
    b = or_empty(b);
    for (;; ++a, ++b) {
        const int difference = upper_signed(*a) - upper_signed(*b);
        if (difference != 0 || *a == '\0') {
            return difference;
        }
    }
}

int gparse_simstr(const char* a, const char* b)
{
    size_t a_length = 0;
    size_t b_length = 0;
    const char* a_start = trimmed(or_empty(a), &a_length);
    const char* b_start = trimmed(or_empty(b), &b_length);
    return a_length == b_length && equal_ignoring_ascii_case(a_start, b_start, a_length) ? 1 : 0;
}

int gparse_simstr2(const char* a, const char* b)
{
    a = or_empty(a);
    b = or_empty(b);
    // A length difference shows up as a NUL facing a character.
    for (;; ++a, ++b) {
        if (ascii_upper(*a) != ascii_upper(*b)) {
            return 0;
        }
        if (*a == '\0') {
            return 1;
        }
    }
}

int gparse_intcmp(int a, int b)
{
    return (a > b) - (a < b);
}

int gparse_tabpos(int col)
{
    // The tab columns are a fixed list, -8 and 0, 8, ..., 256; no column
    // beyond 256 is a tab stop.
    if (col == -8) {
        return 1;
    }
    return col >= 0 && col <= 256 && col % 8 == 0 ? 1 : 0;
}

} // extern "C"
