// tql_qsort: results against std::sort over input shapes, range sizes around
// the insertion-sort and pivot-choice thresholds, and element layouts that
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

// Checks that both arguments of every comparison are element addresses
// inside the array being sorted (so an empty range allows no comparison).
struct {
    const char* base;
    size_t bytes, size, bad_addresses;
    void reset(const void* b, size_t n, size_t s)
    {
        base = static_cast<const char*>(b);
        bytes = n * s;
        size = s;
        bad_addresses = 0;
    }
    void check(const void* a, const void* b)
    {
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

// Sorts `keys` as elements of `size` bytes placed `offset` bytes into a
// buffer, each holding its key in its first four bytes and the key's low
// byte in the rest (so a partly swapped element shows), and compares with
// std::sort (which also shows the result is a permutation of the input).
// Nothing past the array may change.
void expect_sorts_like_std(std::vector<int> keys, size_t size, size_t offset)
{
    const size_t n = keys.size();
    std::vector<unsigned char> storage(n * size + offset + 8);
    unsigned char* const base = storage.data() + offset;
    for (size_t i = 0; i < n; ++i) {
        std::memset(base + i * size, keys[i] & 0xFF, size);
        std::memcpy(base + i * size, &keys[i], sizeof(int));
    }
    probe.reset(base, n, size);
    tql_qsort(base, n, size, compare_int);
    EXPECT_EQ(probe.bad_addresses, 0u);
    std::sort(keys.begin(), keys.end());
    for (size_t i = 0; i < n; ++i) {
        const unsigned char* const element = base + i * size;
        ASSERT_EQ(std::memcmp(element, &keys[i], sizeof(int)), 0) << "element " << i;
        ASSERT_EQ(std::count(element + 4, element + size, keys[i] & 0xFF), static_cast<long>(size - 4)) << i;
    }
    EXPECT_TRUE(std::all_of(storage.end() - 8, storage.end(), [](unsigned char c) { return c == 0; }));
}

} // namespace

// Sizes on both sides of the insertion-sort and pivot-choice thresholds
// (and empty and single ranges), with distinct keys, many equal keys and
// ordered input, in every swap path: one word (4 bytes), two words (8), a
// word count known only at run time (12), and bytes for a size (6) or a
// base (offset 1) that is not a multiple of 4.
TEST(TqlQsort, ThresholdSizesKeyShapesAndElementLayouts)
{
    for (size_t n : {0, 1, 2, 7, 8, 40, 41, 1000, 100000}) {
        std::mt19937 rng(static_cast<uint32_t>(n));
        std::vector<int> distinct(n), few(n);
        for (size_t i = 0; i < n; ++i) {
            distinct[i] = static_cast<int>(rng());
            few[i] = static_cast<int>(rng() % 4) - 2;
        }
        std::vector<int> reversed = distinct;
        std::sort(reversed.rbegin(), reversed.rend());
        for (const auto& [size, offset] : {std::pair<size_t, size_t>{4, 0}, {8, 0}, {12, 0}, {6, 0}, {4, 1}}) {
            SCOPED_TRACE(testing::Message() << "n=" << n << ", size " << size << ", offset " << offset);
            for (const auto& keys : {distinct, few, reversed}) {
                expect_sorts_like_std(keys, size, offset);
            }
        }
    }
}
