// Internal interface to the operating system. Every system call of the
// library, and every turn of a library-form name into a native one, is made
// behind this header; the rest of the library calls only these functions.
#ifndef TQL70_SOURCE_PLATFORM_PLATFORM_H
#define TQL70_SOURCE_PLATFORM_PLATFORM_H

#include <cstdio>
#include <ctime>
#include <sys/stat.h>
#include <string>
#include <vector>

class QString;

// ---- names -------------------------------------------------------------

// The native form of a library-form name: '\' becomes '/', a leading drive
// prefix ("C:") is removed ("C:" alone and "C:\" become "/").
std::string native_path(const char* name);

// Turns every '/' of `name` into '\' (the library form), in place.
void FixFilenameSlashes(char* name);

// ---- files (names in library form, UTF-8) ------------------------------

FILE* fopen_utf8(const char* name, const char* mode);
// open(2) of the native name; -1 with errno set on failure.
int open_utf8(const char* name, int flags, int mode);
// 0 on success, -1 with errno set on failure.
int unlink_utf8(const char* name);
bool is_directory_utf8(const char* name);
// Size in bytes, or -1 when the name does not exist.
long long filesize_utf8(const char* name);

// ---- directories ------------------------------------------------------

// The current directory, native and absolute (QDir::currentPath); "" when
// it cannot be had.
std::string current_directory();
// Makes the library-form directory `name` current; false on failure.
bool change_directory(const char* name);

struct PathStatus {
    bool exists = false;
    bool is_file = false;      // a regular file, following a symbolic link
    bool is_directory = false; // following a symbolic link
    bool is_symlink = false;   // the name itself is a symbolic link
};
PathStatus path_status(const char* name);

// The absolute native path QFileInfo gives for the library-form `name`.
std::string absolute_file_path(const char* name);

// Sets `found` to the entry of the native directory `directory` whose name
// is `name` without regard to ASCII case: `name` itself when it exists as
// written, else the first such entry in listing order. False when none.
bool find_entry_ignoring_case(const std::string& directory, const std::string& name, std::string& found);

// ---- the portable OS layer (names here are native) ----------------------

// An open directory listing; null when the directory cannot be listed.
struct DirectoryStream;
DirectoryStream* open_directory(const std::string& native);
// The next entry name ("." and ".." included); false at the end.
bool next_directory_entry(DirectoryStream* stream, std::string& name);
// 0 on success, -1 on failure; frees the stream.
int close_directory(DirectoryStream* stream);

// stat(2) of a native name, or, with a null `buf`, access(2) for existence.
// 0 on success, -1 on failure.
int stat_native(const std::string& native, struct stat* buf);

// One directory (QDir::mkdir: false when it exists), or every missing one
// on the way (QDir::mkpath: true when all exist).
bool make_directory(const std::string& native);
bool make_path(const std::string& native);

// A name in `directory` made of `prefix` and random characters that does
// not exist when it is made ("directory/prefixXXXXXX").
std::string unique_temporary_name(const std::string& directory, const std::string& prefix);

// ---- file operations (names here are native) ---------------------------

enum class Access { kRead, kWrite, kExecute };
// QFileInfo's isReadable / isWritable / isExecutable.
bool has_access(const std::string& native, Access access);
// QDir::remove of a file, QDir::rmdir of an empty directory.
bool remove_file(const std::string& native);
bool remove_directory(const std::string& native);
// Gives `native` the access and modification times of `like`.
bool copy_file_times(const std::string& like, const std::string& native);
// chmod(2); 0 on success, -1 on failure.
int change_mode(const std::string& native, int mode);
// Copies `bytes` bytes from the current position of `in` to `out` inside
// the kernel (copy_file_range, which may share the blocks on file systems
// that allow it). kUnsupported: nothing was copied and the caller should
// copy through memory; kShort: the source ended early; kFailed: an error.
enum class KernelCopy { kDone, kUnsupported, kShort, kFailed };
KernelCopy kernel_copy(FILE* in, FILE* out, unsigned long long bytes);

// The bytes the stream has buffered for reading (refilled from the file
// when none are left), for readers that scan them in place; false at the
// end of the file or on an error. refill_input fills an empty buffer.
bool refill_input(FILE* file);
inline bool buffered_input(FILE* file, const char** data, size_t* count)
{
    // glibc's read pointers; the refill is out of line, the common case is
    // a few loads for readers that call this once a line.
    if (file->_IO_read_ptr >= file->_IO_read_end && !refill_input(file)) {
        return false;
    }
    *data = file->_IO_read_ptr;
    *count = static_cast<size_t>(file->_IO_read_end - file->_IO_read_ptr);
    return true;
}
// Marks `count` of the bytes given by buffered_input as read.
inline void consume_input(FILE* file, size_t count)
{
    file->_IO_read_ptr += count; // glibc's read pointer
}

// All free bytes of the volume that holds `native` (statvfs f_bfree *
// f_frsize); false when it cannot be had.
bool volume_free_bytes(const std::string& native, unsigned long long& bytes);
// The operating system's name (uname sysname, "Linux").
std::string system_name();

// The full native path of the executable `program` found on PATH (a name
// with a '/' is checked as it is); "" when none.
std::string find_program(const std::string& program);

// ---- tree walks (names relative to open directories) ------------------

// What a name in a directory is; with `follow` a symbolic link is looked
// through, and a dangling one is kMissing.
enum class EntryKind { kMissing, kFile, kDirectory, kSymlink, kOther };

enum class EntryCopy { kDone, kCannotOpenSource, kCannotOpenTarget, kReadError, kWriteError };

// The open directories from the root of a tree walk down to the directory
// being walked. Each level is opened relative to the one above it, so inner
// paths of any length can be walked, and a symbolic link is never entered.
// Only the deepest few levels keep a descriptor open; a level whose
// descriptor was closed is reopened through ".." of the level below when
// the walk climbs back, and must still be the same directory. Every call
// works in the deepest level; a failing one returns false (kMissing) with
// errno set.
class DirectoryPath {
public:
    // `root` in library form; it is followed when it is a symbolic link.
    explicit DirectoryPath(std::string root);
    ~DirectoryPath();
    DirectoryPath(const DirectoryPath&) = delete;
    DirectoryPath& operator=(const DirectoryPath&) = delete;

    bool open_root();
    // Descends into the subdirectory `name` (never through a link).
    bool enter(const std::string& name);
    // Climbs back to the level above.
    bool leave();
    // Every entry name other than "." and "..", in listing order.
    bool list(std::vector<std::string>& names) const;
    EntryKind kind(const std::string& name, bool follow) const;
    // Whether the entry `name` (not followed) is the root directory of
    // `walk`.
    bool is_root_of(const std::string& name, const DirectoryPath& walk) const;
    bool status(const std::string& name, bool follow, struct stat& st) const;
    bool make_directory(const std::string& name, int mode) const;
    // unlinkat of a file or link, or of an empty directory.
    bool remove(const std::string& name, bool directory) const;
    bool read_link(const std::string& name, std::string& target) const;
    bool make_link(const std::string& name, const std::string& target) const;
    // Copies the regular file `name` to a new or emptied file of that name
    // in the deepest level of `into`, with the source's access and
    // modification times; permissions are not copied. Without `follow`
    // neither name may be a symbolic link. Anything but a regular file is
    // refused (kCannotOpenSource, EOPNOTSUPP) rather than read, so a FIFO
    // cannot block the walk.
    EntryCopy copy_file(const std::string& name, bool follow, const DirectoryPath& into) const;
    // The library-form name of `entry` in the deepest level; of that level
    // itself for "".
    std::string name_of(const std::string& entry) const;

private:
    struct Level {
        std::string name;
        int fd;
        dev_t device;
        ino_t inode;
    };
    int deepest() const { return levels_.back().fd; }
    // Adds the directory just opened as `fd` (negative: the open failed) as
    // the deepest level; false, with `fd` closed, when it cannot be added.
    bool push_level(const std::string& name, int fd);
    std::string root_;
    std::vector<Level> levels_;
    size_t first_open_ = 0; // levels from here down hold open descriptors
};

// ---- clocks, waits and the user -----------------------------------------

// Seconds of the monotonic clock (CLOCK_MONOTONIC), which a change of the
// wall clock does not move, cut to whole milliseconds.
double monotonic_seconds();
// The local calendar time now (localtime_r of time()).
struct tm local_time_now();
// Suspends the calling thread for `seconds`, resuming after each signal
// until the whole time has passed (nanosleep).
void sleep_seconds(unsigned int seconds);
// The login name (getlogin_r), else the account name of the effective user
// id (getpwuid_r); "" when neither is known.
std::string login_name();

// ---- page files (the hash database's file access) ----------------------

// open(2) of the library-form `name`; -1 with errno set.
int page_file_open(const char* name, int flags, int mode);
// A new file from the template "_hashXXXXXX" in the temporary directory
// (TMPDIR, else /tmp): its descriptor, its native name in `name`; -1 with
// errno set.
int page_file_temporary(std::string& name);
// mkstemp(3) of a native template, replaced in place.
int make_unique_file(char* template_name);
// Reads up to `size` bytes at `offset`; the count read (short at the end of
// the file), -1 with errno set on error.
long long page_file_read(int fd, void* buffer, size_t size, long long offset);
// Writes all `size` bytes at `offset`; false with errno set.
bool page_file_write(int fd, const void* buffer, size_t size, long long offset);
// The file's size in bytes; -1 with errno set.
long long page_file_size(int fd);
bool page_file_truncate(int fd, long long size);
bool page_file_sync(int fd);
int page_file_close(int fd);
// unlink(2) of a native name.
int page_file_remove(const std::string& native);


// ---- configuration files (names in library form) -----------------------

// An error number of ours for a file that exists but is neither regular
// nor a directory (a FIFO, a device, a socket).
constexpr int kNotRegularFile = -1;
// The system's reason for an error number (strerror), or ours.
std::string file_failure_reason(int error);

// A configuration file opened for reading: only a regular file the caller
// may read, opened without blocking. On failure `stream` is null and
// `error` says why (ENOENT when it does not exist, EACCES, EISDIR,
// kNotRegularFile...). The superuser is refused a file with no read bit.
struct ConfigFile {
    FILE* stream = nullptr;
    int error = 0;
    unsigned long long device = 0; // identity of the file opened
    unsigned long long inode = 0;
};
ConfigFile open_config_file(const char* name);
// What open_config_file would fail with for `name`, without opening it;
// 0 when it would succeed.
int config_file_problem(const char* name);

// One save of a configuration file (through symbolic links to the file
// they name). Construction takes an advisory lock on the file's folder,
// held until destruction, so saves of cooperating processes never
// overlap; it opens the target as it is now for reading (`current`, null
// when it does not exist yet) and an unnamed temporary file beside it
// (`output`). `commit` links the complete output in over the target in one
// step, keeping the target's permission bits. A target that cannot be read
// or written (permission bits honoured for the superuser too) or that is
// not a regular file is refused: `error` is set and nothing is touched.
class ConfigSave {
public:
    explicit ConfigSave(const char* target);
    ~ConfigSave();
    ConfigSave(const ConfigSave&) = delete;
    ConfigSave& operator=(const ConfigSave&) = delete;

    int error() const { return error_; }
    FILE* current() const { return current_; }
    FILE* output() const { return output_; }
    // The native path written.
    const std::string& target() const { return target_; }
    bool commit();
    // Records a failure met while writing `output`.
    void fail(int error);

private:
    std::string target_;
    int lock_fd_ = -1;
    FILE* current_ = nullptr;
    FILE* output_ = nullptr;
    std::string named_; // the temporary, where the file system has no unnamed files
    int error_ = 0;
};

// ---- settings store (stands in for the registry) -----------------------

// Set once initialize_qt_core_settings has run; callers that build a
// QString check it first.
extern bool qtCoreSettingsAreInitialized;
void initialize_qt_core_settings();
// initialize_qt_core_settings unless it has run: the check every function
// that builds a QString makes first.
void ensure_qt_core_settings();

// Looks `name` up in the process environment, then in the settings store
// (the [General] keys of zqtarvex/environment.ini in $XDG_CONFIG_HOME, then
// in each directory of $XDG_CONFIG_DIRS). True when found, with its value.
bool getenv_check_registry_qt(const QString& name, QString& value);

// ---- private files (key material) ---------------------------------------

enum class PrivateFileRead { kRead, kMissing, kTooOpen, kNotRegular, kTooLarge, kFailed };
// Reads the whole library-form file `name` into `buffer` (at most
// `capacity` bytes; the count in `length`). A final symbolic link is not
// followed (kFailed, ELOOP); a file that is not regular, or whose
// permission bits allow more than 0600 (its bits in `mode`), is refused
// unread. kFailed leaves errno set.
PrivateFileRead read_private_file(const char* name, unsigned char* buffer, size_t capacity, size_t& length,
                                  unsigned& mode);
// Creates the library-form file `name`, which must not exist yet (not even
// as a link), with permissions 0600, making missing parent directories,
// and writes `data` to it. False with errno set; a partly written file is
// removed.
bool create_private_file(const char* name, const void* data, size_t length);
// The user's configuration directory, native: $XDG_CONFIG_HOME, else
// $HOME/.config.
std::string user_config_directory();

// ---- the process --------------------------------------------------------

// The running program's name without its directory.
std::string process_name();

// ---- system errors -----------------------------------------------------

// Whether the C library knows a name for the errno value `code`.
bool system_error_is_known(int code);
// The C library's message for the errno value `code`.
const char* system_error_text(int code);

#endif
