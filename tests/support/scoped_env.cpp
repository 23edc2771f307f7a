// RAII helpers that give each test its own files, variables and store.
#include "support/scoped_env.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace tql_test {

TempDir::TempDir()
{
    std::string pattern = (fs::temp_directory_path() / "tql70-test-XXXXXX").string();
    if (!mkdtemp(&pattern[0])) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    // Restore permissions a test may have taken away, then remove.
    for (auto it = fs::recursive_directory_iterator(path_, ignored); it != fs::recursive_directory_iterator();
         it.increment(ignored)) {
        fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
    fs::remove_all(path_, ignored);
}

std::string TempDir::write_file(const std::string& relative, const std::string& content) const
{
    const fs::path file = fs::path(path_) / relative;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
}

std::string read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

ScopedEnv::ScopedEnv(const std::string& name, const std::optional<std::string>& value) : name_(name)
{
    if (const char* old = std::getenv(name.c_str())) saved_ = old;
    if (value) setenv(name.c_str(), value->c_str(), 1);
    else unsetenv(name.c_str());
}

ScopedEnv::~ScopedEnv()
{
    if (saved_) setenv(name_.c_str(), saved_->c_str(), 1);
    else unsetenv(name_.c_str());
}

ScopedCurrentDirectory::ScopedCurrentDirectory(const std::string& directory)
    : saved_(fs::current_path().string())
{
    fs::current_path(directory);
}

ScopedCurrentDirectory::~ScopedCurrentDirectory()
{
    std::error_code ignored;
    fs::current_path(saved_, ignored);
}

namespace {

void write_store(const TempDir& dir, const std::string& folder, ScopedSettingsStore::Keys keys)
{
    std::string text = "[General]\n";
    for (const auto& [key, value] : keys) text += key + "=" + value + "\n";
    dir.write_file(folder + "/zqtarvex/environment.ini", text);
}

} // namespace

ScopedSettingsStore::ScopedSettingsStore(Keys user_keys, Keys system_keys)
    : config_home_("XDG_CONFIG_HOME", dir_.path() + "/user"),
      config_dirs_("XDG_CONFIG_DIRS", dir_.path() + "/system")
{
    write_store(dir_, "user", user_keys);
    write_store(dir_, "system", system_keys);
}

} // namespace tql_test
