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

TEST(TqlGetenv, EnvironmentThenUserStoreThenSystemStore)
{
    ScopedSettingsStore store({{"TQLT_BOTH", "from-user"}, {"TQLT_ENV", "user-store"}},
                              {{"TQLT_BOTH", "from-system"}, {"TQLT_SYSTEM", "system-only"}});
    ScopedEnv env("TQLT_ENV", std::string("env-value"));
    ScopedEnv empty("TQLT_EMPTY", std::string());
    for (const char* name : {"TQLT_BOTH", "TQLT_SYSTEM", "TQLT_UNDEFINED"}) unsetenv(name);
    const struct { const char* name; std::string expected; } cases[] = {
        {"TQLT_ENV", "env-value"}, {"TQLT_BOTH", "from-user"}, {"TQLT_SYSTEM", "system-only"},
        {"TQLT_EMPTY", ""}, {"TQLT_UNDEFINED", "<null>"}, {"", "<null>"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(get(c.name), c.expected);
    }
    EXPECT_EQ(tql_getenv(nullptr), nullptr);

    // One shared buffer: a miss leaves it as it was, a longer value grows it.
    const char* one = tql_getenv("TQLT_ENV");
    EXPECT_EQ(tql_getenv("TQLT_BOTH"), one);
    EXPECT_EQ(tql_getenv("TQLT_UNDEFINED"), nullptr);
    EXPECT_STREQ(one, "from-user");
    ScopedEnv big("TQLT_BIG", std::string(5000, 'v'));
    EXPECT_EQ(get("TQLT_BIG"), std::string(5000, 'v'));
}

TEST(GetenvAndRegistryQt, BothNameForms)
{
    ScopedSettingsStore store({{"TQLT_QT_STORE", "Wert ä"}});
    unsetenv("TQLT_QT_STORE");
    unsetenv("TQLT_QT_MISSING");
    QString value;
    EXPECT_TRUE(getenv_and_registry_qt("TQLT_QT_STORE", value));
    EXPECT_EQ(value, QString::fromUtf8("Wert ä"));
    EXPECT_FALSE(getenv_and_registry_qt("TQLT_QT_MISSING", value));
    EXPECT_FALSE(getenv_and_registry_qt(nullptr, value));
    QString value2;
    EXPECT_TRUE(getenv_and_registry_qt_2(QStringLiteral("TQLT_QT_STORE"), value2));
    EXPECT_EQ(value2, QString::fromUtf8("Wert ä"));
    EXPECT_FALSE(getenv_and_registry_qt_2(QString(), value2));
}

} // namespace
