// Internal helpers shared by the gfile operations: wildcard names, error
// codes with the debug banner and the name where a tree walk stopped, and
// names too long for the work buffers.
#ifndef TQL70_SOURCE_GFILE_GFILE_INTERNAL_H
#define TQL70_SOURCE_GFILE_GFILE_INTERNAL_H

#include <cstddef>
#include <string>

namespace tql::gfile {

// Names longer than this are refused by gfile_cp, gfile_rm and gfile_type.
constexpr size_t kPathLimit = 1024;

// Error codes of the file operations (texts in gerror).
enum Code {
    kCannotFind = 22,
    kCannotOpen = 23,
    kReadError = 24,
    kWriteError = 25,
    kCannotDelete = 26,
    kNoCopyMemory = 27,
    kCannotRewind = 28,
};

// Sets GuiErrno to `code` with the current errno and shows the debug
// banner for `line` of the file operations.
void fail(int code, int line);
// fail() for a tree walk that stopped at `name` (library form), which
// gfile_error_path then gives; forget_failed_name() clears it when a new
// operation starts.
void fail_at(const std::string& name, int code, int line);
void forget_failed_name();

// An observer of the tree walks of gfile_cp, gfile_rm and gfile_dirsize,
// called with each entry (library form) as the walk reaches it; null (the
// default) for none. Not exported: the tql tool sets it to show progress.
using WalkObserver = void (*)(const std::string& name);
void set_walk_observer(WalkObserver observer);
// Tells the observer, if one is set, that a walk reached `name`.
void walk_reached(const std::string& name);

// Whether `name` holds '*' or '?'.
bool has_wildcard(const char* name);

// Case-sensitive byte-wise match of `name` against a pattern of '*' (any
// run) and '?' (any one character). The character after a '*' is compared
// literally, so "*?" needs a real '?', and a name is used up only against
// an empty pattern or exactly one '*': the historical matcher's answers.
bool wildcard_match(const char* name, const char* pattern);

} // namespace tql::gfile

#endif
