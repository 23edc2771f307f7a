// The astr_ string helpers: copies, comparisons, leaf and directory parts
// of names, line extraction, the var("name") wrapper and data set names
// turned into identifiers.
#include <tql70/astr.h>

#include <tql70/aerr.h>
#include <tql70/gmem.h>
#include <tql70/zq_paths.h>

#include "platform/platform.h"

#include <cstdio>
#include <cstring>

namespace {

// A new block of `bytes` bytes; an allocation failure ends the process.
char* allocate_or_die(size_t bytes)
{
    char* block = static_cast<char*>(gmem_ee_malloc(bytes, 1));
    if (!block) {
        aerr_memory_error();
    }
    return block;
}

// A new copy of the first `length` bytes of `text`.
char* copy_of(const char* text, size_t length)
{
    char* copy = allocate_or_die(length + 1);
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

char ascii_upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr char kVarPrefix[] = "var(\"";
constexpr char kVarSuffix[] = "\")";

} // namespace

extern "C" {

char* astr_add_var_fn(const char* name)
{
    if (!name) {
        return nullptr;
    }
    const size_t length = std::strlen(kVarPrefix) + std::strlen(name) + std::strlen(kVarSuffix);
    char* text = allocate_or_die(length + 1);
    std::snprintf(text, length + 1, "var(\"%s\")", name);
    return text;
}

char* astr_delete_var_fn(const char* text)
{
    if (!text) {
        return nullptr;
    }
    const size_t prefix = std::strlen(kVarPrefix);
    const size_t suffix = std::strlen(kVarSuffix);
    const size_t length = std::strlen(text);
    if (length < prefix + suffix || std::strncmp(text, kVarPrefix, prefix) != 0 ||
        std::strcmp(text + length - suffix, kVarSuffix) != 0) {
        return nullptr;
    }
    return copy_of(text + prefix, length - prefix - suffix);
}

char* astr_new_string(const char* text)
{
    return text ? copy_of(text, std::strlen(text)) : nullptr;
}

int astr_strings_equal(const char* a, const char* b)
{
    if (!a || !b) {
        return 0;
    }
    for (; *a && *b; ++a, ++b) {
        if (ascii_upper(*a) != ascii_upper(*b)) {
            return 0;
        }
    }
    return *a == *b ? 1 : 0;
}

int astr_str_matches_at_tail(const char* text, const char* tail)
{
    if (!text || !tail) {
        return 0;
    }
    // Trying each occurrence of the tail in turn until one reaches the end
    // of the text comes to the same as comparing the last bytes.
    const size_t text_length = std::strlen(text);
    const size_t tail_length = std::strlen(tail);
    return tail_length <= text_length && std::memcmp(text + text_length - tail_length, tail, tail_length) == 0;
}

char* astr_get_leaf_name(char* path)
{
    if (!path) {
        return nullptr;
    }
    convertFileName(path);
    char* last = std::strrchr(path, '\\');
    return last ? last + 1 : path;
}

char* astr_get_path_name(char* path)
{
    if (!path) {
        return nullptr;
    }
    convertFileName(path);
    const char* last = std::strrchr(path, '\\');
    if (!last || last == path) {
        return nullptr;
    }
    return copy_of(path, static_cast<size_t>(last - path));
}

int astr_remove_extent(char* path)
{
    if (!path) {
        return 0;
    }
    char* dot = std::strchr(astr_get_leaf_name(path), '.');
    if (dot) {
        *dot = '\0';
    }
    return 1;
}

const char* astr_extract_line_from_multilines(const char* text, char* line, int max)
{
    if (!text || !line || max < 0) {
        return nullptr;
    }
    int kept = 0;
    while (*text && *text != '\n' && kept < max) {
        line[kept++] = *text++;
    }
    line[kept] = '\0';
    if (*text == '\0') {
        return nullptr;
    }
    // Skips the line feed, or, when the line was cut at `max`, the first
    // character that did not fit.
    return text + 1;
}

char* astr_translate_kps_dataset_name(const char* name)
{
    if (!name) {
        return nullptr;
    }
    const bool leading_digit = name[0] >= '0' && name[0] <= '9';
    const size_t length = std::strlen(name) + (leading_digit ? 1 : 0);
    char* identifier = allocate_or_die(length + 1);
    std::snprintf(identifier, length + 1, leading_digit ? "_%s" : "%s", name);
    astr_kps_get_valid_name(identifier, ASTR_KIND_IDENTIFIER, 0, '_', identifier);
    return identifier;
}

int astr_config_file_is_readable(const char* path)
{
    if (!path || !*path || !path_status(path).is_file) {
        return 0;
    }
    FILE* file = fopen_utf8(path, "r");
    if (!file) {
        return 0;
    }
    std::fclose(file);
    return 1;
}

} // extern "C"
