// Internal layout of environments and the operations the environment
// modules share: name normalisation, lookup, level tables, the list of
// open environments and the default environment.
#ifndef TQL70_SOURCE_ENV_ENV_STORE_H
#define TQL70_SOURCE_ENV_ENV_STORE_H

#include <tql70/gui_env.h>

#include "env/name_index.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// One variable. A slot whose name is empty is free.
struct GuiEnvEntry {
    char name[GUI_ENV_NAME_MAX + 1]; // normalised: at most 63 bytes, ASCII upper case
    char* value;                     // owned (gmem), may be null
    void* user;                      // caller's pointer, never freed
    int32_t state;                   // ENV_CLEAN, ENV_MODIFIED, ENV_DELETED, ENV_INCLUDED
    const char* source;              // the file the value was read from, or null
    int line;                        // its line in that file (from 1); 0 when not read from a file
};

// One level: the file it was last loaded from (and is written back to) and
// its table of entries, which grows by 32 slots and never shrinks.
struct GuiEnvLevel {
    std::string file_name; // library form, any length; empty: none
    GuiEnvEntry* entries; // gmem_ee_calloc / gmem_ee_realloc
    int capacity;
    int count;
    tql::env::NameIndex index; // name -> slot, same answers as a scan
};

// Levels in storage order: site, custom, home, local.
struct GuiEnvStruct {
    GuiEnvLevel levels[4];
    GuiEnvStruct* next;
};

namespace tql::env {

constexpr int kSlotBlock = 32;

// Storage index of a level number 1..4 (site 4 -> 0 ... local 1 -> 3).
inline int storage_index(int level)
{
    return 4 - level;
}

// Cuts `name` to 63 bytes and upper-cases ASCII letters into `out`.
void normalize_name(const char* name, char out[GUI_ENV_NAME_MAX + 1]);

// The entry of the normalised `name` at `level` (1..4 one level, anything
// else local, home, custom, site in that order), or null. Deleted entries
// are found only with `include_deleted`.
GuiEnvEntry* find_entry(GuiEnv env, const char* normalized, int level, bool include_deleted);

// gui_env_put_modnew, answering the entry put (null on failure).
GuiEnvEntry* put_entry(GuiEnv env, const char* name, const char* value, int level, int state);

// A new environment with four empty levels (not yet in the open list);
// null when memory is short.
GuiEnv new_environment();
// Frees the values and table of one level; the level becomes empty.
void free_level(GuiEnvLevel& level);
// Frees every level and the handle.
void free_environment(GuiEnv env);

// The open environments, oldest first; the first is the default one.
GuiEnv open_environments();
void append_environment(GuiEnv env);
void remove_environment(GuiEnv env);

// The default environment, made (gui_env_init) when there is none; null
// when it cannot be made.
GuiEnv default_environment();

// ---- configuration files ----

// The last file failure told to the error callback: the native path (or
// include chain) and the system's reason ("" for include cycles and depth).
struct FileFailure {
    std::string path;
    std::string reason;
};
const FileFailure& last_file_failure();
// Records a failure with `native` (a path or an include chain) and the
// errno value `error` (0: none), then tells the error callback (`code`).
// Answers the callback's result.
int report_file_failure(GuiEnv env, int code, const std::string& native, int error);

// The default configuration name.
constexpr const char* kDefaultConfiguration = "zqtarvex";

// The file of `level` (1 local ... 4 site, 5 explicit) for configuration
// `name`, built with '\' separators.
std::string level_file(int level, const char* name);
// The add-on files of configuration `name` (sorted by name).
std::vector<std::string> addon_files(const char* name);
// Reads the custom-directory setting once per process.
void read_custom_directory_once();

// A process-wide copy of a file name, for GuiEnvEntry::source (never freed).
const char* remembered_file_name(const std::string& path);

// Fills a new environment from the files of `name`: site, add-ons, custom,
// home, local. With a level 1 to 5 only that level's file is read.
void load_environment(GuiEnv env, const char* name, int level);
// Reads one file into `level` (1..4); includes are followed.
void read_config_file(GuiEnv env, const std::string& path, int level, bool included, bool addon);
// Includes nest at most this deep; a deeper one is refused like a cycle.
constexpr int kMaxIncludeDepth = 64;
// Writes a level back to its file; true when nothing needed writing or the
// write succeeded.
bool write_level(GuiEnv env, int level);

// gui_env_expand_str with the further environments still in `args`
// (null-terminated, read only when env is not null).
int expand_with_list(char* destination, const char* source, int size, GuiEnv env, va_list args);

// Where a path-list element starting at `text` ends: at the first ';' or
// ':', except that the ':' of a drive ("C:" or "C:/") belongs to the
// element. Returns the offset of the separator, or the length of `text`.
size_t path_element_length(const char* text);

// A reference met in a text: its kind ('%' or '$') and its name, upper
// case, as expansion reads it.
struct Reference {
    char kind;
    std::string name;
};
// Every reference in `text`, in order, without resolving any.
std::vector<Reference> references_in(const char* text);

} // namespace tql::env

#endif
