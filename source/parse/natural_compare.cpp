// Natural-order comparison of names with embedded numbers, and the digit
// run helpers it is built on.
#include <tql70/gparse.h>
#include <tql70/string_search.h>

#include <climits>
#include <cstring>

namespace {

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// Rank of a character in the natural order: lower-cased (ASCII letters only,
// as tolower does in the C locale), taken as an unsigned byte, and digits
// moved up by 500 so that they sort after every letter, punctuation
// character and byte of 128 and above.
int rank(char c)
{
    const unsigned char byte = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return is_digit(c) ? byte + 500 : byte;
}

int sign_of(int difference)
{
    return (difference > 0) - (difference < 0);
}

} // namespace

extern "C" {

char* gparse_parse_numeric_and_postnumeric_part(const char* text, int from, int to, int* num)
{
    if (!text) {
        if (num) {
            *num = 0;
        }
        return nullptr;
    }
    // The run is converted as it is read instead of being copied out for a
    // text-to-integer call, so a run of any length needs no buffer. Values
    // above INT_MAX saturate there, as the Windows atoi did for overflowing
    // texts; leading zeros add nothing, so "000...0012" is still 12.
    long long value = 0;
    // A start beyond the end of the text stops at its NUL.
    int position = from > 0 ? static_cast<int>(strnlen(text, static_cast<size_t>(from))) : 0;
    for (; position < to && is_digit(text[position]); ++position) {
        if (value < INT_MAX) {
            value = value * 10 + (text[position] - '0');
            if (value > INT_MAX) {
                value = INT_MAX;
            }
        }
    }
    if (num) {
        *num = static_cast<int>(value);
    }
    return const_cast<char*>(text) + position;
}

int gparse_all_digits(const char* text, int from, int to)
{
    int position = from > 0 ? from : 0;
    if (position >= to) {
        return 1;
    }
    if (!text) {
        return 0;
    }
    for (; position < to; ++position) {
        if (!is_digit(text[position])) {
            return 0;
        }
    }
    return 1;
}

int gparse_alpha_numeric_strcasecmp(const char* a, const char* b)
{
    a = a ? a : "";
    b = b ? b : "";
    const size_t a_length = std::strlen(a);
    const size_t b_length = std::strlen(b);

    // Once two digit runs have been read and the texts after them differ,
    // every later position inside both runs leads to the same two runs and
    // the same verdict, so the runs are not read again until one of them
    // ends. This keeps long digit runs linear.
    size_t runs_end = 0;
    for (size_t i = 0; i < a_length && i < b_length; ++i) {
        if (i >= runs_end && is_digit(a[i]) && is_digit(b[i])) {
            // Positions are passed relative to i, so a text longer than
            // INT_MAX still gets its runs read from the right place.
            const size_t a_left = a_length - i;
            const size_t b_left = b_length - i;
            int a_number = 0;
            int b_number = 0;
            const char* a_rest = gparse_parse_numeric_and_postnumeric_part(
                a + i, 0, a_left > INT_MAX ? INT_MAX : static_cast<int>(a_left), &a_number);
            const char* b_rest = gparse_parse_numeric_and_postnumeric_part(
                b + i, 0, b_left > INT_MAX ? INT_MAX : static_cast<int>(b_left), &b_number);
            if (tql_strcmp(a_rest, b_rest) == 0) {
                if (a_number != b_number) {
                    return a_number > b_number ? 1 : -1;
                }
                // Equal numbers before identical texts: the lengths decide,
                // so "a01" sorts after "a1".
                break;
            }
            if (a_left <= INT_MAX && b_left <= INT_MAX) {
                const size_t a_end = static_cast<size_t>(a_rest - a);
                const size_t b_end = static_cast<size_t>(b_rest - b);
                runs_end = a_end < b_end ? a_end : b_end;
            }
        }
        const int order = sign_of(rank(a[i]) - rank(b[i]));
        if (order != 0) {
            return order;
        }
    }
    return a_length < b_length ? -1 : (a_length > b_length ? 1 : 0);
}

} // extern "C"
