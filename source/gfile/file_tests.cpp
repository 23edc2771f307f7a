// Tests of files: existence, kind, access, age, type, size, and two
// diagnostics.
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/tql_os.h>

#include "gfile/gfile_internal.h"
#include "platform/platform.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <sys/stat.h>

using namespace tql::gfile;

extern "C" {

int gfile_exists(const char* path)
{
    return tql_stat(path, nullptr) == 0;
}

int gfile_is_dir(const char* path)
{
    return is_directory_utf8(path);
}

int gfile_is_readable(const char* path)
{
    return path && has_access(native_path(path), Access::kRead);
}

int gfile_is_writable(const char* path)
{
    return path && has_access(native_path(path), Access::kWrite);
}

int gfile_is_executable(const char* path)
{
    return path && has_access(native_path(path), Access::kExecute);
}

int gfile_is_file_older(const char* a, const char* b)
{
    struct stat first;
    struct stat second;
    if (tql_stat(a, &first) != 0 || tql_stat(b, &second) != 0) {
        return 0;
    }
    // The first file is "older" when it is the newer one: kept as the
    // callers expect it.
    return static_cast<long long>(first.st_mtime) > static_cast<long long>(second.st_mtime);
}

int gfile_type(const char* path)
{
    if (!path || std::strlen(path) > kPathLimit) {
        return 0;
    }
    std::string copy = path;
    gfile_strip_dir_name(&copy[0]);
    struct stat st;
    if (tql_stat(copy.c_str(), &st) != 0) {
        return 0;
    }
    return static_cast<int>(st.st_mode & 0xF000);
}

int gfile_filesize(const char* path)
{
    if (!path) {
        return 0;
    }
    const long long size = filesize_utf8(path);
    if (size < 0) {
        return static_cast<int>(static_cast<unsigned long long>(size) & 0xFFFFFFFFu);
    }
    return size > INT_MAX ? INT_MAX : static_cast<int>(size);
}

int gfile_cstat(void)
{
    return 0;
}

int gfile_fopen_status(void)
{
    FILE* probe = std::tmpfile();
    if (!probe) {
        std::fprintf(stderr, "gfile: could not determine number of files opened, tmpfile() failed\n");
        return 0;
    }
    std::fprintf(stderr, "gfile: current number of files open = %d\n", fileno(probe));
    std::fclose(probe);
    return 1;
}

char* gfile_win_os(void)
{
    char* name = static_cast<char*>(gmem_ee_malloc(64, 1));
    if (name) {
        std::snprintf(name, 64, "%s", system_name().c_str());
    }
    return name;
}

} // extern "C"
