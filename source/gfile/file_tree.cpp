// The tree operations: gfile_cp and gfile_rm of a file, a wildcard set of
// files or a directory tree, and gfile_chmod of a file or a wildcard set.
#include <tql70/gfile.h>
#include <tql70/tql_os.h>
#include <tql70/zq_paths.h>

#include "gfile/gfile_internal.h"
#include "platform/platform.h"

#include <QString>

#include <cstring>
#include <string>

using namespace tql::gfile;

namespace {

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

bool copy_walk(const std::string& source, const char* pattern, const std::string& destination, bool recursive)
{
    return for_each_match(source, pattern, [&](const std::string& name) {
        const std::string from = with_separator(source) + name;
        const std::string to = with_separator(destination) + name;
        const int type = gfile_type(from.c_str());
        if (type == 0) {
            return false;
        }
        if (type == GFILE_TYPE_DIRECTORY) {
            // An existing directory of the same name makes the copy fail:
            // creating it fails.
            return !recursive ||
                   (tql_mkdir(with_separator(to).c_str(), 0755) == 0 && copy_walk(from, "*", to, true));
        }
        return gfile_copy(from.c_str(), to.c_str()) == 1;
    });
}

// Removes the matching entries of `directory`. A failure does not stop the
// walk; it only makes the answer false. Symbolic links are removed as links,
// never followed, so a walk cannot reach outside the tree it was given.
bool remove_walk(const std::string& directory, const char* pattern, bool recursive)
{
    bool all_removed = true;
    const bool listed = for_each_match(directory, pattern, [&](const std::string& name) {
        const std::string full = with_separator(directory) + name;
        const int type = gfile_type(full.c_str());
        if (type == 0 && !path_status(full.c_str()).is_symlink) {
            return false;
        }
        if (type == GFILE_TYPE_DIRECTORY && !path_status(full.c_str()).is_symlink) {
            if (recursive && !(remove_walk(full, "*", true) && remove_directory(native_path(full.c_str())))) {
                all_removed = false;
            }
            return true;
        }
        if (!remove_file(native_path(full.c_str()))) {
            all_removed = false;
        }
        return true;
    });
    return listed && all_removed;
}

} // namespace

extern "C" {

int gfile_cp(const char* src, const char* dst, int recursive)
{
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
        return recursive && remove_walk(name, "*", true) && remove_directory(native_path(name.c_str()));
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
