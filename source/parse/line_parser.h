// Internal parts of the line parser shared by its families: classifying a
// line, cutting fields, typing them.
#ifndef TQL70_SOURCE_PARSE_LINE_PARSER_H
#define TQL70_SOURCE_PARSE_LINE_PARSER_H

#include <tql70/gparse.h>

#include <cstddef>

namespace tql::parse {

// Character classes of one parse: 'm' mark, ' ' separator, 'x' other.
class CharClasses {
public:
    CharClasses(const char* seps, const char* marks);
    char of(unsigned char c) const { return table_[c]; }

private:
    char table_[256];
};

// The number of characters of `line` that are read: up to the first `endc`
// (0: none). `signed_end` compares the end character as a signed char with
// the unsigned line byte, so one above 127 never matches (the _mem
// families).
size_t parsed_length(const char* line, char endc, bool signed_end);

// Cuts the fields of line[0, length) by the classes. `field(i)` gives the
// storage for field i, or null to stop cutting (a full record). Returns
// the number of fields.
template <typename FieldAt>
unsigned int cut_fields(const char* line, size_t length, const CharClasses& classes, FieldAt field)
{
    unsigned int closed = 0;
    bool inside = false;
    for (size_t pos = 0; pos < length; ++pos) {
        parsefield* current = field(closed);
        if (!current) {
            return closed;
        }
        switch (classes.of(static_cast<unsigned char>(line[pos]))) {
        case 'x':
            if (!inside) {
                current->start = static_cast<unsigned int>(pos);
                inside = true;
            }
            current->end = static_cast<unsigned int>(pos);
            break;
        case 'm':
            if (inside) {
                current = field(++closed);
                if (!current) {
                    return closed;
                }
            }
            current->start = current->end = static_cast<unsigned int>(pos);
            ++closed;
            inside = false;
            break;
        default:
            if (inside) {
                ++closed;
                inside = false;
            }
            break;
        }
    }
    return closed + (inside ? 1 : 0);
}

// Sets is_int, ival, is_num and dval of a field from its text in `line`.
void type_field(const char* line, parsefield& field);

} // namespace tql::parse

#endif
