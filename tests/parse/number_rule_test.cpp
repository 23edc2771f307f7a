// The number, integer and float rules, and their independence from the
// process locale.
#include <tql70/gparse.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct RuleCase {
    const char* text;
    unsigned int status;
    double value;
};

uint32_t bits_of(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

} // namespace

TEST(NumberRuleDouble, AcceptsOnlyWholeDecimalTexts)
{
    const RuleCase cases[] = {
        {"5.", 1, 5.0}, {"-.5e-1", 1, -0.05}, {"1E+05", 1, 1e5}, {"1e400", 1, HUGE_VAL},
        // rejected, with the value of the decimal number the text starts with
        {"", 0, 0.0}, {" 7", 0, 7.0}, {"7 ", 0, 7.0}, {"1e+", 0, 1.0}, {".", 0, 0.0}, {"1,5", 0, 1.0},
        // not numbers, yet the value is what strtod reads
        {"0x10", 0, 16.0}, {"0x1p3", 0, 8.0}, {"inf", 0, HUGE_VAL}, {"-Infinity", 0, -HUGE_VAL}, {"nan", 0, NAN},
    };
    for (const RuleCase& c : cases) {
        SCOPED_TRACE(c.text);
        double value = -1.0;
        EXPECT_EQ(gparse_astodbl(c.text, &value), c.status);
        if (std::isnan(c.value)) {
            EXPECT_TRUE(std::isnan(value));
        } else {
            EXPECT_EQ(value, c.value);
        }
    }
    double value = -1.0;
    EXPECT_EQ(gparse_astodbl(nullptr, &value), 0u);
    EXPECT_EQ(value, 0.0);
    EXPECT_EQ(gparse_astodbl("2.5", nullptr), 1u);
}

TEST(NumberRuleInteger, WholeValuesWithinTheSymmetricRange)
{
    const struct {
        const char* text;
        unsigned int status;
        int value;
    } cases[] = {
        {"12.5", 0, 0}, {"3e2", 1, 300}, {" 7", 0, 0}, {"1.5e1", 1, 15}, {"2147483647", 1, 2147483647},
        {"2147483648", 0, 0}, {"-2147483647", 1, -2147483647}, {"-2147483648", 0, 0},
        {"2147483647.5", 0, 0}, {"1e400", 0, 0}, {nullptr, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text ? c.text : "(null)");
        int value = 99;
        EXPECT_EQ(gparse_astoint(c.text, &value), c.status);
        EXPECT_EQ(value, c.value);
        value = 99;
        EXPECT_EQ(gparse_astolng(c.text, &value), c.status);
        EXPECT_EQ(value, c.value);
    }
}

TEST(NumberRuleFloat, ClampsBeyondTheFloatLimit)
{
    const struct {
        const char* text;
        unsigned int status;
        uint32_t bits;
    } cases[] = {
        {"1e39", 0, 0x7efffff8u},           {"-1e39", 0, 0xfefffff8u},
        {"1.70142e38", 0, 0x7efffff8u},     // below FLT_MAX, above the limit
        {"-1.701411e38", 1, bits_of(-1.701411e38f)}, {"0.1", 1, bits_of(0.1f)},
        {"abc", 0, 0u},                     {"1e-50", 1, 0u},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        float value = 99.0f;
        EXPECT_EQ(gparse_astoflt(c.text, &value), c.status);
        EXPECT_EQ(bits_of(value), c.bits);
    }
}

// A locale whose decimal point is a comma does not change what a number
// text reads as. The locale is compiled with localedef into a temporary directory
// from the system's locale sources, so no installed locale is needed.
TEST(NumberRuleLocale, ADecimalCommaChangesNothing)
{
    tql_test::TempDir dir;
    tql_test::ScopedEnv locpath("LOCPATH", dir.path());
    const std::string command = "localedef -c -i de_DE -f UTF-8 '" + dir.path() + "/de_DE.UTF-8' >/dev/null 2>&1";
    (void)std::system(command.c_str()); // warnings give a non-zero status; setlocale tells whether it worked
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8") || std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
        std::setlocale(LC_ALL, "C");
        GTEST_SKIP() << "no locale with a decimal comma could be made with localedef";
    }
    double value = 0.0;
    const unsigned int status = gparse_astodbl("1.5", &value);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(status, 1u);
    EXPECT_EQ(value, 1.5);
}
