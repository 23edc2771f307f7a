// Directory operations: creating a path component by component (with
// $NAME and %NAME% components), deciding whether it could be created,
// measuring a tree and a volume, and resolving directory names.
#include <tql70/gfile.h>
#include <tql70/process_env.h>
#include <tql70/tql_os.h>
#include <tql70/zq_paths.h>

#include "gfile/gfile_internal.h"
#include "platform/platform.h"

#include <cctype>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Replaces a $NAME or %NAME% component by the variable's value; false (with
// the message) when the variable is not set.
bool expand_component(std::string& component)
{
    std::string name;
    if (!component.empty() && component[0] == '$') {
        name = component.substr(1);
    } else if (component.size() >= 2 && component.front() == '%' && component.back() == '%') {
        name = component.substr(1, component.size() - 2);
    } else {
        return true;
    }
    const char* value = tql_getenv(name.c_str());
    if (!value) {
        std::fprintf(stderr, "gfile:gfile_expand_dir could not expand %s\n", name.c_str());
        return false;
    }
    component = value;
    return true;
}

// The walk shared by gfile_mkdir and gfile_makebledir: calls
// `at_component(prefix, last)` after each non-empty component has been added
// to the prefix; it answers 1 to go on, 0 or other values to stop with them.
// Returns 1 when the walk ended, 0 for an unset variable, or the value that
// stopped it; `prefix` holds the path built.
template <typename AtComponent>
int walk_path(char* path, std::string& prefix, AtComponent at_component)
{
    convertFileName(path);
    size_t i = 0;
    bool relative = false;
    prefix.clear();
    if (path[0] == '\\') {
        // The drive of the current directory: none on Linux.
        prefix = "\\";
        i = 2;
    } else if (std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':' && path[2] == '\\') {
        prefix = std::string(path, 2) + "\\";
        i = 2;
    } else {
        relative = true;
    }
    // The walk starts at index 2 for both rooted forms; for "\dir" that also
    // skips the first character of the first component, as it always has.
    const size_t length = std::strlen(path);
    if (i > length) {
        i = length;
    }
    std::string component;
    bool first = true;
    for (; i <= length; ++i) {
        const char c = path[i];
        if (c != '\\' && c != '\0') {
            component += c;
            continue;
        }
        if (!expand_component(component)) {
            return 0;
        }
        if (relative && first) {
            prefix = component.empty() ? std::string("\\") : component + "\\";
        } else if (!component.empty()) {
            if (prefix.empty() || prefix.back() != '\\') {
                prefix += '\\';
            }
            prefix += component;
        }
        first = false;
        if (!component.empty()) {
            const int verdict = at_component(prefix, c == '\0');
            if (verdict != 1) {
                return verdict;
            }
        }
        component.clear();
    }
    return 1;
}

long long kilobytes_clamped(long long bytes)
{
    const long long kb = bytes / 1024;
    if (kb < 0) {
        return static_cast<int>(static_cast<unsigned long long>(kb) & 0xFFFFFFFFu);
    }
    return kb > INT_MAX ? INT_MAX : kb;
}

void not_a_directory(const std::string& name)
{
    std::fprintf(stderr, "gfile: %s is not a directory \n", name.c_str());
}

// The bytes of every entry below `directory`, "." and ".." of each listing
// included, sizes taken through symbolic links. Subdirectories whose names
// begin with '.' and symbolic links are counted, never entered, so a link
// to an ancestor cannot make the walk endless; the walk keeps its own stack
// of directories, so neither the depth of a tree nor the length of its
// names limits it.
long long tree_bytes(const std::string& directory)
{
    DirectoryPath walk(directory);
    if (!walk.open_root()) {
        not_a_directory(directory);
        return 0;
    }
    long long total = 0;
    std::vector<std::vector<std::string>> pending; // entries still to count, by level
    auto start_level = [&] {
        pending.emplace_back();
        if (!walk.list(pending.back())) {
            not_a_directory(walk.name_of(""));
            return;
        }
        struct stat st;
        for (const char* self : {".", ".."}) {
            if (walk.status(self, true, st)) {
                total += st.st_size;
            }
        }
    };
    start_level();
    while (!pending.empty()) {
        if (pending.back().empty()) {
            pending.pop_back();
            if (!pending.empty() && !walk.leave()) {
                not_a_directory(walk.name_of(""));
                break;
            }
            continue;
        }
        const std::string name = std::move(pending.back().back());
        pending.back().pop_back();
        tql::gfile::walk_reached(walk.name_of(name));
        struct stat st;
        if (walk.status(name, true, st)) {
            total += st.st_size;
        }
        if (name[0] != '.' && walk.kind(name, false) == EntryKind::kDirectory) {
            if (walk.enter(name)) {
                start_level();
            } else {
                not_a_directory(walk.name_of(name));
            }
        }
    }
    return total;
}

} // namespace

extern "C" {

int gfile_mkdir(char* path, int parents, int mode)
{
    if (!path) {
        return 0;
    }
    std::string prefix;
    const int walked = walk_path(path, prefix, [&](const std::string& built, bool) {
        if (parents && tql_stat(built.c_str(), nullptr) != 0 && tql_mkdir(built.c_str(), mode) != 0) {
            return 0;
        }
        return 1;
    });
    if (walked != 1) {
        return 0;
    }
    if (!parents && tql_stat(prefix.c_str(), nullptr) != 0 && tql_mkdir(prefix.c_str(), mode) != 0) {
        return 0;
    }
    return 1;
}

int gfile_makebledir(char* path, int parents)
{
    if (!path) {
        return 0;
    }
    int verdict = 1;
    std::string prefix;
    // Stopping values: 2 and 3 stand for "stop with verdict 0 / 1".
    const int walked = walk_path(path, prefix, [&](const std::string& built, bool last) {
        if (tql_stat(built.c_str(), nullptr) == 0) {
            verdict = is_directory_utf8(built.c_str()) && gfile_is_writable(built.c_str()) ? 1 : 0;
            return 1;
        }
        if (parents || last) {
            return verdict ? 3 : 2;
        }
        verdict = 0;
        return 1;
    });
    if (walked == 0) {
        return 0;
    }
    return walked == 1 ? verdict : walked == 3;
}

int gfile_dirsize(const char* dir)
{
    return dir ? static_cast<int>(kilobytes_clamped(tree_bytes(dir))) : 0;
}

int gfile_freedir_space(char* dir)
{
    if (!dir) {
        return 0;
    }
    convertFileName(dir);
    if (!is_directory_utf8(dir)) {
        std::fprintf(stderr, " The directory %s doesn't exist\n", dir);
        return 0;
    }
    unsigned long long bytes = 0;
    if (!volume_free_bytes(native_path(dir), bytes)) {
        return 0;
    }
    const unsigned long long kb = bytes >> 10;
    return (bytes >= (1ull << 40) || kb >= 0x7FFFFFFFull) ? 0x7FFFFFFF : static_cast<int>(kb);
}

int gfile_setdefpath(char* dir)
{
    if (!dir || !*dir) {
        return 0;
    }
    convertFileName(dir);
    std::string name = dir;
    if (!name.empty() && name.back() == '\\') {
        name.pop_back();
    }
    if (name.size() >= 2 && std::isalpha(static_cast<unsigned char>(name[0])) && name[1] == ':' &&
        (name.size() == 2 || name[2] != '\\')) {
        name.insert(2, "\\");
    }
    const std::string remembered = current_directory();
    if (!change_directory(name.c_str())) {
        return 0;
    }
    std::string resolved = current_directory();
    change_directory(remembered.c_str());
    if (!resolved.empty() && resolved.back() == '\\') {
        resolved.pop_back();
    }
    resolved += '\\';
    if (resolved.size() >= TQL70_PATH_BUFFER_SIZE) {
        return 0;
    }
    std::memcpy(dir, resolved.c_str(), resolved.size() + 1);
    return 1;
}

int gfile_getdefpath(char* buf, int size)
{
    if (!buf) {
        return 0;
    }
    std::string directory = current_directory();
    FixFilenameSlashes(&directory[0]);
    if (directory.empty() || directory.back() != '\\') {
        directory += '\\';
    }
    // Room for the directory, its trailing '\' and the NUL.
    if (size <= 0 || directory.size() + 1 > static_cast<size_t>(size)) {
        return 0;
    }
    std::memcpy(buf, directory.c_str(), directory.size() + 1);
    return 1;
}

void gmain_exit_list(void)
{
}

} // extern "C"
