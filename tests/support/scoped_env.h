// RAII guards for tests: a temporary directory, a process variable, and a
// settings store placed in a temporary directory.
#ifndef TQL70_TESTS_SUPPORT_SCOPED_ENV_H
#define TQL70_TESTS_SUPPORT_SCOPED_ENV_H

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace tql_test {

// A new empty directory, removed with its contents on destruction.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return path_; }
    // Writes `content` to path()/relative, creating parent directories.
    std::string write_file(const std::string& relative, const std::string& content) const;

private:
    std::string path_;
};

// The whole content of a file ("" when it cannot be read).
std::string read_file(const std::string& path);

// Sets (or with nullopt, unsets) a process variable; restores it on
// destruction.
class ScopedEnv {
public:
    ScopedEnv(const std::string& name, const std::optional<std::string>& value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    std::string name_;
    std::optional<std::string> saved_;
};

// Makes `directory` the current directory for the life of the guard.
class ScopedCurrentDirectory {
public:
    explicit ScopedCurrentDirectory(const std::string& directory);
    ~ScopedCurrentDirectory();
    ScopedCurrentDirectory(const ScopedCurrentDirectory&) = delete;
    ScopedCurrentDirectory& operator=(const ScopedCurrentDirectory&) = delete;

private:
    std::string saved_;
};

// Points XDG_CONFIG_HOME and XDG_CONFIG_DIRS at fresh temporary folders
// and writes the given [General] keys into the user and system stores.
class ScopedSettingsStore {
public:
    using Keys = std::initializer_list<std::pair<const std::string, std::string>>;
    explicit ScopedSettingsStore(Keys user_keys, Keys system_keys = {});

    const TempDir& dir() const { return dir_; }

private:
    TempDir dir_;
    ScopedEnv config_home_;
    ScopedEnv config_dirs_;
};

// A private installation for the configuration layer: an empty settings
// store, and a temporary folder that is the current directory and holds the
// home and the installation root (given below the folder, "" for the
// folder itself); no custom directory.
class SandboxInstallation : public TempDir {
public:
    explicit SandboxInstallation(const std::string& home = "/home", const std::string& root = "/root")
        : home_("HOME", path() + home), root_("ZQTARVEX_DIR", path() + root)
    {
    }

private:
    ScopedSettingsStore store_{{}};
    ScopedEnv home_;
    ScopedEnv root_;
    ScopedEnv custom_{"KPS_CUSTOM_DIR", std::nullopt};
    ScopedCurrentDirectory cwd_{path()};
};

} // namespace tql_test

#endif
