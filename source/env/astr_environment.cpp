// The current configuration: one process-wide configuration chosen by name
// with its open environment, and value lookups and changes by configuration
// name that return newly allocated strings.
#include <tql70/astr.h>

#include <tql70/aerr.h>
#include <tql70/gmem.h>
#include <tql70/gui_env.h>

#include "env/env_store.h"

#include <cstring>
#include <string>

namespace {

// The current configuration's name (empty: none) and its environment
// (null when it was closed or never opened).
std::string current_name;
GuiEnv current_env = nullptr;

// The current environment, or null. The handle is checked against the open
// environments because gui_env_deinit may have closed it behind our back;
// a closed handle is forgotten rather than used.
GuiEnv current_environment()
{
    if (!current_env) {
        return nullptr;
    }
    for (GuiEnv env = tql::env::open_environments(); env; env = env->next) {
        if (env == current_env) {
            return env;
        }
    }
    current_env = nullptr;
    return nullptr;
}

// The store level of a scope: 0 local, 1 home, 2 site, anything else all.
int level_of_scope(int scope)
{
    switch (scope) {
    case ASTR_SCOPE_LOCAL:
        return GUI_ENV_LOCAL;
    case ASTR_SCOPE_HOME:
        return GUI_ENV_HOME;
    case ASTR_SCOPE_SITE:
        return GUI_ENV_SITE;
    default:
        return GUI_ENV_ANY;
    }
}

bool is_current(const char* config)
{
    return config && !current_name.empty() && current_name == config && current_environment();
}

// The environment of `config` for one call: the current one when `config`
// is the current configuration, else a newly opened one (`opened` set).
GuiEnv environment_for(const char* config, bool& opened)
{
    opened = false;
    if (is_current(config)) {
        return current_env;
    }
    GuiEnv env = gui_env_open(config, GUI_ENV_ANY);
    opened = env != nullptr;
    return env;
}

char* reallocate_or_die(char* block, size_t bytes)
{
    char* grown = static_cast<char*>(gmem_ee_realloc(block, bytes, 1));
    if (!grown) {
        aerr_memory_error();
    }
    return grown;
}

// The expanded value of `variable` at `level` as a new string: the buffer
// starts at 100 bytes and grows to the size each attempt reports as
// needed, then is cut to the value's length. Null when the variable is not
// found or its expansion fails.
char* expanded_value(GuiEnv env, const char* variable, int level)
{
    if (!env) {
        return nullptr;
    }
    int size = 100;
    char* buffer = reallocate_or_die(nullptr, static_cast<size_t>(size));
    int result;
    while ((result = gui_env_get_and_expand(env, variable, buffer, nullptr, size, level)) > 0) {
        size = result > size ? result : size * 2;
        buffer = reallocate_or_die(buffer, static_cast<size_t>(size));
    }
    if (result != 0) {
        gmem_ee_free(buffer);
        return nullptr;
    }
    return reallocate_or_die(buffer, std::strlen(buffer) + 1);
}

} // namespace

extern "C" {

int astr_set_environment(const char* name)
{
    if (GuiEnv env = current_environment()) {
        gui_env_close(env, 1);
        current_env = nullptr;
    }
    if (!name || !*name) {
        current_name.clear();
        return 0;
    }
    if (current_name != name) {
        current_name = name;
    }
    current_env = gui_env_open(current_name.c_str(), GUI_ENV_ANY);
    return current_env ? 1 : 0;
}

int astr_close_environment(void)
{
    GuiEnv env = current_environment();
    if (!env) {
        return 0;
    }
    current_env = nullptr;
    return gui_env_close(env, 1);
}

char* astr_environment_value(const char* variable)
{
    return expanded_value(current_environment(), variable, GUI_ENV_ANY);
}

int astr_environment_string(const char* variable, char* buffer, int size)
{
    GuiEnv env = current_environment();
    if (!env) {
        return 0;
    }
    // Without a buffer a size of 0 makes any value "too long", which still
    // counts as found and writes nothing.
    const int result = gui_env_get_and_expand(env, variable, buffer, nullptr, buffer ? size : 0, GUI_ENV_ANY);
    return result >= 0 ? 1 : 0;
}

int astr_environment_var_exists(const char* config, const char* variable, int scope)
{
    bool opened;
    GuiEnv env = environment_for(config, opened);
    if (!env) {
        return 0;
    }
    const int exists = gui_env_exists(env, variable, level_of_scope(scope));
    if (opened) {
        gui_env_close(env, 0);
    }
    return exists ? 1 : 0;
}

char* astr_get_environment_value(const char* config, const char* variable, int scope)
{
    bool opened;
    GuiEnv env = environment_for(config, opened);
    char* value = expanded_value(env, variable, level_of_scope(scope));
    if (opened) {
        gui_env_close(env, 0);
    }
    return value;
}

int astr_set_environment_value(const char* config, const char* variable, const char* value, int scope, int save)
{
    bool opened;
    GuiEnv env = environment_for(config, opened);
    if (!env) {
        return 0;
    }
    int result = gui_env_put(env, variable, value, level_of_scope(scope));
    if (opened) {
        if (!gui_env_close(env, save)) {
            result = 0;
        }
    } else if (save) {
        // Writing back means closing; the current configuration is opened
        // again at once so that it stays usable.
        current_env = nullptr;
        if (!gui_env_close(env, 1)) {
            result = 0;
        }
        current_env = gui_env_open(current_name.c_str(), GUI_ENV_ANY);
    }
    return result;
}

} // extern "C"
