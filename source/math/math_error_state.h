// The math-error state shared by every gmath_ member, and the clamp of
// results to the bounds of their precision.
#ifndef TQL70_SOURCE_MATH_MATH_ERROR_STATE_H
#define TQL70_SOURCE_MATH_MATH_ERROR_STATE_H

#include <cfloat>
#include <cmath>

namespace tql::math {

// Records a domain error: the math error becomes 1, and 1 is stored through
// the user error pointer when one is set.
void raise_math_error();

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

} // namespace tql::math

#endif
