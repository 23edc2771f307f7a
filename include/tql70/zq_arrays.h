/* Caller-owned arrays whose capacity doubles on demand, the release of an
 * array of strings, a 64-bit decimal parser and big-endian integer
 * conversions. Arrays are allocated with gmem_ee_calloc / gmem_ee_realloc
 * and new slots are always zero-filled. Element sizes use their low 32
 * bits. */
#ifndef TQL70_ZQ_ARRAYS_H
#define TQL70_ZQ_ARRAYS_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Answers non-zero when slot `index` of `array` is free. */
typedef int (*ZQ_slot_is_free_fn)(void* array, long long index);

/* The index of the first free slot, growing the array to twice its
 * capacity (the first new slot is returned) when none is free. A new array
 * gets `initial` slots, or 5 when `initial` is zero or negative. -1 when an
 * allocation fails (the array is left as it was). */
TQL70_API long long ZQ_alloc_array(void** array, long long* capacity, ZQ_slot_is_free_fn is_free, long long elem_size, long long initial);

/* *next, then incremented; the array grows to twice that index when it
 * reaches the capacity. A new array gets `initial` slots (5 when zero or
 * negative) and *next starts at 0. -1 when an allocation fails. */
TQL70_API long long ZQ_alloc_array_sequentially(void** array, long long* next, long long* capacity, long long elem_size, long long initial);

/* Makes sure the array holds at least `count` elements: a new array gets
 * `count` (at least 10), an existing one too small grows to 2 * count. 1 on
 * success, 0 when an allocation fails. */
TQL70_API int ZQ_alloc_fixed_array(void** array, long long* capacity, long long elem_size, long long count);

/* Frees the first `count` strings (null entries skipped), then the array;
 * null does nothing. */
TQL70_API void ZQ_free_character_array(char** array, long long count);

/* Leading white space, an optional sign, digits; 0 when there are none.
 * Values beyond the 64-bit range stop at its limits. */
TQL70_API long long ZQ_atoll(const char* s);

/* Store the low 16 (or all 32) bits of `value` in buf (2 or 4 bytes), most
 * significant byte first; a null buf is not written. The _bin_to_ and _to_bin names are the same operation. */
TQL70_API void atql_bin_to_int16(int value, unsigned char* buf);
TQL70_API void atql_int16_to_bin(int value, unsigned char* buf);
TQL70_API void atql_bin_to_int32(int value, unsigned char* buf);
TQL70_API void atql_int32_to_bin(int value, unsigned char* buf);

TQL70_END_DECLS

#endif /* TQL70_ZQ_ARRAYS_H */
