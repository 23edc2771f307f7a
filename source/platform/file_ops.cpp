// System calls of the file operations: access tests, removal, times,
// permissions and the system's name.
#include "platform/platform.h"

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <cerrno>
#include <algorithm>
#include <cstdlib>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>

namespace {

QString qt_name(const std::string& native)
{
    return QString::fromStdString(native);
}

} // namespace

bool has_access(const std::string& native, Access access)
{
    const QFileInfo info(qt_name(native));
    switch (access) {
    case Access::kRead:
        return info.isReadable();
    case Access::kWrite:
        return info.isWritable();
    case Access::kExecute:
        return info.isExecutable();
    }
    return false;
}

bool remove_file(const std::string& native)
{
    return QDir().remove(qt_name(native));
}

bool remove_directory(const std::string& native)
{
    return QDir().rmdir(qt_name(native));
}

bool copy_file_times(const std::string& like, const std::string& native)
{
    struct stat st;
    if (::stat(like.c_str(), &st) != 0) {
        return false;
    }
    const timespec times[2] = {st.st_atim, st.st_mtim};
    return ::utimensat(AT_FDCWD, native.c_str(), times, 0) == 0;
}

int change_mode(const std::string& native, int mode)
{
    return ::chmod(native.c_str(), static_cast<mode_t>(mode)) == 0 ? 0 : -1;
}

KernelCopy kernel_copy(FILE* in, FILE* out, unsigned long long bytes)
{
    std::fflush(out);
    const int from = fileno(in);
    const int to = fileno(out);
    unsigned long long copied = 0;
    while (copied < bytes) {
        const size_t want = bytes - copied > (1ull << 30) ? (1u << 30) : static_cast<size_t>(bytes - copied);
        const ssize_t n = ::copy_file_range(from, nullptr, to, nullptr, want, 0);
        if (n < 0) {
            const bool unsupported = errno == EXDEV || errno == EINVAL || errno == ENOSYS ||
                                     errno == EOPNOTSUPP || errno == EBADF;
            return copied == 0 && unsupported ? KernelCopy::kUnsupported : KernelCopy::kFailed;
        }
        if (n == 0) {
            return KernelCopy::kShort;
        }
        copied += static_cast<unsigned long long>(n);
    }
    return KernelCopy::kDone;
}

bool refill_input(FILE* file)
{
    // getc_unlocked refills the buffer; the character it took is put back
    // by stepping glibc's read pointer back.
    if (getc_unlocked(file) == EOF) {
        return false;
    }
    --file->_IO_read_ptr;
    return true;
}

bool volume_free_bytes(const std::string& native, unsigned long long& bytes)
{
    struct statvfs volume;
    if (::statvfs(native.c_str(), &volume) != 0) {
        return false;
    }
    bytes = static_cast<unsigned long long>(volume.f_bfree) * volume.f_frsize;
    return true;
}

std::string find_program(const std::string& program)
{
    if (program.empty()) {
        return "";
    }
    auto executable = [](const std::string& path) {
        struct stat st;
        return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && ::access(path.c_str(), X_OK) == 0;
    };
    if (program.find('/') != std::string::npos) {
        return executable(program) ? program : "";
    }
    const char* path = std::getenv("PATH");
    std::string directories = path ? path : "/usr/bin:/bin";
    size_t start = 0;
    while (start <= directories.size()) {
        const size_t end = std::min(directories.find(':', start), directories.size());
        const std::string directory = directories.substr(start, end - start);
        const std::string candidate = (directory.empty() ? std::string(".") : directory) + "/" + program;
        if (executable(candidate)) {
            return candidate;
        }
        start = end + 1;
    }
    return "";
}

std::string system_name()
{
    struct utsname name;
    return ::uname(&name) == 0 ? name.sysname : "";
}
