// The system calls of the hash database: opening, creating, reading and
// writing its page file, and the temporary files made with mkstemp.
#include "platform/platform.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

int page_file_open(const char* name, int flags, int mode)
{
    return ::open(native_path(name).c_str(), flags | O_CLOEXEC, mode);
}

int make_unique_file(char* template_name)
{
    return ::mkstemp(template_name);
}

int page_file_temporary(std::string& name)
{
    const char* directory = std::getenv("TMPDIR");
    std::string path = directory && *directory ? directory : "/tmp";
    if (path.back() != '/') {
        path += '/';
    }
    path += "_hashXXXXXX";
    const int fd = make_unique_file(path.data());
    if (fd >= 0) {
        name = path;
    }
    return fd;
}

long long page_file_read(int fd, void* buffer, size_t size, long long offset)
{
    size_t done = 0;
    while (done < size) {
        const ssize_t n = ::pread(fd, static_cast<char*>(buffer) + done, size - done, offset + done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return -1;
        }
        if (n == 0) {
            break;
        }
        done += static_cast<size_t>(n);
    }
    return static_cast<long long>(done);
}

bool page_file_write(int fd, const void* buffer, size_t size, long long offset)
{
    size_t done = 0;
    while (done < size) {
        const ssize_t n = ::pwrite(fd, static_cast<const char*>(buffer) + done, size - done, offset + done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            if (n == 0) {
                errno = EIO;
            }
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

long long page_file_size(int fd)
{
    struct stat st;
    return ::fstat(fd, &st) == 0 ? static_cast<long long>(st.st_size) : -1;
}

bool page_file_truncate(int fd, long long size)
{
    return ::ftruncate(fd, size) == 0;
}

bool page_file_sync(int fd)
{
    return ::fsync(fd) == 0;
}

int page_file_close(int fd)
{
    return ::close(fd);
}

int page_file_remove(const std::string& native)
{
    return ::unlink(native.c_str());
}
