// Internal interface to the operating system. Every system call of the
// library, and every turn of a library-form name into a native one, is made
// behind this header; the rest of the library calls only these functions.
#ifndef TQL70_SOURCE_PLATFORM_PLATFORM_H
#define TQL70_SOURCE_PLATFORM_PLATFORM_H

#include <cstdio>
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

// ---- settings store (stands in for the registry) -----------------------

// Set once initialize_qt_core_settings has run; callers that build a
// QString check it first.
extern bool qtCoreSettingsAreInitialized;
void initialize_qt_core_settings();

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
