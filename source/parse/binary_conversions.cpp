// The 64-bit decimal parser and the big-endian integer conversions.
#include <tql70/zq_arrays.h>

#include <cstdint>
#include <cstdlib>

namespace {

void store_big_endian(uint32_t value, unsigned char* buf, int bytes)
{
    for (int i = bytes - 1; buf && i >= 0; --i) {
        buf[i] = static_cast<unsigned char>(value & 0xFF);
        value >>= 8;
    }
}

} // namespace

extern "C" {

long long ZQ_atoll(const char* s)
{
    return s ? std::strtoll(s, nullptr, 10) : 0;
}

void atql_bin_to_int16(int value, unsigned char* buf)
{
    store_big_endian(static_cast<uint32_t>(value), buf, 2);
}

void atql_int16_to_bin(int value, unsigned char* buf)
{
    store_big_endian(static_cast<uint32_t>(value), buf, 2);
}

void atql_bin_to_int32(int value, unsigned char* buf)
{
    store_big_endian(static_cast<uint32_t>(value), buf, 4);
}

void atql_int32_to_bin(int value, unsigned char* buf)
{
    store_big_endian(static_cast<uint32_t>(value), buf, 4);
}

} // extern "C"
