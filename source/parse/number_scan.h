// The number rule on a piece of a line (pointer and length, no terminator
// needed), for the line parser: the same answers as gparse_astodbl and
// gparse_astoint without copying the field first.
#ifndef TQL70_SOURCE_PARSE_NUMBER_SCAN_H
#define TQL70_SOURCE_PARSE_NUMBER_SCAN_H

#include <cstddef>

namespace tql::parse {

struct NumberReading {
    bool is_num = false;
    bool is_int = false;
    double dval = 0.0; // 0.0 unless is_num
    int ival = 0;      // 0 unless is_int
};

// Length of the decimal number at the start of [begin, end), 0 when there
// is none: [+|-] (digits [. [digits]] | . digits) [(e|E) [+|-] digits].
// An "e" not followed by exponent digits is not part of the number. No
// white space is skipped.
size_t decimal_length(const char* begin, const char* end);

// Types `length` characters at `text` by the number and integer rules.
NumberReading read_number(const char* text, size_t length);

} // namespace tql::parse

#endif
