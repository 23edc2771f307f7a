// The number rule on a piece of a line, and the typing of the parser's
// fields by it. Short plain decimals (no exponent,
// at most 15 digits) are read in the same pass that checks their syntax;
// any other text is checked whole and read with std::from_chars, which
// rounds exactly as strtod does, and with the library's strtod_l reading for
// what from_chars does not take (values out of range).
#include "parse/number_scan.h"
#include "parse/line_parser.h"

#include <tql70/gparse.h>

#include <charconv>
#include <cstdint>
#include <string>

namespace tql::parse {

namespace {

constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

size_t decimal_length(const char* begin, const char* end)
{
    const char* p = begin;
    if (p != end && (*p == '+' || *p == '-')) {
        ++p;
    }
    size_t digits = 0;
    for (; p != end && is_digit(*p); ++p) {
        ++digits;
    }
    if (p != end && *p == '.') {
        for (++p; p != end && is_digit(*p); ++p) {
            ++digits;
        }
    }
    if (digits == 0) {
        return 0;
    }
    if (p != end && (*p == 'e' || *p == 'E')) {
        const char* exponent = p + 1;
        if (exponent != end && (*exponent == '+' || *exponent == '-')) {
            ++exponent;
        }
        if (exponent != end && is_digit(*exponent)) {
            while (exponent != end && is_digit(*exponent)) {
                ++exponent;
            }
            p = exponent;
        }
    }
    return static_cast<size_t>(p - begin);
}

NumberReading read_number(const char* text, size_t length)
{
    NumberReading reading;
    const char* const end = text + length;
    const char* p = text;
    const bool negative = p != end && *p == '-';
    if (p != end && (*p == '+' || *p == '-')) {
        ++p;
    }
    uint64_t mantissa = 0; // exact while digits <= 19; used below only for at most 15
    int digits = 0;
    int fraction = 0;
    for (; p != end && is_digit(*p); ++p, ++digits) {
        mantissa = mantissa * 10 + static_cast<unsigned>(*p - '0');
    }
    if (p != end && *p == '.') {
        for (++p; p != end && is_digit(*p); ++p, ++digits, ++fraction) {
            mantissa = mantissa * 10 + static_cast<unsigned>(*p - '0');
        }
    }
    if (digits == 0) {
        return reading;
    }
    double value = 0.0;
    if (p == end && digits <= 15) {
        // Up to 15 digits and no exponent: the digits and the power of ten
        // are exact doubles, so one correctly rounded division gives the
        // value strtod gives.
        value = static_cast<double>(mantissa);
        value = fraction ? value / kPowersOfTen[fraction] : value;
        value = negative ? -value : value;
    } else {
        if (decimal_length(text, end) != length) {
            return reading;
        }
        const char* digits_start = *text == '+' ? text + 1 : text;
        const std::from_chars_result parsed = std::from_chars(digits_start, end, value);
        if (parsed.ec != std::errc() || parsed.ptr != end) {
            // Out of range (or anything from_chars leaves): the library's own
            // conversion on a terminated copy gives strtod's answer.
            gparse_astodbl(std::string(text, length).c_str(), &value);
        }
    }
    reading.is_num = true;
    reading.dval = value;
    if (value >= -2147483647.0 && value <= 2147483647.0 && value == static_cast<double>(static_cast<int>(value))) {
        reading.is_int = true;
        reading.ival = static_cast<int>(value);
    }
    return reading;
}

void type_field(const char* line, parsefield& field)
{
    const NumberReading reading = read_number(line + field.start, field.end - field.start + 1);
    field.is_int = reading.is_int;
    field.ival = reading.ival;
    field.is_num = reading.is_num;
    field.dval = reading.dval;
}

} // namespace tql::parse
