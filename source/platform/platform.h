// Internal interface to the operating system. Every system call of the
// library, and every turn of a library-form name into a native one, is made
// behind this header; the rest of the library calls only these functions.
#ifndef TQL70_SOURCE_PLATFORM_PLATFORM_H
#define TQL70_SOURCE_PLATFORM_PLATFORM_H

#include <cstdio>
#include <sys/stat.h>
#include <string>

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

// All free bytes of the volume that holds `native` (statvfs f_bfree *
// f_frsize); false when it cannot be had.
bool volume_free_bytes(const std::string& native, unsigned long long& bytes);
// The operating system's name (uname sysname, "Linux").
std::string system_name();

// The full native path of the executable `program` found on PATH (a name
// with a '/' is checked as it is); "" when none.
std::string find_program(const std::string& program);

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

// ---- system errors -----------------------------------------------------

// Whether the C library knows a name for the errno value `code`.
bool system_error_is_known(int code);
// The C library's message for the errno value `code`.
const char* system_error_text(int code);

#endif
