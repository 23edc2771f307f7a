// The variable store: names, level order, states, slots, the error
// callback, and the per-level index checked against a plain scan.
#include "env/env_test_support.h"

#include "env/env_store.h"

#include <map>
#include <optional>
#include <random>

namespace tql_test {

namespace {

using EnvStore = EnvTest;

GuiEnvEntry* entry_of(GuiEnv env, const char* name, int level, bool include_deleted)
{
    char normalized[GUI_ENV_NAME_MAX + 1];
    tql::env::normalize_name(name, normalized);
    return tql::env::find_entry(env, normalized, level, include_deleted);
}

TEST_F(EnvStore, NamesAreCutAndUpperCasedForAsciiOnly)
{
    GuiEnv env = open_env();
    const std::string long_name(70, 'n');
    ASSERT_EQ(gui_env_put(env, long_name.c_str(), "long", GUI_ENV_LOCAL), 1);
    EXPECT_EQ(get(env, (std::string(63, 'N') + "other").c_str()), "long");
    gui_env_put(env, "zeta", "z", GUI_ENV_LOCAL); // both ends of the ASCII letters
    EXPECT_EQ(get(env, "ZETA") + get(env, "Zeta"), "zz");
    // Bytes of 128 and above keep their case: \xe9 and \xc9 differ.
    gui_env_put(env, "caf\xe9", "lower", GUI_ENV_LOCAL);
    EXPECT_EQ(get(env, "CAF\xe9"), "lower");
    EXPECT_EQ(get(env, "CAF\xc9"), "<-1>");
    EXPECT_EQ(gui_env_get(nullptr, "HOME", nullptr, nullptr, 10, 0), -1);
    EXPECT_EQ(gui_env_put(env, "", "x", 0), 0);
}

TEST_F(EnvStore, NullValuesStatesUserPointersAndBufferSizes)
{
    GuiEnv env = open_env();
    EXPECT_EQ(gui_env_put(env, "MISSING", nullptr, GUI_ENV_LOCAL), 0);
    gui_env_put_modnew(env, "KEEP", "v", GUI_ENV_LOCAL, ENV_CLEAN);
    EXPECT_EQ(gui_env_put(env, "KEEP", nullptr, GUI_ENV_LOCAL), 1);
    GuiEnvEntry* keep = entry_of(env, "KEEP", GUI_ENV_LOCAL, false);
    ASSERT_NE(keep, nullptr);
    EXPECT_EQ(keep->value, nullptr);
    EXPECT_EQ(keep->state, ENV_MODIFIED);

    // Level 6 stores the pointer itself; a new entry gets no value.
    int marker = 0;
    void* user = nullptr;
    char buffer[16];
    ASSERT_EQ(gui_env_put(env, "PTR", reinterpret_cast<const char*>(&marker), GUI_ENV_USERDATA), 1);
    EXPECT_EQ(gui_env_get(env, "PTR", buffer, &user, sizeof buffer, GUI_ENV_LOCAL), 0);
    EXPECT_EQ(user, &marker);
    EXPECT_STREQ(buffer, "");
    // A buffer one byte short is left untouched and the size needed given.
    gui_env_put(env, "SEVEN", "changed", GUI_ENV_SITE);
    char small[8] = "ZZZZZZZ";
    EXPECT_EQ(gui_env_get(env, "SEVEN", small, nullptr, 7, GUI_ENV_ANY), 8);
    EXPECT_STREQ(small, "ZZZZZZZ");
    EXPECT_EQ(gui_env_get(env, "SEVEN", small, nullptr, 8, GUI_ENV_ANY), 0);
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
    log.result = 1;
    log.set_replacement = true;
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

    EXPECT_EQ(gui_env_set_error(nullptr), &recording_callback);
    out = &buffer[0];
    EXPECT_EQ(gui_env_apply_error(GUI_ENV_ERR_NO_FILE, "cfg", "g", &out), 0);
    EXPECT_EQ(out, &buffer[0]); // untouched without a callback
}

// Random puts, removals and lookups against a plain model of the levels:
// the index and the search order local, home, custom, site must give the
// answers of a scan, revival of removed entries and slot reuse included.
TEST_F(EnvStore, IndexMatchesAPlainModel)
{
    GuiEnv env = open_env();
    struct ModelEntry { std::optional<std::string> value; bool deleted = false; };
    std::map<std::string, ModelEntry> model[5]; // by level number 1..4
    auto model_find = [&](const std::string& name, int level, bool include_deleted) -> ModelEntry* {
        const int first = (level >= 1 && level <= 4) ? level : 1;
        const int last = (level >= 1 && level <= 4) ? level : 4;
        for (int l = first; l <= last; ++l) {
            auto it = model[l].find(name);
            if (it != model[l].end() && (include_deleted || !it->second.deleted)) return &it->second;
        }
        return nullptr;
    };
    std::mt19937 random(7);
    for (int step = 0; step < 20000; ++step) {
        const std::string name = "V" + std::to_string(random() % 200);
        const int level = static_cast<int>(random() % 6);
        switch (random() % 3) {
        case 0: {
            const std::string value = std::to_string(step);
            ModelEntry* found = model_find(name, level, true);
            if (!found) {
                const int target = (level >= 2 && level <= 4) ? level : 1;
                found = &model[target][name];
            }
            found->deleted = false;
            found->value = value;
            ASSERT_EQ(gui_env_put(env, name.c_str(), value.c_str(), level), 1);
            break;
        }
        case 1: {
            ModelEntry* found = model_find(name, level, false);
            ASSERT_EQ(gui_env_rm(env, name.c_str(), level), found ? 1 : 0);
            if (found) found->deleted = true;
            break;
        }
        default: {
            const ModelEntry* found = model_find(name, level, false);
            ASSERT_EQ(get(env, name.c_str(), level), found ? *found->value : "<-1>") << name << " " << level;
        }
        }
    }
}

} // namespace
} // namespace tql_test
