// The clamped gmath_ functions against the C library calls they wrap, over
// arrays of 1e6 arguments made before the timed loops: once inside the
// domain where nothing is clamped, once outside it (results clamped or
// flushed, or domain errors). The error function pair runs against
// std::erf and std::erfc on the same arguments. After the timings the
// program prints each pair's ratio (gmath time / C library time) and the
// largest difference in ulps from the C library over a sweep of the inside
// domain.
#include <tql70/gmath.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr size_t kCount = 1000000;

struct Range {
    double lo;
    double hi;
};

// A function of one or two arguments in the precision T, next to the C
// library call it wraps (which computes in double).
template <typename T>
struct Pair {
    const char* name;
    T (*ours1)(T);
    T (*ours2)(T, T);
    double (*libc1)(double);
    double (*libc2)(double, double);
    Range inside;
    Range outside;
    Range second;  // the second argument, both domains
    Range second_outside;
};

using FloatPair = Pair<float>;
using DoublePair = Pair<double>;

double ten_to(double x) { return std::pow(10.0, x); }

const FloatPair kFloatPairs[] = {
    {"sno10x", gmath_sno10x, nullptr, ten_to, nullptr, {-30, 30}, {40, 300}, {}, {}},
    {"snoacos", gmath_snoacos, nullptr, std::acos, nullptr, {-1, 1}, {1.5, 10}, {}, {}},
    {"snoacosh", gmath_snoacosh, nullptr, std::acosh, nullptr, {1, 1e6}, {-10, 0.9}, {}, {}},
    {"snoasin", gmath_snoasin, nullptr, std::asin, nullptr, {-1, 1}, {1.5, 10}, {}, {}},
    {"snoasinh", gmath_snoasinh, nullptr, std::asinh, nullptr, {-1e6, 1e6}, {1e-45, 1e-38}, {}, {}},
    {"snoatan", gmath_snoatan, nullptr, std::atan, nullptr, {-10, 10}, {1e-45, 1e-38}, {}, {}},
    {"snoatanh", gmath_snoatanh, nullptr, std::atanh, nullptr, {-0.999, 0.999}, {1, 10}, {}, {}},
    {"snocos", gmath_snocos, nullptr, std::cos, nullptr, {-10, 10}, {INFINITY, INFINITY}, {}, {}},
    {"snocosh", gmath_snocosh, nullptr, std::cosh, nullptr, {-80, 80}, {90, 700}, {}, {}},
    {"snoexp", gmath_snoexp, nullptr, std::exp, nullptr, {-80, 80}, {90, 700}, {}, {}},
    {"snolog", gmath_snolog, nullptr, std::log, nullptr, {1e-30, 1e30}, {-10, 0}, {}, {}},
    {"snolog10", gmath_snolog10, nullptr, std::log10, nullptr, {1e-30, 1e30}, {-10, 0}, {}, {}},
    {"snosin", gmath_snosin, nullptr, std::sin, nullptr, {-10, 10}, {1e-45, 1e-38}, {}, {}},
    {"snosinh", gmath_snosinh, nullptr, std::sinh, nullptr, {-80, 80}, {90, 700}, {}, {}},
    {"snosqrt", gmath_snosqrt, nullptr, std::sqrt, nullptr, {0, 1e30}, {-10, 0}, {}, {}},
    {"snotan", gmath_snotan, nullptr, std::tan, nullptr, {-1.5, 1.5}, {1e-45, 1e-38}, {}, {}},
    {"snotanh", gmath_snotanh, nullptr, std::tanh, nullptr, {-10, 10}, {1e-45, 1e-38}, {}, {}},
    {"snopwr", nullptr, gmath_snopwr, nullptr, std::pow, {0.1, 10}, {10, 100}, {-10, 10}, {30, 50}},
    {"snoatan2", nullptr, gmath_snoatan2, nullptr, std::atan2, {-10, 10}, {1e-45, 1e-38}, {-10, 10}, {1, 10}},
    {"magxy", nullptr, gmath_magxy, nullptr, std::hypot, {-1e10, 1e10}, {1e38, 3e38}, {-1e10, 1e10}, {1e38, 3e38}},
};

const DoublePair kDoublePairs[] = {
    {"dnoacosh", gmath_dnoacosh, nullptr, std::acosh, nullptr, {1, 1e6}, {-10, 0.99}, {}, {}},
    {"dnoasinh", gmath_dnoasinh, nullptr, std::asinh, nullptr, {-1e6, 1e6}, {1e-320, 1e-310}, {}, {}},
    {"dnoatanh", gmath_dnoatanh, nullptr, std::atanh, nullptr, {-0.999, 0.999}, {1, 10}, {}, {}},
    {"dnoatan2", nullptr, gmath_dnoatan2, nullptr, std::atan2, {-10, 10}, {-10, 10}, {-10, 10}, {0, 0}},
    {"dnoerf", gmath_dnoerf, nullptr, std::erf, nullptr, {-7, 7}, {6, 30}, {}, {}},
    {"dnoerfc", gmath_dnoerfc, nullptr, std::erfc, nullptr, {-7, 26.5}, {28, 40}, {}, {}},
};

template <typename T>
std::vector<T> uniform(Range range, unsigned seed)
{
    std::mt19937_64 engine(seed);
    std::uniform_real_distribution<double> pick(range.lo, range.hi);
    std::vector<T> values(kCount);
    for (T& v : values) {
        v = static_cast<T>(range.hi == range.lo ? range.lo : pick(engine));
    }
    return values;
}

template <typename T>
void register_pair(const Pair<T>& p, const char* domain, Range first, Range second)
{
    const auto xs = std::make_shared<std::vector<T>>(uniform<T>(first, 1));
    const auto ys = std::make_shared<std::vector<T>>(uniform<T>(second, 2));
    const std::string base = std::string(p.name) + "/" + domain;
    benchmark::RegisterBenchmark((base + "/gmath").c_str(), [p, xs, ys](benchmark::State& state) {
        for (auto _ : state) {
            T sum = 0;
            for (size_t i = 0; i < kCount; ++i) {
                sum += p.ours1 ? p.ours1((*xs)[i]) : p.ours2((*xs)[i], (*ys)[i]);
            }
            benchmark::DoNotOptimize(sum);
        }
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kCount));
    });
    benchmark::RegisterBenchmark((base + "/libc").c_str(), [p, xs, ys](benchmark::State& state) {
        for (auto _ : state) {
            T sum = 0;
            for (size_t i = 0; i < kCount; ++i) {
                sum += static_cast<T>(p.libc1 ? p.libc1((*xs)[i]) : p.libc2((*xs)[i], (*ys)[i]));
            }
            benchmark::DoNotOptimize(sum);
        }
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kCount));
    });
}

// Collects each run's time per argument beside the console output.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            times[run.benchmark_name()] = run.GetAdjustedCPUTime();
        }
    }
    std::map<std::string, double> times;
};

template <typename T>
std::int64_t ordered(T x)
{
    if constexpr (sizeof(T) == 4) {
        std::int32_t i;
        std::memcpy(&i, &x, sizeof i);
        return i < 0 ? INT32_MIN - static_cast<std::int64_t>(i) : i;
    } else {
        std::int64_t i;
        std::memcpy(&i, &x, sizeof i);
        return i < 0 ? INT64_MIN - i : i;
    }
}

// The largest distance in ulps of T between ours and the C library's result
// rounded to T, over an even sweep of the inside domain.
template <typename T>
void print_ulps(const Pair<T>& p)
{
    constexpr int kSteps = 1000000;
    double worst = 0;
    double where = 0;
    for (int i = 0; i <= kSteps; ++i) {
        const T x = static_cast<T>(p.inside.lo + (p.inside.hi - p.inside.lo) * i / kSteps);
        const T y = static_cast<T>(p.second.lo + (p.second.hi - p.second.lo) * i / kSteps);
        const T ours = p.ours1 ? p.ours1(x) : p.ours2(x, y);
        const T libc = static_cast<T>(p.libc1 ? p.libc1(x) : p.libc2(x, y));
        const double distance = std::fabs(static_cast<double>(ordered(ours) - ordered(libc)));
        if (distance > worst) {
            worst = distance;
            where = x;
        }
    }
    std::printf("%-10s %-6s [%g, %g]  max %g ulps", p.name, sizeof(T) == 4 ? "float" : "double", p.inside.lo,
                p.inside.hi, worst);
    if (worst > 0) {
        std::printf(" (at x = %.17g)", where);
    }
    std::printf("\n");
}

template <typename T>
void print_ratio(const RatioReporter& reporter, const Pair<T>& p)
{
    for (const char* domain : {"inside", "outside"}) {
        const std::string base = std::string(p.name) + "/" + domain;
        const auto ours = reporter.times.find(base + "/gmath");
        const auto libc = reporter.times.find(base + "/libc");
        if (ours != reporter.times.end() && libc != reporter.times.end()) {
            std::printf("%-10s %-8s %6.2f\n", p.name, domain, ours->second / libc->second);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    for (const FloatPair& p : kFloatPairs) {
        register_pair(p, "inside", p.inside, p.second);
        register_pair(p, "outside", p.outside, p.second_outside.hi == 0 ? p.second : p.second_outside);
    }
    for (const DoublePair& p : kDoublePairs) {
        register_pair(p, "inside", p.inside, p.second);
        register_pair(p, "outside", p.outside, p.second_outside);
    }
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    std::printf("\nratio gmath / C library (1.00: as fast)\n");
    for (const FloatPair& p : kFloatPairs) {
        print_ratio(reporter, p);
    }
    for (const DoublePair& p : kDoublePairs) {
        print_ratio(reporter, p);
    }
    std::printf("\naccuracy against the C library over the inside domain (1e6 + 1 points)\n");
    for (const FloatPair& p : kFloatPairs) {
        print_ulps(p);
    }
    for (const DoublePair& p : kDoublePairs) {
        print_ulps(p);
    }
    benchmark::Shutdown();
    return 0;
}
