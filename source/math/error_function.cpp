// The error function and its complement, by pieces: an odd series below
// 0.84375, a rational function of |x| - 1 up to 1.25, and above that an
// exponential of a rational function of 1/x^2 (the asymptotic form
// e^(-x^2) / (x sqrt(pi)) corrected). The tables were fitted to the
// function to about 1e-17 on their intervals.
#include "platform/fp_environment.h"

#include <tql70/gmath.h>

#include <cmath>
#include <cstdint>
#include <cstring>

using tql::platform::in_default_fp;

namespace {

template <size_t N>
double horner(const double (&c)[N], double t)
{
    double r = c[N - 1];
    for (size_t i = N - 1; i-- > 0;) {
        r = r * t + c[i];
    }
    return r;
}

// x + x * kSeries(x^2) is erf(x) below 0.84375; the first coefficient is
// 2/sqrt(pi) - 1.
const double kSeries[] = {0.12837916709551256,    -0.3761263890318341,     0.1128379167093567,
                          -0.026866170640844338,  0.005223977576966219,    -0.0008548323822001639,
                          0.00012055200925305051, -1.4922141007625297e-5,  1.6401861617642544e-6,
                          -1.571599331700515e-7,  1.0730875852136215e-8};

// From 0.84375 to 1.25: erf(x) = kErx + kNear1P(s) / kNear1Q(s), s = |x| - 1.
constexpr double kErx = 0.8450629115104675;
const double kNear1P[] = {-0.0023621185607526594, 0.41485591249144566, -0.3721702298022773, 0.3180629840988404,
                          -0.11073204883025871,   0.03538465920322306, -0.002157098360088707};
const double kNear1Q[] = {1.0, 0.10650817165967236, 0.5398005821372067, 0.0715924574759313,
                          0.12589363764977232, 0.013574509943593552, 0.011953293678275032};

// From 1.25: erfc(|x|) = exp(-x^2 - kTailC - z/2 + R(z)/S(z)) / |x|, z = 1/x^2;
// one pair of tables below 2, one from 2, and a polynomial from 4 (erfc).
constexpr double kTailC = 0.5625;
const double kTailR1[] = {-0.009864973118640166, -0.14907324746100206, -0.14854612740662337, 6.18278197949419,
                          29.525655146889452,    45.65249049982306,    24.541283196681967,   3.4866449052370836};
const double kTailS1[] = {1.0,                15.111600167275254, 78.40798200369719,
                          174.50410923355707, 170.15777284779207, 65.86134039204047,
                          7.340059017738471,  -0.009944360886489761};
const double kTailR2[] = {-0.009864942925159562, -0.2607098731788677, -1.8367060074593757, 4.582663698676835,
                          100.6814506106222,     378.0175495207347,   488.5574523043192,   172.80851891808067};
const double kTailS2[] = {1.0,                26.427915019698684, 249.54082493572824, 1053.5405459426645,
                          2032.8666857087921, 1621.7262078632416, 384.292257501243,   -2.7096720598225748};
const double kTailP3[] = {-0.009864942924701857, 2.6127504599597065e-12, 0.6249999985872692, -1.541666282083965,
                          5.515563850791378,     -25.500049899317673,    143.33877414808907, -932.9878836256164,
                          6559.500527753476,     -44527.169144973675,    251208.3940205963,  -974636.7685790786,
                          1860472.478736466};

double series(double x)
{
    return x * horner(kSeries, x * x);
}

double near_one(double ax)
{
    const double s = ax - 1;
    return horner(kNear1P, s) / horner(kNear1Q, s);
}

// |x| with the low 27 bits of its representation cleared: its square is
// exact, so -head^2 - kTailC is too.
double head(double ax)
{
    std::uint64_t bits;
    std::memcpy(&bits, &ax, sizeof bits);
    bits &= ~((std::uint64_t{1} << 27) - 1);
    double h;
    std::memcpy(&h, &bits, sizeof h);
    return h;
}

// erfc(|x|) * |x| for |x| from 1.25: the exponential of -h^2 - kTailC +
// (h - |x|)(h + |x|) - z/2 + R/S, taken as two factors so that the large
// exact part and the small corrections are not rounded together.
double tail_exponential(double ax, bool far_table)
{
    const double z = 1 / (ax * ax);
    double rs;
    if (ax < 2) {
        rs = horner(kTailR1, z) / horner(kTailS1, z);
    } else if (ax < 4 || !far_table) {
        rs = horner(kTailR2, z) / horner(kTailS2, z);
    } else {
        rs = horner(kTailP3, z);
    }
    const double h = head(ax);
    return std::exp(-h * h - kTailC) * std::exp((h - ax) * (h + ax) + rs - 0.5 * z);
}

double erf_work(double x)
{
    if (std::isnan(x)) {
        return x;
    }
    const double ax = std::fabs(x);
    if (ax < 0.84375) {
        if (ax < 1e-308) {
            return (x * 1.0270333367641005 + 8 * x) * 0.125;  // 8x keeps a subnormal's bits
        }
        if (ax < 3.7e-9) {
            return x + kSeries[0] * x;
        }
        return x + series(x);
    }
    if (ax < 1.25) {
        const double r = kErx + near_one(ax);
        return x > 0 ? r : -r;
    }
    if (ax >= 6) {
        return x > 0 ? 1.0 : -1.0;
    }
    const double e = tail_exponential(ax, false) / ax;
    return x > 0 ? 1 - e : e - 1;
}

double erfc_work(double x)
{
    if (std::isnan(x)) {
        return x;
    }
    const double ax = std::fabs(x);
    if (ax < 0.84375) {
        const double y = series(x);
        if (ax < 0.0625) {
            return 1 - (x + y);
        }
        return 0.5 - (y + (x - 0.5));
    }
    if (ax < 1.25) {
        const double r = near_one(ax);
        return x > 0 ? 0.15493708848953247 - r : 1 + (kErx + r);  // 0.154... is 1 - kErx
    }
    if (ax < 28) {
        const double e = tail_exponential(ax, true) / x;
        return x > 0 ? e : 2 + e;
    }
    return x > 0 ? 0.0 : 2.0;
}

} // namespace

double gmath_dnoerf(double x) { return in_default_fp(erf_work, x); }
double gmath_dnoerfc(double x) { return in_default_fp(erfc_work, x); }
