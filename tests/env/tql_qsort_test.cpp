// tql_qsort: results against std::sort over input shapes, range sizes around
// the insertion-sort and pivot-choice thresholds, and element sizes that
// take the word-swap and byte-swap paths.
#include <tql70/process_env.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

// Every comparison is counted and its arguments checked: both must be
// element addresses inside the array being sorted.
struct CompareProbe {
    const char* base = nullptr;
    size_t count = 0;
    size_t size = 1;
    size_t calls = 0;
    size_t bad_addresses = 0;

    void reset(const void* b, size_t n, size_t s)
    {
        base = static_cast<const char*>(b);
        count = n;
        size = s;
        calls = 0;
        bad_addresses = 0;
    }
    void check(const void* p)
    {
        const char* c = static_cast<const char*>(p);
        if (c < base || c >= base + count * size || (c - base) % size != 0) {
            ++bad_addresses;
        }
    }
};
CompareProbe probe;

int compare_int(const void* a, const void* b)
{
    probe.check(a);
    probe.check(b);
    ++probe.calls;
    int x, y;
    std::memcpy(&x, a, sizeof x);
    std::memcpy(&y, b, sizeof y);
    return (x > y) - (x < y);
}

enum class Shape { kRandom, kSorted, kReversed, kAllEqual, kFewDistinct, kOrganPipe };
const Shape kShapes[] = {Shape::kRandom, Shape::kSorted, Shape::kReversed,
                         Shape::kAllEqual, Shape::kFewDistinct, Shape::kOrganPipe};
const char* shape_name(Shape s)
{
    static const char* const names[] = {"random", "sorted", "reversed", "all-equal", "few-distinct", "organ-pipe"};
    return names[static_cast<int>(s)];
}

std::vector<int> make_input(Shape shape, size_t n, uint32_t seed)
{
    std::mt19937 rng(seed);
    std::vector<int> v(n);
    for (size_t i = 0; i < n; ++i) {
        const int k = static_cast<int>(i);
        switch (shape) {
        case Shape::kRandom: v[i] = static_cast<int>(rng()); break;
        case Shape::kSorted: v[i] = k; break;
        case Shape::kReversed: v[i] = static_cast<int>(n) - k; break;
        case Shape::kAllEqual: v[i] = 42; break;
        case Shape::kFewDistinct: v[i] = static_cast<int>(rng() % 4) - 2; break;
        case Shape::kOrganPipe: v[i] = i < n / 2 ? k : static_cast<int>(n) - k; break;
        }
    }
    return v;
}

// Sorts `input` with tql_qsort and checks the result against std::sort
// (which also shows the result is a permutation of the input).
void expect_sorts_like_std(std::vector<int> input)
{
    std::vector<int> expected = input;
    std::sort(expected.begin(), expected.end());
    probe.reset(input.data(), input.size(), sizeof(int));
    tql_qsort(input.data(), input.size(), sizeof(int), compare_int);
    EXPECT_EQ(input, expected);
    EXPECT_EQ(probe.bad_addresses, 0u);
}

// An element of `Size` bytes keyed by its first byte, with a payload that
// must travel with the key.
template <size_t Size>
struct Record {
    unsigned char bytes[Size];
};
template <size_t Size>
int compare_record(const void* a, const void* b)
{
    probe.check(a);
    probe.check(b);
    const unsigned char x = *static_cast<const unsigned char*>(a);
    const unsigned char y = *static_cast<const unsigned char*>(b);
    return (x > y) - (x < y);
}

// Sorts `n` records of Size bytes placed at `offset` bytes into a buffer
// (an offset not a multiple of 4 takes the byte-swap path) and checks
// that the keys come out in order and each record kept its own payload.
template <size_t Size>
void check_record_sort(size_t n, size_t offset)
{
    SCOPED_TRACE("element size " + std::to_string(Size) + ", offset " + std::to_string(offset));
    std::mt19937 rng(static_cast<uint32_t>(Size * 131 + offset));
    std::vector<unsigned char> storage(n * Size + offset + 8);
    unsigned char* base = storage.data() + offset;
    std::vector<std::vector<unsigned char>> before;
    for (size_t i = 0; i < n; ++i) {
        unsigned char* e = base + i * Size;
        e[0] = static_cast<unsigned char>(rng() % 50);
        for (size_t j = 1; j < Size; ++j) {
            // Payload derived from the key and the record's original index.
            e[j] = static_cast<unsigned char>(e[0] * 7 + j + (i % 13) * 17);
        }
        before.emplace_back(e, e + Size);
    }
    probe.reset(base, n, Size);
    tql_qsort(base, n, Size, compare_record<Size>);
    EXPECT_EQ(probe.bad_addresses, 0u);

    std::vector<std::vector<unsigned char>> after;
    for (size_t i = 0; i < n; ++i) {
        after.emplace_back(base + i * Size, base + (i + 1) * Size);
        if (i > 0) {
            ASSERT_LE(after[i - 1][0], after[i][0]) << "at " << i;
        }
    }
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, before);
    // The bytes around the array are left alone.
    for (size_t i = 0; i < offset; ++i) {
        EXPECT_EQ(storage[i], 0);
    }
}

} // namespace

TEST(TqlQsort, ZeroAndOneElementAreLeftAlone)
{
    int one = 7;
    probe.reset(&one, 1, sizeof one);
    tql_qsort(&one, 1, sizeof one, compare_int);
    tql_qsort(&one, 0, sizeof one, compare_int);
    tql_qsort(nullptr, 0, sizeof one, compare_int);
    EXPECT_EQ(one, 7);
    EXPECT_EQ(probe.calls, 0u);
}

TEST(TqlQsort, SixElementsAreSortedByInsertion)
{
    // Insertion sort makes n - 1 comparisons on sorted input and
    // n(n-1)/2 on reversed input; a partitioning pass would make others.
    std::vector<int> sorted = {1, 2, 3, 4, 5, 6};
    probe.reset(sorted.data(), 6, sizeof(int));
    tql_qsort(sorted.data(), 6, sizeof(int), compare_int);
    EXPECT_EQ(sorted, (std::vector<int>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(probe.calls, 5u);

    std::vector<int> reversed = {6, 5, 4, 3, 2, 1};
    probe.reset(reversed.data(), 6, sizeof(int));
    tql_qsort(reversed.data(), 6, sizeof(int), compare_int);
    EXPECT_EQ(reversed, sorted);
    EXPECT_EQ(probe.calls, 15u);
}

TEST(TqlQsort, IntsOfEveryShapeAndThresholdSize)
{
    const size_t sizes[] = {2, 3, 5, 6, 7, 8, 9, 39, 40, 41, 42, 47, 100, 1000, 100000};
    for (Shape shape : kShapes) {
        for (size_t n : sizes) {
            SCOPED_TRACE(std::string(shape_name(shape)) + " n=" + std::to_string(n));
            expect_sorts_like_std(make_input(shape, n, static_cast<uint32_t>(n)));
        }
    }
    // Every permutation of 7 elements (the smallest partitioned range).
    std::vector<int> perm = {0, 1, 2, 3, 3, 5, 6};
    do {
        SCOPED_TRACE("permutation");
        expect_sorts_like_std(perm);
    } while (std::next_permutation(perm.begin(), perm.end()) && !HasFailure());
}

TEST(TqlQsort, ElementSizesAndMisalignedBase)
{
    for (size_t n : {6u, 7u, 41u, 3000u}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        check_record_sort<1>(n, 0);
        check_record_sort<3>(n, 0);
        check_record_sort<4>(n, 0);
        check_record_sort<8>(n, 0);
        check_record_sort<12>(n, 0);
        check_record_sort<16>(n, 0);
        check_record_sort<4>(n, 1);
        check_record_sort<8>(n, 2);
        check_record_sort<12>(n, 3);
    }
}

TEST(TqlQsort, StringPointers)
{
    std::mt19937 rng(7);
    std::vector<std::string> pool;
    for (int i = 0; i < 5000; ++i) {
        std::string s;
        const size_t len = rng() % 6;
        for (size_t j = 0; j < len; ++j) {
            s += static_cast<char>('a' + rng() % 3);
        }
        pool.push_back(s);
    }
    std::vector<const char*> items;
    for (const std::string& s : pool) {
        items.push_back(s.c_str());
    }
    std::vector<const char*> expected = items;
    std::sort(expected.begin(), expected.end(), [](const char* a, const char* b) { return std::strcmp(a, b) < 0; });

    tql_qsort(items.data(), items.size(), sizeof(const char*), [](const void* a, const void* b) {
        return std::strcmp(*static_cast<const char* const*>(a), *static_cast<const char* const*>(b));
    });
    for (size_t i = 0; i < items.size(); ++i) {
        ASSERT_STREQ(items[i], expected[i]) << "at " << i;
    }
    // Same pointers, only reordered.
    std::sort(items.begin(), items.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(items, expected);
}

TEST(TqlQsort, LargeStructsKeyedByAField)
{
    struct Big {
        char name[40];
        double weight;
        int key;
        int original;
    };
    std::mt19937 rng(11);
    std::vector<Big> items(2000);
    for (size_t i = 0; i < items.size(); ++i) {
        items[i] = Big{};
        items[i].key = static_cast<int>(rng() % 300);
        items[i].original = static_cast<int>(i);
        items[i].weight = items[i].key * 0.5 + static_cast<double>(i);
        std::snprintf(items[i].name, sizeof items[i].name, "item-%zu-key-%d", i, items[i].key);
    }
    const std::vector<Big> input = items;
    tql_qsort(items.data(), items.size(), sizeof(Big), [](const void* a, const void* b) {
        const int x = static_cast<const Big*>(a)->key;
        const int y = static_cast<const Big*>(b)->key;
        return (x > y) - (x < y);
    });
    std::vector<bool> seen(items.size(), false);
    for (size_t i = 0; i < items.size(); ++i) {
        if (i > 0) {
            ASSERT_LE(items[i - 1].key, items[i].key) << "at " << i;
        }
        const Big& original = input[static_cast<size_t>(items[i].original)];
        ASSERT_FALSE(seen[static_cast<size_t>(items[i].original)]) << "duplicated record " << items[i].original;
        seen[static_cast<size_t>(items[i].original)] = true;
        EXPECT_EQ(items[i].key, original.key);
        EXPECT_EQ(items[i].weight, original.weight);
        EXPECT_STREQ(items[i].name, original.name);
    }
}
