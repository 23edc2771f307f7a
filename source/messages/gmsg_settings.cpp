// Message catalogues: the settings a catalogue is opened with (directory
// file, language, extension, font), the process-wide separator and the
// trace lines written with ZQTARVEX_DEBUG_MODE set to "all" or "msg".
#include "messages/gmsg_internal.h"

#include <tql70/gerror.h>
#include <tql70/process_env.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <vector>

namespace gmsg_internal {

namespace {

constexpr char kDefaultSeparator[] = "\x0e";
constexpr int kSeparatorSize = 8;
constexpr int kMissingExtension = 8;

bool g_trace = false;
bool g_initialised = false;
char g_separator[kSeparatorSize] = "\x0e";

// The value of `name` in `env` (no expansion); false when it is missing or
// longer than a setting can be.
bool read_plain(GuiEnv env, const std::string& name, std::string& value)
{
    std::vector<char> buffer(kValueSize);
    if (gui_env_get(env, name.c_str(), buffer.data(), nullptr, kValueSize, 0) != 0) {
        return false;
    }
    value = buffer.data();
    return true;
}

// An optional setting: `fallback` and GuiErrno `code` when it is missing.
void read_optional(GuiEnv env, const char* config_name, const std::string& name, const char* fallback, int code,
                   std::string& value)
{
    if (!read_plain(env, name, value)) {
        value = fallback;
        gerror_set_error(code);
        trace("gmsg: %s : %s = %s\n", config_name, name.c_str(), value.c_str());
        if (code != kMissingExtension) {
            trace_error();
        }
        return;
    }
    trace("gmsg: %s : %s = %s\n", config_name, name.c_str(), value.c_str());
}

} // namespace

void trace(const char* format, ...)
{
    if (!g_trace) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

void update_trace_flag()
{
    const char* mode = tql_getenv("ZQTARVEX_DEBUG_MODE");
    g_trace = mode && (std::strcmp(mode, "all") == 0 || std::strcmp(mode, "msg") == 0);
}

void trace_error()
{
    trace("gmsg: ERROR = %s\n", gerror_get_error_message());
}

bool initialise_once()
{
    if (g_initialised) {
        return true;
    }
    if (!gui_env_init()) {
        gerror_set_error(5);
        return false;
    }
    std::strcpy(g_separator, kDefaultSeparator);
    if (GuiEnv env = gui_env_open("zqtarvex", 0)) {
        char value[kSeparatorSize];
        // An empty separator would match everywhere: the default stays.
        if (gui_env_get_ee_and_expand("MSG_SEPARATOR", value, nullptr, kSeparatorSize, 0) == 0 && value[0]) {
            std::strcpy(g_separator, value);
        }
        gui_env_close(env, 0);
    }
    g_initialised = true;
    return true;
}

const char* separator()
{
    return g_separator;
}

bool read_settings(const char* config_name, const char* prefix, const char* language, Settings& settings)
{
    const std::string file_variable = std::string(prefix) + "_MSG_FILE";
    std::vector<char> buffer(kValueSize, '\0');
    GuiEnv env = gui_env_open(config_name, 0);
    // A configuration opens even when none of its files exists; one that
    // does not name the directory file counts as missing, and "zqtarvex"
    // stands in for it.
    if (std::strcmp(config_name, "zqtarvex") != 0 &&
        (!env || gui_env_get(env, file_variable.c_str(), nullptr, nullptr, 0, 0) < 0)) {
        gui_env_close(env, 0);
        env = gui_env_open("zqtarvex", 0);
    }
    if (!env) {
        gerror_set_error(6);
        return false;
    }
    if (gui_env_get_and_expand(env, file_variable.c_str(), buffer.data(), nullptr, kValueSize, 0) != 0) {
        gui_env_close(env, 0);
        gerror_set_error(10);
        trace("gmsg: %s : %s = %s\n", config_name, file_variable.c_str(), buffer.data());
        trace_error();
        return false;
    }
    settings.directory_file = buffer.data();
    trace("gmsg: %s : %s = %s\n", config_name, file_variable.c_str(), buffer.data());

    if (language && *language) {
        settings.language = language;
        trace("gmsg: %s : %s = %s\n", config_name, "ZQTARVEX_LANGUAGE", language);
    } else {
        read_optional(env, config_name, "ZQTARVEX_LANGUAGE", "ENGLISH", 7, settings.language);
    }
    read_optional(env, config_name, settings.language + "_MSG_EXT", "msg", 8, settings.extension);
    read_optional(env, config_name, settings.language + "_MSG_FONT", "9x15bold", 9, settings.font);
    gui_env_close(env, 0);
    return true;
}

} // namespace gmsg_internal
