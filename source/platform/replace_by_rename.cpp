// Replacing a file in one step through a temporary file and rename(2).
#include "platform/replace_by_rename.h"

#include "platform/platform.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The file a name leads to: symbolic links are followed, so the link stays
// and the file it names is replaced.
std::string resolved_target(const std::string& native)
{
    char resolved[PATH_MAX];
    return ::realpath(native.c_str(), resolved) ? std::string(resolved) : native;
}

std::string directory_of(const std::string& native)
{
    const size_t slash = native.rfind('/');
    return slash == std::string::npos ? std::string("./") : native.substr(0, slash + 1);
}

} // namespace

bool begin_replacement(const char* target, PendingReplacement& pending)
{
    pending.target = resolved_target(native_path(target));
    const std::string directory = directory_of(pending.target);
    for (int attempt = 0; attempt < 16; ++attempt) {
        pending.temporary = unique_temporary_name(directory, ".tql70-");
        const int fd = ::open(pending.temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) {
            pending.file = ::fdopen(fd, "w");
            if (pending.file) {
                return true;
            }
            ::close(fd);
            ::unlink(pending.temporary.c_str());
            return false;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
    return false;
}

bool commit_replacement(PendingReplacement& pending)
{
    bool written = std::fflush(pending.file) == 0 && !std::ferror(pending.file) && ::fsync(fileno(pending.file)) == 0;
    written = std::fclose(pending.file) == 0 && written;
    pending.file = nullptr;
    struct stat old_status;
    if (written && ::stat(pending.target.c_str(), &old_status) == 0) {
        written = ::chmod(pending.temporary.c_str(), old_status.st_mode & 07777) == 0;
    }
    if (written && ::rename(pending.temporary.c_str(), pending.target.c_str()) == 0) {
        return true;
    }
    ::unlink(pending.temporary.c_str());
    return false;
}

void abandon_replacement(PendingReplacement& pending)
{
    if (pending.file) {
        std::fclose(pending.file);
        pending.file = nullptr;
    }
    ::unlink(pending.temporary.c_str());
}
