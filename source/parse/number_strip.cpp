// Rewriting number texts: exponent text to plain decimal text, and the
// removal of redundant zeros, signs and points.
//
// All of it works on the text itself, digit by digit, never through a
// double: moving the point of "1.23456e+002" gives exactly "123.456", with
// no rounding and no digits invented by a binary round trip. A text is only
// rewritten when it passes the number rule (gparse_astodbl), which also
// guarantees its shape: [+|-] digits [. digits] [(e|E) [+|-] digits].
#include <tql70/gparse.h>

#include <cstring>
#include <new>
#include <string>

namespace {

// Exponents beyond this are refused: no double needs more, and the plain
// text of such a number would run to hundreds of zeros.
constexpr int kLargestPlainExponent = 400;

// The two digit-count arguments of gparse_cnvt_double_string_stripped are
// capped here, which bounds its formatted text to max(30, 30 + 3) characters.
constexpr int kStrippedDigitCap = 30;

// The library-global result of gparse_cnvt_double_string_stripped.
char g_stripped_double[64];

struct NumberParts {
    bool negative = false;
    std::string integer;  // digits before the point, as written
    std::string fraction; // digits after the point, as written
    bool has_exponent = false;
    bool exponent_negative = false;
    std::string exponent; // exponent digits, as written
};

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

std::string without_blanks(const char* text)
{
    const char* start = text;
    while (*start == ' ') {
        ++start;
    }
    size_t length = std::strlen(start);
    while (length > 0 && start[length - 1] == ' ') {
        --length;
    }
    return std::string(start, length);
}

std::string digits_from(const std::string& text, size_t& i)
{
    const size_t start = i;
    while (i < text.size() && is_digit(text[i])) {
        ++i;
    }
    return text.substr(start, i - start);
}

// Splits a text that passes the number rule into its parts; false for any
// other text.
bool split_number(const std::string& text, NumberParts& parts)
{
    if (!gparse_astodbl(text.c_str(), nullptr)) {
        return false;
    }
    size_t i = 0;
    if (text[i] == '+' || text[i] == '-') {
        parts.negative = text[i] == '-';
        ++i;
    }
    parts.integer = digits_from(text, i);
    if (i < text.size() && text[i] == '.') {
        ++i;
        parts.fraction = digits_from(text, i);
    }
    if (i < text.size()) {
        parts.has_exponent = true;
        ++i; // the "e" or "E"
        if (text[i] == '+' || text[i] == '-') {
            parts.exponent_negative = text[i] == '-';
            ++i;
        }
        parts.exponent = digits_from(text, i);
    }
    return true;
}

std::string without_leading_zeros(const std::string& digits)
{
    const size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? std::string() : digits.substr(first);
}

std::string without_trailing_zeros(const std::string& digits)
{
    const size_t last = digits.find_last_not_of('0');
    return last == std::string::npos ? std::string() : digits.substr(0, last + 1);
}

// The shortest text of the same number: see gparse_cnvt_string_stripped_zeros.
// A fraction without integer digits gets a "0" before its point only when the
// result stays within `room` characters, so that it never outgrows the text
// it was made from (".5" stays ".5", ".50" gives "0.5").
std::string stripped(const NumberParts& parts, size_t room)
{
    std::string integer = without_leading_zeros(parts.integer);
    const std::string fraction = without_trailing_zeros(parts.fraction);
    if (integer.empty() && fraction.empty()) {
        return "0";
    }
    const std::string exponent = without_leading_zeros(parts.exponent);
    const size_t bare_length = (parts.negative ? 1 : 0) + 1 + fraction.size() +
                               (exponent.empty() ? 0 : exponent.size() + (parts.exponent_negative ? 2 : 1));
    if (integer.empty() && bare_length < room) {
        integer = "0";
    }
    std::string result = parts.negative ? "-" : "";
    result += integer;
    if (!fraction.empty()) {
        result += '.';
        result += fraction;
    }
    if (!exponent.empty()) {
        result += parts.exponent_negative ? "e-" : "e";
        result += exponent;
    }
    return result;
}

// Plain decimal text of a number text with an exponent: the mantissa digits
// with the point moved by the exponent. False when the text is refused.
bool plain_decimal(const char* text, std::string& result)
{
    if (!is_digit(text[0]) && text[0] != '+' && text[0] != '-') {
        return false;
    }
    NumberParts parts;
    if (!split_number(text, parts)) {
        return false;
    }
    if (!parts.has_exponent) {
        result = text;
        return true;
    }
    const std::string exponent_digits = without_leading_zeros(parts.exponent);
    if (exponent_digits.size() > 3) {
        return false;
    }
    int magnitude = 0;
    for (const char digit : exponent_digits) {
        magnitude = magnitude * 10 + (digit - '0');
    }
    if (magnitude > kLargestPlainExponent) {
        return false;
    }
    const std::string digits = parts.integer + parts.fraction;
    // Position of the point within `digits` once the exponent is applied.
    const long long point =
        static_cast<long long>(parts.integer.size()) + (parts.exponent_negative ? -magnitude : magnitude);
    const long long count = static_cast<long long>(digits.size());
    std::string integer;
    std::string fraction;
    if (point <= 0) {
        fraction = std::string(static_cast<size_t>(-point), '0') + digits;
    } else if (point >= count) {
        integer = digits + std::string(static_cast<size_t>(point - count), '0');
    } else {
        integer = digits.substr(0, static_cast<size_t>(point));
        fraction = digits.substr(static_cast<size_t>(point));
    }
    integer = without_leading_zeros(integer);
    result = parts.negative ? "-" : "";
    result += integer.empty() ? "0" : integer;
    if (!fraction.empty()) {
        result += '.';
        result += fraction;
    }
    return true;
}

void put(const std::string& text, char* out)
{
    std::memmove(out, text.c_str(), text.size() + 1);
}

// The text written when gparse_cnvt_from_e_to_string refuses its input.
void put_refusal(char* out)
{
    std::memcpy(out, " ", 2);
}

} // namespace

extern "C" {

unsigned int gparse_cnvt_string_stripped_zeros(const char* text, char* out)
{
    if (!out) {
        return 0;
    }
    text = text ? text : "";
    try {
        NumberParts parts;
        if (!split_number(without_blanks(text), parts)) {
            std::memmove(out, text, std::strlen(text) + 1);
            return 0;
        }
        put(stripped(parts, std::strlen(text)), out);
        return 1;
    } catch (const std::bad_alloc&) {
        std::memmove(out, text, std::strlen(text) + 1);
        return 0;
    }
}

unsigned int gparse_cnvt_from_e_to_string(const char* text, char* out)
{
    if (!out) {
        return 0;
    }
    try {
        std::string result;
        if (!plain_decimal(text ? text : "", result)) {
            put_refusal(out);
            return 0;
        }
        put(result, out);
        return 1;
    } catch (const std::bad_alloc&) {
        put_refusal(out);
        return 0;
    }
}

unsigned int gparse_cnvt_string_string_stripped(const char* text, char* out)
{
    if (!out) {
        return 0;
    }
    try {
        std::string plain;
        NumberParts parts;
        if (!plain_decimal(without_blanks(text ? text : "").c_str(), plain) || !split_number(plain, parts)) {
            put_refusal(out);
            return 0;
        }
        put(stripped(parts, plain.size()), out);
        return 1;
    } catch (const std::bad_alloc&) {
        put_refusal(out);
        return 0;
    }
}

const char* gparse_cnvt_double_string_stripped(double value, int width, int decimals)
{
    const int capped_width = width < kStrippedDigitCap ? width : kStrippedDigitCap;
    const int capped_decimals = decimals < kStrippedDigitCap ? decimals : kStrippedDigitCap;
    char formatted[sizeof g_stripped_double];
    if (!gparse_dbltoas(value, capped_width, capped_decimals, formatted)) {
        g_stripped_double[0] = '\0';
        return g_stripped_double;
    }
    gparse_cnvt_string_stripped_zeros(formatted, g_stripped_double);
    return g_stripped_double;
}

} // extern "C"
