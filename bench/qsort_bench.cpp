// tql_qsort against the C library's qsort and std::sort, on ints and on
// C strings (an array of const char* ordered by strcmp), for random,
// sorted, reversed and few-distinct inputs.
//
// Each iteration copies the input into the work array and sorts it; the
// copy is the same for the three sorts, so their figures compare directly.
#include <tql70/process_env.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

enum class Shape { kRandom, kSorted, kReversed, kFewDistinct };
const Shape kShapes[] = {Shape::kRandom, Shape::kSorted, Shape::kReversed, Shape::kFewDistinct};
const char* const kShapeNames[] = {"random", "sorted", "reversed", "few_distinct"};
const size_t kSizes[] = {10000, 1000000};

int compare_int(const void* a, const void* b)
{
    const int x = *static_cast<const int*>(a);
    const int y = *static_cast<const int*>(b);
    return (x > y) - (x < y);
}

int compare_cstr(const void* a, const void* b)
{
    return std::strcmp(*static_cast<const char* const*>(a), *static_cast<const char* const*>(b));
}

template <typename T>
void apply_shape(std::vector<T>& v, Shape shape)
{
    if (shape == Shape::kSorted || shape == Shape::kReversed) {
        std::sort(v.begin(), v.end(), [](const T& a, const T& b) {
            if constexpr (std::is_same_v<T, const char*>) {
                return std::strcmp(a, b) < 0;
            } else {
                return a < b;
            }
        });
        if (shape == Shape::kReversed) {
            std::reverse(v.begin(), v.end());
        }
    }
}

const std::vector<int>& int_input(Shape shape, size_t n)
{
    static std::map<std::pair<Shape, size_t>, std::vector<int>> cache;
    auto& v = cache[{shape, n}];
    if (v.empty()) {
        std::mt19937 rng(12345);
        v.resize(n);
        for (int& x : v) {
            x = shape == Shape::kFewDistinct ? static_cast<int>(rng() % 8) : static_cast<int>(rng());
        }
        apply_shape(v, shape);
    }
    return v;
}

// The strings: random lowercase words of 4 to 16 letters, made once and
// shared by every string benchmark; few-distinct inputs use 8 of them.
const std::vector<std::string>& string_pool()
{
    static const std::vector<std::string> pool = [] {
        std::mt19937 rng(777);
        std::vector<std::string> words(1000000);
        for (std::string& w : words) {
            w.resize(4 + rng() % 13);
            for (char& c : w) {
                c = static_cast<char>('a' + rng() % 26);
            }
        }
        return words;
    }();
    return pool;
}

const std::vector<const char*>& string_input(Shape shape, size_t n)
{
    static std::map<std::pair<Shape, size_t>, std::vector<const char*>> cache;
    auto& v = cache[{shape, n}];
    if (v.empty()) {
        const std::vector<std::string>& pool = string_pool();
        std::mt19937 rng(54321);
        v.resize(n);
        for (size_t i = 0; i < n; ++i) {
            v[i] = shape == Shape::kFewDistinct ? pool[rng() % 8].c_str() : pool[i % pool.size()].c_str();
        }
        apply_shape(v, shape);
    }
    return v;
}

enum class Sorter { kTql, kLibc, kStd };
const char* const kSorterNames[] = {"tql_qsort", "qsort", "std_sort"};

template <typename T>
void run(benchmark::State& state, const std::vector<T>& input, Sorter sorter)
{
    using Compare = int (*)(const void*, const void*);
    const Compare compare = std::is_same_v<T, int> ? compare_int : compare_cstr;
    std::vector<T> work(input.size());
    for (auto _ : state) {
        std::copy(input.begin(), input.end(), work.begin());
        switch (sorter) {
        case Sorter::kTql:
            tql_qsort(work.data(), work.size(), sizeof(T), compare);
            break;
        case Sorter::kLibc:
            std::qsort(work.data(), work.size(), sizeof(T), compare);
            break;
        case Sorter::kStd:
            std::sort(work.begin(), work.end(), [compare](const T& a, const T& b) { return compare(&a, &b) < 0; });
            break;
        }
        benchmark::DoNotOptimize(work.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(input.size()));
    // A benchmark whose result is not sorted has measured nothing useful.
    for (size_t i = 1; i < work.size(); ++i) {
        if (compare(&work[i - 1], &work[i]) > 0) {
            state.SkipWithError("result not sorted");
            break;
        }
    }
}

const bool registered = [] {
    for (const char* type : {"int", "cstr"}) {
        const bool is_int = std::strcmp(type, "int") == 0;
        for (Shape shape : kShapes) {
            for (size_t n : kSizes) {
                for (Sorter sorter : {Sorter::kTql, Sorter::kLibc, Sorter::kStd}) {
                    const std::string name = std::string(type) + "/" + kShapeNames[static_cast<int>(shape)] + "/" +
                                             kSorterNames[static_cast<int>(sorter)] + "/" + std::to_string(n);
                    benchmark::RegisterBenchmark(name.c_str(), [is_int, shape, n, sorter](benchmark::State& state) {
                        if (is_int) {
                            run(state, int_input(shape, n), sorter);
                        } else {
                            run(state, string_input(shape, n), sorter);
                        }
                    })->Unit(benchmark::kMicrosecond);
                }
            }
        }
    }
    return true;
}();

} // namespace
