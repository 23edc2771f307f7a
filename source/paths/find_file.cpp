// Search for a file along a path list, quoting of command-line words, and
// ASCII lower-casing.
#include <tql70/gmem.h>
#include <tql70/gui_env.h>
#include <tql70/zq_paths.h>

#include "platform/platform.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

bool acceptable(const char* candidate, int accept_dirs)
{
    const PathStatus status = path_status(candidate);
    return (status.is_file && !status.is_symlink) || (accept_dirs && status.is_directory);
}

// The process-wide buffer of ZQ_quote_argument; it only grows.
char* quote_buffer = nullptr;
uint64_t quote_capacity = 0;

} // namespace

extern "C" {

char* ZQ_find_file(const char* name, const char* path_list, int accept_dirs)
{
    if (!name || !*name) {
        return nullptr;
    }
    if (ZQ_path_is_absolute(name)) {
        char* copy = ZQ_stringcopy(name);
        if (!copy) {
            return nullptr;
        }
        ZQ_fixup_path(copy);
        if (acceptable(copy, accept_dirs)) {
            return copy;
        }
        gmem_ee_free(copy);
        return nullptr;
    }
    char* list = ZQ_stringcopy(path_list ? path_list : ".");
    if (!list) {
        return nullptr;
    }
    const size_t name_length = std::strlen(name);
    char* candidate = nullptr;
    size_t capacity = 0;
    for (char* entry = gui_env_get_tok(list); entry; entry = gui_env_get_tok(nullptr)) {
        ZQ_fixup_path(entry);
        const size_t needed = std::strlen(entry) + 1 + name_length + 1;
        if (needed > capacity) {
            // First entry: twice the need, at least 100 bytes; later ones
            // double to twice the need when a candidate would not fit.
            const size_t grown = capacity == 0 && needed * 2 < 100 ? 100 : needed * 2;
            char* larger = static_cast<char*>(gmem_ee_realloc(candidate, grown, 1));
            if (!larger) {
                break;
            }
            candidate = larger;
            capacity = grown;
        }
        std::snprintf(candidate, capacity, "%s%c%s", entry, '\\', name);
        if (acceptable(candidate, accept_dirs)) {
            gmem_ee_free(list);
            return candidate;
        }
    }
    gmem_ee_free(candidate);
    gmem_ee_free(list);
    return nullptr;
}

char* ZQ_quote_argument(const char* arg)
{
    if (!arg) {
        return nullptr;
    }
    const uint64_t length = std::strlen(arg);
    const uint64_t needed = 2 * length + 3;
    if (needed > quote_capacity) {
        char* grown = static_cast<char*>(gmem_ee_realloc(quote_buffer, needed, 1));
        if (!grown) {
            return nullptr;
        }
        quote_buffer = grown;
        quote_capacity = needed;
    }
    char* out = quote_buffer;
    *out++ = '"';
    for (const char* p = arg; *p; ++p) {
        if (*p == '"' || *p == '\\') {
            *out++ = '\\';
        }
        *out++ = *p;
    }
    *out++ = '"';
    *out = '\0';
    return quote_buffer;
}

char* ZQ_quote_argument_copy(const char* arg)
{
    if (!arg) {
        return ZQ_stringcopy("\"\"");
    }
    const char* quoted = ZQ_quote_argument(arg);
    return quoted ? ZQ_stringcopy(quoted) : nullptr;
}

char* ZQ_strlwr(char* s)
{
    for (char* p = s; p && *p; ++p) {
        if (*p >= 'A' && *p <= 'Z') {
            *p = static_cast<char>(*p - 'A' + 'a');
        }
    }
    return s;
}

} // extern "C"
