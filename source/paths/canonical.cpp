// Canonical path forms: separator clean-up, absolute names, the canonical
// directory name with its process-wide cache, and path equality.
#include <tql70/avltree.h>
#include <tql70/gmem.h>
#include <tql70/gparse.h>
#include <tql70/string_search.h>
#include <tql70/zq_paths.h>

#include "platform/platform.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace {

// Canonical paths are written into buffers of this size.
constexpr size_t kPathBufferSize = TQL70_PATH_BUFFER_SIZE;

bool is_separator(char c)
{
    return c == '/' || c == '\\';
}

// The current directory in library form ('\' separators).
std::string current_directory_library_form()
{
    std::string directory = current_directory();
    FixFilenameSlashes(&directory[0]);
    return directory;
}

void fixup(std::string& path)
{
    ZQ_fixup_path(&path[0]);
    path.resize(std::strlen(path.c_str()));
}

// The canonical form of `path`, or nothing when it is null or reduces to
// nothing.
std::optional<std::string> canonical(const char* path)
{
    if (!path) {
        return std::nullopt;
    }
    ensure_qt_core_settings();
    std::string full;
    if (ZQ_path_is_absolute(path)) {
        full = path;
    } else {
        // Leading "./" pairs go; a further pair is looked at only when the
        // next character is a dot again, so "." and "../x" stay whole.
        while (path[0] == '.' && is_separator(path[1])) {
            path += 2;
            if (path[0] != '.') {
                break;
            }
        }
        if (!*path) {
            return std::nullopt;
        }
        full = current_directory_library_form() + "/" + path;
    }
    fixup(full);
    return full;
}

[[noreturn]] void malformed_long_form(const char* path)
{
    std::fprintf(stderr, "tql70: malformed absolute directory name '%s'\n", path);
    std::abort();
}

// The true long form of an absolute library-form path: each component that
// exists as written stays; one that does not is replaced by the first entry
// of its directory that matches it without regard to case; otherwise it
// stays as written. Uses '\' throughout.
std::optional<std::string> long_form(const std::string& path)
{
    if (path.empty()) {
        return std::nullopt;
    }
    std::string out;
    size_t i = 0;
    if (path.size() >= 2 && path[0] == '\\' && path[1] == '\\') {
        const size_t server_end = path.find_first_of("/\\", 2);
        out = path.substr(0, server_end);
        i = server_end == std::string::npos ? path.size() : server_end;
        if (i < path.size()) {
            out += '\\';
            ++i;
        }
    } else {
        if (path.size() >= 2 && path[1] == ':') {
            if (path.size() < 3 || path[2] != '\\') {
                malformed_long_form(path.c_str());
            }
            out = path.substr(0, 2);
            i = 2;
        } else if (!is_separator(path[0])) {
            malformed_long_form(path.c_str());
        }
        out += '\\';
        ++i;
    }
    while (i < path.size()) {
        size_t end = path.find_first_of("/\\", i);
        if (end == std::string::npos) {
            end = path.size();
        }
        const std::string component = path.substr(i, end - i);
        std::string found;
        out += find_entry_ignoring_case(native_path(out.c_str()), component, found) ? found : component;
        i = end;
        if (i < path.size()) {
            out += '\\';
            ++i;
        }
    }
    return out;
}

ZQstringDB* directory_cache()
{
    static ZQstringDB* cache = ZQstringDB_new(gmem_ee_free, 1);
    return cache;
}

} // namespace

extern "C" {

void ZQ_fixup_path(char* path)
{
    if (!path) {
        return;
    }
    char* read = path;
    char* write = path;
    if (path[0] == '\\' && path[1] == '\\') {
        ++read;
        ++write;
    }
    while (*read) {
        if (is_separator(*read)) {
            // One '\' for the whole run of separators and "." steps, so
            // "/./" and "//.//" both become one '\'.
            *write++ = '\\';
            while (is_separator(*read) || (read[0] == '.' && is_separator(read[1]) && is_separator(read[-1]))) {
                ++read;
            }
        } else {
            *write++ = *read++;
        }
    }
    while (write > path && is_separator(write[-1])) {
        --write;
    }
    *write = '\0';
}

int ZQ_path_is_absolute(const char* path)
{
    if (!path) {
        return 0;
    }
    const unsigned char first = static_cast<unsigned char>(path[0]);
    return is_separator(path[0]) || (first < 128 && std::isalpha(first) && path[1] == ':');
}

char* ZQ_canonical_path(const char* path, char* out)
{
    if (!out) {
        return nullptr;
    }
    const std::optional<std::string> result = canonical(path);
    if (!result || result->size() >= kPathBufferSize) {
        return nullptr;
    }
    std::memcpy(out, result->c_str(), result->size() + 1);
    return out;
}

char* ZQ_canonical_path_force(const char* path, char* out)
{
    if (!out) {
        return nullptr;
    }
    const std::optional<std::string> full = canonical(path);
    if (!full || full->size() >= kPathBufferSize) {
        return nullptr;
    }
    const size_t cut = full->find_last_of("/\\");
    std::string result;
    if (cut == std::string::npos) {
        result = *full;
    } else {
        const std::string directory = full->substr(0, cut);
        char* canonical_directory = ZQ_get_canonical_directory_name(directory.c_str());
        result = (canonical_directory ? std::string(canonical_directory) : directory) + "/" + full->substr(cut + 1);
        gmem_ee_free(canonical_directory);
    }
    fixup(result);
    if (result.size() >= kPathBufferSize) {
        return nullptr;
    }
    std::memcpy(out, result.c_str(), result.size() + 1);
    return out;
}

char* ZQ_get_canonical_directory_name(const char* dir)
{
    ZQstringDB* cache = directory_cache();
    if (!cache || !dir) {
        return nullptr;
    }
    if (void** cached = cache->lookup(cache, dir)) {
        return ZQ_stringcopy(static_cast<const char*>(*cached));
    }
    ensure_qt_core_settings();
    const std::string remembered = current_directory();
    std::string absolute;
    if (change_directory(dir)) {
        absolute = current_directory_library_form();
        change_directory(remembered.c_str());
    }
    std::string chosen = dir;
    if (!absolute.empty()) {
        if (std::optional<std::string> resolved = long_form(absolute)) {
            chosen = *resolved;
        }
    }
    char* stored = ZQ_stringcopy(chosen.c_str());
    if (!stored) {
        return nullptr;
    }
    if (!cache->insert(cache, dir, stored)) {
        gmem_ee_free(stored);
        return nullptr;
    }
    return ZQ_stringcopy(stored);
}

int ZQ_paths_are_same(const char* a, const char* b, int first_is_file)
{
    std::optional<std::string> first = canonical(a);
    std::optional<std::string> second = canonical(b);
    if (!first || !second) {
        return 0;
    }
    ZQ_strlwr(&(*first)[0]);
    ZQ_strlwr(&(*second)[0]);
    if (first_is_file) {
        // The last separator, not the one at position 0, and beyond the
        // server name's leading pair on a UNC name.
        const size_t lowest = first->compare(0, 2, "\\\\") == 0 ? 3 : 1;
        for (size_t i = first->size(); i-- > lowest;) {
            if (is_separator((*first)[i])) {
                first->resize(i);
                break;
            }
        }
    }
    return tql_strcmp(first->c_str(), second->c_str()) == 0;
}

int gdir_compare_paths(const char* a, const char* b)
{
    std::string first = a ? a : "";
    std::string second = b ? b : "";
    for (std::string* path : {&first, &second}) {
        convertFileName(&(*path)[0]);
        if (!path->empty() && path->back() == '\\') {
            path->pop_back();
        }
    }
    return gparse_stricmp(first.c_str(), second.c_str()) == 0;
}

const char* ZQ_get_basename_from_file(const char* file)
{
    if (!file) {
        return nullptr;
    }
    const char* base = file;
    for (const char* p = file; *p; ++p) {
        if (is_separator(*p)) {
            base = p + 1;
        }
    }
    return base;
}

char* ZQ_get_directory_from_file(const char* file, char* out)
{
    if (!out) {
        return nullptr;
    }
    std::string directory = file ? file : "";
    const size_t cut = directory.find_last_of("/\\");
    directory = cut == std::string::npos ? std::string(".") : directory.substr(0, cut);
    out[0] = '\0';
    ZQ_canonical_path(directory.c_str(), out);
    return out;
}

} // extern "C"
