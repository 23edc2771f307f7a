// Allocation wrappers: byte counts of size times count, with 0 bytes (and
// counts that overflow) giving null without allocating.
#include <tql70/gmem.h>

#include <cstdlib>

namespace {

// size * count in bytes, or 0 when it is 0 or does not fit in size_t.
size_t byte_count(size_t size, size_t count)
{
    size_t bytes;
    return __builtin_mul_overflow(size, count, &bytes) ? 0 : bytes;
}

} // namespace

extern "C" {

void* gmem_ee_malloc(size_t size, size_t count)
{
    const size_t bytes = byte_count(size, count);
    return bytes ? std::malloc(bytes) : nullptr;
}

void* gmem_ee_calloc(size_t size, size_t count)
{
    return byte_count(size, count) ? std::calloc(count, size) : nullptr;
}

void* gmem_ee_realloc(void* pointer, size_t size, size_t count)
{
    const size_t bytes = byte_count(size, count);
    return bytes ? std::realloc(pointer, bytes) : nullptr;
}

void gmem_ee_free(void* pointer)
{
    std::free(pointer);
}

} // extern "C"
