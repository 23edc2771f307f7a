// Numbers back to text: integer formatting, and the fixed, maximum-precision,
// fixed-only and exponent notations of the double and float formatters.
//
// Digit strings are those of the C library's fcvt_r (made here with
// std::to_chars, which gives the same text faster) and ecvt_r; only their
// digits are read, so the process locale never shows in a result. Every
// text is built straight into the caller's buffer, after all checks, so a
// failing call writes nothing but its empty result.
#include <tql70/gparse.h>

#include <stdlib.h>

#include <charconv>
#include <cmath>
#include <cstring>

namespace {

// What tells the double formatters from the float ones.
struct Precision {
    long long min_exponent_width; // narrowest width for exponent notation
    long long digits_offset;      // exponent notation shows width - offset digits
    int exponent_digits;          // the exponent is zero-padded to this many digits
};

constexpr Precision kDouble{9, 7, 3};
constexpr Precision kFloat{8, 6, 2};

// fcvt_r gives at most 17 digits after the point and ecvt_r at most 17 digits
// in all; neither (nor the fcvt_r replacement) is asked for more, and longer texts are padded with zeros.
constexpr int kLibraryDigits = 17;

// Room for any fcvt_r or ecvt_r result of a double: the 309 integer digits of
// the largest double, a point, 17 decimals and the NUL come to 328 bytes.
// Both calls fail rather than write past the size they are given.
constexpr size_t kDigitBufferSize = 400;

// A digit string: value = 0.d1d2d3... x 10^point. Digits past `length` read
// as zeros, which is how the text is padded to any width without a copy.
struct Digits {
    char text[kDigitBufferSize];
    size_t length = 0;
    int point = 0;

    char at(long long i) const
    {
        return i >= 0 && static_cast<unsigned long long>(i) < length ? text[i] : '0';
    }
};

int library_digit_count(long long wanted)
{
    return wanted < kLibraryDigits ? static_cast<int>(wanted) : kLibraryDigits;
}

// Rounds text to its first `count` digits (count < length), carrying into
// the decimal position when all of them were 9s.
void round_to(Digits& digits, size_t count)
{
    const bool up = digits.text[count] >= '5';
    digits.length = count;
    digits.text[count] = '\0';
    if (!up) {
        return;
    }
    size_t i = count;
    while (i > 0 && digits.text[i - 1] == '9') {
        digits.text[--i] = '0';
    }
    if (i > 0) {
        ++digits.text[i - 1];
    } else {
        digits.text[0] = '1';
        ++digits.point;
    }
}

// The first `count` significant digits of a finite v (count >= 1), as ecvt
// gives them. glibc's ecvt_r works on a copy of the value scaled by powers of
// ten and sometimes hands back one digit more than asked (after a rounding
// carry "1000" for 9.9999 and 3 digits, or when the scaled copy lands at 10
// or above); that extra digit is rounded off so that exactly `count` digits
// take their places in the width.
bool exponent_digits(double v, long long count, Digits& digits)
{
    const int asked = library_digit_count(count);
    int negative = 0;
    if (ecvt_r(v, asked, &digits.point, &negative, digits.text, sizeof digits.text) != 0) {
        return false;
    }
    digits.length = std::strlen(digits.text);
    if (digits.length > static_cast<size_t>(asked)) {
        round_to(digits, static_cast<size_t>(asked));
    }
    return digits.length > 0;
}

// fcvt_r's digit string of |v| with `decimals` (0 to 17) places, made with
// std::to_chars: fcvt_r writes its value with printf's "%.*f" and reads the
// digits back, and std::to_chars gives the same correctly rounded text (in
// any locale) several times faster. The point is dropped and, as fcvt_r
// does, the leading zeros of a value below 1 go into the decimal position:
// 0.050 gives "50" with the point at -1.
bool fcvt_digits(double v, int decimals, Digits& digits)
{
    char text[kDigitBufferSize];
    const std::to_chars_result written =
        std::to_chars(text, text + sizeof text, std::fabs(v), std::chars_format::fixed, decimals);
    if (written.ec != std::errc()) {
        return false;
    }
    size_t count = 0;
    long long point = written.ptr - text;
    for (const char* p = text; p < written.ptr; ++p) {
        if (*p == '.') {
            point = p - text;
        } else {
            digits.text[count++] = *p;
        }
    }
    size_t zeros = 0;
    if (text[0] == '0') {
        while (zeros < count && digits.text[zeros] == '0') {
            ++zeros;
            --point;
        }
    }
    digits.length = count - zeros;
    std::memmove(digits.text, digits.text + zeros, digits.length);
    digits.text[digits.length] = '\0';
    digits.point = static_cast<int>(point);
    return true;
}

// The digits of a finite, non-zero v rounded to `decimals` (>= 0) places
// after the point, as fcvt gives them. fcvt_r stops at 17 decimals, so a
// value below 10^-17 comes back without a single digit when more decimals are
// asked for; such a value takes its leading digits (as many as reach the last
// decimal, at most 17) from ecvt_r instead.
bool fixed_digits(double v, long long decimals, Digits& digits)
{
    if (!fcvt_digits(v, library_digit_count(decimals), digits)) {
        return false;
    }
    if (digits.length == 0 && decimals > kLibraryDigits) {
        Digits lead;
        if (!exponent_digits(v, 1, lead)) {
            return false;
        }
        // The leading digit's place comes from a one-digit rounding, which
        // puts it one place too high when that rounding carried (9.9e-20 gives
        // "1" at 10^-19): the digits are then asked for again with the place
        // of the first full answer, so that the last one falls on the last
        // decimal.
        const long long reach = lead.point + decimals;
        if (reach < 1 || !exponent_digits(v, reach, digits)) {
            return false;
        }
        const long long exact_reach = digits.point + decimals;
        if (exact_reach < static_cast<long long>(digits.length)) {
            return exact_reach >= 1 && exponent_digits(v, exact_reach, digits);
        }
        return true;
    }
    return digits.length > 0;
}

// 10^exponent as std::pow gives it. The powers up to 10^22 are exact
// doubles, and their reciprocals are correctly rounded like std::pow's
// results, so those come from a table (the common widths and decimals)
// instead of a call.
double power_of_ten(long long exponent)
{
    static constexpr double exact[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                       1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr long long largest = sizeof exact / sizeof exact[0] - 1;
    if (exponent >= 0 && exponent <= largest) {
        return exact[exponent];
    }
    if (exponent < 0 && exponent >= -largest) {
        return 1.0 / exact[-exponent];
    }
    return std::pow(10.0, static_cast<double>(exponent));
}

char* put_repeated(char* p, char c, long long count)
{
    if (count > 0) {
        std::memset(p, c, static_cast<size_t>(count));
        p += count;
    }
    return p;
}

char* put_digits(char* p, const Digits& digits, long long from, long long to)
{
    for (long long i = from; i < to; ++i) {
        *p++ = digits.at(i);
    }
    return p;
}

// Exponent notation: sign, one digit, ".", the other width - offset - 1
// digits, "e", the exponent's sign and its digits zero-padded. Needs the
// width of the precision, else out becomes "".
bool format_exponent(double v, long long width, const Precision& precision, char* out)
{
    if (width < precision.min_exponent_width) {
        out[0] = '\0';
        return false;
    }
    const long long count = width - precision.digits_offset;
    Digits digits;
    if (!exponent_digits(v, count, digits)) {
        return false;
    }
    // The decimal position of the digit string gives the power of ten. A zero
    // reads "+000" whether the C library puts its point before or after the
    // zeros; any other value with its point right before the digits lies in
    // [0.1, 1) and reads "-001".
    const int point = digits.point;
    bool exponent_negative = false;
    int exponent = 0;
    if (point >= 1) {
        exponent = point - 1;
    } else if (point < 0) {
        exponent_negative = true;
        exponent = 1 - point;
    } else if (v != 0.0) {
        exponent_negative = true;
        exponent = 1;
    }
    char exponent_text[16];
    gparse_lngtoas(exponent, static_cast<int>(sizeof exponent_text) - 1, exponent_text);
    const long long exponent_length = static_cast<long long>(std::strlen(exponent_text));

    char* p = out;
    if (v < 0) {
        *p++ = '-';
    }
    *p++ = digits.at(0);
    *p++ = '.';
    p = put_digits(p, digits, 1, count);
    *p++ = 'e';
    *p++ = exponent_negative ? '-' : '+';
    p = put_repeated(p, '0', precision.exponent_digits - exponent_length);
    std::memcpy(p, exponent_text, static_cast<size_t>(exponent_length) + 1);
    return true;
}

// A zero, or a value too small to show: "0." and `decimals` zeros, preceded
// by width - decimals - 3 blanks so that it stands right-aligned in width - 1
// positions (the last one is the sign's). Only zeros are aligned like this.
void format_zero(long long width, long long decimals, char* out)
{
    char* p = put_repeated(out, ' ', width - decimals - 3);
    *p++ = '0';
    *p++ = '.';
    p = put_repeated(p, '0', decimals);
    *p = '\0';
}

// The fixed notation shared by all double and float formatters. With
// fixed_only, large values are not sent to exponent notation but fail when
// their integer part is wider than width - decimals - 2, and all small values
// give the zero text.
bool format_fixed(double v, long long width, long long decimals, const Precision& precision, bool fixed_only,
                  char* out)
{
    if (!std::isfinite(v)) {
        return false;
    }
    if (width > 0 && v == 0.0 && decimals == 0) {
        std::memcpy(out, "0", 2);
        return true;
    }
    if (decimals < 0) {
        return format_exponent(v, width, precision, out);
    }
    const double x = std::fabs(v);
    const double smallest = power_of_ten(-decimals);
    // The largest value that shows with `decimals` places in width - 1
    // positions: width - decimals - 2 integer digits, all of them 9s.
    if (!fixed_only && x > power_of_ten(width - decimals - 2) - smallest) {
        return format_exponent(v, width, precision, out);
    }
    if (x < smallest) {
        if (fixed_only || x <= 1e-23) {
            format_zero(width, decimals, out);
            return true;
        }
        return format_exponent(v, width, precision, out);
    }

    Digits digits;
    if (!fixed_digits(v, decimals, digits)) {
        return false;
    }
    const long long point = digits.point;
    const long long integer_digits = point > 0 ? point : 0;
    if (fixed_only && (point > 1 ? point : 1) > width - decimals - 2) {
        return false;
    }
    // The test on the value above is made in binary and lets through values
    // whose rounded digits are one integer digit wider (-1e17 is not above
    // 10^17 - 10^-38): the text is measured from its digits, and one that
    // would not fit in its max(width, decimals + 3) characters goes to
    // exponent notation.
    const long long text_length = (v < 0 ? 1 : 0) + (point > 1 ? point : 1) + 1 + decimals;
    if (text_length > (width > decimals + 3 ? width : decimals + 3)) {
        return format_exponent(v, width, precision, out);
    }
    // The digit string is read as padded with zeros to point + decimals
    // digits, which fills in the decimals past the 17 that fcvt_r gives.
    const long long length = static_cast<long long>(digits.length);
    const long long total = length > point + decimals ? length : point + decimals;

    char* p = out;
    if (v < 0) {
        *p++ = '-';
    }
    if (point < 1) {
        *p++ = '0';
    }
    p = put_digits(p, digits, 0, integer_digits);
    *p++ = '.';
    if (total > integer_digits) {
        p = put_repeated(p, '0', -point);
        p = put_digits(p, digits, integer_digits, total);
    }
    *p = '\0';
    return true;
}

// The decimals that gparse_dblmxas uses: width - 3, less one for each
// integer digit after the first.
long long most_decimals(double x, long long width)
{
    long long decimals = width - 3;
    if (x > 1e-23) {
        const double magnitude = std::log10(x);
        if (magnitude >= 0) {
            decimals -= static_cast<long long>(std::floor(magnitude));
        }
    }
    return decimals;
}

unsigned int finish(bool ok, char* out)
{
    if (!ok) {
        out[0] = '\0';
    }
    return ok ? 1 : 0;
}

unsigned int to_text(double v, int width, int decimals, const Precision& precision, bool fixed_only, char* out)
{
    if (!out) {
        return 0;
    }
    return finish(format_fixed(v, width, decimals, precision, fixed_only, out), out);
}

unsigned int to_text_most_decimals(double v, int width, const Precision& precision, char* out)
{
    if (!out) {
        return 0;
    }
    if (!std::isfinite(v)) {
        return finish(false, out);
    }
    return finish(format_fixed(v, width, most_decimals(std::fabs(v), width), precision, false, out), out);
}

} // namespace

extern "C" {

unsigned int gparse_lngtoas(int value, int width, char* out)
{
    if (!out) {
        return 0;
    }
    char* p = out;
    unsigned int magnitude = static_cast<unsigned int>(value);
    if (value < 0) {
        *p++ = '-';
        magnitude = 0u - magnitude; // 2147483648 for the most negative value
    }
    char reversed[10];
    long long count = 0;
    do {
        reversed[count++] = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if ((p - out) + count > width) {
        // A written "-" becomes the terminator, so out reads "". A
        // non-negative value leaves out as it was: the historical code
        // cleared the byte before out, which lies outside the caller's
        // buffer when out is its start, so that write is not made.
        if (p > out) {
            p[-1] = '\0';
        }
        return 0;
    }
    while (count > 0) {
        *p++ = reversed[--count];
    }
    *p = '\0';
    return 1;
}

unsigned int gparse_inttoas(int value, int width, char* out)
{
    if (!out) {
        return 0;
    }
    return finish(gparse_lngtoas(value, width, out) != 0, out);
}

unsigned int gparse_dbltoas(double value, int width, int decimals, char* out)
{
    return to_text(value, width, decimals, kDouble, false, out);
}

unsigned int gparse_flttoas(float value, int width, int decimals, char* out)
{
    return to_text(value, width, decimals, kFloat, false, out);
}

unsigned int gparse_dblmxas(double value, int width, char* out)
{
    return to_text_most_decimals(value, width, kDouble, out);
}

unsigned int gparse_fltmxas(float value, int width, char* out)
{
    return to_text_most_decimals(value, width, kFloat, out);
}

unsigned int gparse_dblxxas(double value, int width, int decimals, char* out)
{
    return to_text(value, width, decimals, kDouble, true, out);
}

unsigned int gparse_fltxxas(float value, int width, int decimals, char* out)
{
    return to_text(value, width, decimals, kFloat, true, out);
}

void gparse_cnvt_double_e_format(double value, double* mantissa, double* exponent)
{
    double m = 10.0;
    double e = -99.0;
    if (!std::isfinite(value)) {
        m = e = std::nan("");
    } else if (std::fabs(value) > 1e-99) {
        const double magnitude = std::log10(std::fabs(value));
        double fraction = std::fmod(magnitude, 1.0);
        e = std::floor(magnitude - fraction + 0.1);
        if (fraction < 0) {
            fraction += 1.0;
            e -= 1.0;
        }
        m = std::pow(10.0, fraction);
    }
    // Zero and values up to 1e-99 report the fixed pair mantissa 10, exponent
    // -99 (10 x 10^-99, not a normalised mantissa); it is kept as callers
    // have always received it.
    if (value < 0) {
        m = -m;
    }
    if (mantissa) {
        *mantissa = m;
    }
    if (exponent) {
        *exponent = e;
    }
}

} // extern "C"
