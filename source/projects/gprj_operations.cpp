// Project directories: creating, copying, deleting and testing projects.
#include "projects/gprj_internal.h"

#include <tql70/gfile.h>
#include <tql70/gparse.h>
#include <tql70/tql_os.h>

#include <cstring>
#include <vector>

using namespace gprj_internal;

namespace {

constexpr int kDirectoryMode = 0755;

const std::vector<const char*> kCreatedSubdirectories = {"data", "networks", "synthesis", "verification"};
const std::vector<const char*> kRequiredSubdirectories = {"data", "networks"};

// Copies every "source,destination" entry of `copy_list` into `directory`.
bool copy_entries(const std::string& directory, char* copy_list)
{
    for (char* c = copy_list; *c; ++c) {
        if (*c == '/') {
            *c = '\\';
        }
    }
    static parserec entries;
    static parserec parts;
    gparse_parline(copy_list, ";", "", '!', &entries);
    for (unsigned int i = 0; i < entries.count; ++i) {
        const parsefield& field = entries.fields[i];
        const std::string entry(copy_list + field.start, field.end - field.start + 1);
        gparse_parline(entry.c_str(), ",", "", '!', &parts);
        if (parts.count != 2) {
            return fail(kCopyListFormat);
        }
        auto part = [&](int n) {
            return entry.substr(parts.fields[n].start, parts.fields[n].end - parts.fields[n].start + 1);
        };
        const std::string destination = project_name((directory + '\\' + part(1)).c_str());
        if (!gfile_cp(part(0).c_str(), destination.c_str(), 1)) {
            return fail(kCopyFiles);
        }
    }
    return true;
}

bool write_configuration(const std::string& directory)
{
    FILE* stream = nullptr;
    if (!gfile_filopn(&stream, configuration_file(directory).c_str(), GFILE_WRITE)) {
        return fail(kCreateConfiguration);
    }
    const std::string line = std::string(kVersionKey) + "=" + kCurrentVersion;
    const bool written = gfile_resetfilptr(stream) && gfile_putline(stream, 1, line.c_str());
    return (gfile_filcls(stream) && written) || fail(kCreateConfiguration);
}

// Removes an existing `name` when `overwrite` is 1; false with
// `exists_code` or `remove_code` when the name is in the way.
bool clear_the_way(const std::string& name, int overwrite, int exists_code, int remove_code)
{
    if (!gfile_exists(name.c_str())) {
        return true;
    }
    if (overwrite == 0) {
        return fail(exists_code);
    }
    if (overwrite == 1 && !gfile_rm(name.c_str(), 1)) {
        return fail(remove_code);
    }
    return true;
}

} // namespace

extern "C" {

int gprj_create(const char* dir, const char* subdirs, char* copy_list, int overwrite)
{
    if (!dir || !configuration_name()) {
        return fail(kMakeProject);
    }
    const std::string directory = project_name(dir);
    if (!clear_the_way(directory, overwrite, kInputExists, kRemoveInput)) {
        return 0;
    }
    if (tql_mkdir(directory.c_str(), kDirectoryMode) != 0) {
        return fail(kMakeProject);
    }
    std::vector<std::string> table;
    if (!subdirectory_table(directory, subdirs, kCreatedSubdirectories, table)) {
        return fail(kMakeSubdirectory);
    }
    for (const std::string& subdirectory : table) {
        if (tql_mkdir(subdirectory.c_str(), kDirectoryMode) != 0) {
            return fail(kMakeSubdirectory);
        }
    }
    if (copy_list && *copy_list && !copy_entries(directory, copy_list)) {
        return 0;
    }
    return write_configuration(directory) ? 1 : 0;
}

int gprj_copy(const char* src, const char* dst, int overwrite)
{
    if (!src || !dst) {
        return fail(kCopyProject);
    }
    const std::string source = project_name(src);
    const std::string destination = project_name(dst);
    if (!clear_the_way(destination, overwrite, kOutputExists, kRemoveOutput)) {
        return 0;
    }
    return gfile_cp(source.c_str(), destination.c_str(), 1) ? 1 : fail(kCopyProject);
}

int gprj_delete(const char* dir)
{
    if (!dir) {
        return fail(kRemoveInput);
    }
    return gfile_rm(project_name(dir).c_str(), 1) ? 1 : fail(kRemoveInput);
}

int gprj_is_project(const char* dir, char* version)
{
    if (!dir || !version) {
        return fail(kNoInputPath);
    }
    version[0] = '\0';
    if (!configuration_name()) {
        return fail(kReadConfiguration);
    }
    // gfile_setdefpath rewrites the name in place as an absolute one.
    std::vector<char> name(8192, '\0');
    const std::string given = project_name(dir);
    std::memcpy(name.data(), given.c_str(), given.size() + 1);
    if (!gfile_setdefpath(name.data())) {
        return fail(kNoInputPath);
    }
    const std::string directory = project_name(name.data());
    if (!gfile_exists(directory.c_str())) {
        return fail(kNoInputPath);
    }
    std::vector<std::string> table;
    if (!subdirectory_table(directory, nullptr, kRequiredSubdirectories, table)) {
        return fail(kNoSubdirectory);
    }
    for (const std::string& subdirectory : table) {
        if (!gfile_exists(subdirectory.c_str())) {
            return fail(kNoSubdirectory);
        }
    }
    std::string found;
    if (!read_configuration(configuration_file(directory), kVersionKey, found)) {
        return 0;
    }
    std::memcpy(version, found.c_str(), found.size() + 1);
    if (!found.empty() && found == kCurrentVersion) {
        return 1;
    }
    GprjVersionFn callback = version_callback();
    return callback ? callback(kCurrentVersion, version, directory.c_str()) : 0;
}

int gprj_open(const char* dir, char* version)
{
    return gprj_is_project(dir, version);
}

} // extern "C"
