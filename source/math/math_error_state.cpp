// The math error and the user error pointer, and gmath_quiet_nan.
#include "math/math_error_state.h"

#include "platform/fp_environment.h"

#include <tql70/gmath.h>

#include <limits>

namespace tql::math {
MathErrorState math_error_state{0, nullptr};
} // namespace tql::math

using tql::math::math_error_state;

int gmath_ematherr()
{
    return math_error_state.error;
}

void gmath_clr_ematherr()
{
    math_error_state.error = 0;
    if (math_error_state.user_error) {
        *math_error_state.user_error = 0;
    }
}

int* gmath_set_usererr(int* pointer)
{
    math_error_state.user_error = pointer;
    return math_error_state.user_error;
}

double gmath_quiet_nan()
{
    tql::platform::mask_all_fp_exceptions();
    return std::numeric_limits<double>::quiet_NaN();
}
