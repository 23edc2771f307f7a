// The fixed-record line parser (gparse_parline) and the character classes
// all the parser families share.
#include "parse/line_parser.h"

#include <cstring>

namespace tql::parse {

CharClasses::CharClasses(const char* seps, const char* marks, char endc, bool signed_end)
{
    std::memset(table_, 'x', sizeof table_);
    for (const char* p = seps; p && *p; ++p) {
        table_[static_cast<unsigned char>(*p)] = ' ';
    }
    // A character in both sets is a mark.
    for (const char* p = marks; p && *p; ++p) {
        table_[static_cast<unsigned char>(*p)] = 'm';
    }
    // The end character wins over both.
    if (!(signed_end && static_cast<signed char>(endc) < 0)) {
        table_[static_cast<unsigned char>(endc)] = 's';
    }
    table_[0] = 's';
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
    const CharClasses classes(seps, marks, endc, false);
    rec->count = cut_fields(line, classes, [rec](unsigned int i) -> parsefield* {
        return i < GPARSE_MAX_FIELDS ? &rec->fields[i] : nullptr;
    });
    return 1;
}

extern "C" parserecMem* gparse_init_parserecMem(parserecMem* rec)
{
    if (rec) {
        std::memset(rec, 0, sizeof *rec);
    }
    return rec;
}
