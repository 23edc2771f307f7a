// Where the configuration files of each level are: the root, custom and
// home directories, and the add-on files of a configuration.
#include "env/env_store.h"

#include <tql70/gfile.h>
#include <tql70/process_env.h>
#include <tql70/tql_os.h>
#include <tql70/zq_paths.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

std::string root_setting;
std::string custom_directory;
bool custom_directory_read = false;

std::string home_directory()
{
    const char* home = tql_getenv("HOME");
    std::string value = home ? home : "";
    if (!value.empty() && value.back() == '\\') {
        value.pop_back();
    }
    return value;
}

} // namespace

namespace tql::env {

void read_custom_directory_once()
{
    if (custom_directory_read) {
        return;
    }
    custom_directory_read = true;
    const char* value = tql_getenv("KPS_CUSTOM_DIR");
    custom_directory = value ? value : "";
}

std::string root_directory()
{
    if (!root_setting.empty()) {
        return root_setting;
    }
    const char* value = tql_getenv("ZQTARVEX_DIR");
    return value ? value : "\\zqtarvex";
}

std::string level_file(int level, const char* name)
{
    const std::string configuration = name;
    switch (level) {
    case GUI_ENV_SITE:
        return root_directory() + "\\config\\" + configuration + ".cfg";
    case GUI_ENV_CUSTOM:
        if (!custom_directory.empty()) {
            return custom_directory + "\\" + configuration + ".cfg";
        }
        return root_directory() + "\\custom\\config\\" + configuration + ".cfg";
    case GUI_ENV_HOME:
        return home_directory() + "\\zqtarvex\\config\\" + configuration + ".cfg";
    case GUI_ENV_LOCAL:
        return configuration + ".cfg";
    default:
        return configuration;
    }
}

std::vector<std::string> addon_files(const char* name)
{
    std::vector<std::string> files;
    const char* root = tql_getenv("ZQTARVEX_DIR");
    if (!root || !*root) {
        return files;
    }
    std::string directory = std::string(root) + "\\config\\addons_cfgs\\" + name;
    convertFileName(&directory[0]);
    if (!gfile_is_dir(directory.c_str())) {
        return files;
    }
    tql_DIR* dir = opendir_utf8(directory.c_str());
    if (!dir) {
        std::fprintf(stderr, "gfile: %s is not a directory \n", directory.c_str());
        return files;
    }
    while (tql_dirent* entry = tql_readdir(dir)) {
        const std::string file = directory + "\\" + entry->d_name;
        if (entry->d_name[0] != '.' && gfile_exists(file.c_str())) {
            files.push_back(file);
        }
    }
    tql_closedir(dir);
    // The system lists entries in no useful order; sorting makes the
    // precedence among add-on files the same on every machine.
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace tql::env

extern "C" {

void guienv_set_root_directory(const char* path)
{
    root_setting = path ? path : "";
}

const char* guienv_get_root_directory(void)
{
    return root_setting.empty() ? nullptr : root_setting.c_str();
}

} // extern "C"
