// The math-error state shared by every gmath_ member, the domain-error
// results, and the clamp of results to the bounds of their precision.
#ifndef TQL70_SOURCE_MATH_MATH_ERROR_STATE_H
#define TQL70_SOURCE_MATH_MATH_ERROR_STATE_H

#include <cfloat>
#include <cmath>

namespace tql::math {

// The process-wide math error and the user error pointer.
struct MathErrorState {
    int error;
    int* user_error;
};
extern MathErrorState math_error_state;

// Records a domain error: the math error becomes 1, and 1 is stored through
// the user error pointer when one is set.
inline void raise_math_error()
{
    math_error_state.error = 1;
    if (math_error_state.user_error) {
        *math_error_state.user_error = 1;
    }
}

// The results of a domain error in each precision.
inline float single_domain_error()
{
    raise_math_error();
    return 0.0f;
}

inline double double_domain_error()
{
    raise_math_error();
    return 0.0;
}

// The magnitudes a result may keep.
struct Bounds {
    double largest;
    double smallest;  // the smallest non-zero magnitude
};
constexpr Bounds kDoubleBounds{DBL_MAX, DBL_MIN};
// Round decimal values, not the float type's limits: both fit a float, so
// a clamped value narrows to a finite, normal float.
constexpr Bounds kSingleBounds{1e38, 1e-37};

// Saturates `value` at +-largest and flushes a non-zero magnitude below
// `smallest` to 0; a NaN passes unchanged.
inline double clamp(double value, const Bounds& bounds)
{
    const double magnitude = std::fabs(value);
    if (magnitude > bounds.largest) {
        return value > 0 ? bounds.largest : -bounds.largest;
    }
    if (magnitude < bounds.smallest && magnitude != 0) {
        return 0.0;
    }
    return value;
}

// A double result clamped to the single bounds and narrowed to float.
inline float single_result(double value)
{
    return static_cast<float>(clamp(value, kSingleBounds));
}

} // namespace tql::math

#endif
