// System calls of configuration files: opening one for reading without
// ever blocking, the state of a file as `tql env files` shows it, and a
// save that is serialised on an advisory lock and written to an unnamed
// temporary file, linked in over the target only once it is complete.
#include "platform/platform.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The file a native name leads to, through symbolic links; the name itself
// when it does not exist yet. No length limit of our own.
std::string real_target(const std::string& native)
{
    char* resolved = ::realpath(native.c_str(), nullptr);
    if (!resolved) {
        return native;
    }
    std::string result = resolved;
    std::free(resolved);
    return result;
}

std::string directory_of(const std::string& native)
{
    const size_t slash = native.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : native.substr(0, slash);
}

// Permission bits are honoured for the superuser too: a file with no read
// (or no write) bit is never read (or replaced) by a configuration save,
// whoever runs it. Others are judged by the kernel (ACLs included).
int permission_problem(const std::string& native, const struct stat& st, int wanted)
{
    if (::geteuid() == 0) {
        const mode_t bits = wanted == R_OK ? 0444 : 0222;
        return (st.st_mode & bits) ? 0 : EACCES;
    }
    return ::faccessat(AT_FDCWD, native.c_str(), wanted, AT_EACCESS) == 0 ? 0 : errno;
}

const char kTemporaryPrefix[] = ".tql70-";

// Removes the temporaries of saves killed before they were linked in:
// ".tql70-" and six characters. Called under the save lock, so none of
// them belongs to a save in progress.
void remove_stale_temporaries(const std::string& directory)
{
    DirectoryStream* stream = open_directory(directory);
    if (!stream) {
        return;
    }
    std::string name;
    while (next_directory_entry(stream, name)) {
        if (name.size() == sizeof kTemporaryPrefix - 1 + 6 && name.compare(0, 7, kTemporaryPrefix) == 0) {
            ::unlink((directory + "/" + name).c_str());
        }
    }
    close_directory(stream);
}

int kind_problem(const struct stat& st)
{
    if (S_ISREG(st.st_mode)) {
        return 0;
    }
    return S_ISDIR(st.st_mode) ? EISDIR : kNotRegularFile;
}

} // namespace

std::string file_failure_reason(int error)
{
    if (error == kNotRegularFile) {
        return "not a regular file";
    }
    return std::strerror(error);
}

ConfigFile open_config_file(const char* name)
{
    ConfigFile result;
    const std::string native = native_path(name);
    // O_NONBLOCK: opening a FIFO must not wait for a writer.
    const int fd = ::open(native.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        result.error = errno;
        return result;
    }
    struct stat st;
    if (::fstat(fd, &st) != 0) {
        result.error = errno;
    } else if ((result.error = kind_problem(st)) == 0) {
        result.error = permission_problem(native, st, R_OK);
    }
    if (result.error == 0) {
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
        result.stream = ::fdopen(fd, "r");
        result.error = result.stream ? 0 : errno;
    }
    if (!result.stream) {
        ::close(fd);
        return result;
    }
    result.device = static_cast<unsigned long long>(st.st_dev);
    result.inode = static_cast<unsigned long long>(st.st_ino);
    return result;
}

int config_file_problem(const char* name)
{
    const std::string native = native_path(name);
    struct stat st;
    if (::stat(native.c_str(), &st) != 0) {
        return errno;
    }
    const int kind = kind_problem(st);
    return kind ? kind : permission_problem(native, st, R_OK);
}

ConfigSave::ConfigSave(const char* target) : target_(real_target(native_path(target)))
{
    const std::string directory = directory_of(target_);
    lock_fd_ = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (lock_fd_ < 0 || ::flock(lock_fd_, LOCK_EX) != 0) {
        fail(errno);
        return;
    }
    struct stat st;
    mode_t mode = 0666;
    if (::stat(target_.c_str(), &st) == 0) {
        int problem = kind_problem(st);
        if (!problem) {
            problem = permission_problem(target_, st, R_OK);
        }
        if (!problem) {
            problem = permission_problem(target_, st, W_OK);
        }
        if (problem) {
            fail(problem);
            return;
        }
        mode = st.st_mode & 07777;
        const int fd = ::open(target_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        current_ = fd < 0 ? nullptr : ::fdopen(fd, "r");
        if (!current_) {
            fail(errno);
            return;
        }
    } else if (errno != ENOENT) {
        fail(errno);
        return;
    }
    // Unnamed: a save killed now leaves nothing behind. A file system
    // without unnamed files gets a named one; the temporaries such saves
    // leave when killed are removed by the next save there, under the lock.
    int out = ::open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    if (out < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        remove_stale_temporaries(directory);
        do {
            named_ = unique_temporary_name(directory, kTemporaryPrefix);
            out = ::open(named_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
        } while (out < 0 && errno == EEXIST);
        if (out < 0) {
            named_.clear();
        }
    }
    if (out < 0) {
        fail(errno);
        return;
    }
    if (current_) {
        ::fchmod(out, mode);
    }
    output_ = ::fdopen(out, "w");
    if (!output_) {
        fail(errno);
        ::close(out);
    }
}

ConfigSave::~ConfigSave()
{
    if (current_) {
        std::fclose(current_);
    }
    if (output_) {
        std::fclose(output_);
    }
    if (!named_.empty()) {
        ::unlink(named_.c_str()); // not committed
    }
    if (lock_fd_ >= 0) {
        ::close(lock_fd_); // releases the lock
    }
}

void ConfigSave::fail(int error)
{
    if (error_ == 0) {
        error_ = error ? error : EIO;
    }
}

bool ConfigSave::commit()
{
    if (error_) {
        return false;
    }
    if (std::fflush(output_) != 0 || ::fsync(fileno(output_)) != 0) {
        fail(errno);
        return false;
    }
    if (!named_.empty()) {
        if (::rename(named_.c_str(), target_.c_str()) != 0) {
            fail(errno);
            return false;
        }
        named_.clear();
        return true;
    }
    // Linked in under a fresh name, then renamed over the target in one
    // step: the only moment a name exists is between these two calls.
    const std::string proc = "/proc/self/fd/" + std::to_string(fileno(output_));
    std::string temporary;
    int linked;
    do {
        temporary = unique_temporary_name(directory_of(target_), kTemporaryPrefix);
        linked = ::linkat(AT_FDCWD, proc.c_str(), AT_FDCWD, temporary.c_str(), AT_SYMLINK_FOLLOW);
    } while (linked != 0 && errno == EEXIST);
    if (linked != 0) {
        fail(errno);
        return false;
    }
    if (::rename(temporary.c_str(), target_.c_str()) != 0) {
        fail(errno);
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}
