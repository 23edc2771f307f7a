// Process variables with the error-callback fallback, and the two
// iterators over path lists ("a;b:c", drives kept whole).
#include "env/env_store.h"

#include <tql70/process_env.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

namespace tql::env {

size_t path_element_length(const char* text)
{
    const size_t semicolon = std::strcspn(text, ";");
    size_t colon = std::strcspn(text, ":");
    const bool drive = text[0] && text[1] == ':' && std::isalpha(static_cast<unsigned char>(text[0])) &&
                       (text[2] == '\\' || text[2] == '/');
    if (drive) {
        colon = 2 + std::strcspn(text + 2, ":");
    }
    return semicolon < colon ? semicolon : colon;
}

} // namespace tql::env

namespace {

// The iteration of gui_env_extract_path: a copy of the list, the start of
// the next element, and whether the last element was not delivered (the
// destination was too small), so that it comes again.
struct ExtractState {
    std::string list;
    size_t position = 0;
};
ExtractState extract_state;

// The iteration of gui_env_get_tok over the caller's list.
const char* token_position = nullptr;
std::string token_buffer;

} // namespace

extern "C" {

char* gui_env_get_sys(GuiEnv ignored, const char* name)
{
    (void)ignored;
    if (char* value = tql_getenv(name)) {
        return value;
    }
    char* replacement = nullptr;
    if (gui_env_apply_error(GUI_ENV_ERR_NO_SYSVAR, nullptr, name, &replacement)) {
        return replacement;
    }
    return nullptr;
}

int gui_env_extract_path(char* destination, const char* list, int expand, int size, GuiEnv env, ...)
{
    if (!destination) {
        return -1;
    }
    ExtractState& state = extract_state;
    if (list) {
        try {
            state.list = list;
        } catch (const std::bad_alloc&) {
            return -1;
        }
        state.position = 0;
    }
    if (state.position >= state.list.size()) {
        return -2;
    }
    const char* start = state.list.c_str() + state.position;
    const size_t length = tql::env::path_element_length(start);
    const std::string element(start, length);
    const size_t next = state.position + length + (start[length] ? 1 : 0);

    int result;
    if (expand) {
        va_list args;
        va_start(args, env);
        result = tql::env::expand_with_list(destination, element.c_str(), size, env, args);
        va_end(args);
    } else if (size > 0 && element.size() < static_cast<size_t>(size)) {
        std::memcpy(destination, element.c_str(), element.size() + 1);
        result = 0;
    } else {
        result = static_cast<int>(element.size() + 1);
    }
    // A positive result (too small) keeps the element for the next call.
    if (result <= 0) {
        state.position = next;
    }
    return result;
}

char* gui_env_get_tok(const char* list)
{
    if (list) {
        token_position = list;
    }
    if (!token_position || !*token_position) {
        token_position = nullptr;
        return nullptr;
    }
    const size_t length = tql::env::path_element_length(token_position);
    try {
        token_buffer.assign(token_position, length);
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "\nout of memory");
        return nullptr;
    }
    token_position += length + (token_position[length] ? 1 : 0);
    return &token_buffer[0];
}

} // extern "C"
