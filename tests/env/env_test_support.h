// Shared fixture of the environment tests: a private settings store, home,
// installation root and current directory (all in one temporary folder, so
// the default environment reads no file of the machine), no error
// callback, and no open environments before or after each test.
#ifndef TQL70_TESTS_ENV_ENV_TEST_SUPPORT_H
#define TQL70_TESTS_ENV_ENV_TEST_SUPPORT_H

#include "support/scoped_env.h"

#include <tql70/gui_env.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tql_test {

class EnvTest : public ::testing::Test {
protected:
    void TearDown() override
    {
        gui_env_set_error(nullptr);
        gui_env_deinit(0);
    }

    // An empty environment of its own, read from no file (closed by the
    // fixture's deinit).
    GuiEnv open_env() { return gui_env_open("test", kNoFiles); }
    static constexpr int kNoFiles = 99;

    // The value of `name` at `level` of `env` (null: of the default
    // environment), or "<-1>" / "<size N>".
    static std::string get(GuiEnv env, const char* name, int level = GUI_ENV_ANY)
    {
        char buffer[8192];
        const int result = env ? gui_env_get(env, name, buffer, nullptr, sizeof buffer, level)
                               : gui_env_get_ee(name, buffer, nullptr, sizeof buffer, level);
        if (result == 0) return buffer;
        return result < 0 ? "<-1>" : "<size " + std::to_string(result) + ">";
    }

    SandboxInstallation sandbox_;
};

// An error callback that records its calls, installed for as long as the
// log exists; it answers 0, or with `replacement` and 1 once that is set.
struct CallbackLog {
    struct Call { int code; std::string config; std::string name; };
    CallbackLog()
    {
        current = this;
        gui_env_set_error(record);
    }
    ~CallbackLog()
    {
        gui_env_set_error(nullptr);
        current = nullptr;
    }
    CallbackLog(const CallbackLog&) = delete;
    CallbackLog& operator=(const CallbackLog&) = delete;

    static int record(int code, const char* config, const char* name, char** out)
    {
        current->calls.push_back({code, config ? config : "<null>", name ? name : "<null>"});
        if (!current->replacement) return 0;
        if (out) *out = &(*current->replacement)[0];
        return 1;
    }
    inline static CallbackLog* current = nullptr;
    std::vector<Call> calls;
    std::optional<std::string> replacement;
};

} // namespace tql_test

#endif
