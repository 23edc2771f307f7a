// Writing a level of an environment back to its configuration file. The
// file is rewritten through a temporary file that keeps comments, include
// lines and the order of the lines; the original is replaced only once the
// new text is complete, so a failed write never loses the user's file.
#include "env/env_store.h"
#include "env/config_text.h"

#include <tql70/gfile.h>
#include <tql70/tql_os.h>
#include <tql70/zq_paths.h>

#include "platform/platform.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

std::string trimmed(const std::string& text)
{
    std::string copy = text.substr(tql::env::skip_leading(text));
    tql::env::trim_trailing(copy);
    return copy;
}

bool needs_writing(const GuiEnvLevel& level)
{
    for (int slot = 0; slot < level.capacity; ++slot) {
        const GuiEnvEntry& entry = level.entries[slot];
        if (entry.name[0] && (entry.state == ENV_MODIFIED || entry.state == ENV_DELETED)) {
            return true;
        }
    }
    return false;
}

bool write_entry(FILE* out, const char* name, const char* value)
{
    return std::fprintf(out, "%s=%s\n", name, value ? value : "") >= 0;
}

// Reads one line with its line end kept; false at the end.
bool read_raw_line(FILE* file, std::string& line)
{
    line.clear();
    char chunk[12000];
    while (std::fgets(chunk, sizeof chunk, file)) {
        line += chunk;
        if (line.back() == '\n') {
            return true;
        }
    }
    return !line.empty();
}

// The rewritten text of an existing file: comment and other lines as they
// are, variable lines of this level updated or dropped, new entries last.
bool rewrite(FILE* in, FILE* out, GuiEnv env, int level_number)
{
    GuiEnvLevel& level = env->levels[tql::env::storage_index(level_number)];
    std::string line;
    bool ok = true;
    while (ok && read_raw_line(in, line)) {
        const size_t equals = line.find('=');
        if (line.size() < 2 || line[0] == '#' || equals == std::string::npos) {
            ok = std::fputs(line.c_str(), out) >= 0;
            continue;
        }
        char upper[GUI_ENV_NAME_MAX + 1];
        tql::env::normalize_name(trimmed(line.substr(0, equals)).c_str(), upper);
        const std::string value = line.substr(tql::env::skip_leading(line, equals + 1));
        GuiEnvEntry* entry = tql::env::find_entry(env, upper, level_number, true);
        if (!entry) {
            // The untrimmed value keeps its own line end, so an empty line
            // follows it: the historical rewrite, kept as it is.
            ok = write_entry(out, upper, value.c_str());
        } else if (entry->state == ENV_MODIFIED) {
            ok = write_entry(out, upper, entry->value);
            entry->state = ENV_CLEAN;
        } else if (entry->state != ENV_DELETED) {
            std::string kept = value;
            tql::env::trim_trailing(kept);
            ok = write_entry(out, upper, kept.c_str());
        }
    }
    for (int slot = 0; ok && slot < level.capacity; ++slot) {
        GuiEnvEntry& entry = level.entries[slot];
        if (entry.name[0] && entry.state == ENV_MODIFIED) {
            ok = write_entry(out, entry.name, entry.value);
            entry.state = ENV_CLEAN;
        }
    }
    return ok && !std::ferror(in);
}

// A new file with every entry of the level that did not come from an
// included file (deleted ones too), in slot order.
bool write_new(FILE* out, GuiEnvLevel& level)
{
    bool ok = true;
    for (int slot = 0; ok && slot < level.capacity; ++slot) {
        GuiEnvEntry& entry = level.entries[slot];
        if (entry.name[0] && entry.state != ENV_INCLUDED) {
            ok = write_entry(out, entry.name, entry.value);
            entry.state = ENV_CLEAN;
        }
    }
    return ok;
}

bool report_write_failure(GuiEnv env, const char* path)
{
    char* ignored = nullptr;
    gui_env_apply_env_error(GUI_ENV_ERR_WRITE, env, path, &ignored);
    return false;
}

void make_home_directories()
{
    std::string home = tql::env::level_file(GUI_ENV_HOME, "x");
    home.resize(home.rfind('\\'));                   // HOME\zqtarvex\config
    const std::string parent = home.substr(0, home.rfind('\\')); // HOME\zqtarvex
    for (const std::string& directory : {parent, home}) {
        if (!gfile_is_dir(directory.c_str())) {
            tql_mkdir(directory.c_str(), 0755);
        }
    }
}

} // namespace

namespace tql::env {

bool write_level(GuiEnv env, int level_number)
{
    GuiEnvLevel& level = env->levels[storage_index(level_number)];
    if (!level.entries) {
        return true;
    }
    if (level_number == GUI_ENV_HOME) {
        make_home_directories();
    }
    if (!needs_writing(level) || !level.file_name[0]) {
        return true;
    }
    // The new text goes to a temporary file in the same directory, which
    // then takes the original's place in one step. Until then the original
    // is untouched, whatever fails.
    FILE* in = fopen_utf8(level.file_name, "r");
    const std::string temporary = temporary_name_beside(level.file_name);
    FILE* out = fopen_native(temporary, "w");
    bool ok = out != nullptr;
    if (ok) {
        // No file yet: every entry of the level; else the rewritten file.
        ok = (in ? rewrite(in, out, env, level_number) : write_new(out, level)) && flush_to_disk(out);
        ok = (std::fclose(out) == 0) && ok;
    }
    if (in) {
        std::fclose(in);
    }
    if (!ok || !replace_file(temporary, level.file_name)) {
        if (out) {
            remove_file(temporary);
        }
        return report_write_failure(env, level.file_name);
    }
    return true;
}

} // namespace tql::env
