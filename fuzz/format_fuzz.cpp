// Fuzz target for the number formatters and the zero stripper. Each call
// gets a heap buffer of exactly the size its header states, so a write one
// byte past it stops the run under AddressSanitizer. Input layout: a mode
// byte, the width and decimals (one byte each, both may be negative), then
// the value (eight raw bytes, or a digit and a power of ten that reach the
// decade edges); any remaining bytes are a text for the zero stripper.
#include <tql70/gparse.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

void check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// A buffer of exactly `size` bytes, filled with a byte the formatters never
// write, so that the text length can be checked against the size too.
struct ExactBuffer {
    explicit ExactBuffer(long long size) : bytes(new char[static_cast<size_t>(size)]), size(size)
    {
        std::memset(bytes, 0x7f, static_cast<size_t>(size));
    }
    ~ExactBuffer() { delete[] bytes; }
    ExactBuffer(const ExactBuffer&) = delete;
    ExactBuffer& operator=(const ExactBuffer&) = delete;

    char* bytes;
    long long size;
};

long long at_least_zero(long long n)
{
    return n > 0 ? n : 0;
}

// Runs one formatter into an exact-size buffer; its text must end inside it
// and be empty on failure.
template <typename Call>
void run(long long size, Call call)
{
    ExactBuffer buffer(size);
    const unsigned int ok = call(buffer.bytes);
    check(std::memchr(buffer.bytes, '\0', static_cast<size_t>(size)) != nullptr);
    check(ok == 1 || buffer.bytes[0] == '\0');
}

void strip(const std::string& text)
{
    ExactBuffer buffer(static_cast<long long>(text.size()) + 1);
    gparse_cnvt_string_stripped_zeros(text.c_str(), buffer.bytes);
    std::vector<char> in_place(text.c_str(), text.c_str() + text.size() + 1);
    gparse_cnvt_string_stripped_zeros(in_place.data(), in_place.data());
    check(std::strcmp(in_place.data(), buffer.bytes) == 0);
}

double value_from(const uint8_t* data, uint8_t mode)
{
    if (mode & 1) {
        double raw = 0;
        std::memcpy(&raw, data, sizeof raw);
        return raw;
    }
    // A leading digit string and a power of ten: 9.99...e-20 and the like.
    const double mantissa = 1.0 + (data[0] % 9) + (data[1] / 256.0) * (mode & 2 ? 0.99999999 : 1.0);
    const int exponent = static_cast<int8_t>(data[2]) % 40;
    const double v = mantissa * std::pow(10.0, exponent - (mode & 4 ? 20 : 0));
    return mode & 8 ? -v : v;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 11) {
        return 0;
    }
    const uint8_t mode = data[0];
    const int width = static_cast<int8_t>(data[1]) + (mode & 16 ? 100 : 0);
    const int decimals = static_cast<int8_t>(data[2]) % 70;
    const double value = value_from(data + 3, mode);
    const float single = static_cast<float>(value);

    const long long fixed_size = std::max<long long>(at_least_zero(width), decimals + 3) + 1;
    const long long width_size = at_least_zero(width) + 1;
    run(fixed_size, [&](char* out) { return gparse_dbltoas(value, width, decimals, out); });
    run(fixed_size, [&](char* out) { return gparse_flttoas(single, width, decimals, out); });
    run(fixed_size, [&](char* out) { return gparse_dblxxas(value, width, decimals, out); });
    run(fixed_size, [&](char* out) { return gparse_fltxxas(single, width, decimals, out); });
    run(width_size, [&](char* out) { return gparse_dblmxas(value, width, out); });
    run(width_size, [&](char* out) { return gparse_fltmxas(single, width, out); });
    int32_t integer = 0;
    std::memcpy(&integer, data + 3, sizeof integer);
    run(width_size, [&](char* out) { return gparse_inttoas(integer, width, out); });

    // The stripper gets the formatted text, and the input's own text.
    std::vector<char> formatted(static_cast<size_t>(fixed_size));
    if (gparse_dbltoas(value, width, decimals, formatted.data())) {
        strip(formatted.data());
    }
    std::string text(reinterpret_cast<const char*>(data + 11), size - 11);
    text.resize(std::strlen(text.c_str()));
    strip(text);
    return 0;
}
