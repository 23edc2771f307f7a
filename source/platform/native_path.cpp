// Conversion of library-form names (either separator, optional drive
// prefix) to native Linux names, and back to the library's '\' form.
#include "platform/platform.h"

#include <tql70/platform.h>

#include <cctype>
#include <cstring>

namespace {

bool has_drive_prefix(const char* name)
{
    return std::isalpha(static_cast<unsigned char>(name[0])) && name[1] == ':';
}

// Writes the native form of `in` to `out`; `out` may equal `in` because
// the output is never longer than the input and is written front to back.
void convert(const char* in, char* out)
{
    if (has_drive_prefix(in)) {
        in += 2;
        // "C:" alone names the root; "C:\x" keeps its separator; "C:x"
        // is relative.
        if (*in == '\0') {
            *out++ = '/';
        }
    }
    for (; *in; ++in) {
        *out++ = (*in == '\\') ? '/' : *in;
    }
    *out = '\0';
}

} // namespace

std::string native_path(const char* name)
{
    if (!name) {
        return std::string();
    }
    std::string result(std::strlen(name) + 1, '\0');
    convert(name, &result[0]);
    result.resize(std::strlen(result.c_str()));
    return result;
}

void FixFilenameSlashes(char* name)
{
    if (!name) {
        return;
    }
    for (; *name; ++name) {
        if (*name == '/') {
            *name = '\\';
        }
    }
}

extern "C" char* tql_native_path(const char* in, char* out)
{
    if (!in || !out) {
        return nullptr;
    }
    convert(in, out);
    return out;
}
