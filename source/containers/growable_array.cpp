// Caller-owned arrays that double on demand, and the release of arrays of
// strings.
#include <tql70/gmem.h>
#include <tql70/zq_arrays.h>

#include <cstdint>
#include <cstring>

namespace {

size_t element_bytes(long long elem_size)
{
    return static_cast<uint32_t>(elem_size);
}

// Makes `*array` hold `slots` elements, zero-filling those beyond `old`;
// false (array unchanged) when the allocation fails.
bool grow(void** array, long long old, long long slots, size_t bytes)
{
    void* grown = gmem_ee_realloc(*array, bytes, static_cast<size_t>(slots));
    if (!grown) {
        return false;
    }
    std::memset(static_cast<char*>(grown) + old * bytes, 0, (slots - old) * bytes);
    *array = grown;
    return true;
}

// A new zero-filled array of `slots` elements.
bool create(void** array, long long slots, size_t bytes)
{
    void* block = gmem_ee_calloc(bytes, static_cast<size_t>(slots));
    if (!block) {
        return false;
    }
    *array = block;
    return true;
}

// Makes the array on first use with `initial` slots (5 when zero or
// negative); false when the allocation fails.
bool ensure_created(void** array, long long* capacity, long long initial, size_t bytes)
{
    if (*array && *capacity != 0) {
        return true;
    }
    const long long slots = initial > 0 ? initial : 5;
    if (!create(array, slots, bytes)) {
        return false;
    }
    *capacity = slots;
    return true;
}

} // namespace

extern "C" {

long long ZQ_alloc_array(void** array, long long* capacity, ZQ_slot_is_free_fn is_free, long long elem_size,
                         long long initial)
{
    const size_t bytes = element_bytes(elem_size);
    if (!array || !capacity || !is_free) {
        return -1;
    }
    if (!ensure_created(array, capacity, initial, bytes)) {
        return -1;
    }
    long long i = 0;
    for (; i < *capacity; ++i) {
        if (is_free(*array, i)) {
            return i;
        }
    }
    if (!grow(array, i, 2 * i, bytes)) {
        return -1;
    }
    *capacity = 2 * i;
    return i;
}

long long ZQ_alloc_array_sequentially(void** array, long long* next, long long* capacity, long long elem_size,
                                      long long initial)
{
    const size_t bytes = element_bytes(elem_size);
    if (!array || !next || !capacity) {
        return -1;
    }
    if (!*array || *capacity == 0) {
        if (!ensure_created(array, capacity, initial, bytes)) {
            return -1;
        }
        *next = 0;
    }
    const long long i = (*next)++;
    if (i < *capacity) {
        return i;
    }
    if (!grow(array, *capacity, 2 * i, bytes)) {
        --*next;
        return -1;
    }
    *capacity = 2 * i;
    return i;
}

int ZQ_alloc_fixed_array(void** array, long long* capacity, long long elem_size, long long count)
{
    const size_t bytes = element_bytes(elem_size);
    if (!array || !capacity) {
        return 0;
    }
    if (*array && *capacity != 0) {
        if (count <= *capacity) {
            return 1;
        }
        if (!grow(array, *capacity, 2 * count, bytes)) {
            return 0;
        }
        *capacity = 2 * count;
        return 1;
    }
    const long long slots = count < 10 ? 10 : count;
    if (!create(array, slots, bytes)) {
        return 0;
    }
    *capacity = slots;
    return 1;
}

void ZQ_free_character_array(char** array, long long count)
{
    if (!array) {
        return;
    }
    for (long long i = 0; i < count; ++i) {
        gmem_ee_free(array[i]);
    }
    gmem_ee_free(array);
}

} // extern "C"
