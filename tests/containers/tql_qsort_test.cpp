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
#include <utility>
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
    EXPECT_TRUE(v.size() > 1 || probe.calls == 0); // nothing to compare
}

// Elements keyed by their first byte.
int compare_first_byte(const void* a, const void* b)
{
    probe.check(a, b);
    const unsigned char x = *static_cast<const unsigned char*>(a), y = *static_cast<const unsigned char*>(b);
    return (x > y) - (x < y);
}

} // namespace

// Sizes on both sides of the insertion-sort and pivot-choice thresholds
// (and empty and single ranges), with distinct keys, many equal keys and
// already ordered input.
TEST(TqlQsort, ThresholdSizesWithDistinctEqualAndOrderedKeys)
{
    for (size_t n : {0, 1, 2, 7, 8, 40, 41, 1000, 100000}) {
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

// Every byte of an element holds its key, so an element only partly swapped
// shows: 3-byte elements and a base not on a 4-byte boundary take the byte
// swaps, 8-byte ones two fixed words, 12-byte ones the word loop of a size
// known only at run time.
TEST(TqlQsort, ElementSizesAndMisalignedBase)
{
    const size_t n = 3000;
    for (const auto& [size, offset] : {std::pair<size_t, size_t>{3, 0}, {8, 0}, {12, 0}, {12, 3}}) {
        SCOPED_TRACE("element size " + std::to_string(size) + ", offset " + std::to_string(offset));
        std::mt19937 rng(static_cast<uint32_t>(size + offset));
        std::vector<unsigned char> storage(n * size + offset + 8), keys(n);
        unsigned char* const base = storage.data() + offset;
        for (size_t i = 0; i < n; ++i) {
            keys[i] = static_cast<unsigned char>(1 + rng() % 50);
            std::memset(base + i * size, keys[i], size);
        }
        probe.reset(base, n, size);
        tql_qsort(base, n, size, compare_first_byte);
        EXPECT_EQ(probe.bad_addresses, 0u);
        std::sort(keys.begin(), keys.end());
        for (size_t i = 0; i < n; ++i) {
            ASSERT_EQ(std::count(base + i * size, base + (i + 1) * size, keys[i]), static_cast<long>(size)) << i;
        }
        EXPECT_TRUE(std::all_of(storage.end() - 8, storage.end(), [](unsigned char c) { return c == 0; }));
    }
}
