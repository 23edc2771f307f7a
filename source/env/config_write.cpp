// Writing a level of an environment back to its configuration file. The
// file is rewritten through a temporary file that keeps comments, include
// lines and the order of the lines; the original is replaced only once the
// new text is complete, so a failed write never loses the user's file, and
// saves of several processes are serialised.
#include "env/env_store.h"
#include "env/config_text.h"

#include <tql70/gfile.h>
#include <tql70/tql_os.h>
#include <tql70/zq_paths.h>

#include "platform/platform.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
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

// Writes "NAME=value" and a line feed; the value is written byte for byte
// (a NUL byte read from the file stays data).
bool write_entry(FILE* out, const std::string& name, const std::string& value)
{
    const std::string line = name + "=" + value + "\n";
    return std::fwrite(line.data(), 1, line.size(), out) == line.size();
}

std::string value_of(const GuiEnvEntry& entry)
{
    return entry.value ? entry.value : "";
}

// The rewritten text of the file as it is now: comment and other lines as
// they are, variable lines of this level updated or dropped, new entries
// last. A changed name updates every line that defines it, so reading the
// file back gives the saved value whichever line wins. Lines end only at a
// line feed.
bool rewrite(FILE* in, FILE* out, GuiEnv env, int level_number)
{
    GuiEnvLevel& level = env->levels[tql::env::storage_index(level_number)];
    std::string content;
    if (!tql::env::read_whole_file(in, content)) {
        return false;
    }
    std::set<const GuiEnvEntry*> written;
    bool ok = true;
    for (size_t start = 0; ok && start < content.size();) {
        size_t end = content.find('\n', start);
        end = end == std::string::npos ? content.size() : end + 1;
        const std::string line = content.substr(start, end - start);
        start = end;
        const size_t equals = line.find('=');
        // Lines that define nothing (a NUL byte in the name among them)
        // are copied as they are.
        if (line.size() < 2 || line[0] == '#' || equals == std::string::npos || line.find('\0') < equals) {
            // A last line without its line feed gets one, so that a new
            // entry appended after it starts a line of its own.
            ok = std::fwrite(line.data(), 1, line.size(), out) == line.size() &&
                 (line.back() == '\n' || std::fputc('\n', out) != EOF);
            continue;
        }
        char upper[GUI_ENV_NAME_MAX + 1];
        tql::env::normalize_name(trimmed(line.substr(0, equals)).c_str(), upper);
        const std::string value = line.substr(tql::env::skip_leading(line, equals + 1));
        const GuiEnvEntry* entry = tql::env::find_entry(env, upper, level_number, true);
        if (!entry) {
            // The untrimmed value keeps its own line end, so an empty line
            // follows it: the historical rewrite, kept as it is.
            ok = write_entry(out, upper, value);
        } else if (entry->state == ENV_MODIFIED) {
            ok = write_entry(out, upper, value_of(*entry));
            written.insert(entry);
        } else if (entry->state != ENV_DELETED) {
            std::string kept = value;
            tql::env::trim_trailing(kept);
            ok = write_entry(out, upper, kept);
        }
    }
    for (int slot = 0; ok && slot < level.capacity; ++slot) {
        const GuiEnvEntry& entry = level.entries[slot];
        if (entry.name[0] && entry.state == ENV_MODIFIED && !written.count(&entry)) {
            ok = write_entry(out, entry.name, value_of(entry));
        }
    }
    return ok;
}

// A new file with every entry of the level that did not come from an
// included file (deleted ones too), in slot order.
bool write_new(FILE* out, const GuiEnvLevel& level)
{
    bool ok = true;
    for (int slot = 0; ok && slot < level.capacity; ++slot) {
        const GuiEnvEntry& entry = level.entries[slot];
        if (entry.name[0] && entry.state != ENV_INCLUDED) {
            ok = write_entry(out, entry.name, value_of(entry));
        }
    }
    return ok;
}

// Once the file holds them, the changed entries are clean.
void mark_saved(GuiEnvLevel& level, bool new_file)
{
    for (int slot = 0; slot < level.capacity; ++slot) {
        GuiEnvEntry& entry = level.entries[slot];
        if (entry.name[0] && (entry.state == ENV_MODIFIED || (new_file && entry.state != ENV_INCLUDED))) {
            entry.state = ENV_CLEAN;
        }
    }
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
    if (!needs_writing(level) || level.file_name.empty()) {
        return true;
    }
    // Under the save lock, the file as it is now (another process may have
    // saved since it was read) gets this environment's changes; the new
    // text replaces it in one step only once complete, so the original is
    // untouched whatever fails.
    ConfigSave save(level.file_name.c_str());
    if (!save.error()) {
        FILE* in = save.current();
        if (in ? !rewrite(in, save.output(), env, level_number) : !write_new(save.output(), level)) {
            save.fail(errno);
        }
    }
    if (!save.commit()) {
        report_file_failure(env, GUI_ENV_ERR_WRITE, save.target(), save.error());
        return false;
    }
    mark_saved(level, save.current() == nullptr);
    return true;
}

} // namespace tql::env
