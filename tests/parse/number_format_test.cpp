// Integer and floating formatting, the C library digit strings they are
// built on, the mantissa and exponent split, and the zero-stripping rewrites.
// Every formatter runs on a buffer of canary bytes, so each case also shows
// that nothing was written past the terminator.
#include <tql70/gparse.h>

#include <gtest/gtest.h>

#include <stdlib.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>

namespace {

using Call = std::function<unsigned int(char* out)>;

struct Case { const char* label; Call call; unsigned int status; std::string text; };

void check(const Case& c)
{
    SCOPED_TRACE(c.label);
    char buffer[512];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(c.call(buffer), c.status);
    const size_t length = strnlen(buffer, sizeof buffer - 1);
    EXPECT_EQ(std::string(buffer, length), c.text);
    EXPECT_EQ(buffer[length + 1], '#') << "wrote past the terminator";
}

Call dbl(double v, int w, int d) { return [=](char* o) { return gparse_dbltoas(v, w, d, o); }; }
Call flt(float v, int w, int d) { return [=](char* o) { return gparse_flttoas(v, w, d, o); }; }
Call dmx(double v, int w) { return [=](char* o) { return gparse_dblmxas(v, w, o); }; }
Call fmx(float v, int w) { return [=](char* o) { return gparse_fltmxas(v, w, o); }; }
Call dxx(double v, int w, int d) { return [=](char* o) { return gparse_dblxxas(v, w, d, o); }; }
Call fxx(float v, int w, int d) { return [=](char* o) { return gparse_fltxxas(v, w, d, o); }; }
Call int_(int v, int w) { return [=](char* o) { return gparse_inttoas(v, w, o); }; }

} // namespace

TEST(NumberFormatInteger, WidthLimitAndFailureWriteRules)
{
    check({"most negative", int_(INT_MIN, 11), 1, "-2147483648"});
    check({"most negative in 10", int_(INT_MIN, 10), 0, ""});
    char buffer[8];
    std::memcpy(buffer, "abcdefg", 8);
    EXPECT_EQ(gparse_lngtoas(1234, 3, buffer + 1), 0u);
    EXPECT_EQ(std::string(buffer, 8), std::string("abcdefg\0", 8)) << "non-negative: nothing written";
    std::memcpy(buffer, "abcdefg", 8);
    EXPECT_EQ(gparse_lngtoas(-456, 3, buffer + 1), 0u);
    EXPECT_EQ(std::string(buffer, 8), std::string("a\0cdefg\0", 8)) << "negative: the sign becomes the NUL";
    std::memcpy(buffer, "abcdefg", 8);
    EXPECT_EQ(gparse_inttoas(1234, 3, buffer + 1), 0u);
    EXPECT_EQ(std::string(buffer, 8), std::string("a\0cdefg\0", 8));
}

TEST(NumberFormatFixed, DoubleWithExponentFallback)
{
    const Case cases[] = {
        {"zero, width 0", dbl(0.0, 0, 0), 0, ""}, {"zero, 0 decimals", dbl(0.0, 10, 0), 1, "0"},
        {"7 bare point", dbl(7.0, 10, 0), 1, "7."}, {"negative fit", dbl(-99999999.0, 10, 0), 1, "-99999999."},
        {"one over", dbl(99999999.6, 10, 0), 1, "1.00e+008"},
        {"below 10^-d", dbl(0.004, 10, 2), 1, "4.00e-003"}, {"1e-23 is zero", dbl(1e-23, 10, 2), 1, "     0.00"},
        {"2e-23 is not", dbl(2e-23, 10, 2), 1, "2.00e-023"},
        {"9.995 is below", dbl(9.995, 10, 2), 1, "9.99"}, {"carry", dbl(9.9951, 10, 2), 1, "10.00"},
        {"exponent carry", dbl(9.9999, 10, -1), 1, "1.00e+001"},
        {"negative zero", dbl(-0.0, 12, -1), 1, "0.0000e+000"}, {"denormal", dbl(5e-324, 12, -1), 1, "4.9407e-324"},
        {"width 8 too narrow", dbl(123.456, 8, -1), 0, ""}, {"width 9", dbl(123.456, 9, -1), 1, "1.2e+002"},
        {"past 17 decimals", dbl(0.1, 40, 25), 1, "0.1000000000000000100000000"}, {"NaN", dbl(NAN, 20, 2), 0, ""},
    };
    for (const Case& c : cases) check(c);
}

TEST(NumberFormatFixed, FloatMaxPrecisionAndFixedOnly)
{
    const Case cases[] = {
        {"float width 7", flt(123.456f, 7, -1), 0, ""}, {"float width 8", flt(123.456f, 8, -1), 1, "1.2e+02"},
        {"float zero", flt(1e-30f, 12, 2), 1, "       0.00"}, {"mx carry over", dmx(9.9999999999, 10), 1, "1.00e+001"},
        {"mx float", fmx(123.456f, 10), 1, "123.45600"},
        {"xx too wide", dxx(12345.0, 8, 2), 0, ""}, {"xx sign free", dxx(-1234.0, 8, 2), 1, "-1234.00"},
        {"xx carry too wide", dxx(999.996, 7, 2), 0, ""}, {"xx small is zero", dxx(0.004, 10, 2), 1, "     0.00"},
        {"xx no exponent", dxx(1e300, 10, 2), 0, ""}, {"xx d < 0", dxx(123.0, 10, -1), 1, "1.23e+002"},
        {"xx float d < 0", fxx(123.0f, 10, -1), 1, "1.230e+02"},
    };
    for (const Case& c : cases) check(c);
}

TEST(NumberFormatEFormat, MantissaAndPowerOfTen)
{
    const struct { double value, mantissa, exponent; } cases[] = {
        {0.0, 10.0, -99}, {-1e-100, -10.0, -99}, {1.1e-99, 1.1, -99}, {0.002, 2.0, -3}, {-50, -5.0, 1},
        {1000, 1.0, 3}, {9.99, 9.99, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        double mantissa = 0;
        double exponent = 0;
        gparse_cnvt_double_e_format(c.value, &mantissa, &exponent);
        EXPECT_NEAR(mantissa, c.mantissa, 1e-12);
        EXPECT_EQ(exponent, c.exponent);
    }
    double mantissa = 0;
    gparse_cnvt_double_e_format(NAN, &mantissa, nullptr);
    EXPECT_TRUE(std::isnan(mantissa));
}

TEST(NumberStrip, RewritesNumberTexts)
{
    using Rewrite = unsigned int (*)(const char*, char*);
    const Rewrite zeros = gparse_cnvt_string_stripped_zeros;
    const Rewrite from_e = gparse_cnvt_from_e_to_string;
    const Rewrite both = gparse_cnvt_string_string_stripped;
    const struct { Rewrite rewrite; const char* text; unsigned int status; const char* expected; } cases[] = {
        {zeros, "007.500", 1, "7.5"}, {zeros, "-1.50E+003", 1, "-1.5e3"}, {zeros, "100", 1, "100"},
        {zeros, "-0.000", 1, "0"}, {zeros, "  0.050 ", 1, "0.05"}, {from_e, " 1e2", 0, " "}, {zeros, ".50", 1, "0.5"}, {zeros, "1.0e0", 1, "1"}, {zeros, "1e", 0, "1e"},
        {from_e, "1.50e1", 1, "15.0"}, {from_e, "-5E-3", 1, "-0.005"}, {from_e, "0012.5e-1", 1, "1.25"},
        {from_e, "+5", 1, "+5"}, {from_e, ".5e2", 0, " "}, {from_e, "1e401", 0, " "},
        {both, "1.500e+001", 1, "15"}, {both, "abc", 0, " "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        char out[64];
        EXPECT_EQ(c.rewrite(c.text, out), c.status);
        EXPECT_STREQ(out, c.expected);
    }
    char in_place[32] = "1.5e1";
    EXPECT_EQ(gparse_cnvt_from_e_to_string(in_place, in_place), 1u);
    EXPECT_STREQ(in_place, "15");
    char far[420];
    ASSERT_EQ(gparse_cnvt_from_e_to_string("-1e-400", far), 1u);
    EXPECT_EQ(std::string(far), "-0." + std::string(399, '0') + "1");
}

TEST(NumberStrip, DoubleToStrippedTextInOneBuffer)
{
    EXPECT_STREQ(gparse_cnvt_double_string_stripped(123.456, 10, 4), "123.456");
    EXPECT_STREQ(gparse_cnvt_double_string_stripped(123456789012.0, 12, 2), "1.2346e11");
    EXPECT_STREQ(gparse_cnvt_double_string_stripped(123.456, 8, -1), "") << "formatting failed";
    // Decimals capped at 30 keep 0.005 in fixed notation (40 would not).
    EXPECT_STREQ(gparse_cnvt_double_string_stripped(0.005, 30, 40), "0.005");
    // Width capped at 30: 2^100 has 31 digits and goes to exponent notation.
    const std::string capped = gparse_cnvt_double_string_stripped(std::ldexp(1.0, 100), 60, 0);
    EXPECT_EQ(capped.substr(0, 6), "1.2676");
    EXPECT_EQ(capped.substr(capped.size() - 3), "e30");
    EXPECT_EQ(gparse_cnvt_double_string_stripped(1.0, 10, 1), gparse_cnvt_double_string_stripped(2.0, 10, 1));
}
