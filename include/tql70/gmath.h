/* Numerics: complex and real functions in double and single precision that
 * never hand back an infinity, the shared math-error state, saturating
 * rounding and truncation, and the error function pair.
 *
 * Conventions of the family:
 * - Clamp: a result part above the precision's largest magnitude becomes
 *   that magnitude (below its negative, the negative); a non-zero part
 *   whose magnitude is below the smallest kept magnitude becomes 0. Double:
 *   1.7976931348623157e308 and 2.2250738585072014e-308; single: 1e38 and
 *   1e-37 (round decimal bounds, not the float type's own limits).
 * - Domain error: the math error becomes 1 (and 1 is stored through the
 *   user error pointer when one is set); the result is 0 (both parts).
 * - Complex values are passed as two reals, real part first; results are
 *   written through two pointers, real part first. A null result pointer
 *   is skipped (that part is not written).
 * - The results do not depend on the caller's floating-point environment:
 *   the rounding mode and the enabled exception traps that the caller set
 *   are kept, never trap inside the library, and do not change a result.
 *   gmath_quiet_nan is the one function that changes the environment.
 * - The math-error state is unguarded module state: one computing thread
 *   at a time. */
#ifndef TQL70_GMATH_H
#define TQL70_GMATH_H

#include "export.h"

TQL70_BEGIN_DECLS

/* ---- the math-error state --------------------------------------------- */

/* 1 when a member met a domain error since the last clear, else 0. */
TQL70_API int gmath_ematherr(void);
/* Sets the math error to 0, and stores 0 through the user error pointer
 * when one is set. */
TQL70_API void gmath_clr_ematherr(void);
/* Sets the user error pointer (null: none); returns it. While it is set,
 * every domain error stores 1 through it and every clear stores 0. The int
 * it points to must live until the pointer is replaced. */
TQL70_API int* gmath_set_usererr(int* user_error);
/* Masks every floating-point exception of the calling thread (no trap on
 * any), then returns a quiet NaN. */
TQL70_API double gmath_quiet_nan(void);

/* ---- real helpers of the complex members -------------------------------- */

/* The modulus of x + iy: 0 when both are 0, else the hypotenuse clamped to
 * the single bounds. */
TQL70_API float gmath_magxy(float x, float y);
/* The argument of x + iy with fixed answers on the axes: x = 0 gives pi/2,
 * -pi/2 or 0 by the sign of y; y = 0 gives 0 for x > 0, pi for x < 0;
 * otherwise atan2(y, x). */
TQL70_API double gmath_dnoatan2(double y, double x);

/* ---- complex members, double precision ---------------------------------- */
/* One operand: (re, im, out_re, out_im); two operands: (re1, im1, re2, im2,
 * out_re, out_im). Each writes one double through each non-null pointer. */

/* a + b and a - b, part by part, not clamped. */
TQL70_API void gmath_cdnoadd(double re1, double im1, double re2, double im2, double* out_re, double* out_im);
TQL70_API void gmath_cdnosub(double re1, double im1, double re2, double im2, double* out_re, double* out_im);
/* a * b, both parts clamped. */
TQL70_API void gmath_cdnomlt(double re1, double im1, double re2, double im2, double* out_re, double* out_im);
/* a / b; a domain error when b is 0 or its squared modulus is too small to
 * be kept. */
TQL70_API void gmath_cdnodiv(double re1, double im1, double re2, double im2, double* out_re, double* out_im);
/* a raised to the power b; a base of 0 gives 0 (even to the power 0) and no
 * error. */
TQL70_API void gmath_cdnopwr(double re1, double im1, double re2, double im2, double* out_re, double* out_im);
/* z to the power 2 and to the power 0.5, through gmath_cdnopwr. */
TQL70_API void gmath_cdnosqr(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnosqrt(double re, double im, double* out_re, double* out_im);
/* 10 to the power z, through gmath_cdnopwr. */
TQL70_API void gmath_cdno10x(double re, double im, double* out_re, double* out_im);
/* e to the power z; an overflowing exponential gives the largest magnitude. */
TQL70_API void gmath_cdnoexp(double re, double im, double* out_re, double* out_im);
/* Natural logarithm: (log |z|, gmath_dnoatan2(im, re)); a domain error at 0. */
TQL70_API void gmath_cdnolog(double re, double im, double* out_re, double* out_im);
/* Common logarithm: the natural one divided by 2.30258509 (the logarithm of
 * 10 cut to nine digits, kept: results differ from an exact common
 * logarithm in about the ninth digit). A domain error at 0. */
TQL70_API void gmath_cdnolog10(double re, double im, double* out_re, double* out_im);
/* Circular and hyperbolic functions, built from gmath_cdnoexp; tan and tanh
 * raise a domain error where their denominator is 0. */
TQL70_API void gmath_cdnosin(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnocos(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnotan(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnosinh(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnocosh(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnotanh(double re, double im, double* out_re, double* out_im);
/* Inverse circular and hyperbolic functions, built from the logarithm,
 * gmath_cdnopwr and gmath_cdnodiv; a domain error where a logarithm of 0 or
 * a division by 0 would occur (atan at +-i, atanh at +-1). */
TQL70_API void gmath_cdnoasin(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnoacos(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnoatan(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnoasinh(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnoacosh(double re, double im, double* out_re, double* out_im);
TQL70_API void gmath_cdnoatanh(double re, double im, double* out_re, double* out_im);

/* ---- complex members, single precision ---------------------------------- */
/* The same members on floats. They compute in double with the single
 * bounds: arguments are clamped to them after widening, results before
 * narrowing (so csnoadd and csnosub clamp too). The logarithm clamps the
 * modulus to the single bounds, so a modulus below 1e-37 is a domain error.
 * Each writes one float through each non-null pointer. */
TQL70_API void gmath_csnoadd(float re1, float im1, float re2, float im2, float* out_re, float* out_im);
TQL70_API void gmath_csnosub(float re1, float im1, float re2, float im2, float* out_re, float* out_im);
TQL70_API void gmath_csnomlt(float re1, float im1, float re2, float im2, float* out_re, float* out_im);
TQL70_API void gmath_csnodiv(float re1, float im1, float re2, float im2, float* out_re, float* out_im);
TQL70_API void gmath_csnopwr(float re1, float im1, float re2, float im2, float* out_re, float* out_im);
TQL70_API void gmath_csnosqr(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnosqrt(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csno10x(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnoexp(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnolog(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnolog10(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnosin(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnocos(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnotan(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnosinh(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnocosh(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnotanh(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnoasin(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnoacos(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnoatan(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnoasinh(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnoacosh(float re, float im, float* out_re, float* out_im);
TQL70_API void gmath_csnoatanh(float re, float im, float* out_re, float* out_im);

/* ---- rounding and conversion -------------------------------------------- */
/* Rounding adds 0.5 (at 0 or above) or subtracts 0.5, then truncates toward
 * zero, so halves round away from zero. Every saturating conversion gives
 * 2147483647 above that value and -2147483647 (not the smallest int) below
 * its negative. A NaN gives 0. None of them touches the math-error state. */
TQL70_API int gmath_eeround(double x);
TQL70_API int gmath_eelround(double x);
/* The rounded value, with the same limits, as a double. */
TQL70_API double gmath_eedround(double x);
/* Truncation toward zero, saturating. */
TQL70_API int gmath_eetrunc(double x);
TQL70_API int gmath_eedtrunc(double x);
TQL70_API float gmath_eefabs(float x);
/* |x|; the most negative int maps to itself. */
TQL70_API int gmath_eeiabs(int x);
/* x as a float, rounded to nearest. */
TQL70_API float gmath_eefloat(int x);

/* ---- real functions, single precision ------------------------------------ */
/* Computed in double, clamped to the single bounds. A domain error (result
 * 0) for a NaN argument and outside the domain: acos and asin beyond
 * [-1, 1]; acosh below 1; atanh at or beyond +-1; log and log10 at 0 or
 * below; sqrt below 0; sin, cos and tan of an infinity; pwr of a negative
 * base to a finite non-integral power or of 0 to a negative power.
 * gmath_snoatan2 follows the axis rules of gmath_dnoatan2. */
TQL70_API float gmath_sno10x(float x);
TQL70_API float gmath_snoacos(float x);
TQL70_API float gmath_snoacosh(float x);
TQL70_API float gmath_snoasin(float x);
TQL70_API float gmath_snoasinh(float x);
TQL70_API float gmath_snoatan(float x);
TQL70_API float gmath_snoatan2(float y, float x);
TQL70_API float gmath_snoatanh(float x);
TQL70_API float gmath_snocos(float x);
TQL70_API float gmath_snocosh(float x);
TQL70_API float gmath_snoexp(float x);
TQL70_API float gmath_snolog(float x);
TQL70_API float gmath_snolog10(float x);
TQL70_API float gmath_snopwr(float x, float y);
TQL70_API float gmath_snosin(float x);
TQL70_API float gmath_snosinh(float x);
TQL70_API float gmath_snosqr(float x);
TQL70_API float gmath_snosqrt(float x);
TQL70_API float gmath_snotan(float x);
TQL70_API float gmath_snotanh(float x);

/* ---- real functions, double precision ------------------------------------ */
/* log(sqrt(x*x - 1) + x) with x*x - 1 clamped to the double bounds; a domain
 * error below 1 and for a NaN. */
TQL70_API double gmath_dnoacosh(double x);
/* Clamped inverse hyperbolic sine; a domain error for a NaN. */
TQL70_API double gmath_dnoasinh(double x);
/* Clamped inverse hyperbolic tangent; a domain error at or beyond +-1 and
 * for a NaN. */
TQL70_API double gmath_dnoatanh(double x);
/* The error function and its complement, to double accuracy. A NaN comes
 * back unchanged; erf(+-inf) is +-1, erfc(+inf) 0 and erfc(-inf) 2. Their
 * results are not clamped. */
TQL70_API double gmath_dnoerf(double x);
TQL70_API double gmath_dnoerfc(double x);

TQL70_END_DECLS

#endif /* TQL70_GMATH_H */
