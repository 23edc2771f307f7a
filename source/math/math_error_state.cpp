// The math error and the user error pointer, and gmath_quiet_nan.
#include "math/math_error_state.h"

#include "platform/fp_environment.h"

#include <tql70/gmath.h>

#include <limits>

namespace {
int math_error = 0;
int* user_error = nullptr;
} // namespace

namespace tql::math {

void raise_math_error()
{
    math_error = 1;
    if (user_error) {
        *user_error = 1;
    }
}

} // namespace tql::math

int gmath_ematherr()
{
    return math_error;
}

void gmath_clr_ematherr()
{
    math_error = 0;
    if (user_error) {
        *user_error = 0;
    }
}

int* gmath_set_usererr(int* pointer)
{
    user_error = pointer;
    return user_error;
}

double gmath_quiet_nan()
{
    tql::platform::mask_all_fp_exceptions();
    return std::numeric_limits<double>::quiet_NaN();
}
