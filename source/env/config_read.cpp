// Reading configuration files into environment levels: lines of any
// length, comments, include lines and NAME=value lines.
#include "env/env_store.h"
#include "env/config_text.h"

#include "platform/platform.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>

namespace {

using tql::env::skip_leading;
using tql::env::trim_trailing;

// Reads one line, whatever its length, without its line feed; false at
// the end of the file.
bool read_whole_line(FILE* file, std::string& line)
{
    line.clear();
    char chunk[2048];
    while (std::fgets(chunk, sizeof chunk, file)) {
        line += chunk;
        if (!line.empty() && line.back() == '\n') {
            line.pop_back();
            return true;
        }
    }
    return !line.empty();
}

bool starts_with_separator(const std::string& name)
{
    return !name.empty() && (name[0] == '\\' || name[0] == '/');
}

bool has_drive(const std::string& name)
{
    return name.size() >= 3 && std::isalpha(static_cast<unsigned char>(name[0])) && name[1] == ':' &&
           (name[2] == '\\' || name[2] == '/');
}

std::string expand_in(GuiEnv env, const std::string& text, bool& ok)
{
    char buffer[1024];
    ok = gui_env_expand_str(buffer, text.c_str(), sizeof buffer, env, static_cast<GuiEnv>(nullptr)) == 0;
    return ok ? std::string(buffer) : text;
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

void handle_variable(GuiEnv env, const char* source, const std::string& line, size_t equals, int level,
                     bool included, bool addon)
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
        std::snprintf(target.file_name, sizeof target.file_name, "%s", path.c_str());
    }
    std::string opened = path;
    FILE* file = fopen_utf8(opened.c_str(), "r");
    while (!file && included) {
        char* replacement = nullptr;
        if (!gui_env_apply_env_error(GUI_ENV_ERR_NO_FILE, env, opened.c_str(), &replacement) || !replacement) {
            return;
        }
        opened = replacement;
        file = fopen_utf8(opened.c_str(), "r");
    }
    if (!file) {
        return; // a level's own file may be absent
    }
    const char* source = remembered_file_name(opened);
    std::string line;
    while (read_whole_line(file, line)) {
        trim_trailing(line);
        if (line.size() < 2 || line[0] == '#' || line.compare(0, 2, "//") == 0) {
            continue;
        }
        if (line[0] == '+') {
            handle_include(env, line.substr(1), level);
            continue;
        }
        const size_t equals = line.find('=');
        if (equals != std::string::npos) {
            handle_variable(env, source, line, equals, level, included, addon);
        }
    }
    std::fclose(file);
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
