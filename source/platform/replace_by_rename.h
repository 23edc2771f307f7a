// Replacing a file in one step: the new content is written to a temporary
// file beside the target, flushed to disk and renamed over the target, so a
// reader sees the old file or the new one, never a half-written one.
#ifndef TQL70_SOURCE_PLATFORM_REPLACE_BY_RENAME_H
#define TQL70_SOURCE_PLATFORM_REPLACE_BY_RENAME_H

#include <cstdio>
#include <string>

struct PendingReplacement {
    FILE* file = nullptr;
    std::string temporary; // native
    std::string target;    // native, symbolic links resolved
};

// Creates the temporary file beside the library-form `target` (new files
// get mode 0666 less the umask) and opens it for writing; false when it
// cannot be created.
bool begin_replacement(const char* target, PendingReplacement& pending);
// Flushes and syncs the temporary file, gives it the permission bits of an
// existing target and renames it over the target. On failure the temporary
// file is removed and the target is left as it was.
bool commit_replacement(PendingReplacement& pending);
// Closes and removes the temporary file.
void abandon_replacement(PendingReplacement& pending);

#endif
