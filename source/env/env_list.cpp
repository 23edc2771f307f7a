// The open environments: the default environment, gui_env_open and close,
// and the default-environment (_ee) forms of the store operations.
#include "env/env_store.h"

#include <tql70/gmem.h>

#include <new>
#include <string>

#include "platform/platform.h"

namespace tql::env {

namespace {

GuiEnv first_environment = nullptr;
// The default environment: the one gui_env_init made, or none. Closing it
// forgets it, so the next default-environment call makes a new one and
// never reaches a freed handle.
GuiEnv default_env = nullptr;

} // namespace

GuiEnv new_environment()
{
    GuiEnv env = new (std::nothrow) GuiEnvStruct();
    return env;
}

void free_level(GuiEnvLevel& level)
{
    for (int slot = 0; slot < level.capacity; ++slot) {
        gmem_ee_free(level.entries[slot].value);
    }
    gmem_ee_free(level.entries);
    level.entries = nullptr;
    level.capacity = 0;
    level.count = 0;
    level.index.clear();
}

void free_environment(GuiEnv env)
{
    for (GuiEnvLevel& level : env->levels) {
        free_level(level);
    }
    delete env;
}

GuiEnv open_environments()
{
    return first_environment;
}

void append_environment(GuiEnv env)
{
    env->next = nullptr;
    GuiEnv* link = &first_environment;
    while (*link) {
        link = &(*link)->next;
    }
    *link = env;
}

void remove_environment(GuiEnv env)
{
    if (env == default_env) {
        default_env = nullptr;
    }
    for (GuiEnv* link = &first_environment; *link; link = &(*link)->next) {
        if (*link == env) {
            *link = env->next;
            env->next = nullptr;
            return;
        }
    }
}

GuiEnv default_environment()
{
    if (!default_env && !gui_env_init()) {
        return nullptr;
    }
    return default_env;
}

} // namespace tql::env

using namespace tql::env;

extern "C" {

int gui_env_init(void)
{
    if (default_env) {
        return 1;
    }
    GuiEnv env = new_environment();
    if (!env) {
        return 0;
    }
    // The default environment heads the list of open environments.
    env->next = first_environment;
    first_environment = env;
    default_env = env;
    load_environment(env, kDefaultConfiguration, GUI_ENV_ANY);
    return 1;
}

GuiEnv gui_env_open(const char* name, int level)
{
    if (!name || !*name || !default_environment()) {
        return nullptr;
    }
    GuiEnv env = new_environment();
    if (!env) {
        return nullptr;
    }
    append_environment(env);
    load_environment(env, name, level);
    return env;
}

int gui_env_close(GuiEnv env, int save)
{
    if (!env) {
        return 1;
    }
    bool all_written = true;
    for (int level = GUI_ENV_SITE; level >= GUI_ENV_LOCAL; --level) {
        if (save && !write_level(env, level)) {
            all_written = false;
        }
    }
    remove_environment(env);
    free_environment(env);
    return all_written ? 1 : 0;
}

int gui_env_deinit(int save)
{
    int all_closed = 1;
    while (GuiEnv env = first_environment) {
        GuiEnv last = env;
        while (last->next) {
            last = last->next;
        }
        all_closed &= gui_env_close(last, save);
    }
    return all_closed;
}

int gui_chdir(const char* directory, int save)
{
    if (!directory) {
        return -1;
    }
    int result = 0;
    for (GuiEnv env = first_environment; env; env = env->next) {
        if (save && !write_level(env, GUI_ENV_LOCAL)) {
            result = -1;
        }
        free_level(env->levels[storage_index(GUI_ENV_LOCAL)]);
    }
    std::string target = directory;
    if (!target.empty() && target[0] == '"') {
        target.erase(0, 1);
        if (directory[1] != '\0' && !target.empty() && target.back() == '"') {
            target.pop_back();
        }
    }
    if (!target.empty() && target.back() == ':') {
        target += '\\';
    }
    if (!change_directory(target.c_str()) &&
        !(target.compare(0, 8, "/tmp_mnt") == 0 && change_directory(target.c_str() + 8))) {
        return -1;
    }
    for (GuiEnv env = first_environment; env; env = env->next) {
        GuiEnvLevel& local = env->levels[storage_index(GUI_ENV_LOCAL)];
        if (!local.file_name.empty()) {
            const std::string file = local.file_name;
            read_config_file(env, file, GUI_ENV_LOCAL, false, false);
        }
    }
    return result;
}

int gui_env_getrlimit(void)
{
    return 1;
}

void gui_env_setrlimit(void)
{
}

void gui_env_setrlimit_max(void)
{
}

int gui_env_get_ee(const char* name, char* buffer, void** user, int size, int level)
{
    return gui_env_get(default_environment(), name, buffer, user, size, level);
}

int gui_env_get_ee_and_expand(const char* name, char* buffer, void** user, int size, int level)
{
    return gui_env_get_and_expand(default_environment(), name, buffer, user, size, level);
}

int gui_env_put_ee(const char* name, const char* value, int level)
{
    return gui_env_put(default_environment(), name, value, level);
}

int gui_env_rm_ee(const char* name, int level)
{
    return gui_env_rm(default_environment(), name, level);
}

} // extern "C"
