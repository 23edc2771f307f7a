// Project directories: the module state and helpers that the project files
// share (configuration name, version, sub-directory table, error codes).
#ifndef TQL70_SOURCE_PROJECTS_GPRJ_INTERNAL_H
#define TQL70_SOURCE_PROJECTS_GPRJ_INTERNAL_H

#include <tql70/gprj.h>

#include <string>
#include <vector>

namespace gprj_internal {

enum ErrorCode {
    kMakeProject = 1,
    kMakeSubdirectory = 2,
    kRemoveInput = 3,
    kRemoveOutput = 4,
    kCopyFiles = 6,
    kCopyListFormat = 7,
    kCopyProject = 8,
    kNoInputPath = 10,
    kInputExists = 12,
    kNoSubdirectory = 13,
    kOutputExists = 16,
    kCreateConfiguration = 17,
    kReadConfiguration = 18,
    kCloseConfiguration = 19,
};

constexpr char kCurrentVersion[] = "1000";
constexpr char kVersionKey[] = "PROJECT_VERSION";
constexpr size_t kNameLimit = 1023;

// Fails with `code`: sets GprjErrorNo and gives 0.
int fail(int code);
// The configuration base name of gprj_init; null before it.
const char* configuration_name();
GprjVersionFn version_callback();
// At most 1023 characters of `name` with one trailing separator removed.
std::string project_name(const char* name);
// The configuration file of the project directory `directory`.
std::string configuration_file(const std::string& directory);
// The full sub-directory paths of `directory` for the list `subdirs`
// (null or "": `defaults`); false when there are more than
// GPRJ_MAX_SUBDIRS or a path does not fit in GPRJ_SUBDIR_PATH_SIZE bytes.
bool subdirectory_table(const std::string& directory, const char* subdirs, const std::vector<const char*>& defaults,
                        std::vector<std::string>& table);
// The value of `key` in the configuration file `file` ("" when absent);
// false with GprjErrorNo set when the file cannot be read or closed.
bool read_configuration(const std::string& file, const char* key, std::string& value);

} // namespace gprj_internal

#endif
