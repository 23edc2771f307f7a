// Expansion of $NAME and %NAME references (and their braced forms) in
// strings, pass after pass until a pass meets no reference. A reference met
// again inside its own value is a cycle and counts as undefined, so every
// expansion ends.
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

// Where a character of the text came from: the reference whose value it is
// part of, and through its parent the references that led to that one.
// Expansion never resolves a reference inside the value of the same
// reference, so a cycle of variables ends.
struct Origin {
    char kind;
    std::string name;
    int parent; // an index into the origins, or kTyped
};
constexpr int kTyped = -1; // the caller's own text
constexpr int kFinal = -2; // a replacement for a cyclic reference: never expanded

// Text with the origin of each character.
struct Tagged {
    std::string text;
    std::vector<int> tags;
};

// The pass output. Its room grows in 2048-byte steps.
class WorkBuffer {
public:
    explicit WorkBuffer(size_t source_length)
    {
        const size_t room = source_length + 1 > kBufferStep ? source_length + 1 : kBufferStep;
        out_.text.reserve(room);
        out_.tags.reserve(room);
    }

    void append(const char* text, size_t length, int tag)
    {
        const size_t needed = out_.text.size() + length + 1;
        if (needed > out_.text.capacity()) {
            out_.text.reserve((needed / kBufferStep + 1) * kBufferStep);
            out_.tags.reserve(out_.text.capacity());
        }
        out_.text.append(text, length);
        out_.tags.insert(out_.tags.end(), length, tag);
    }
    void append(char c, int tag) { append(&c, 1, tag); }

    Tagged& result() { return out_; }

private:
    Tagged out_;
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
    std::vector<Origin>* origins;
};

// Whether the reference `kind` `name` is already among the references
// that produced a character of origin `tag`.
bool repeats(const Lookup& lookup, int tag, char kind, const char* name)
{
    for (; tag >= 0; tag = (*lookup.origins)[static_cast<size_t>(tag)].parent) {
        const Origin& origin = (*lookup.origins)[static_cast<size_t>(tag)];
        if (origin.kind == kind && origin.name == name) {
            return true;
        }
    }
    return false;
}

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
// by the error callback). A cyclic reference counts as undefined.
bool resolve(const Lookup& lookup, char kind, const char* name, bool cyclic, std::string& value)
{
    char* replacement = nullptr;
    if (cyclic) {
        const int code = kind == '$' ? GUI_ENV_ERR_NO_SYSVAR : GUI_ENV_ERR_NO_VAR;
        if (gui_env_apply_env_error(code, lookup.env, name, &replacement) && replacement) {
            value = replacement;
            return true;
        }
        return false;
    }
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

bool starts_reference(bool configuration_references, char c)
{
    return c == '$' || (c == '%' && configuration_references);
}

// A reference read from a text.
struct ReadReference {
    char kind;
    char name[GUI_ENV_NAME_MAX + 1];
    bool closed; // false: a braced reference ended by the end of the text
};

// Whether a reference starts at `i`: "$", "%", "{$" or "{%".
bool reference_at(const std::string& input, size_t i, bool configuration_references)
{
    const char c = input[i];
    if (c == '{') {
        return i + 1 < input.size() && starts_reference(configuration_references, input[i + 1]);
    }
    return starts_reference(configuration_references, c);
}

// Reads the reference that starts at `i` and moves `i` past it. The name
// runs up to '}' when braced, else over letters, digits and '_'; only its
// first 63 characters count, the rest is consumed.
ReadReference read_reference(const std::string& input, size_t& i)
{
    ReadReference ref;
    const bool braced = input[i] == '{';
    ref.kind = braced ? input[i + 1] : input[i];
    i += braced ? 2 : 1;
    size_t kept = 0;
    const size_t length = input.size();
    while (i < length && (braced ? input[i] != '}' : is_name_char(static_cast<unsigned char>(input[i])))) {
        if (kept < GUI_ENV_NAME_MAX) {
            const unsigned char n = static_cast<unsigned char>(input[i]);
            ref.name[kept++] = static_cast<char>(n >= 'a' && n <= 'z' ? n - 'a' + 'A' : n);
        }
        ++i;
    }
    ref.name[kept] = '\0';
    // Skip the character that ended a braced name (the '}', or nothing
    // when the text ended inside the name).
    ref.closed = !braced || i < length;
    if (braced && ref.closed) {
        ++i;
    }
    return ref;
}

// One pass over `input`. Returns whether it met a reference.
bool expand_pass(const Lookup& lookup, const Tagged& input, WorkBuffer& output)
{
    bool met_reference = false;
    bool drop_next = false;
    const size_t length = input.text.size();
    size_t i = 0;
    while (i < length) {
        const int tag = input.tags[i];
        if (tag == kFinal || !reference_at(input.text, i, lookup.configuration_references)) {
            if (!drop_next) {
                output.append(input.text[i], tag);
            }
            drop_next = false;
            ++i;
            continue;
        }
        met_reference = true;
        const ReadReference ref = read_reference(input.text, i);
        const bool cyclic = repeats(lookup, tag, ref.kind, ref.name);
        std::string value;
        const bool resolved = resolve(lookup, ref.kind, ref.name, cyclic, value);
        int value_tag = kFinal;
        if (!cyclic) {
            lookup.origins->push_back({ref.kind, ref.name, tag});
            value_tag = static_cast<int>(lookup.origins->size() - 1);
        }
        output.append(value.data(), value.size(), value_tag);
        // A failed or empty reference, or an unclosed braced one, drops the
        // next ordinary character: "%NAME%" gives NAME's value and
        // "$UNDEFINED/x" gives "x".
        drop_next = !resolved || value.empty() || !ref.closed;
    }
    return met_reference;
}

int expand_passes(char* destination, const char* source, int size, const Lookup& lookup)
{
    Tagged input{source, std::vector<int>(std::strlen(source), kTyped)};
    for (;;) {
        WorkBuffer output(input.text.size());
        const bool met_reference = expand_pass(lookup, input, output);
        Tagged& result = output.result();
        if (result.text.empty()) {
            return -1;
        }
        if (result.text.back() == ':') {
            result.text.pop_back();
            result.tags.pop_back();
        }
        std::swap(input, result);
        if (!met_reference) {
            break;
        }
    }
    const std::string& text = input.text;
    if (size > 0 && text.size() < static_cast<size_t>(size)) {
        std::memcpy(destination, text.c_str(), text.size() + 1);
        return 0;
    }
    if (size > 0) {
        destination[0] = '\0';
    }
    return static_cast<int>(text.size() + 1);
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
    std::vector<Origin> origins;
    return expand(destination, source, size, Lookup{env, &further, true, &origins});
}

std::vector<Reference> references_in(const char* text)
{
    std::vector<Reference> found;
    const std::string input = text ? text : "";
    for (size_t i = 0; i < input.size();) {
        if (reference_at(input, i, true)) {
            const ReadReference ref = read_reference(input, i);
            found.push_back({ref.kind, ref.name});
        } else {
            ++i;
        }
    }
    return found;
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
    std::vector<Origin> origins;
    return expand(destination, source, size, Lookup{env, &none, false, &origins});
}

} // extern "C"
