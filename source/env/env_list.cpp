// The open environments: the default environment, gui_env_open and close,
// and the default-environment (_ee) forms of the store operations.
#include "env/env_store.h"

#include <tql70/gmem.h>

#include <new>

namespace tql::env {

namespace {

GuiEnv first_environment = nullptr;

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
    if (!first_environment && !gui_env_init()) {
        return nullptr;
    }
    return first_environment;
}

} // namespace tql::env

using namespace tql::env;

extern "C" {

// The environment holds variables put by the application; reading the
// configuration files into its levels belongs to the configuration-file
// module and is not done here yet.
int gui_env_init(void)
{
    if (first_environment) {
        return 1;
    }
    GuiEnv env = new_environment();
    if (!env) {
        return 0;
    }
    append_environment(env);
    return 1;
}

GuiEnv gui_env_open(const char* name, int level)
{
    (void)level;
    if (!name || !*name || !default_environment()) {
        return nullptr;
    }
    GuiEnv env = new_environment();
    if (env) {
        append_environment(env);
    }
    return env;
}

int gui_env_close(GuiEnv env, int save)
{
    (void)save;
    if (!env) {
        return 1;
    }
    remove_environment(env);
    free_environment(env);
    return 1;
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
