// The number rule on a piece of a line. The decimal syntax is checked
// first; the value then comes from std::from_chars, which rounds exactly as
// strtod does, and from strtod_l in the C locale for what from_chars does
// not take (values out of range).
#include "parse/number_scan.h"

#include <tql70/gparse.h>

#include <charconv>
#include <cmath>
#include <string>

namespace tql::parse {

namespace {

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// Whether the whole text is a decimal number (which then starts with '+',
// '-', '.' or a digit and ends with '.' or a digit).
bool decimal_syntax(const char* p, const char* end)
{
    return p != end && decimal_length(p, end) == static_cast<size_t>(end - p);
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
    const char* end = text + length;
    if (!decimal_syntax(text, end)) {
        return reading;
    }
    double value = 0.0;
    const char* digits = *text == '+' ? text + 1 : text;
    const std::from_chars_result parsed = std::from_chars(digits, end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end) {
        // Out of range (or anything from_chars leaves): the library's own
        // conversion on a terminated copy gives strtod's answer.
        gparse_astodbl(std::string(text, length).c_str(), &value);
    }
    reading.is_num = true;
    reading.dval = value;
    double integral = 0.0;
    if (std::modf(value, &integral) == 0.0 && integral >= -2147483647.0 && integral <= 2147483647.0) {
        reading.is_int = true;
        reading.ival = static_cast<int>(integral);
    }
    return reading;
}

} // namespace tql::parse
