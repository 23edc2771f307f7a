// Configuration text as the reader and the writer both see it: white space
// is bytes below 128 only (bytes of 128 and above are never space), and a
// file is taken whole, NUL bytes included.
#ifndef TQL70_SOURCE_ENV_CONFIG_TEXT_H
#define TQL70_SOURCE_ENV_CONFIG_TEXT_H

#include <cctype>
#include <cstdio>
#include <string>

namespace tql::env {

inline bool is_config_space(char c)
{
    const unsigned char byte = static_cast<unsigned char>(c);
    return byte < 128 && std::isspace(byte);
}

inline void trim_trailing(std::string& text)
{
    while (!text.empty() && is_config_space(text.back())) {
        text.pop_back();
    }
}

// The position of the first character at or after `from` that is not space.
inline size_t skip_leading(const std::string& text, size_t from = 0)
{
    while (from < text.size() && is_config_space(text[from])) {
        ++from;
    }
    return from;
}

// Appends the rest of `file` to `content`; false on a read error.
inline bool read_whole_file(FILE* file, std::string& content)
{
    char chunk[65536];
    size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, file)) > 0) {
        content.append(chunk, n);
    }
    return !std::ferror(file);
}

} // namespace tql::env

#endif
