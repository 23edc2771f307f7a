// The number rule shared by the line parser and the conversions, and the
// integer and float rules built on it.
//
// Texts are read with strtod_l in the "C" locale, never with the process
// locale: an application that switched to a locale with a decimal comma
// still gets "1.5" read as one and a half. Only decimal forms count, as they
// did with the runtime this rule was written for: glibc's strtod also reads
// hexadecimal numbers, "inf" and "nan", so the decimal syntax is checked here
// before the conversion is trusted.
#include <tql70/gparse.h>

#include "parse/number_scan.h"

#include <locale.h>
#include <stdlib.h>

#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

// The "C" locale for strtod_l. glibc hands out its built-in C locale object
// for this request, so the call does not allocate and cannot fail; it is
// made once and kept for the life of the process.
locale_t c_locale()
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return locale;
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// The white space that strtod skips in the C locale.
bool is_c_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Length of the decimal number that strtod would read at the start of
// `text`, the white space it skips included; 0 when there is none.
size_t decimal_prefix(const char* text)
{
    const char* p = text;
    while (is_c_space(*p)) {
        ++p;
    }
    const size_t number = tql::parse::decimal_length(p, p + std::strlen(p));
    return number ? static_cast<size_t>(p - text) + number : 0;
}

// Float bit patterns stored for values beyond the float limit.
constexpr uint32_t kFloatLimitBits = 0x7efffff8u;         // 1.7014110e38
constexpr uint32_t kNegativeFloatLimitBits = 0xfefffff8u; // -1.7014110e38
constexpr double kFloatLimit = 1.701411e38;

float float_from_bits(uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace

extern "C" {

unsigned int gparse_astodbl(const char* text, double* out)
{
    if (!text) {
        if (out) {
            *out = 0.0;
        }
        return 0;
    }
    const size_t length = std::strlen(text);
    const size_t prefix = decimal_prefix(text);
    // The value is strtod's whatever the text: "inf" or "0x10" are no
    // numbers by the rule below, yet the caller gets their value.
    const double value = strtod_l(text, nullptr, c_locale());
    if (out) {
        *out = value;
    }
    if (length == 0 || prefix != length) {
        return 0;
    }
    const char first = text[0];
    const char last = text[length - 1];
    const bool first_ok = first == '+' || first == '-' || first == '.' || is_digit(first);
    const bool last_ok = last == '.' || is_digit(last);
    return first_ok && last_ok ? 1 : 0;
}

unsigned int gparse_astoint(const char* text, int* out)
{
    if (out) {
        *out = 0;
    }
    double value = 0.0;
    if (!gparse_astodbl(text, &value)) {
        return 0;
    }
    double integral = 0.0;
    if (std::modf(value, &integral) != 0.0) {
        return 0;
    }
    // The lower bound is -2147483647, not INT_MIN: "-2147483648" is a number
    // but not an integer.
    if (integral < -2147483647.0 || integral > 2147483647.0) {
        return 0;
    }
    if (out) {
        *out = static_cast<int>(integral);
    }
    return 1;
}

unsigned int gparse_astolng(const char* text, int* out)
{
    return gparse_astoint(text, out);
}

unsigned int gparse_astoflt(const char* text, float* out)
{
    if (out) {
        *out = 0.0f;
    }
    double value = 0.0;
    if (!gparse_astodbl(text, &value)) {
        return 0;
    }
    // The limit is this constant, a little below the largest float; values
    // beyond it are clamped to the float just under it and reported.
    unsigned int status = 1;
    float result;
    if (value > kFloatLimit) {
        result = float_from_bits(kFloatLimitBits);
        status = 0;
    } else if (value < -kFloatLimit) {
        result = float_from_bits(kNegativeFloatLimitBits);
        status = 0;
    } else {
        result = static_cast<float>(value);
    }
    if (out) {
        *out = result;
    }
    return status;
}

} // extern "C"
