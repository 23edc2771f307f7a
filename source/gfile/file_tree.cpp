// The tree operations: gfile_cp and gfile_rm of a file, a wildcard set of
// files or a directory tree, and gfile_chmod of a file or a wildcard set.
// Trees are walked by open directory, never through a symbolic link.
#include <tql70/gfile.h>
#include <tql70/tql_os.h>
#include <tql70/zq_paths.h>

#include "gfile/gfile_internal.h"
#include "platform/platform.h"

#include <QString>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

using namespace tql::gfile;

namespace {

// Set once by a program before it walks; the walks only read it.
WalkObserver walk_observer = nullptr;

// A working copy of a caller's name: '\' separators throughout (so names
// with either separator work alike) and one trailing separator removed.
std::string working_name(const char* path)
{
    std::string copy = path;
    convertFileName(&copy[0]);
    gfile_strip_dir_name(&copy[0]);
    copy.resize(std::strlen(copy.c_str()));
    return copy;
}

std::string with_separator(std::string directory)
{
    if (directory.empty() || directory.back() != '\\') {
        directory += '\\';
    }
    return directory;
}

// The type of a name as the walks see it: the stat bits, 1 for a wildcard
// name, 0 when it does not exist.
int classify(const std::string& name)
{
    return has_wildcard(name.c_str()) ? 1 : gfile_type(name.c_str());
}

// Splits a wildcard name at its last '\' into the directory (which must be
// one) and the pattern.
bool split_wildcard(const std::string& name, std::string& directory, std::string& pattern)
{
    const size_t cut = name.rfind('\\');
    if (cut == std::string::npos) {
        return false;
    }
    directory = name.substr(0, cut + 1);
    pattern = name.substr(cut + 1);
    return gfile_type(directory.c_str()) == GFILE_TYPE_DIRECTORY;
}

// Calls `visit(name)` for every entry of `directory` other than "." and ".."
// that matches `pattern`, until it answers false. False when the directory
// cannot be listed or a visit failed.
template <typename Visit>
bool for_each_match(const std::string& directory, const char* pattern, Visit visit)
{
    std::string listed = directory;
    gfile_strip_dir_name(&listed[0]);
    tql_DIR* dir = opendir_utf8(listed.c_str());
    if (!dir) {
        return false;
    }
    bool ok = true;
    while (tql_dirent* entry = tql_readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == ".." || !wildcard_match(name.c_str(), pattern)) {
            continue;
        }
        if (!visit(name)) {
            ok = false;
            break;
        }
    }
    tql_closedir(dir);
    return ok;
}

// One directory of a tree walk: its matching entries, the next to handle,
// and (for removal) whether every one handled so far went.
struct Pending {
    std::vector<std::string> names;
    size_t next = 0;
    bool all_removed = true;
};

// Opens a level of the walk on the stack of pending directories: the
// entries of the deepest directory of `walk` that match `pattern`.
bool push_level(const DirectoryPath& walk, const char* pattern, std::vector<Pending>& pending)
{
    pending.emplace_back();
    std::vector<std::string> names;
    if (!walk.list(names)) {
        return false;
    }
    for (std::string& name : names) {
        if (wildcard_match(name.c_str(), pattern)) {
            pending.back().names.push_back(std::move(name));
        }
    }
    return true;
}

// Copies one entry of a copy walk; false (reported) stops the walk. A
// recursive walk copies a symbolic link as a link and enters only real
// directories; the non-recursive walk of a wildcard set copies what a link
// leads to and skips directories.
bool copy_entry(DirectoryPath& from, DirectoryPath& to, const std::string& name, bool recursive,
                std::vector<Pending>& pending)
{
    switch (from.kind(name, !recursive)) {
    case EntryKind::kMissing:
        fail_at(from.name_of(name), kCannotFind, __LINE__);
        return false;
    case EntryKind::kDirectory:
        if (!recursive) {
            return true;
        }
        // A tree copied into itself would grow without end: the copy stops
        // where it meets its own destination.
        if (from.is_root_of(name, to)) {
            errno = EINVAL;
            fail_at(from.name_of(name), kWriteError, __LINE__);
            return false;
        }
        // An existing directory of the same name makes the copy fail:
        // creating it fails.
        if (!to.make_directory(name, 0755)) {
            fail_at(to.name_of(name), kWriteError, __LINE__);
            return false;
        }
        if (!from.enter(name)) {
            fail_at(from.name_of(name), kCannotOpen, __LINE__);
            return false;
        }
        if (!to.enter(name)) {
            fail_at(to.name_of(name), kCannotOpen, __LINE__);
            return false;
        }
        if (!push_level(from, "*", pending)) {
            fail_at(from.name_of(""), kReadError, __LINE__);
            return false;
        }
        return true;
    case EntryKind::kSymlink: {
        std::string target;
        if (!from.read_link(name, target)) {
            fail_at(from.name_of(name), kReadError, __LINE__);
            return false;
        }
        if (!to.make_link(name, target)) {
            fail_at(to.name_of(name), kWriteError, __LINE__);
            return false;
        }
        return true;
    }
    default:
        break;
    }
    switch (from.copy_file(name, !recursive, to)) {
    case EntryCopy::kDone:
        return true;
    case EntryCopy::kCannotOpenSource:
        fail_at(from.name_of(name), kCannotOpen, __LINE__);
        return false;
    case EntryCopy::kCannotOpenTarget:
        fail_at(to.name_of(name), kCannotOpen, __LINE__);
        return false;
    case EntryCopy::kReadError:
        fail_at(from.name_of(name), kReadError, __LINE__);
        return false;
    case EntryCopy::kWriteError:
        break;
    }
    fail_at(to.name_of(name), kWriteError, __LINE__);
    return false;
}

// Copies the entries of `source` matching `pattern` into `destination`,
// with `recursive` the subdirectories too. The walk keeps its own stack of
// directories, so the depth of a tree is bounded by memory, not by the
// length of its names or the size of the call stack.
bool copy_walk(const std::string& source, const char* pattern, const std::string& destination, bool recursive)
{
    DirectoryPath from(source);
    DirectoryPath to(destination);
    std::vector<Pending> pending;
    if (!from.open_root() || !push_level(from, pattern, pending)) {
        fail_at(source, kCannotOpen, __LINE__);
        return false;
    }
    if (!to.open_root()) {
        fail_at(destination, kCannotOpen, __LINE__);
        return false;
    }
    while (!pending.empty()) {
        Pending& level = pending.back();
        if (level.next == level.names.size()) {
            pending.pop_back();
            if (!pending.empty() && !(from.leave() && to.leave())) {
                fail_at(from.name_of(""), kCannotOpen, __LINE__);
                return false;
            }
            continue;
        }
        const std::string name = level.names[level.next++];
        walk_reached(from.name_of(name));
        if (!copy_entry(from, to, name, recursive, pending)) {
            return false;
        }
    }
    return true;
}

// Removes the entries of `directory` matching `pattern`, with `recursive`
// the subdirectories and everything below them. A failure does not stop
// the walk; it only makes the answer false, and the first one is reported.
// An entry that vanished stops the walk. Symbolic links are removed as
// links, never followed, so a walk cannot reach outside the tree it was
// given.
bool remove_walk(const std::string& directory, const char* pattern, bool recursive)
{
    DirectoryPath walk(directory);
    std::vector<Pending> pending;
    if (!walk.open_root() || !push_level(walk, pattern, pending)) {
        fail_at(directory, kCannotOpen, __LINE__);
        return false;
    }
    bool reported = false;
    auto failed = [&](const std::string& name, int code, int line) {
        if (!reported) {
            fail_at(name, code, line);
            reported = true;
        }
    };
    for (;;) {
        Pending& level = pending.back();
        if (level.next == level.names.size()) {
            const bool emptied = level.all_removed;
            pending.pop_back();
            if (pending.empty()) {
                return emptied;
            }
            if (!walk.leave()) {
                failed(walk.name_of(""), kCannotOpen, __LINE__);
                return false;
            }
            Pending& parent = pending.back();
            const std::string& emptied_name = parent.names[parent.next - 1];
            if (!emptied) {
                parent.all_removed = false;
            } else if (!walk.remove(emptied_name, true)) {
                failed(walk.name_of(emptied_name), kCannotDelete, __LINE__);
                parent.all_removed = false;
            }
            continue;
        }
        const std::string name = level.names[level.next++];
        walk_reached(walk.name_of(name));
        const EntryKind kind = walk.kind(name, false);
        if (kind == EntryKind::kMissing) {
            failed(walk.name_of(name), kCannotFind, __LINE__);
            return false;
        }
        if (kind != EntryKind::kDirectory) {
            if (!walk.remove(name, false)) {
                failed(walk.name_of(name), kCannotDelete, __LINE__);
                level.all_removed = false;
            }
        } else if (recursive) {
            if (!walk.enter(name)) {
                failed(walk.name_of(name), kCannotOpen, __LINE__);
                level.all_removed = false;
            } else if (!push_level(walk, "*", pending)) {
                failed(walk.name_of(""), kReadError, __LINE__);
                pending.back().all_removed = false;
            }
        }
    }
}

} // namespace

namespace tql::gfile {

void set_walk_observer(WalkObserver observer)
{
    walk_observer = observer;
}

void walk_reached(const std::string& name)
{
    if (walk_observer) {
        walk_observer(name);
    }
}

} // namespace tql::gfile

extern "C" {

int gfile_cp(const char* src, const char* dst, int recursive)
{
    forget_failed_name();
    if (!src || !dst || std::strlen(src) > kPathLimit || std::strlen(dst) > kPathLimit) {
        return 0;
    }
    const std::string source = working_name(src);
    const std::string destination = working_name(dst);
    const int source_type = classify(source);
    if (source_type == 0) {
        return 0;
    }
    const int destination_type = gfile_type(destination.c_str());
    if (source_type == GFILE_TYPE_DIRECTORY) {
        if (!recursive) {
            return 0;
        }
        if (destination_type != GFILE_TYPE_DIRECTORY &&
            (destination_type != 0 || !make_directory(native_path(destination.c_str())))) {
            return 0;
        }
        return copy_walk(source, "*", destination, true);
    }
    if (source_type == 1) {
        std::string directory;
        std::string pattern;
        if (destination_type != GFILE_TYPE_DIRECTORY || !split_wildcard(source, directory, pattern)) {
            return 0;
        }
        return copy_walk(directory, pattern.c_str(), destination, false);
    }
    std::string target = destination;
    if (destination_type == GFILE_TYPE_DIRECTORY) {
        std::string bare(source.size() + 1, '\0');
        gfile_stripdrv(source.c_str(), &bare[0]);
        target = with_separator(destination) + bare.c_str();
    }
    return gfile_copy(source.c_str(), target.c_str());
}

int gfile_rm(const char* path, int recursive)
{
    forget_failed_name();
    if (!path || std::strlen(path) > kPathLimit) {
        return 0;
    }
    const std::string name = working_name(path);
    const int type = classify(name);
    if (type == 1) {
        std::string directory;
        std::string pattern;
        return split_wildcard(name, directory, pattern) && remove_walk(directory, pattern.c_str(), false);
    }
    if (type == GFILE_TYPE_DIRECTORY && !path_status(name.c_str()).is_symlink) {
        if (!recursive || !remove_walk(name, "*", true)) {
            return 0;
        }
        if (!remove_directory(native_path(name.c_str()))) {
            fail_at(name, kCannotDelete, __LINE__);
            return 0;
        }
        return 1;
    }
    if (type == 0 && !path_status(name.c_str()).is_symlink) {
        return 0;
    }
    return remove_file(native_path(name.c_str()));
}

int gfile_chmod(const char* path, int mode)
{
    if (!path) {
        return 0;
    }
    const std::string name = gfile_strip_dir_name_and_convert_qt(QString::fromUtf8(path)).toStdString();
    if (!has_wildcard(name.c_str())) {
        return gfile_type(name.c_str()) != 0 && change_mode(native_path(name.c_str()), mode) == 0;
    }
    const size_t cut = name.find_last_of(":\\");
    const std::string directory = cut == std::string::npos ? std::string(".") : name.substr(0, cut);
    const std::string pattern = cut == std::string::npos ? name : name.substr(cut + 1);
    return for_each_match(directory, pattern.c_str(), [&](const std::string& entry) {
        return change_mode(native_path((with_separator(directory) + entry).c_str()), mode) == 0;
    });
}

} // extern "C"
