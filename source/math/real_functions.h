// Real building blocks that the complex members share with the exported
// real functions.
#ifndef TQL70_SOURCE_MATH_REAL_FUNCTIONS_H
#define TQL70_SOURCE_MATH_REAL_FUNCTIONS_H

namespace tql::math {

// The argument of x + iy with the fixed answers on the axes.
double axis_atan2(double y, double x);
// The single-precision logarithm and arc tangent on double arguments: the
// domain rules and the clamp of gmath_snolog and gmath_snoatan2, the result
// rounded to float.
double single_log(double x);
double single_atan2(double y, double x);

} // namespace tql::math

#endif
