// KPS_CUSTOM_DIR is read once per process, on the first gui_env_init. The
// test has a program of its own, so no earlier test has read it.
#include "support/scoped_env.h"

#include <tql70/gui_env.h>

#include <gtest/gtest.h>

namespace tql_test {
namespace {

TEST(CustomDirectory, ReadOnceOnFirstInit)
{
    SandboxInstallation dir;
    dir.write_file("custom/zqtarvex.cfg", "WHO=custom-dir\n");
    ScopedEnv custom("KPS_CUSTOM_DIR", dir.path() + "/custom");
    ASSERT_EQ(gui_env_init(), 1);
    gui_env_deinit(0);
    // Unset now, but the directory read at the first init stays in use.
    ScopedEnv unset("KPS_CUSTOM_DIR", std::nullopt);
    char who[64];
    ASSERT_EQ(gui_env_get_ee("WHO", who, nullptr, sizeof who, GUI_ENV_ANY), 0);
    EXPECT_STREQ(who, "custom-dir");
    gui_env_deinit(0);
}

} // namespace
} // namespace tql_test
