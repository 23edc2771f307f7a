// Internal parts of the line parser shared by its families: classifying a
// line, cutting fields, typing them.
#ifndef TQL70_SOURCE_PARSE_LINE_PARSER_H
#define TQL70_SOURCE_PARSE_LINE_PARSER_H

#include <tql70/gparse.h>

namespace tql::parse {

// Character classes of one parse: 'm' mark, ' ' separator, 's' where
// reading stops (the terminating NUL and the end character), 'x' other.
// `signed_end` compares the end character as a signed char with the
// unsigned line byte, so one above 127 never matches (the _mem families).
class CharClasses {
public:
    CharClasses(const char* seps, const char* marks, char endc, bool signed_end);
    char of(char c) const { return table_[static_cast<unsigned char>(c)]; }

private:
    char table_[256];
};

// Sets is_int, ival, is_num and dval of a field from its text in `line`.
void type_field(const char* line, parsefield& field);

// Cuts and types the fields of `line` by the classes, up to the first stop
// character. `field(i)` gives the storage for field i, or null to stop
// cutting (a full record). Returns the number of fields.
template <typename FieldAt>
unsigned int cut_fields(const char* line, const CharClasses& classes, FieldAt field)
{
    unsigned int count = 0;
    for (const char* p = line;; ++p) {
        const char kind = classes.of(*p);
        if (kind == ' ') {
            continue;
        }
        if (kind == 's') {
            return count;
        }
        parsefield* current = field(count);
        if (!current) {
            return count;
        }
        current->start = static_cast<unsigned int>(p - line);
        if (kind == 'x') {
            while (classes.of(p[1]) == 'x') {
                ++p;
            }
        }
        current->end = static_cast<unsigned int>(p - line);
        type_field(line, *current);
        ++count;
    }
}

} // namespace tql::parse

#endif
