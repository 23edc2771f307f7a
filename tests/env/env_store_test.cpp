// The variable store: names, values, levels, buffer sizes and the error
// callback.
#include "env/env_test_support.h"

#include "env/env_store.h"


namespace tql_test {

namespace {

using EnvStore = EnvTest;

TEST_F(EnvStore, NamesValuesUserPointersAndBufferSizes)
{
    GuiEnv env = open_env();
    // Names are cut at 63 bytes and upper-cased for the ASCII letters only.
    const std::string long_name(70, 'n');
    ASSERT_EQ(gui_env_put(env, long_name.c_str(), "long", GUI_ENV_LOCAL), 1);
    EXPECT_EQ(get(env, (std::string(63, 'N') + "other").c_str()), "long");
    gui_env_put(env, "zeta", "z", GUI_ENV_LOCAL); // both ends of the ASCII letters
    EXPECT_EQ(get(env, "ZETA") + get(env, "Zeta"), "zz");
    gui_env_put(env, "caf\xe9", "lower", GUI_ENV_LOCAL);
    EXPECT_EQ(get(env, "CAF\xe9") + get(env, "CAF\xc9"), "lower<-1>"); // \xe9 and \xc9 differ
    EXPECT_EQ(gui_env_get(nullptr, "HOME", nullptr, nullptr, 10, 0), -1);
    EXPECT_EQ(gui_env_put(env, "", "x", 0), 0);
    // Through the growth of each level's index: the most specific level
    // wins (local, home, custom, site) and every name is found again.
    for (int i = 0; i < 300; ++i) {
        for (int level = GUI_ENV_SITE; level >= GUI_ENV_LOCAL + i % 4; --level) {
            gui_env_put(env, ("V" + std::to_string(i)).c_str(), std::to_string(level).c_str(), level);
        }
    }
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(get(env, ("V" + std::to_string(i)).c_str()), std::to_string(GUI_ENV_LOCAL + i % 4)) << i;
    }

    // A null value is refused for a new variable; an existing one keeps no
    // value and reads as empty.
    EXPECT_EQ(gui_env_put(env, "MISSING", nullptr, GUI_ENV_LOCAL), 0);
    EXPECT_EQ(gui_env_put_modnew(env, "KEEP", "v", GUI_ENV_LOCAL, ENV_CLEAN), 1);
    EXPECT_EQ(tql::env::find_entry(env, "KEEP", GUI_ENV_LOCAL, false)->state, ENV_CLEAN);
    EXPECT_EQ(gui_env_put(env, "KEEP", nullptr, GUI_ENV_LOCAL), 1);
    EXPECT_EQ(get(env, "KEEP"), "");

    // A buffer one byte short is left untouched and the size needed given.
    gui_env_put(env, "SEVEN", "changed", GUI_ENV_SITE);
    char small[8] = "ZZZZZZZ";
    EXPECT_EQ(gui_env_get(env, "SEVEN", small, nullptr, 7, GUI_ENV_ANY), 8);
    EXPECT_STREQ(small, "ZZZZZZZ");
    EXPECT_EQ(gui_env_get(env, "SEVEN", small, nullptr, 8, GUI_ENV_ANY), 0);
    // Level 6 stores the pointer itself; a new entry gets no value.
    int marker = 0;
    void* user = nullptr;
    ASSERT_EQ(gui_env_put(env, "PTR", reinterpret_cast<const char*>(&marker), GUI_ENV_USERDATA), 1);
    EXPECT_EQ(gui_env_get(env, "PTR", small, &user, sizeof small, GUI_ENV_LOCAL), 0);
    EXPECT_EQ(user, &marker);
    EXPECT_STREQ(small, "");
    // A removed variable is found no more, and a put at any level revives
    // it in its own level.
    EXPECT_EQ(gui_env_rm(env, "SEVEN", GUI_ENV_ANY), 1);
    EXPECT_EQ(gui_env_rm(env, "SEVEN", GUI_ENV_ANY), 0);
    gui_env_put(env, "SEVEN", "again", GUI_ENV_ANY);
    EXPECT_EQ(get(env, "SEVEN", GUI_ENV_SITE), "again");
    // Existence does not depend on the 100-byte scratch buffer.
    gui_env_put(env, "LONG", std::string(300, 'x').c_str(), GUI_ENV_LOCAL);
    EXPECT_TRUE(gui_env_exists(env, "LONG", GUI_ENV_ANY));
}

TEST_F(EnvStore, ErrorCallbackSuppliesMissingValues)
{
    CallbackLog log;
    GuiEnv env = open_env();
    env->levels[tql::env::storage_index(GUI_ENV_SITE)].file_name = "\\zq\\config\\.site.v2.cfg";

    EXPECT_EQ(get(env, "NOPE"), "<-1>");
    ASSERT_EQ(log.calls.size(), 1u);
    EXPECT_EQ(log.calls[0].code, GUI_ENV_ERR_NO_VAR);
    EXPECT_EQ(log.calls[0].config + "/" + log.calls[0].name, "site/NOPE");

    // A replacement from the callback is the value; the user pointer
    // reported is null.
    log.replacement = "from callback";
    void* user = &log;
    char buffer[32];
    EXPECT_EQ(gui_env_get(env, "NOPE", buffer, &user, sizeof buffer, GUI_ENV_ANY), 0);
    EXPECT_STREQ(buffer, "from callback");
    EXPECT_EQ(user, nullptr);

    // The most specific level with a file names the configuration.
    env->levels[tql::env::storage_index(GUI_ENV_LOCAL)].file_name = "proj/local.cfg";
    char* out = &buffer[0];
    EXPECT_EQ(gui_env_apply_env_error(GUI_ENV_ERR_WRITE, env, "f", &out), 1);
    EXPECT_EQ(log.calls.back().config, "local");
    EXPECT_EQ(gui_env_set_error(nullptr), &CallbackLog::record);
    out = buffer;
    EXPECT_EQ(gui_env_apply_error(GUI_ENV_ERR_NO_FILE, "cfg", "g", &out), 0);
    EXPECT_EQ(out, buffer); // untouched without a callback
}

} // namespace
} // namespace tql_test
