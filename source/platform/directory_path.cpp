// System calls of the tree walks: open directories chained by descriptor,
// and the *at calls on the names in them.
#include "platform/platform.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>
#include <sys/stat.h>

namespace {

// Descriptors a walk keeps open at most; deeper trees reopen levels on the
// way back up, so no depth runs into the process's open-file limit.
constexpr size_t kOpenLevels = 16;

constexpr int kDirectoryFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

bool opened_as(int fd, dev_t& device, ino_t& inode)
{
    struct stat st;
    if (::fstat(fd, &st) != 0) {
        return false;
    }
    device = st.st_dev;
    inode = st.st_ino;
    return true;
}

// Writes all of `buffer`; false with errno on failure.
bool write_all(int fd, const char* buffer, size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, buffer, size);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        buffer += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

// Copies from `from` to `to` up to the end of `from`: inside the kernel
// where the file systems allow it, else through a buffer.
EntryCopy copy_bytes(int from, int to)
{
    bool kernel = true;
    for (;;) {
        if (kernel) {
            const ssize_t n = ::copy_file_range(from, nullptr, to, nullptr, 1u << 30, 0);
            if (n > 0) {
                continue;
            }
            if (n == 0) {
                return EntryCopy::kDone;
            }
            if (errno != EXDEV && errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) {
                return EntryCopy::kWriteError;
            }
            kernel = false; // nothing was copied by a call that fails this way
        }
        char buffer[65536];
        const ssize_t n = ::read(from, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return EntryCopy::kReadError;
        }
        if (n == 0) {
            return EntryCopy::kDone;
        }
        if (!write_all(to, buffer, static_cast<size_t>(n))) {
            return EntryCopy::kWriteError;
        }
    }
}

} // namespace

DirectoryPath::DirectoryPath(std::string root) : root_(std::move(root)) {}

DirectoryPath::~DirectoryPath()
{
    for (const Level& level : levels_) {
        if (level.fd >= 0) {
            ::close(level.fd);
        }
    }
}

bool DirectoryPath::push_level(const std::string& name, int fd)
{
    Level level{name, fd, 0, 0};
    if (fd < 0) {
        return false;
    }
    if (!opened_as(fd, level.device, level.inode)) {
        ::close(fd);
        return false;
    }
    levels_.push_back(level);
    return true;
}

bool DirectoryPath::open_root()
{
    return push_level("", ::open(native_path(root_.c_str()).c_str(), kDirectoryFlags));
}

bool DirectoryPath::enter(const std::string& name)
{
    if (!push_level(name, ::openat(deepest(), name.c_str(), kDirectoryFlags | O_NOFOLLOW))) {
        return false;
    }
    if (levels_.size() - first_open_ > kOpenLevels) {
        ::close(levels_[first_open_].fd);
        levels_[first_open_].fd = -1;
        ++first_open_;
    }
    return true;
}

bool DirectoryPath::leave()
{
    const int child = levels_.back().fd;
    levels_.pop_back();
    bool ok = true;
    if (first_open_ == levels_.size()) {
        Level& parent = levels_.back();
        const int fd = ::openat(child, "..", kDirectoryFlags);
        dev_t device = 0;
        ino_t inode = 0;
        if (fd >= 0 && opened_as(fd, device, inode) && device == parent.device && inode == parent.inode) {
            parent.fd = fd;
            --first_open_;
        } else {
            if (fd >= 0) {
                ::close(fd);
                errno = ESTALE; // the tree was moved while it was walked
            }
            ok = false;
        }
    }
    ::close(child);
    return ok;
}

bool DirectoryPath::list(std::vector<std::string>& names) const
{
    const int fd = ::openat(deepest(), ".", kDirectoryFlags);
    DIR* dir = fd < 0 ? nullptr : ::fdopendir(fd);
    if (!dir) {
        if (fd >= 0) {
            ::close(fd);
        }
        return false;
    }
    errno = 0;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    const int error = errno;
    ::closedir(dir);
    errno = error;
    return error == 0;
}

bool DirectoryPath::status(const std::string& name, bool follow, struct stat& st) const
{
    return ::fstatat(deepest(), name.c_str(), &st, follow ? 0 : AT_SYMLINK_NOFOLLOW) == 0;
}

EntryKind DirectoryPath::kind(const std::string& name, bool follow) const
{
    struct stat st;
    if (!status(name, follow, st)) {
        return EntryKind::kMissing;
    }
    if (S_ISREG(st.st_mode)) {
        return EntryKind::kFile;
    }
    if (S_ISDIR(st.st_mode)) {
        return EntryKind::kDirectory;
    }
    return S_ISLNK(st.st_mode) ? EntryKind::kSymlink : EntryKind::kOther;
}

bool DirectoryPath::is_root_of(const std::string& name, const DirectoryPath& walk) const
{
    struct stat st;
    return !walk.levels_.empty() && status(name, false, st) && st.st_dev == walk.levels_[0].device &&
           st.st_ino == walk.levels_[0].inode;
}

bool DirectoryPath::make_directory(const std::string& name, int mode) const
{
    return ::mkdirat(deepest(), name.c_str(), static_cast<mode_t>(mode)) == 0;
}

bool DirectoryPath::remove(const std::string& name, bool directory) const
{
    return ::unlinkat(deepest(), name.c_str(), directory ? AT_REMOVEDIR : 0) == 0;
}

bool DirectoryPath::read_link(const std::string& name, std::string& target) const
{
    for (size_t size = 256;; size *= 2) {
        target.resize(size);
        const ssize_t n = ::readlinkat(deepest(), name.c_str(), &target[0], size);
        if (n < 0) {
            return false;
        }
        if (static_cast<size_t>(n) < size) {
            target.resize(static_cast<size_t>(n));
            return true;
        }
    }
}

bool DirectoryPath::make_link(const std::string& name, const std::string& target) const
{
    return ::symlinkat(target.c_str(), deepest(), name.c_str()) == 0;
}

EntryCopy DirectoryPath::copy_file(const std::string& name, bool follow, const DirectoryPath& into) const
{
    const int no_follow = follow ? 0 : O_NOFOLLOW;
    const int from = ::openat(deepest(), name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | no_follow);
    if (from < 0) {
        return EntryCopy::kCannotOpenSource;
    }
    struct stat st;
    const bool stated = ::fstat(from, &st) == 0;
    if (!stated || !S_ISREG(st.st_mode)) {
        const int error = stated ? EOPNOTSUPP : errno;
        ::close(from);
        errno = error;
        return EntryCopy::kCannotOpenSource;
    }
    const int to = ::openat(into.deepest(), name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | no_follow, 0666);
    if (to < 0) {
        const int error = errno;
        ::close(from);
        errno = error;
        return EntryCopy::kCannotOpenTarget;
    }
    EntryCopy result = copy_bytes(from, to);
    int error = errno;
    const timespec times[2] = {st.st_atim, st.st_mtim};
    ::futimens(to, times);
    if (::close(to) != 0 && result == EntryCopy::kDone) {
        result = EntryCopy::kWriteError;
        error = errno;
    }
    ::close(from);
    errno = error;
    return result;
}

std::string DirectoryPath::name_of(const std::string& entry) const
{
    std::string name = root_;
    for (size_t i = 1; i < levels_.size(); ++i) {
        if (name.empty() || name.back() != '\\') {
            name += '\\';
        }
        name += levels_[i].name;
    }
    if (!entry.empty()) {
        if (name.empty() || name.back() != '\\') {
            name += '\\';
        }
        name += entry;
    }
    return name;
}
