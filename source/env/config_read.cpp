// Reading configuration files into environment levels: lines of any
// length, comments, include lines and NAME=value lines.
#include "env/env_store.h"
#include "env/config_text.h"

#include "platform/platform.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace {

using tql::env::skip_leading;
using tql::env::trim_trailing;

bool starts_with_separator(const std::string& name)
{
    return !name.empty() && (name[0] == '\\' || name[0] == '/');
}

bool has_drive(const std::string& name)
{
    return name.size() >= 3 && std::isalpha(static_cast<unsigned char>(name[0])) && name[1] == ':' &&
           (name[2] == '\\' || name[2] == '/');
}

// The expansion of `text`, in a buffer grown to whatever it needs.
std::string expand_in(GuiEnv env, const std::string& text, bool& ok)
{
    std::vector<char> buffer(1024);
    int result;
    while ((result = gui_env_expand_str(buffer.data(), text.c_str(), static_cast<int>(buffer.size()), env,
                                        static_cast<GuiEnv>(nullptr))) > 0) {
        buffer.resize(static_cast<size_t>(result));
    }
    ok = result == 0;
    return ok ? std::string(buffer.data()) : text;
}

// A file being read, with the files that include it below it on the stack.
struct Reading {
    unsigned long long device;
    unsigned long long inode;
    std::string native;
};
std::vector<Reading> reading_stack;

bool is_missing(int error)
{
    return error == ENOENT || error == ENOTDIR;
}

// The include chain from the earlier reading of `file` to `file` again.
std::string cycle_text(const ConfigFile& file, const std::string& native)
{
    std::string chain;
    bool on = false;
    for (const Reading& r : reading_stack) {
        on = on || (r.device == file.device && r.inode == file.inode);
        if (on) {
            chain += r.native + " -> ";
        }
    }
    return chain + native;
}

bool is_being_read(const ConfigFile& file)
{
    for (const Reading& r : reading_stack) {
        if (r.device == file.device && r.inode == file.inode) {
            return true;
        }
    }
    return false;
}

// The file an include line names, by the rules of the level it is read
// into. Names that start with a separator are used as they are (either
// separator: the library accepts both).
std::string include_path(const std::string& name, int level)
{
    switch (level) {
    case GUI_ENV_LOCAL:
        return starts_with_separator(name) ? name : name + ".cfg";
    case GUI_ENV_HOME:
        return has_drive(name) || starts_with_separator(name) ? name : tql::env::level_file(GUI_ENV_HOME, name.c_str());
    default:
        return starts_with_separator(name) ? name : tql::env::level_file(level, name.c_str());
    }
}

void handle_include(GuiEnv env, const std::string& rest, int level)
{
    std::string name = rest.substr(0, rest.find('#'));
    trim_trailing(name);
    name = name.substr(skip_leading(name));
    if (name.empty() || name[0] == '+' || name[0] == '=' || name[0] == '!') {
        return;
    }
    bool expanded = false;
    name = expand_in(env, name, expanded);
    if (!expanded) {
        return;
    }
    tql::env::read_config_file(env, include_path(name, level), level, true, false);
    if (level == GUI_ENV_SITE && !starts_with_separator(name)) {
        for (const std::string& addon : tql::env::addon_files(name.c_str())) {
            tql::env::read_config_file(env, addon, level, false, true);
        }
    }
}

void handle_variable(GuiEnv env, const char* source, int line_number, const std::string& line, size_t equals,
                     int level, bool included, bool addon)
{
    std::string name = line.substr(0, equals);
    trim_trailing(name);
    std::string value = line.substr(skip_leading(line, equals + 1));
    if (addon) {
        bool expanded = false;
        value = expand_in(env, value, expanded);
    }
    if (GuiEnvEntry* entry = tql::env::put_entry(env, name.c_str(), value.c_str(), level,
                                                 included ? ENV_INCLUDED : ENV_CLEAN)) {
        entry->source = source;
        entry->line = line_number;
    }
}

} // namespace

namespace tql::env {

const char* remembered_file_name(const std::string& path)
{
    static std::set<std::string>* names = new std::set<std::string>;
    return names->insert(path).first->c_str();
}

void read_config_file(GuiEnv env, const std::string& path, int level, bool included, bool addon)
{
    GuiEnvLevel& target = env->levels[storage_index(level)];
    if (!included) {
        target.file_name = path;
    }
    if (reading_stack.size() >= static_cast<size_t>(kMaxIncludeDepth)) {
        report_file_failure(env, GUI_ENV_ERR_INCLUDE_DEPTH, native_path(path.c_str()), 0);
        return;
    }
    std::string opened = path;
    ConfigFile file = open_config_file(opened.c_str());
    while (!file.stream && included && is_missing(file.error)) {
        char* replacement = nullptr;
        if (!gui_env_apply_env_error(GUI_ENV_ERR_NO_FILE, env, opened.c_str(), &replacement) || !replacement) {
            return;
        }
        opened = replacement;
        file = open_config_file(opened.c_str());
    }
    const std::string native = native_path(opened.c_str());
    if (!file.stream) {
        // A level's own file may be absent; a file that exists but cannot
        // be read is always reported.
        if (!is_missing(file.error)) {
            report_file_failure(env, GUI_ENV_ERR_READ, native, file.error);
        }
        return;
    }
    if (is_being_read(file)) {
        std::fclose(file.stream);
        report_file_failure(env, GUI_ENV_ERR_INCLUDE_CYCLE, cycle_text(file, native), 0);
        return;
    }
    std::string content;
    const bool read = read_whole_file(file.stream, content);
    std::fclose(file.stream);
    if (!read) {
        report_file_failure(env, GUI_ENV_ERR_READ, native, EIO);
        return;
    }
    reading_stack.push_back({file.device, file.inode, native});
    const char* source = remembered_file_name(opened);
    // Lines end only at a line feed: a NUL byte is data of its line.
    size_t start = 0;
    for (int number = 1; start < content.size(); ++number) {
        size_t end = content.find('\n', start);
        if (end == std::string::npos) {
            end = content.size();
        }
        std::string line = content.substr(start, end - start);
        start = end + 1;
        trim_trailing(line);
        if (line.size() < 2 || line[0] == '#' || line.compare(0, 2, "//") == 0) {
            continue;
        }
        if (line[0] == '+') {
            handle_include(env, line.substr(1), level);
            continue;
        }
        // A name holding a NUL byte would be cut short: such a line defines
        // nothing.
        const size_t equals = line.find('=');
        if (equals != std::string::npos && line.find('\0') > equals) {
            handle_variable(env, source, number, line, equals, level, included, addon);
        }
    }
    reading_stack.pop_back();
}

void load_environment(GuiEnv env, const char* name, int level)
{
    read_custom_directory_once();
    if (level == GUI_ENV_ANY) {
        read_config_file(env, level_file(GUI_ENV_SITE, name), GUI_ENV_SITE, false, false);
        for (const std::string& addon : addon_files(name)) {
            read_config_file(env, addon, GUI_ENV_SITE, false, true);
        }
        read_config_file(env, level_file(GUI_ENV_CUSTOM, name), GUI_ENV_CUSTOM, false, false);
        read_config_file(env, level_file(GUI_ENV_HOME, name), GUI_ENV_HOME, false, false);
        read_config_file(env, level_file(GUI_ENV_LOCAL, name), GUI_ENV_LOCAL, false, false);
    } else if (level >= GUI_ENV_LOCAL && level <= GUI_ENV_SITE) {
        read_config_file(env, level_file(level, name), level, false, false);
    } else if (level == GUI_ENV_FILE) {
        read_config_file(env, level_file(GUI_ENV_FILE, name), GUI_ENV_LOCAL, false, false);
    }
}

} // namespace tql::env
