// Growable arrays, the string-array release, ZQ_atoll and the big-endian
// conversions.
#include <tql70/gmem.h>
#include <tql70/zq_arrays.h>
#include <tql70/zq_paths.h>

#include <gtest/gtest.h>

#include <array>
#include <climits>

namespace {

// Slots of these arrays are ints; 0 means free.
int int_slot_is_free(void* array, long long index) { return static_cast<int*>(array)[index] == 0; }

TEST(GrowableArray, FirstFreeSequentialAndFixedSlots)
{
    void* array = nullptr;
    long long capacity = 0;
    EXPECT_EQ(ZQ_alloc_array(&array, &capacity, int_slot_is_free, sizeof(int), 0), 0);
    EXPECT_EQ(capacity, 5);
    int* slots = static_cast<int*>(array);
    for (int i = 0; i < 5; ++i) slots[i] = i + 1;
    slots[3] = 0;
    EXPECT_EQ(ZQ_alloc_array(&array, &capacity, int_slot_is_free, sizeof(int), 0), 3);
    static_cast<int*>(array)[3] = 9;
    EXPECT_EQ(ZQ_alloc_array(&array, &capacity, int_slot_is_free, sizeof(int), 0), 5);
    EXPECT_EQ(capacity, 10);
    slots = static_cast<int*>(array);
    EXPECT_EQ(slots[4] * 100 + slots[5] * 10 + slots[9], 500);
    gmem_ee_free(array);

    // The low 32 bits of the element size count; an initial capacity is used.
    array = nullptr;
    capacity = 0;
    EXPECT_EQ(ZQ_alloc_array(&array, &capacity, int_slot_is_free, (1LL << 32) | sizeof(int), 3), 0);
    EXPECT_EQ(capacity, 3);
    gmem_ee_free(array);
    EXPECT_EQ(ZQ_alloc_array(nullptr, &capacity, int_slot_is_free, sizeof(int), 0), -1);

    // Sequential slots start at 0 for a new array whatever `next` held.
    array = nullptr;
    long long next = 42;
    capacity = 0;
    const long long expected_capacity[] = {5, 5, 5, 5, 5, 10, 10, 10, 10, 10, 20};
    for (long long i = 0; i <= 10; ++i) {
        EXPECT_EQ(ZQ_alloc_array_sequentially(&array, &next, &capacity, 8, -1), i);
        EXPECT_EQ(capacity, expected_capacity[i]) << i;
        static_cast<long long*>(array)[i] = i + 100;
    }
    EXPECT_EQ(static_cast<long long*>(array)[4], 104);
    EXPECT_EQ(static_cast<long long*>(array)[11], 0);
    gmem_ee_free(array);

    array = nullptr;
    capacity = 0;
    EXPECT_EQ(ZQ_alloc_fixed_array(&array, &capacity, 4, 3), 1);
    EXPECT_EQ(capacity, 10);
    EXPECT_EQ(ZQ_alloc_fixed_array(&array, &capacity, 4, 10), 1); // big enough already
    EXPECT_EQ(capacity, 10);
    static_cast<int*>(array)[9] = 7;
    EXPECT_EQ(ZQ_alloc_fixed_array(&array, &capacity, 4, 11), 1);
    EXPECT_EQ(capacity, 22);
    EXPECT_EQ(static_cast<int*>(array)[21], 0);
    // A size that cannot be allocated fails and leaves the array alone.
    EXPECT_EQ(ZQ_alloc_fixed_array(&array, &capacity, 4, LLONG_MAX / 2), 0);
    EXPECT_EQ(capacity, 22);
    EXPECT_EQ(static_cast<int*>(array)[9], 7);
    gmem_ee_free(array);

    // A string array with a null slot; the sanitizer build's leak check
    // shows that every string and the array itself are freed.
    char** strings = static_cast<char**>(gmem_ee_calloc(sizeof(char*), 3));
    strings[0] = ZQ_stringcopy("a");
    strings[2] = ZQ_stringcopy("c");
    ZQ_free_character_array(strings, 3);
    ZQ_free_character_array(nullptr, 3);
}

TEST(SmallConversions, AtollAndBigEndian)
{
    EXPECT_EQ(ZQ_atoll("  -9223372036854775807x"), -9223372036854775807LL);
    EXPECT_EQ(ZQ_atoll("abc"), 0);
    EXPECT_EQ(ZQ_atoll(nullptr), 0);
    EXPECT_EQ(ZQ_atoll("99999999999999999999"), LLONG_MAX);

    using Bytes = std::array<unsigned char, 4>;
    Bytes a = {0, 0, 0xEE, 0xEE};
    Bytes b = a;
    atql_bin_to_int16(0x51234, a.data());
    atql_int16_to_bin(0x51234, b.data());
    EXPECT_EQ(a, (Bytes{0x12, 0x34, 0xEE, 0xEE})); // nothing past two bytes
    EXPECT_EQ(b, a);
    atql_bin_to_int32(-2, a.data());
    atql_int32_to_bin(0x01020304, b.data());
    EXPECT_EQ(a, (Bytes{0xFF, 0xFF, 0xFF, 0xFE}));
    EXPECT_EQ(b, (Bytes{0x01, 0x02, 0x03, 0x04}));
}

} // namespace
