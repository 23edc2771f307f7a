// The portable OS layer: directory listings with the library's name rules,
// file status, directory creation, streams and temporary names.
#include <tql70/gfile.h>
#include <tql70/gui_env.h>
#include <tql70/process_env.h>
#include <tql70/tql_os.h>
#include <tql70/zq_paths.h>

#include "platform/platform.h"

#include <QString>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>
#include <string>

struct tql_DIR {
    unsigned long position; // entries handed out so far
    tql_dirent entry;
    DirectoryStream* stream;
    bool first_pending; // the entry read when opening is not yet handed out
};

namespace {

void store_entry(tql_DIR* dir, const std::string& name)
{
    const size_t length = name.size() < sizeof dir->entry.d_name ? name.size() : sizeof dir->entry.d_name - 1;
    std::memcpy(dir->entry.d_name, name.data(), length);
    dir->entry.d_name[length] = '\0';
    dir->entry.d_namlen = static_cast<unsigned int>(length);
}

std::string temporary_name;
QString default_prefix;

} // namespace

extern "C" {

tql_DIR* tql_opendir(const char* path)
{
    if (!path || !*path || path[std::strlen(path) - 1] == '*') {
        return nullptr;
    }
    ensure_qt_core_settings();
    std::string directory = path;
    if (directory.back() == '~') {
        QString home;
        if (!getenv_and_registry_qt("HOME", home) && !getenv_and_registry_qt("HOMEPATH", home)) {
            return nullptr;
        }
        directory = home.toStdString();
    }
    DirectoryStream* stream = open_directory(native_path(directory.c_str()));
    if (!stream) {
        return nullptr;
    }
    std::string first;
    tql_DIR* dir = new (std::nothrow) tql_DIR{};
    if (!dir || !next_directory_entry(stream, first)) {
        close_directory(stream);
        delete dir;
        return nullptr;
    }
    dir->stream = stream;
    dir->first_pending = true;
    store_entry(dir, first);
    return dir;
}

tql_DIR* opendir_utf8(const char* path)
{
    return tql_opendir(path);
}

tql_dirent* tql_readdir(tql_DIR* dir)
{
    if (!dir) {
        return nullptr;
    }
    if (dir->first_pending) {
        dir->first_pending = false;
        ++dir->position;
        return &dir->entry;
    }
    std::string name;
    if (!next_directory_entry(dir->stream, name)) {
        return nullptr;
    }
    store_entry(dir, name);
    ++dir->position;
    return &dir->entry;
}

int tql_closedir(tql_DIR* dir)
{
    if (!dir) {
        return 0;
    }
    const int result = close_directory(dir->stream);
    delete dir;
    return result;
}

int tql_stat(const char* path, struct stat* buf)
{
    if (!path) {
        return -1;
    }
    std::string copy = path;
    if (copy.size() == 2 && static_cast<unsigned char>(copy[0]) < 128 && std::isalpha(static_cast<unsigned char>(copy[0])) &&
        copy[1] == ':') {
        copy += '\\';
    }
    convertFileName(&copy[0]);
    gfile_strip_dir_name(&copy[0]);
    copy.resize(std::strlen(copy.c_str()));
    if (stat_native(native_path(copy.c_str()), buf) == 0) {
        return 0;
    }
    if (copy != path) {
        return stat_native(native_path(path), buf);
    }
    return -1;
}

int tql_mkdir(const char* path, int mode)
{
    (void)mode; // kept for the POSIX signature
    if (!path) {
        return -1;
    }
    ensure_qt_core_settings();
    const QString name = gfile_strip_dir_name_and_convert_qt(QString::fromUtf8(path));
    return make_directory(native_path(name.toUtf8().constData())) ? 0 : -1;
}

int tql_forceDirectoryToExist(const char* path)
{
    if (!path) {
        return -1;
    }
    ensure_qt_core_settings();
    const QString name = gfile_strip_dir_name_and_convert_qt(QString::fromUtf8(path));
    return make_path(native_path(name.toUtf8().constData())) ? 0 : -1;
}

FILE* tql_fopen(const char* name, const char* mode)
{
    return fopen_utf8(name, mode);
}

char* tql_fgets(char* buf, int n, FILE* f)
{
    return buf && f && n > 0 ? std::fgets(buf, n, f) : nullptr;
}

int tql_fclose(FILE* f)
{
    return f ? std::fclose(f) : 0;
}

const char* tql_tmpnam(char* buf)
{
    ensure_qt_core_settings();
    std::string directory;
    if (const char* home = gui_env_get_sys(nullptr, "HOME")) {
        directory = native_path(home);
    } else if (const char* tmp = std::getenv("TMPDIR"); tmp && *tmp) {
        directory = tmp;
    } else {
        directory = "/tmp";
    }
    temporary_name = unique_temporary_name(directory, default_prefix.toStdString());
    if (!temporary_name.empty() && temporary_name.back() == '.') {
        temporary_name.pop_back();
    }
    if (buf) {
        std::srand(static_cast<unsigned>(std::time(nullptr)));
        const int length = std::snprintf(buf, TQL70_PATH_BUFFER_SIZE, "%s%d", temporary_name.c_str(), std::rand());
        if (length < 0 || length >= TQL70_PATH_BUFFER_SIZE) {
            buf[0] = '\0';
            return nullptr;
        }
    }
    return temporary_name.c_str();
}

void tmpnam_set_default_prefix(const char* prefix)
{
    if (!prefix) {
        return;
    }
    const QString candidate = QString::fromUtf8(prefix);
    if (default_prefix.isEmpty() || candidate.size() == default_prefix.size()) {
        default_prefix = candidate;
    }
}

} // extern "C"
