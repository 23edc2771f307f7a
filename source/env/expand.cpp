// Expansion of $NAME and %NAME references (and their braced forms) in
// strings, pass after pass until a pass meets no reference.
#include "env/env_store.h"

#include <tql70/process_env.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr size_t kBufferStep = 2048;

// The pass output. Its room grows in 2048-byte steps.
class WorkBuffer {
public:
    explicit WorkBuffer(size_t source_length)
    {
        text_.reserve(source_length + 1 > kBufferStep ? source_length + 1 : kBufferStep);
    }

    void append(const char* text, size_t length)
    {
        const size_t needed = text_.size() + length + 1;
        if (needed > text_.capacity()) {
            text_.reserve((needed / kBufferStep + 1) * kBufferStep);
        }
        text_.append(text, length);
    }
    void append(char c) { append(&c, 1); }

    std::string& text() { return text_; }

private:
    std::string text_;
};

// Memory for an expansion ran out: an expansion has no status for it, so
// the process ends.
[[noreturn]] void expansion_memory_exhausted()
{
    std::fprintf(stderr, "\n###  Exceeded internal string buffer size in gui_env  ###\n");
    std::exit(1);
}

struct Lookup {
    GuiEnv env;
    const std::vector<GuiEnv>* further;
    bool configuration_references; // '%' recognised
};

bool is_name_char(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// Value of the configuration variable `name` in one environment, looked up
// at all levels without the error callback.
bool configuration_value(GuiEnv env, const char* name, std::string& value)
{
    char normalized[GUI_ENV_NAME_MAX + 1];
    if (!env || !*name) {
        return false;
    }
    tql::env::normalize_name(name, normalized);
    const GuiEnvEntry* entry = tql::env::find_entry(env, normalized, GUI_ENV_ANY, false);
    if (!entry) {
        return false;
    }
    value = entry->value ? entry->value : "";
    return true;
}

// Resolves one reference; false when it fails (undefined and not supplied
// by the error callback).
bool resolve(const Lookup& lookup, char kind, const char* name, std::string& value)
{
    char* replacement = nullptr;
    if (kind == '$') {
        if (const char* found = tql_getenv(name)) {
            value = found;
            return true;
        }
        if (std::strcmp(name, "ZQTARVEX_DIR") == 0) {
            value = "\\zqtarvex";
            return true;
        }
        if (gui_env_apply_env_error(GUI_ENV_ERR_NO_SYSVAR, lookup.env, name, &replacement) && replacement) {
            value = replacement;
            return true;
        }
        return false;
    }
    // The callback stays out of the individual lookups: it is asked once,
    // after the environment, the further ones and the default one failed.
    if (configuration_value(lookup.env, name, value)) {
        return true;
    }
    for (GuiEnv further : *lookup.further) {
        if (configuration_value(further, name, value)) {
            return true;
        }
    }
    if (configuration_value(tql::env::default_environment(), name, value)) {
        return true;
    }
    if (gui_env_apply_env_error(GUI_ENV_ERR_NO_VAR, lookup.env, name, &replacement) && replacement) {
        value = replacement;
        return true;
    }
    return false;
}

bool starts_reference(const Lookup& lookup, char c)
{
    return c == '$' || (c == '%' && lookup.configuration_references);
}

// One pass over `input`. Returns whether it met a reference.
bool expand_pass(const Lookup& lookup, const std::string& input, WorkBuffer& output)
{
    bool met_reference = false;
    bool drop_next = false;
    const size_t length = input.size();
    size_t i = 0;
    while (i < length) {
        const char c = input[i];
        const bool braced = c == '{' && i + 1 < length && starts_reference(lookup, input[i + 1]);
        if (!braced && !starts_reference(lookup, c)) {
            if (!drop_next) {
                output.append(c);
            }
            drop_next = false;
            ++i;
            continue;
        }
        met_reference = true;
        const char kind = braced ? input[i + 1] : c;
        i += braced ? 2 : 1;

        // The name: up to '}' when braced, else letters, digits and '_'.
        // Only the first 63 characters count; the rest is consumed.
        char name[GUI_ENV_NAME_MAX + 1];
        size_t kept = 0;
        while (i < length && (braced ? input[i] != '}' : is_name_char(static_cast<unsigned char>(input[i])))) {
            if (kept < GUI_ENV_NAME_MAX) {
                const unsigned char n = static_cast<unsigned char>(input[i]);
                name[kept++] = static_cast<char>(n >= 'a' && n <= 'z' ? n - 'a' + 'A' : n);
            }
            ++i;
        }
        name[kept] = '\0';
        bool closed = true;
        if (braced) {
            // Skip the character that ended the name (the '}', or nothing
            // when the text ended inside the name).
            closed = i < length;
            if (closed) {
                ++i;
            }
        }

        std::string value;
        const bool resolved = resolve(lookup, kind, name, value);
        output.append(value.data(), value.size());
        // A failed or empty reference, or an unclosed braced one, drops the
        // next ordinary character: "%NAME%" gives NAME's value and
        // "$UNDEFINED/x" gives "x".
        drop_next = !resolved || value.empty() || !closed;
    }
    return met_reference;
}

int expand_passes(char* destination, const char* source, int size, const Lookup& lookup)
{
    std::string input = source;
    for (;;) {
        WorkBuffer output(input.size());
        const bool met_reference = expand_pass(lookup, input, output);
        std::string& text = output.text();
        if (text.empty()) {
            return -1;
        }
        if (text.back() == ':') {
            text.pop_back();
        }
        input.swap(text);
        if (!met_reference) {
            break;
        }
    }
    if (size > 0 && input.size() < static_cast<size_t>(size)) {
        std::memcpy(destination, input.c_str(), input.size() + 1);
        return 0;
    }
    if (size > 0) {
        destination[0] = '\0';
    }
    return static_cast<int>(input.size() + 1);
}

int expand(char* destination, const char* source, int size, const Lookup& lookup)
{
    if (!destination || !source) {
        return -1;
    }
    try {
        return expand_passes(destination, source, size, lookup);
    } catch (const std::bad_alloc&) {
        expansion_memory_exhausted();
    }
}

std::vector<GuiEnv> further_environments(GuiEnv env, va_list args)
{
    std::vector<GuiEnv> further;
    if (env) {
        while (GuiEnv next = va_arg(args, GuiEnv)) {
            further.push_back(next);
        }
    }
    return further;
}

} // namespace

namespace tql::env {

int expand_with_list(char* destination, const char* source, int size, GuiEnv env, va_list args)
{
    const std::vector<GuiEnv> further = further_environments(env, args);
    return expand(destination, source, size, Lookup{env, &further, true});
}

} // namespace tql::env

extern "C" {

int gui_env_expand_str(char* destination, const char* source, int size, GuiEnv env, ...)
{
    va_list args;
    va_start(args, env);
    const int result = tql::env::expand_with_list(destination, source, size, env, args);
    va_end(args);
    return result;
}

int gui_env_expand_str_system_only(char* destination, const char* source, int size, GuiEnv env, ...)
{
    const std::vector<GuiEnv> none;
    return expand(destination, source, size, Lookup{env, &none, false});
}

} // extern "C"
