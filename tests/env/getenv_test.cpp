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

} // namespace

TEST(TqlGetenv, EnvironmentThenUserStoreThenSystemStore)
{
    ScopedSettingsStore store({{"TQLT_BOTH", "from-user"}, {"TQLT_USER", "user-only"}, {"TQLT_ENV", "user-store"},
                               {"TQLT_STORE_UTF8", "Grüße ✓"}},
                              {{"TQLT_BOTH", "from-system"}, {"TQLT_SYSTEM", "system-only"},
                               {"TQLT_ENV", "system-store"}});
    ScopedEnv env("TQLT_ENV", std::string("env-value"));
    ScopedEnv empty("TQLT_EMPTY", std::string());
    ScopedEnv utf8("TQLT_UTF8", std::string("C:\\Entwürfe\\日本"));
    for (const char* name : {"TQLT_USER", "TQLT_BOTH", "TQLT_SYSTEM", "TQLT_STORE_UTF8", "TQLT_UNDEFINED"}) {
        unsetenv(name);
    }

    EXPECT_EQ(get("TQLT_ENV"), "env-value");
    EXPECT_EQ(get("TQLT_USER"), "user-only");
    EXPECT_EQ(get("TQLT_BOTH"), "from-user");
    EXPECT_EQ(get("TQLT_SYSTEM"), "system-only");
    EXPECT_EQ(get("TQLT_EMPTY"), ""); // defined as "": not null
    EXPECT_EQ(get("TQLT_UTF8"), "C:\\Entwürfe\\日本");
    EXPECT_EQ(get("TQLT_STORE_UTF8"), "Grüße ✓");
    EXPECT_EQ(get("TQLT_UNDEFINED"), "<null>");
    EXPECT_EQ(get(""), "<null>");
    EXPECT_EQ(tql_getenv(nullptr), nullptr);
}

TEST(TqlGetenv, ResultLivesInOneSharedBuffer)
{
    ScopedSettingsStore store({{"TQLT_SECOND", "second value from the store"}});
    ScopedEnv first("TQLT_FIRST", std::string("a rather long first value from the environment"));
    unsetenv("TQLT_SECOND");

    const char* one = tql_getenv("TQLT_FIRST");
    ASSERT_NE(one, nullptr);
    const char* two = tql_getenv("TQLT_SECOND");
    EXPECT_EQ(one, two);
    EXPECT_STREQ(one, "second value from the store");
    // A miss leaves the buffer as it was.
    EXPECT_EQ(tql_getenv("TQLT_NOT_THERE_AT_ALL"), nullptr);
    EXPECT_STREQ(one, "second value from the store");

    // A value longer than any before still comes back whole.
    const std::string long_value(5000, 'v');
    ScopedEnv big("TQLT_BIG", long_value);
    EXPECT_EQ(get("TQLT_BIG"), long_value);
}

TEST(GetenvAndRegistryQt, BothNameForms)
{
    ScopedSettingsStore store({{"TQLT_QT_STORE", "Wert ä"}});
    ScopedEnv env("TQLT_QT_ENV", std::string("Ω env"));
    unsetenv("TQLT_QT_STORE");
    unsetenv("TQLT_QT_MISSING");

    QString value;
    EXPECT_TRUE(getenv_and_registry_qt("TQLT_QT_ENV", value));
    EXPECT_EQ(value, QString::fromUtf8("Ω env"));
    EXPECT_TRUE(getenv_and_registry_qt("TQLT_QT_STORE", value));
    EXPECT_EQ(value, QString::fromUtf8("Wert ä"));
    EXPECT_FALSE(getenv_and_registry_qt("TQLT_QT_MISSING", value));
    EXPECT_FALSE(getenv_and_registry_qt(nullptr, value));

    QString value2;
    EXPECT_TRUE(getenv_and_registry_qt_2(QStringLiteral("TQLT_QT_ENV"), value2));
    EXPECT_EQ(value2, QString::fromUtf8("Ω env"));
    EXPECT_TRUE(getenv_and_registry_qt_2(QStringLiteral("TQLT_QT_STORE"), value2));
    EXPECT_EQ(value2, QString::fromUtf8("Wert ä"));
    EXPECT_FALSE(getenv_and_registry_qt_2(QStringLiteral("TQLT_QT_MISSING"), value2));
    EXPECT_FALSE(getenv_and_registry_qt_2(QString(), value2));
}
