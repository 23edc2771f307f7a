// The number formatters next to snprintf producing the same text: fixed
// notation ("%#.*f", which keeps the point of "123."), exponent notation
// ("%.*e" with the exponent widened to three digits) and integers ("%d").
// The values are made before the timed loops, and every pair is checked to
// give identical texts before it is timed.
#include <tql70/gparse.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 24;
constexpr int kDecimals = 6;
constexpr int kExponentWidth = 16; // 8 digits after the point
constexpr int kMostWidth = 18;     // at most 15 decimals, all of them exact

// Values that show in fixed notation in kWidth positions: magnitudes from
// 10^-3 to 10^12, both signs.
const std::vector<double>& fixed_values()
{
    static const std::vector<double> values = [] {
        std::mt19937_64 random(7);
        std::uniform_real_distribution<double> exponent(-3.0, 12.0);
        std::vector<double> v(4096);
        for (double& x : v) {
            x = std::pow(10.0, exponent(random)) * (random() % 2 ? -1 : 1);
        }
        return v;
    }();
    return values;
}

// Values beyond the fixed range of kExponentWidth, for exponent notation.
const std::vector<double>& exponent_values()
{
    static const std::vector<double> values = [] {
        std::mt19937_64 random(11);
        std::uniform_real_distribution<double> exponent(20.0, 300.0);
        std::vector<double> v(4096);
        for (double& x : v) {
            x = std::pow(10.0, exponent(random)) * (random() % 2 ? -1 : 1);
        }
        return v;
    }();
    return values;
}

const std::vector<int>& integer_values()
{
    static const std::vector<int> values = [] {
        std::mt19937 random(3);
        std::vector<int> v(4096);
        for (int& x : v) {
            x = static_cast<int>(random()) >> (random() % 31);
        }
        return v;
    }();
    return values;
}

void snprintf_fixed(double v, int decimals, char* out)
{
    std::snprintf(out, 64, "%#.*f", decimals, v);
}

// "%.*e" with its exponent zero-padded to three digits, as the double
// exponent notation writes it.
void snprintf_exponent(double v, int digits, char* out)
{
    const int n = std::snprintf(out, 64, "%.*e", digits, v);
    char* e = std::strchr(out, 'e');
    const int exponent_digits = static_cast<int>(out + n - (e + 2));
    if (exponent_digits < 3) {
        std::memmove(e + 3, e + 2, static_cast<size_t>(exponent_digits) + 1);
        e[2] = '0';
    }
}

template <typename Ours, typename Theirs, typename Values>
bool same_texts(const Values& values, Ours ours, Theirs theirs)
{
    char a[64];
    char b[64];
    for (const auto v : values) {
        ours(v, a);
        theirs(v, b);
        if (std::strcmp(a, b) != 0) {
            std::fprintf(stderr, "different texts: \"%s\" and \"%s\"\n", a, b);
            return false;
        }
    }
    return true;
}

template <typename Format, typename Values>
void run(benchmark::State& state, const Values& values, Format format)
{
    char out[64];
    size_t i = 0;
    for (auto _ : state) {
        format(values[i], out);
        benchmark::DoNotOptimize(out);
        i = (i + 1) % values.size();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

// Registers the formatter and snprintf as a pair, after checking that they
// give the same texts.
template <typename Ours, typename Theirs, typename Values>
void pair(const char* name, const Values& values, Ours ours, Theirs theirs)
{
    if (!same_texts(values, ours, theirs)) {
        std::fprintf(stderr, "%s: the texts differ; the pair is not timed\n", name);
        return;
    }
    benchmark::RegisterBenchmark((std::string(name) + "/tql70").c_str(),
                                 [=](benchmark::State& s) { run(s, values, ours); });
    benchmark::RegisterBenchmark((std::string(name) + "/snprintf").c_str(),
                                 [=](benchmark::State& s) { run(s, values, theirs); });
}

int register_all()
{
    const std::vector<double>& fixed = fixed_values();
    const std::vector<double>& exponent = exponent_values();
    std::vector<float> fixed_floats(fixed.begin(), fixed.end());
    pair("dbltoas_fixed", fixed, [](double v, char* o) { gparse_dbltoas(v, kWidth, kDecimals, o); },
         [](double v, char* o) { snprintf_fixed(v, kDecimals, o); });
    pair("dblxxas", fixed, [](double v, char* o) { gparse_dblxxas(v, kWidth, kDecimals, o); },
         [](double v, char* o) { snprintf_fixed(v, kDecimals, o); });
    pair("flttoas_fixed", fixed_floats, [](float v, char* o) { gparse_flttoas(v, kWidth, kDecimals, o); },
         [](float v, char* o) { snprintf_fixed(v, kDecimals, o); });
    pair("fltxxas", fixed_floats, [](float v, char* o) { gparse_fltxxas(v, kWidth, kDecimals, o); },
         [](float v, char* o) { snprintf_fixed(v, kDecimals, o); });
    // The most decimals that fit: width - 3 less the integer digits beyond
    // the first, which snprintf is told.
    pair("dblmxas", fixed, [](double v, char* o) { gparse_dblmxas(v, kMostWidth, o); },
         [](double v, char* o) {
             const double x = std::fabs(v);
             const int extra = x >= 1 ? static_cast<int>(std::floor(std::log10(x))) : 0;
             snprintf_fixed(v, kMostWidth - 3 - extra, o);
         });
    pair("fltmxas", fixed_floats, [](float v, char* o) { gparse_fltmxas(v, kMostWidth, o); },
         [](float v, char* o) {
             const double x = std::fabs(v);
             const int extra = x >= 1 ? static_cast<int>(std::floor(std::log10(x))) : 0;
             snprintf_fixed(v, kMostWidth - 3 - extra, o);
         });
    std::vector<float> exponent_floats;
    for (const double v : exponent) {
        exponent_floats.push_back(static_cast<float>(std::fmod(v, 1e38)));
    }
    pair("flttoas_exponent", exponent_floats, [](float v, char* o) { gparse_flttoas(v, kExponentWidth, 2, o); },
         [](float v, char* o) { std::snprintf(o, 64, "%.*e", kExponentWidth - 7, v); });
    pair("dbltoas_exponent", exponent, [](double v, char* o) { gparse_dbltoas(v, kExponentWidth, 2, o); },
         [](double v, char* o) { snprintf_exponent(v, kExponentWidth - 8, o); });
    pair("inttoas", integer_values(), [](int v, char* o) { gparse_inttoas(v, 11, o); },
         [](int v, char* o) { std::snprintf(o, 64, "%d", v); });
    return 0;
}

const int registered = register_all();

} // namespace
