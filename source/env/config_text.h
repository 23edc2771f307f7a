// White space in configuration lines, shared by the reader and the writer:
// bytes below 128 only (bytes of 128 and above are never space).
#ifndef TQL70_SOURCE_ENV_CONFIG_TEXT_H
#define TQL70_SOURCE_ENV_CONFIG_TEXT_H

#include <cctype>
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

} // namespace tql::env

#endif
