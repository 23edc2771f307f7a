// Reading the fields of a parsed line back: as text, as numbers, and spans
// of the line from one field to another.
#include <tql70/gparse.h>

#include <cstring>

namespace {

// The fields of either record kind, by index; null for a bad index.
const parsefield* field_at(const parsefield* fields, unsigned int count, int index)
{
    return fields && index >= 0 && static_cast<unsigned int>(index) < count ? &fields[index] : nullptr;
}

unsigned int get_text(const char* line, const parsefield* field, char* out)
{
    if (!field || !line || !out) {
        return 0;
    }
    gparse_strtostr(line, static_cast<int>(field->start), static_cast<int>(field->end), out);
    return 1;
}

unsigned int get_int(const parsefield* field, int* out)
{
    if (!out) {
        return 0;
    }
    const bool ok = field && field->is_int;
    *out = ok ? field->ival : 0;
    return ok;
}

unsigned int get_double(const parsefield* field, double* out)
{
    if (!out) {
        return 0;
    }
    const bool ok = field && field->is_num;
    *out = ok ? field->dval : 0.0;
    return ok;
}

unsigned int get_float(const parsefield* field, float* out)
{
    if (!out) {
        return 0;
    }
    const bool ok = field && field->is_num;
    *out = ok ? static_cast<float>(field->dval) : 0.0f;
    return ok;
}

char* get_span(const char* line, const parsefield* first, const parsefield* last, char* out)
{
    if (!out) {
        return nullptr;
    }
    if (!line || !first || !last || first->start > last->end) {
        out[0] = '\0';
        return out;
    }
    const size_t length = last->end - first->start + 1;
    std::memcpy(out, line + first->start, length);
    out[length] = '\0';
    return out + length;
}

} // namespace

extern "C" {

unsigned int gparse_getclump(parserec* rec, int index, char* out)
{
    return rec ? get_text(rec->line, field_at(rec->fields, rec->count, index), out) : 0;
}

unsigned int gparse_getclump_mem(parserecMem* rec, int index, char* out)
{
    return rec ? get_text(rec->line, field_at(rec->fields, rec->count, index), out) : 0;
}

unsigned int gparse_intclump(parserec* rec, int index, int* out)
{
    return get_int(rec ? field_at(rec->fields, rec->count, index) : nullptr, out);
}

unsigned int gparse_intclump_mem(parserecMem* rec, int index, int* out)
{
    return get_int(rec ? field_at(rec->fields, rec->count, index) : nullptr, out);
}

unsigned int gparse_d_relclump(parserec* rec, int index, double* out)
{
    return get_double(rec ? field_at(rec->fields, rec->count, index) : nullptr, out);
}

unsigned int gparse_d_relclump_mem(parserecMem* rec, int index, double* out)
{
    return get_double(rec ? field_at(rec->fields, rec->count, index) : nullptr, out);
}

unsigned int gparse_s_relclump(parserec* rec, int index, float* out)
{
    return get_float(rec ? field_at(rec->fields, rec->count, index) : nullptr, out);
}

unsigned int gparse_s_relclump_mem(parserecMem* rec, int index, float* out)
{
    return get_float(rec ? field_at(rec->fields, rec->count, index) : nullptr, out);
}

char* gparse_getplinstr(parserec* rec, int first, int last, char* out)
{
    return rec ? get_span(rec->line, field_at(rec->fields, rec->count, first),
                          field_at(rec->fields, rec->count, last), out)
               : get_span(nullptr, nullptr, nullptr, out);
}

char* gparse_getplinstr_mem(parserecMem* rec, int first, int last, char* out)
{
    return rec ? get_span(rec->line, field_at(rec->fields, rec->count, first),
                          field_at(rec->fields, rec->count, last), out)
               : get_span(nullptr, nullptr, nullptr, out);
}

} // extern "C"
