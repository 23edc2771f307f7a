// getenv_check_registry_qt: the process environment first, then the INI
// settings store in the user configuration folder, then in each system
// configuration folder.
#include "platform/platform.h"

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <QString>

#include <chrono>
#include <filesystem>
#include <string>

using tql_test::ScopedEnv;
using tql_test::ScopedSettingsStore;
using tql_test::TempDir;

namespace {

const std::string kStoreFile = "zqtarvex/environment.ini";

// The value found, or "<missing>".
std::string lookup(const char* name)
{
    QString value;
    return getenv_check_registry_qt(QString::fromUtf8(name), value) ? value.toStdString() : "<missing>";
}

} // namespace

TEST(SettingsStore, SystemFoldersInTheirOrder)
{
    // Three system folders, the second without a store, and an empty entry
    // (that the environment and the user store come first is tests/env's).
    ScopedSettingsStore store({});
    const TempDir& dir = store.dir();
    dir.write_file("sys1/" + kStoreFile, "[General]\nTQLS_S1=one\nTQLS_S13=first\n");
    dir.write_file("sys3/" + kStoreFile, "[General]\nTQLS_S13=third\nTQLS_S3=three\n");
    ScopedEnv dirs("XDG_CONFIG_DIRS", dir.path() + "/sys1:" + dir.path() + "/sys2::" + dir.path() + "/sys3");
    for (const char* name : {"TQLS_S1", "TQLS_S13", "TQLS_S3", "TQLS_NONE"}) unsetenv(name);
    EXPECT_EQ(lookup("TQLS_S1") + lookup("TQLS_S13") + lookup("TQLS_S3"), "onefirstthree");
    EXPECT_EQ(lookup("TQLS_NONE"), "<missing>");
}

TEST(SettingsStore, NamesWithSlashOrBackslashAreNeverReadFromTheStore)
{
    ScopedSettingsStore store({});
    store.dir().write_file("user/" + kStoreFile, "[General]\nTQLS_PLAIN=plain\n[TQLS_GROUP]\nKEY=grouped\n");
    unsetenv("TQLS_PLAIN");
    unsetenv("KEY");
    EXPECT_EQ(lookup("TQLS_PLAIN"), "plain");
    // '/' would address a group and '\' is the INI escape character.
    EXPECT_EQ(lookup("TQLS_GROUP/KEY"), "<missing>");
    EXPECT_EQ(lookup("TQLS_GROUP\\KEY"), "<missing>");
    EXPECT_EQ(lookup("KEY"), "<missing>"); // only [General] holds variables
    // The process environment may hold such names all the same.
    ScopedEnv slash("TQLS_A/B", std::string("slash"));
    EXPECT_EQ(lookup("TQLS_A/B"), "slash");
}

TEST(SettingsStore, StoreIsReadAgainAtEachLookup)
{
    ScopedSettingsStore store({{"TQLS_CHANGING", "old1"}});
    unsetenv("TQLS_CHANGING");
    unsetenv("TQLS_LATER");
    const std::string file = store.dir().path() + "/user/" + kStoreFile;
    EXPECT_EQ(lookup("TQLS_CHANGING"), "old1");

    // Same length, told apart by the later modification time.
    const auto stamp = std::filesystem::last_write_time(file);
    store.dir().write_file("user/" + kStoreFile, "[General]\nTQLS_CHANGING=new2\n");
    std::filesystem::last_write_time(file, stamp + std::chrono::seconds(2));
    EXPECT_EQ(lookup("TQLS_CHANGING"), "new2");
    // Another length, written at once.
    store.dir().write_file("user/" + kStoreFile, "[General]\nTQLS_LATER=added\n");
    EXPECT_EQ(lookup("TQLS_CHANGING"), "<missing>");
    EXPECT_EQ(lookup("TQLS_LATER"), "added");

}

TEST(SettingsStore, UnsetOrEmptyConfigHomeFallsBackToHomeConfig)
{
    TempDir home, system, empty;
    home.write_file(".config/" + kStoreFile, "[General]\nTQLS_HOME=in-home\n");
    ScopedEnv home_var("HOME", home.path());
    ScopedEnv dirs("XDG_CONFIG_DIRS", system.path());
    unsetenv("TQLS_HOME");
    {
        ScopedEnv config_home("XDG_CONFIG_HOME", std::string());
        EXPECT_EQ(lookup("TQLS_HOME"), "in-home");
    }
    ScopedEnv config_home("XDG_CONFIG_HOME", empty.path());
    EXPECT_EQ(lookup("TQLS_HOME"), "<missing>");
}
