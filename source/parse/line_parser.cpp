// The fixed-record line parser (gparse_parline) and the parts all the
// parser families share: character classes, the end character, typing.
#include "parse/line_parser.h"
#include "parse/number_scan.h"

#include <cstring>

namespace tql::parse {

CharClasses::CharClasses(const char* seps, const char* marks)
{
    std::memset(table_, 'x', sizeof table_);
    for (const char* p = seps; p && *p; ++p) {
        table_[static_cast<unsigned char>(*p)] = ' ';
    }
    // A character in both sets is a mark.
    for (const char* p = marks; p && *p; ++p) {
        table_[static_cast<unsigned char>(*p)] = 'm';
    }
}

size_t parsed_length(const char* line, char endc, bool signed_end)
{
    if (endc == 0 || (signed_end && static_cast<signed char>(endc) < 0)) {
        return std::strlen(line);
    }
    const char* stop = std::strchr(line, endc);
    return stop ? static_cast<size_t>(stop - line) : std::strlen(line);
}

void type_field(const char* line, parsefield& field)
{
    const NumberReading reading = read_number(line + field.start, field.end - field.start + 1);
    field.is_int = reading.is_int;
    field.ival = reading.ival;
    field.is_num = reading.is_num;
    field.dval = reading.dval;
}

} // namespace tql::parse

using namespace tql::parse;

extern "C" unsigned int gparse_parline(const char* line, const char* seps, const char* marks, char endc, parserec* rec)
{
    if (!rec) {
        return 0;
    }
    rec->line = line;
    rec->count = 0;
    if (!seps || !*seps || !line) {
        return 0;
    }
    const CharClasses classes(seps, marks);
    const size_t length = parsed_length(line, endc, false);
    rec->count = cut_fields(line, length, classes, [rec](unsigned int i) -> parsefield* {
        return i < GPARSE_MAX_FIELDS ? &rec->fields[i] : nullptr;
    });
    for (unsigned int i = 0; i < rec->count; ++i) {
        type_field(line, rec->fields[i]);
    }
    return 1;
}

extern "C" parserecMem* gparse_init_parserecMem(parserecMem* rec)
{
    if (rec) {
        std::memset(rec, 0, sizeof *rec);
    }
    return rec;
}
