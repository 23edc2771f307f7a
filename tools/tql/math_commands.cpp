// tql math: evaluates one gmath_ function on the command line and prints
// its result with the math-error state after it.
#include "commands.h"

#include <tql70/gmath.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace tql_tool {

namespace {

using Runner = std::string (*)(const double* a);

std::string show(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string show(float value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

std::string show(int value)
{
    return std::to_string(value);
}

template <typename T>
std::string show(T re, T im)
{
    return show(re) + " " + show(im);
}

// Calls a member of each shape with its arguments taken from `a`.
template <typename R, R (*F)(double)>
std::string real_d(const double* a) { return show(F(a[0])); }
template <double (*F)(double, double)>
std::string real_dd(const double* a) { return show(F(a[0], a[1])); }
template <float (*F)(float)>
std::string real_f(const double* a) { return show(F(static_cast<float>(a[0]))); }
template <float (*F)(float, float)>
std::string real_ff(const double* a) { return show(F(static_cast<float>(a[0]), static_cast<float>(a[1]))); }
std::string eeiabs(const double* a) { return show(gmath_eeiabs(static_cast<int>(a[0]))); }
std::string eefloat(const double* a) { return show(gmath_eefloat(static_cast<int>(a[0]))); }

template <void (*F)(double, double, double*, double*)>
std::string complex_d(const double* a)
{
    double re, im;
    F(a[0], a[1], &re, &im);
    return show(re, im);
}
template <void (*F)(double, double, double, double, double*, double*)>
std::string complex_dd(const double* a)
{
    double re, im;
    F(a[0], a[1], a[2], a[3], &re, &im);
    return show(re, im);
}
template <void (*F)(float, float, float*, float*)>
std::string complex_f(const double* a)
{
    float re, im;
    F(static_cast<float>(a[0]), static_cast<float>(a[1]), &re, &im);
    return show(re, im);
}
template <void (*F)(float, float, float, float, float*, float*)>
std::string complex_ff(const double* a)
{
    float re, im;
    F(static_cast<float>(a[0]), static_cast<float>(a[1]), static_cast<float>(a[2]), static_cast<float>(a[3]), &re,
      &im);
    return show(re, im);
}

struct MathFunction {
    const char* name;
    int arity;
    Runner run;
};

#define TQL_COMPLEX(suffix)                                                         \
    {"cdno" #suffix, 2, complex_d<gmath_cdno##suffix>},                             \
    {"csno" #suffix, 2, complex_f<gmath_csno##suffix>}
#define TQL_COMPLEX2(suffix)                                                        \
    {"cdno" #suffix, 4, complex_dd<gmath_cdno##suffix>},                            \
    {"csno" #suffix, 4, complex_ff<gmath_csno##suffix>}
#define TQL_SINGLE(suffix) {"sno" #suffix, 1, real_f<gmath_sno##suffix>}

const MathFunction kFunctions[] = {
    TQL_COMPLEX2(add), TQL_COMPLEX2(sub), TQL_COMPLEX2(mlt), TQL_COMPLEX2(div), TQL_COMPLEX2(pwr),
    TQL_COMPLEX(sqr), TQL_COMPLEX(sqrt), TQL_COMPLEX(10x), TQL_COMPLEX(exp), TQL_COMPLEX(log),
    TQL_COMPLEX(log10), TQL_COMPLEX(sin), TQL_COMPLEX(cos), TQL_COMPLEX(tan), TQL_COMPLEX(sinh),
    TQL_COMPLEX(cosh), TQL_COMPLEX(tanh), TQL_COMPLEX(asin), TQL_COMPLEX(acos), TQL_COMPLEX(atan),
    TQL_COMPLEX(asinh), TQL_COMPLEX(acosh), TQL_COMPLEX(atanh),
    TQL_SINGLE(10x), TQL_SINGLE(acos), TQL_SINGLE(acosh), TQL_SINGLE(asin), TQL_SINGLE(asinh),
    TQL_SINGLE(atan), TQL_SINGLE(atanh), TQL_SINGLE(cos), TQL_SINGLE(cosh), TQL_SINGLE(exp),
    TQL_SINGLE(log), TQL_SINGLE(log10), TQL_SINGLE(sin), TQL_SINGLE(sinh), TQL_SINGLE(sqr),
    TQL_SINGLE(sqrt), TQL_SINGLE(tan), TQL_SINGLE(tanh),
    {"snoatan2", 2, real_ff<gmath_snoatan2>}, {"snopwr", 2, real_ff<gmath_snopwr>},
    {"magxy", 2, real_ff<gmath_magxy>}, {"dnoatan2", 2, real_dd<gmath_dnoatan2>},
    {"dnoacosh", 1, real_d<double, gmath_dnoacosh>}, {"dnoasinh", 1, real_d<double, gmath_dnoasinh>},
    {"dnoatanh", 1, real_d<double, gmath_dnoatanh>}, {"dnoerf", 1, real_d<double, gmath_dnoerf>},
    {"dnoerfc", 1, real_d<double, gmath_dnoerfc>}, {"eeround", 1, real_d<int, gmath_eeround>},
    {"eelround", 1, real_d<int, gmath_eelround>}, {"eedround", 1, real_d<double, gmath_eedround>},
    {"eetrunc", 1, real_d<int, gmath_eetrunc>}, {"eedtrunc", 1, real_d<int, gmath_eedtrunc>},
    {"eefabs", 1, real_f<gmath_eefabs>}, {"eeiabs", 1, eeiabs}, {"eefloat", 1, eefloat},
};

#undef TQL_COMPLEX
#undef TQL_COMPLEX2
#undef TQL_SINGLE

const Command& math_command()
{
    for (const Command& command : commands()) {
        if (std::string(command.name) == "math") {
            return command;
        }
    }
    std::abort();
}

// The whole text as a number (inf and nan included); false otherwise.
bool parse_number(const std::string& text, double& value)
{
    char* end = nullptr;
    errno = 0;
    value = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && errno != ERANGE;
}

} // namespace

int run_math(const Args& args)
{
    if (args.empty()) {
        return usage_error(math_command(), "math takes a function name and its arguments");
    }
    std::string name = args[0];
    if (name.compare(0, 6, "gmath_") == 0) {
        name.erase(0, 6);
    }
    for (const MathFunction& function : kFunctions) {
        if (name != function.name) {
            continue;
        }
        if (static_cast<int>(args.size()) - 1 != function.arity) {
            return usage_error(math_command(), name + " takes " + std::to_string(function.arity) + " argument" +
                                                   (function.arity == 1 ? "" : "s"));
        }
        double values[4];
        for (int i = 0; i < function.arity; ++i) {
            if (!parse_number(args[static_cast<size_t>(i) + 1], values[i])) {
                return usage_error(math_command(), "'" + args[static_cast<size_t>(i) + 1] + "' is not a number");
            }
        }
        gmath_clr_ematherr();
        const std::string result = function.run(values);
        std::printf("%s\nematherr %d\n", result.c_str(), gmath_ematherr());
        return 0;
    }
    return usage_error(math_command(), "unknown math function '" + args[0] + "'");
}

} // namespace tql_tool
