// tql_qsort: results against std::sort over input shapes, range sizes around
// the insertion-sort and pivot-choice thresholds, and element sizes that
// take the word-swap and byte-swap paths.
#include <tql70/process_env.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

// Counts comparisons and checks that both arguments are element addresses
// inside the array being sorted.
struct {
    const char* base;
    size_t bytes, size, calls, bad_addresses;
    void reset(const void* b, size_t n, size_t s)
    {
        base = static_cast<const char*>(b);
        bytes = n * s;
        size = s;
        calls = bad_addresses = 0;
    }
    void check(const void* a, const void* b)
    {
        ++calls;
        for (const char* p : {static_cast<const char*>(a), static_cast<const char*>(b)}) {
            bad_addresses += p < base || p >= base + bytes || (p - base) % size != 0;
        }
    }
} probe;

int compare_int(const void* a, const void* b)
{
    probe.check(a, b);
    int x, y;
    std::memcpy(&x, a, sizeof x);
    std::memcpy(&y, b, sizeof y);
    return (x > y) - (x < y);
}

// Sorts with tql_qsort and compares with std::sort (which also shows the
// result is a permutation of the input).
void expect_sorts_like_std(std::vector<int> v)
{
    std::vector<int> expected = v;
    std::sort(expected.begin(), expected.end());
    probe.reset(v.data(), v.size(), sizeof(int));
    tql_qsort(v.data(), v.size(), sizeof(int), compare_int);
    EXPECT_EQ(v, expected);
    EXPECT_EQ(probe.bad_addresses, 0u);
}

// An element of Size bytes keyed by its first byte; every byte holds the
// key, so an element only partly swapped shows.
template <size_t Size>
int compare_first_byte(const void* a, const void* b)
{
    probe.check(a, b);
    const unsigned char x = *static_cast<const unsigned char*>(a), y = *static_cast<const unsigned char*>(b);
    return (x > y) - (x < y);
}

// Sorts n elements of Size bytes placed `offset` bytes into a buffer (an
// offset that is not a multiple of 4 takes the byte-swap path).
template <size_t Size>
void check_element_sort(size_t n, size_t offset)
{
    SCOPED_TRACE("element size " + std::to_string(Size) + ", offset " + std::to_string(offset));
    std::mt19937 rng(static_cast<uint32_t>(Size * 131 + offset + n));
    std::vector<unsigned char> storage(n * Size + offset + 8);
    unsigned char* const base = storage.data() + offset;
    std::vector<unsigned char> keys(n);
    for (size_t i = 0; i < n; ++i) {
        keys[i] = static_cast<unsigned char>(1 + rng() % 50);
        std::memset(base + i * Size, keys[i], Size);
    }
    probe.reset(base, n, Size);
    tql_qsort(base, n, Size, compare_first_byte<Size>);
    EXPECT_EQ(probe.bad_addresses, 0u);
    std::sort(keys.begin(), keys.end());
    for (size_t i = 0; i < n; ++i) {
        ASSERT_EQ(std::count(base + i * Size, base + (i + 1) * Size, keys[i]), static_cast<long>(Size)) << "element " << i;
    }
    EXPECT_TRUE(std::all_of(storage.end() - 8, storage.end(), [](unsigned char c) { return c == 0; }));
}

} // namespace

TEST(TqlQsort, EmptyAndSingleRangesNeverCompare)
{
    int one = 7;
    probe.reset(&one, 1, sizeof one);
    tql_qsort(&one, 1, sizeof one, compare_int);
    tql_qsort(&one, 0, sizeof one, compare_int);
    tql_qsort(nullptr, 0, sizeof one, compare_int);
    EXPECT_EQ(probe.calls, 0u);
}

// Sizes on both sides of the insertion-sort and pivot-choice thresholds,
// with distinct keys, many equal keys and already ordered input.
TEST(TqlQsort, ThresholdSizesWithDistinctEqualAndOrderedKeys)
{
    for (size_t n : {2, 7, 8, 40, 41, 1000, 100000}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        std::mt19937 rng(static_cast<uint32_t>(n));
        std::vector<int> distinct(n), few(n);
        for (size_t i = 0; i < n; ++i) {
            distinct[i] = static_cast<int>(rng());
            few[i] = static_cast<int>(rng() % 4) - 2;
        }
        expect_sorts_like_std(distinct);
        expect_sorts_like_std(few);
        std::sort(distinct.rbegin(), distinct.rend());
        expect_sorts_like_std(distinct);
    }
}

TEST(TqlQsort, ElementSizesAndMisalignedBase)
{
    for (size_t n : {7, 3000}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        check_element_sort<3>(n, 0);
        check_element_sort<8>(n, 0);
        check_element_sort<72>(n, 0);
        check_element_sort<12>(n, 3);
    }
}
