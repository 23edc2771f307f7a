// tql_getenv and its QString forms: the process environment first, then
// the settings store (user, then system), and the shared result buffer.
#include <tql70/process_env.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <QString>

#include <string>

using tql_test::ScopedEnv;
using tql_test::ScopedSettingsStore;

TEST(TqlGetenv, UndefinedNameGivesNull)
{
    ScopedSettingsStore store({{"TQLT_OTHER", "x"}}, {{"TQLT_OTHER2", "y"}});
    ScopedEnv unset("TQLT_UNDEFINED", std::nullopt);
    EXPECT_EQ(tql_getenv("TQLT_UNDEFINED"), nullptr);
    EXPECT_EQ(tql_getenv(""), nullptr);
    EXPECT_EQ(tql_getenv(nullptr), nullptr);
}

TEST(TqlGetenv, EnvironmentThenUserStoreThenSystemStore)
{
    ScopedSettingsStore store({{"TQLT_BOTH", "from-user"}, {"TQLT_USER", "user-only"}},
                              {{"TQLT_BOTH", "from-system"}, {"TQLT_SYSTEM", "system-only"},
                               {"TQLT_ENV", "store-value"}});
    ScopedEnv env("TQLT_ENV", std::string("env-value"));
    ScopedEnv user("TQLT_USER", std::nullopt);
    ScopedEnv both("TQLT_BOTH", std::nullopt);
    ScopedEnv system("TQLT_SYSTEM", std::nullopt);

    const char* value = tql_getenv("TQLT_ENV");
    ASSERT_NE(value, nullptr);
    EXPECT_STREQ(value, "env-value");
    value = tql_getenv("TQLT_USER");
    ASSERT_NE(value, nullptr);
    EXPECT_STREQ(value, "user-only");
    value = tql_getenv("TQLT_BOTH");
    ASSERT_NE(value, nullptr);
    EXPECT_STREQ(value, "from-user");
    value = tql_getenv("TQLT_SYSTEM");
    ASSERT_NE(value, nullptr);
    EXPECT_STREQ(value, "system-only");
}

TEST(TqlGetenv, EmptyAndUtf8Values)
{
    ScopedSettingsStore store({{"TQLT_STORE_UTF8", "Grüße ✓ ü"}});
    ScopedEnv store_name("TQLT_STORE_UTF8", std::nullopt);
    ScopedEnv empty("TQLT_EMPTY", std::string());
    ScopedEnv utf8("TQLT_UTF8", std::string("C:\\Entwürfe\\日本"));

    // A variable defined as "" is defined: "" rather than null.
    const char* value = tql_getenv("TQLT_EMPTY");
    ASSERT_NE(value, nullptr);
    EXPECT_STREQ(value, "");
    value = tql_getenv("TQLT_UTF8");
    ASSERT_NE(value, nullptr);
    EXPECT_STREQ(value, "C:\\Entwürfe\\日本");
    value = tql_getenv("TQLT_STORE_UTF8");
    ASSERT_NE(value, nullptr);
    EXPECT_STREQ(value, "Grüße ✓ ü");
}

TEST(TqlGetenv, ResultLivesInOneSharedBuffer)
{
    ScopedSettingsStore store({});
    ScopedEnv first("TQLT_FIRST", std::string("a-rather-long-first-value"));
    ScopedEnv second("TQLT_SECOND", std::string("short"));

    const char* one = tql_getenv("TQLT_FIRST");
    ASSERT_NE(one, nullptr);
    EXPECT_STREQ(one, "a-rather-long-first-value");
    const char* two = tql_getenv("TQLT_SECOND");
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(one, two);
    EXPECT_STREQ(one, "short");

    // A miss leaves the buffer as it was.
    EXPECT_EQ(tql_getenv("TQLT_NOT_THERE_AT_ALL"), nullptr);
    EXPECT_STREQ(two, "short");

    // A value far longer than any before still comes back whole.
    const std::string long_value(5000, 'v');
    ScopedEnv big("TQLT_BIG", long_value);
    const char* three = tql_getenv("TQLT_BIG");
    ASSERT_NE(three, nullptr);
    EXPECT_EQ(std::string(three), long_value);
}

TEST(GetenvAndRegistryQt, BothNameForms)
{
    ScopedSettingsStore store({{"TQLT_QT_STORE", "Wert ä"}});
    ScopedEnv store_name("TQLT_QT_STORE", std::nullopt);
    ScopedEnv env("TQLT_QT_ENV", std::string("Ω env"));
    ScopedEnv missing("TQLT_QT_MISSING", std::nullopt);

    QString value = QStringLiteral("untouched");
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
