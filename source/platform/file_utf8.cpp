// File calls by library-form name: each converts the name to its native
// form just before the system call.
#include "platform/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

FILE* fopen_utf8(const char* name, const char* mode)
{
    if (!name || !mode) {
        return nullptr;
    }
    return std::fopen(native_path(name).c_str(), mode);
}

int open_utf8(const char* name, int flags, int mode)
{
    if (!name) {
        return -1;
    }
    return ::open(native_path(name).c_str(), flags, static_cast<mode_t>(mode));
}

int unlink_utf8(const char* name)
{
    if (!name) {
        return -1;
    }
    return ::unlink(native_path(name).c_str());
}

bool is_directory_utf8(const char* name)
{
    struct stat st;
    return name && ::stat(native_path(name).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

long long filesize_utf8(const char* name)
{
    struct stat st;
    if (!name || ::stat(native_path(name).c_str(), &st) != 0) {
        return -1;
    }
    return static_cast<long long>(st.st_size);
}
