// System calls of the portable OS layer: directory listings, status,
// directory creation and unique temporary names.
#include "platform/platform.h"

#include <QDir>
#include <QString>

#include <dirent.h>
#include <random>
#include <unistd.h>

struct DirectoryStream {
    DIR* dir;
};

DirectoryStream* open_directory(const std::string& native)
{
    DIR* dir = ::opendir(native.c_str());
    if (!dir) {
        return nullptr;
    }
    return new DirectoryStream{dir};
}

bool next_directory_entry(DirectoryStream* stream, std::string& name)
{
    const dirent* entry = stream ? ::readdir(stream->dir) : nullptr;
    if (!entry) {
        return false;
    }
    name = entry->d_name;
    return true;
}

int close_directory(DirectoryStream* stream)
{
    if (!stream) {
        return 0;
    }
    const int result = ::closedir(stream->dir) == 0 ? 0 : -1;
    delete stream;
    return result;
}

int stat_native(const std::string& native, struct stat* buf)
{
    if (!buf) {
        return ::access(native.c_str(), F_OK) == 0 ? 0 : -1;
    }
    return ::stat(native.c_str(), buf) == 0 ? 0 : -1;
}

bool make_directory(const std::string& native)
{
    return QDir().mkdir(QString::fromStdString(native));
}

bool make_path(const std::string& native)
{
    return QDir().mkpath(QString::fromStdString(native));
}

std::string unique_temporary_name(const std::string& directory, const std::string& prefix)
{
    static const char kCharacters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    static std::mt19937 random{std::random_device{}()};
    std::uniform_int_distribution<size_t> pick(0, sizeof kCharacters - 2);
    const std::string base = (directory.empty() || directory.back() == '/' ? directory : directory + "/") + prefix;
    for (;;) {
        std::string name = base;
        for (int i = 0; i < 6; ++i) {
            name += kCharacters[pick(random)];
        }
        if (::access(name.c_str(), F_OK) != 0) {
            return name;
        }
    }
}
