// Files that hold key material: read only when they are regular files that
// no one but their owner can read, created new with permissions 0600.
#include "platform/platform.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Permission bits a private file may have: the owner's read and write.
constexpr unsigned kPrivateBits = 0600;

// Closes `fd` keeping the errno of the failure that led here.
void close_keeping_errno(int fd)
{
    const int saved = errno;
    ::close(fd);
    errno = saved;
}

} // namespace

PrivateFileRead read_private_file(const char* name, unsigned char* buffer, size_t capacity, size_t& length,
                                  unsigned& mode)
{
    length = 0;
    mode = 0;
    const int fd = ::open(native_path(name).c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return errno == ENOENT ? PrivateFileRead::kMissing : PrivateFileRead::kFailed;
    }
    struct stat st;
    if (::fstat(fd, &st) != 0) {
        close_keeping_errno(fd);
        return PrivateFileRead::kFailed;
    }
    mode = static_cast<unsigned>(st.st_mode) & 07777;
    if (!S_ISREG(st.st_mode)) {
        ::close(fd);
        return PrivateFileRead::kNotRegular;
    }
    if ((mode & ~kPrivateBits) != 0) {
        ::close(fd);
        return PrivateFileRead::kTooOpen;
    }
    // One byte more than the capacity tells a file that is too large.
    while (length <= capacity) {
        unsigned char* at = length < capacity ? buffer + length : nullptr;
        unsigned char spare;
        const ssize_t got = ::read(fd, at ? at : &spare, at ? capacity - length : 1);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            close_keeping_errno(fd);
            return PrivateFileRead::kFailed;
        }
        if (got == 0) {
            ::close(fd);
            return PrivateFileRead::kRead;
        }
        if (!at) {
            ::close(fd);
            return PrivateFileRead::kTooLarge;
        }
        length += static_cast<size_t>(got);
    }
    ::close(fd);
    return PrivateFileRead::kTooLarge;
}

bool create_private_file(const char* name, const void* data, size_t length)
{
    const std::string native = native_path(name);
    const size_t slash = native.rfind('/');
    if (slash != std::string::npos && slash > 0) {
        // A directory that cannot be made shows as the open's own failure.
        make_path(native.substr(0, slash));
    }
    const int fd = ::open(native.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kPrivateBits);
    if (fd < 0) {
        return false;
    }
    // The umask may only have narrowed the bits; make them exactly 0600.
    bool ok = ::fchmod(fd, kPrivateBits) == 0;
    const char* at = static_cast<const char*>(data);
    size_t left = length;
    while (ok && left > 0) {
        const ssize_t put = ::write(fd, at, left);
        if (put < 0 && errno == EINTR) {
            continue;
        }
        ok = put > 0;
        if (ok) {
            at += put;
            left -= static_cast<size_t>(put);
        }
    }
    ok = ok && ::fsync(fd) == 0;
    if (!ok) {
        close_keeping_errno(fd);
        const int saved = errno;
        ::unlink(native.c_str());
        errno = saved;
        return false;
    }
    return ::close(fd) == 0;
}

std::string user_config_directory()
{
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg) {
        return xdg;
    }
    const char* home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.config";
}
