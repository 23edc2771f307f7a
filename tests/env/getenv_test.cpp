// tql_getenv and its QString forms: the process environment first, then
// the settings store (user, then system), and the shared result buffer.
#include <tql70/process_env.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <QString>

#include <string>

using tql_test::ScopedEnv;
using tql_test::ScopedSettingsStore;

namespace {

std::string get(const char* name)
{
    const char* value = tql_getenv(name);
    return value ? value : "<null>";
}

TEST(TqlGetenv, EnvironmentThenUserStoreThenSystemStoreInBothForms)
{
    ScopedSettingsStore store({{"TQLT_BOTH", "user \xc3\xa4"}, {"TQLT_ENV", "user-store"}},
                              {{"TQLT_BOTH", "from-system"}, {"TQLT_SYSTEM", "system-only"}});
    ScopedEnv env("TQLT_ENV", std::string("env-value"));
    ScopedEnv empty("TQLT_EMPTY", std::string());
    for (const char* name : {"TQLT_BOTH", "TQLT_SYSTEM", "TQLT_UNDEFINED"}) unsetenv(name);
    const struct { const char* name; std::string expected; } cases[] = {
        {"TQLT_ENV", "env-value"}, {"TQLT_BOTH", "user \xc3\xa4"}, {"TQLT_SYSTEM", "system-only"},
        {"TQLT_EMPTY", ""}, {"TQLT_UNDEFINED", "<null>"}, {"", "<null>"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(get(c.name), c.expected);
    }
    EXPECT_EQ(tql_getenv(nullptr), nullptr);

    // One shared buffer, overwritten by the next call.
    const char* one = tql_getenv("TQLT_ENV");
    EXPECT_EQ(tql_getenv("TQLT_BOTH"), one);

    // The Qt forms read the same places.
    QString value;
    EXPECT_TRUE(getenv_and_registry_qt("TQLT_SYSTEM", value));
    EXPECT_EQ(value, QStringLiteral("system-only"));
    EXPECT_FALSE(getenv_and_registry_qt(nullptr, value));
    EXPECT_TRUE(getenv_and_registry_qt_2(QStringLiteral("TQLT_BOTH"), value));
    EXPECT_EQ(value, QString::fromUtf8("user \xc3\xa4"));
    EXPECT_FALSE(getenv_and_registry_qt_2(QString(), value));
}

} // namespace
