// The math-error state with its user pointer, gmath_quiet_nan, and results
// that do not depend on the caller's floating-point environment.
#include "math_test_support.h"
#include "support/child_process.h"

#include <cfenv>
#include <cstdio>
#include <functional>
#include <vector>

TEST_F(MathTest, ErrorStateTransitionsReachTheUserPointer)
{
    int user = 7;
    EXPECT_EQ(gmath_set_usererr(&user), &user);
    float re = 0;
    struct Step { const char* what; std::function<void()> call; int error; int user; };
    const Step steps[] = {
        {"a good call leaves the user flag alone", [] { gmath_snolog(2); }, 0, 7},
        {"a domain error raises both", [] { gmath_snolog(0); }, 1, 1},
        {"a good call does not lower them", [&] { gmath_csnolog(1, 0, &re, nullptr); }, 1, 1},
        {"clearing lowers both", [] { gmath_clr_ematherr(); }, 0, 0},
        {"a complex domain error raises both", [&] { gmath_csnodiv(1, 1, 0, 0, &re, &re); }, 1, 1},
        {"without a user pointer only the state moves", [] { gmath_set_usererr(nullptr); gmath_clr_ematherr(); }, 0, 1},
        {"and a domain error leaves the old int alone", [] { gmath_dnoatanh(1); }, 1, 1},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        step.call();
        EXPECT_EQ(gmath_ematherr(), step.error);
        EXPECT_EQ(user, step.user);
    }
}

TEST_F(MathTest, QuietNanMasksEveryException)
{
    const tql_test::ChildResult child = tql_test::run_in_child([] {
        feenableexcept(FE_DIVBYZERO | FE_INVALID | FE_OVERFLOW);
        const double nan = gmath_quiet_nan();
        volatile double zero = 0;
        volatile double quotient = 1 / zero;  // would trap without the mask
        std::printf("%d %d %d\n", std::isnan(nan), fegetexcept(), std::isinf(quotient));
    });
    ASSERT_TRUE(child.exited) << "signal " << child.signal;
    EXPECT_EQ(child.out, "1 0 1\n");
}

// Each call's result in the default environment and under every trap and
// each rounding mode must be bit for bit the same, with no trap, and the
// caller's environment must come back as it was.
TEST_F(MathTest, ResultsIgnoreTrapsAndRoundingModes)
{
    const std::vector<std::function<double()>> calls = {
        [] { double re; gmath_cdnoexp(1000, 1, &re, nullptr); return re; },
        [] { float im; gmath_csnosqrt(-2, 0, nullptr, &im); return double(im); },
        [] { return double(gmath_snoexp(1000)); },
        [] { return gmath_dnoerf(0.3); },
        [] { return gmath_dnoacosh(1e300); },
        [] { return double(gmath_eeround(0.49999999999999994)); },
    };
    std::vector<double> expected;
    for (const auto& call : calls) expected.push_back(call());
    for (int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        SCOPED_TRACE(mode);
        const tql_test::ChildResult child = tql_test::run_in_child([&] {
            feenableexcept(FE_ALL_EXCEPT);
            std::fesetround(mode);
            for (size_t i = 0; i < calls.size(); ++i) if (!(calls[i]() == expected[i])) std::printf("call %zu differs\n", i);
            if (fegetexcept() != FE_ALL_EXCEPT || std::fegetround() != mode) std::printf("environment not restored\n");
        });
        ASSERT_TRUE(child.exited) << "signal " << child.signal;
        EXPECT_EQ(child.out, "");
    }
}
