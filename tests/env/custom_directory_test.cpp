// KPS_CUSTOM_DIR is read once per process, on the first gui_env_init. The
// test has a program of its own, so no earlier test has read it.
#include "support/scoped_env.h"

#include <tql70/gui_env.h>

#include <gtest/gtest.h>

#include <string>

namespace tql_test {
namespace {

std::string who()
{
    char buffer[64];
    return gui_env_get_ee("WHO", buffer, nullptr, sizeof buffer, GUI_ENV_ANY) == 0 ? buffer : "<none>";
}

TEST(CustomDirectory, ReadOnceOnFirstInit)
{
    SandboxInstallation dir;
    dir.write_file("custom/zqtarvex.cfg", "WHO=custom-dir\n");
    dir.write_file("root/custom/config/zqtarvex.cfg", "WHO=root-custom\n");

    {
        ScopedEnv custom("KPS_CUSTOM_DIR", dir.path() + "/custom");
        EXPECT_EQ(who(), "custom-dir");
        gui_env_deinit(0);
    }
    // Unset now, but the setting read at the first init stays.
    ScopedEnv unset("KPS_CUSTOM_DIR", std::nullopt);
    EXPECT_EQ(who(), "custom-dir");
    gui_env_deinit(0);
}

} // namespace
} // namespace tql_test
