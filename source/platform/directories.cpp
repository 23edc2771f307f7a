// The current directory, file kinds and directory listing by library-form
// name.
#include "platform/platform.h"

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

std::string current_directory()
{
    return QDir::currentPath().toStdString();
}

bool change_directory(const char* name)
{
    return name && ::chdir(native_path(name).c_str()) == 0;
}

PathStatus path_status(const char* name)
{
    PathStatus status;
    struct stat st;
    if (!name) {
        return status;
    }
    const std::string native = native_path(name);
    if (::lstat(native.c_str(), &st) != 0) {
        return status;
    }
    status.is_symlink = S_ISLNK(st.st_mode);
    if (status.is_symlink && ::stat(native.c_str(), &st) != 0) {
        return status; // a dangling link names nothing
    }
    status.exists = true;
    status.is_file = S_ISREG(st.st_mode);
    status.is_directory = S_ISDIR(st.st_mode);
    return status;
}

std::string absolute_file_path(const char* name)
{
    return QFileInfo(QString::fromStdString(native_path(name))).absoluteFilePath().toStdString();
}

bool find_entry_ignoring_case(const std::string& directory, const std::string& name, std::string& found)
{
    struct stat st;
    const std::string as_written = (directory.empty() || directory.back() == '/' ? directory : directory + "/") + name;
    if (::lstat(as_written.c_str(), &st) == 0) {
        found = name;
        return true;
    }
    DIR* listing = ::opendir(directory.empty() ? "/" : directory.c_str());
    if (!listing) {
        return false;
    }
    bool matched = false;
    while (const dirent* entry = ::readdir(listing)) {
        if (::strcasecmp(entry->d_name, name.c_str()) == 0) {
            found = entry->d_name;
            matched = true;
            break;
        }
    }
    ::closedir(listing);
    return matched;
}
