// The environment error callback: installing it and calling it with the
// configuration name of an environment.
#include "env/env_store.h"

#include "platform/platform.h"

#include <cstring>
#include <string>

namespace {

GuiEnvErrorFn error_callback = nullptr;
tql::env::FileFailure last_failure;

// The configuration name of `env`: the file name of its most specific level
// that has one, without its directory, without one leading '.', and
// without everything from the first '.' on ("\a\.zqtarvex.cfg" gives
// "zqtarvex").
std::string configuration_name(GuiEnv env)
{
    if (!env) {
        return std::string();
    }
    for (int level = GUI_ENV_LOCAL; level <= GUI_ENV_SITE; ++level) {
        const char* file = env->levels[tql::env::storage_index(level)].file_name.c_str();
        if (!*file) {
            continue;
        }
        const char* base = file;
        for (const char* p = file; *p; ++p) {
            if (*p == '\\' || *p == '/') {
                base = p + 1;
            }
        }
        if (*base == '.') {
            ++base;
        }
        return std::string(base, std::strcspn(base, "."));
    }
    return std::string();
}

} // namespace

namespace tql::env {

const FileFailure& last_file_failure()
{
    return last_failure;
}

int report_file_failure(GuiEnv env, int code, const std::string& native, int error)
{
    last_failure = {native, error ? file_failure_reason(error) : std::string()};
    char* ignored = nullptr;
    return gui_env_apply_env_error(code, env, native.c_str(), &ignored);
}

} // namespace tql::env

extern "C" {

GuiEnvErrorFn gui_env_set_error(GuiEnvErrorFn fn)
{
    GuiEnvErrorFn previous = error_callback;
    error_callback = fn;
    return previous;
}

int gui_env_apply_error(int code, const char* config_name, const char* name, char** out)
{
    if (!error_callback) {
        return 0;
    }
    if (out) {
        *out = nullptr;
    }
    return error_callback(code, config_name, name, out);
}

int gui_env_apply_env_error(int code, GuiEnv env, const char* name, char** out)
{
    if (!error_callback) {
        return 0;
    }
    const std::string config = configuration_name(env);
    return gui_env_apply_error(code, config.c_str(), name, out);
}

} // extern "C"
