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

// Types `length` characters at `text` by the number and integer rules.
NumberReading read_number(const char* text, size_t length);

} // namespace tql::parse

#endif
