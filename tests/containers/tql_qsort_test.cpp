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

// An element of Size bytes keyed by its first byte; the other bytes are a
// payload that must travel with the key.
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
    std::vector<std::string> before, after;
    for (size_t i = 0; i < n; ++i) {
        unsigned char* e = base + i * Size;
        e[0] = static_cast<unsigned char>(rng() % 50);
        for (size_t j = 1; j < Size; ++j) {
            e[j] = static_cast<unsigned char>(e[0] * 7 + j + (i % 13) * 17);
        }
        before.emplace_back(reinterpret_cast<char*>(e), Size);
    }
    probe.reset(base, n, Size);
    tql_qsort(base, n, Size, compare_first_byte<Size>);
    EXPECT_EQ(probe.bad_addresses, 0u);
    for (size_t i = 0; i < n; ++i) {
        after.emplace_back(reinterpret_cast<char*>(base + i * Size), Size);
        ASSERT_TRUE(i == 0 || after[i - 1][0] <= after[i][0]) << "out of order at " << i;
    }
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, before);
    EXPECT_TRUE(std::all_of(storage.end() - 8, storage.end(), [](unsigned char c) { return c == 0; }));
}

} // namespace

TEST(TqlQsort, ZeroOneAndSixElements)
{
    int one = 7;
    probe.reset(&one, 1, sizeof one);
    tql_qsort(&one, 1, sizeof one, compare_int);
    tql_qsort(&one, 0, sizeof one, compare_int);
    tql_qsort(nullptr, 0, sizeof one, compare_int);
    EXPECT_EQ(probe.calls, 0u);

    // Six elements are sorted by insertion alone: n - 1 comparisons when
    // already sorted, n(n-1)/2 when reversed.
    for (const auto& [input, calls] : {std::pair{std::vector<int>{1, 2, 3, 4, 5, 6}, 5u},
                                       std::pair{std::vector<int>{6, 5, 4, 3, 2, 1}, 15u}}) {
        expect_sorts_like_std(input);
        EXPECT_EQ(probe.calls, calls);
    }
}

TEST(TqlQsort, IntsOfEveryShapeAndThresholdSize)
{
    const char* const shapes[] = {"random", "sorted", "reversed", "all-equal", "few-distinct", "organ-pipe"};
    for (int shape = 0; shape < 6; ++shape) {
        for (size_t n : {2, 7, 8, 40, 41, 1000, 100000}) {
            SCOPED_TRACE(std::string(shapes[shape]) + " n=" + std::to_string(n));
            std::mt19937 rng(static_cast<uint32_t>(n));
            std::vector<int> v(n);
            for (size_t i = 0; i < n; ++i) {
                const int k = static_cast<int>(i), m = static_cast<int>(n);
                const int values[] = {static_cast<int>(rng()), k, m - k, 42, static_cast<int>(rng() % 4) - 2,
                                      k < m / 2 ? k : m - k};
                v[i] = values[shape];
            }
            expect_sorts_like_std(v);
        }
    }
    // Every arrangement of 7 elements, the smallest partitioned range.
    std::vector<int> perm = {0, 1, 2, 3, 3, 5, 6};
    do {
        expect_sorts_like_std(perm);
    } while (std::next_permutation(perm.begin(), perm.end()) && !HasFailure());
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
