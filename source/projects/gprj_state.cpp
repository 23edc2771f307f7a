// Project directories: the module state of gprj_init, the error table and
// its texts, the sub-directory rule and the configuration file lookup.
#include "projects/gprj_internal.h"

#include <tql70/astr.h>
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/gparse.h>

#include <cstdio>
#include <cstring>

int GprjErrorNo = 0;

namespace {

char* g_configuration_name = nullptr;
GprjVersionFn g_callback = nullptr;

struct ErrorEntry {
    int code;
    char text[256];
};

// Code 16 repeats the text of code 15, as it always has.
const ErrorEntry kErrorTable[] = {
    {0, "No Error."},
    {1, "Failed to make input project."},
    {2, "Failed to make input project sub-directory."},
    {3, "Failed to remove input project."},
    {4, "Failed to remove output project."},
    {5, "Recursive remove failed."},
    {6, "Failed to copy files."},
    {7, "Format error in copy file str."},
    {8, "Failed to recursive copy input project to output project."},
    {9, "Chmod failed."},
    {10, "Input project path does not exist."},
    {11, "Bad input project extension."},
    {12, "Input project exists."},
    {13, "Input project sub-directory does not exist."},
    {14, "Output project path does not exists."},
    {15, "Bad output project extension."},
    {16, "Bad output project extension."},
    {17, "Failed to create configuration file in project."},
    {18, "Failed to read configuration file."},
    {19, "Failed to close configuration file."},
    {20, "Does not have write permission."},
    {21, "Write failure."},
};

bool is_separator(char c)
{
    return c == '\\' || c == '/';
}

} // namespace

namespace gprj_internal {

int fail(int code)
{
    GprjErrorNo = code;
    return 0;
}

const char* configuration_name()
{
    return g_configuration_name;
}

GprjVersionFn version_callback()
{
    return g_callback;
}

std::string project_name(const char* name)
{
    std::string copy(name, strnlen(name, kNameLimit));
    if (!copy.empty() && is_separator(copy.back())) {
        copy.pop_back();
    }
    return copy;
}

std::string configuration_file(const std::string& directory)
{
    return directory + '\\' + g_configuration_name + ".cfg";
}

bool subdirectory_table(const std::string& directory, const char* subdirs, const std::vector<const char*>& defaults,
                        std::vector<std::string>& table)
{
    table.clear();
    std::vector<std::string> names;
    if (!subdirs || !*subdirs) {
        names.assign(defaults.begin(), defaults.end());
    } else {
        static parserec record;
        gparse_parline(subdirs, ";", "", '!', &record);
        for (unsigned int i = 0; i < record.count; ++i) {
            const parsefield& field = record.fields[i];
            names.push_back(project_name(std::string(subdirs + field.start, field.end - field.start + 1).c_str()));
        }
    }
    if (names.size() > GPRJ_MAX_SUBDIRS) {
        return false;
    }
    for (const std::string& name : names) {
        table.push_back(directory + '\\' + name);
        if (table.back().size() >= GPRJ_SUBDIR_PATH_SIZE) {
            return false;
        }
    }
    return true;
}

bool read_configuration(const std::string& file, const char* key, std::string& value)
{
    value.clear();
    FILE* stream = nullptr;
    if (!gfile_filopn(&stream, file.c_str(), GFILE_READ) || !gfile_resetfilptr(stream)) {
        if (stream) {
            gfile_filcls(stream);
        }
        return fail(kReadConfiguration);
    }
    char line[GFILE_LINE_MAX];
    char stripped[GFILE_LINE_MAX];
    bool found = false;
    while (!found && gfile_getline(stream, line)) {
        gparse_strpbl(line, stripped);
        if (!stripped[0]) {
            continue;
        }
        char* rest = nullptr;
        char* first = strtok_r(stripped, "=", &rest);
        char* second = first ? strtok_r(nullptr, "=", &rest) : nullptr;
        if (!first) {
            continue;
        }
        char name[GFILE_LINE_MAX];
        gparse_strpbl(first, name);
        if (std::strcmp(name, key) == 0) {
            value = second ? second : "";
            found = true;
        }
    }
    if (!gfile_filcls(stream)) {
        return fail(kCloseConfiguration);
    }
    return true;
}

} // namespace gprj_internal

extern "C" {

int gprj_init(const char* cfg_name, GprjVersionFn callback)
{
    if (!cfg_name) {
        return 0;
    }
    char* copy = astr_new_string(cfg_name);
    if (!copy) {
        return 0;
    }
    gmem_ee_free(g_configuration_name);
    g_configuration_name = copy;
    if (callback) {
        g_callback = callback;
    }
    return 1;
}

const char* gprj_errstr(int code)
{
    for (const ErrorEntry& entry : kErrorTable) {
        if (entry.code == code) {
            return entry.text;
        }
    }
    return nullptr;
}

} // extern "C"
