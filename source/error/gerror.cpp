// GuiErrno and the saved system error: their texts, their printouts and the
// debug banner switched on by ZQTARVEX_DEBUG_MODE.
#include <tql70/gerror.h>
#include <tql70/process_env.h>

#include "platform/platform.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

extern "C" {
int GuiErrno = 0;
}

namespace {

int system_errno = 0;
int debug_mode_found = 0;

const char kOutOfRange[] = "GuiErrno out of range";

const char* const kMessages[] = {
    "No error",
    "System library call failed",
    "Unable to allocate memory for message retrieval",
    "Unable to allocate memory for message set",
    "Unable to free resources from message retrieval handle",
    "Unable to open ZQ Tarvex environment for message retrieval",
    "Unable to open application boot file for message retrieval",
    "Unable to get ZQTARVEX_LANGUAGE variable for message retrieval",
    "Unable to get language extension for message retrieval",
    "Unable to get language font for message retrieval",
    "Unable to get directory file name for message retrieval",
    "Unable to expand directory file name for message retrieval",
    "Unable to locate message file for message retrieval",
    "Unable to open environment file for message retrieval",
    "Unable to load message file for message retrieval",
    "Unable to find message set for message retrieval",
    "Unable to manipulate message set for message retrieval",
    "Unable to resolve message list size for message retrieval",
    "Message set not specified for message retreival",
    "Message file system not initialized",
    "Invalid message retrieval line number",
    "Failed to retrieve message",
    "Cannot find file",
    "Cannot open file",
    "Error reading file",
    "Error writing file",
    "Unable to delete file",
    "Unable to allocate memory for file copy operation",
    "Unable to seek to beginning of file",
    "Clock start failed",
    "Clock stop failed",
};
constexpr int kMessageCount = sizeof kMessages / sizeof kMessages[0];

// The historical range check: 1 up to the table's size in bytes
// (31 entries of four bytes), not its entry count. So 0 never finds
// "No error", and codes 31..124 pass but have no entry of their own.
constexpr int kRangeLimit = kMessageCount * 4;
static_assert(kRangeLimit == 124, "range limit is the table size in bytes");

bool library_code_valid(int code)
{
    return code >= 1 && code <= kRangeLimit;
}

// The table text of a code that passes the range check; codes past the
// table read as if the table were padded with the out-of-range text.
const char* library_text(int code)
{
    return code < kMessageCount ? kMessages[code] : kOutOfRange;
}

} // namespace

extern "C" {

int gerror_get_error(void)
{
    return GuiErrno;
}

int gerror_set_error(int code)
{
    GuiErrno = code;
    return code;
}

int gerror_get_system_error(void)
{
    return system_errno;
}

int gerror_set_system_error(int code)
{
    system_errno = code;
    return code;
}

int gerror_get_all_errors(int* gui, int* sys)
{
    if (gui) {
        *gui = GuiErrno;
    }
    if (sys) {
        *sys = system_errno;
    }
    return system_errno;
}

void gerror_set_all_errors(int gui, int sys)
{
    GuiErrno = gui;
    system_errno = sys;
}

const char* gerror_get_error_message(void)
{
    return library_code_valid(GuiErrno) ? library_text(GuiErrno) : kOutOfRange;
}

const char* gerror_get_system_error_message(void)
{
    return system_error_is_known(system_errno) ? system_error_text(system_errno)
                                               : "system errno out of range";
}

int gerror_display_error_message(void)
{
    return std::fprintf(stderr, "%s\n", gerror_get_error_message());
}

int gerror_display_all_error_messages(void)
{
    const bool library_valid = library_code_valid(GuiErrno);
    const bool system_valid = system_error_is_known(system_errno);
    if (library_valid && system_valid) {
        return std::fprintf(stderr, "%s : %s\n", library_text(GuiErrno), system_error_text(system_errno));
    }
    if (library_valid) {
        return std::fprintf(stderr, "%s\n", library_text(GuiErrno));
    }
    if (system_valid) {
        return std::fprintf(stderr, "%s\n", system_error_text(system_errno));
    }
    return 0;
}

int gerror_display_debug_info(const char* file, int line)
{
    if (!debug_mode_found) {
        if (!is_debug_mode_active_for("ZQTARVEX_DEBUG_MODE", "error", "all", static_cast<const char*>(nullptr))) {
            return 0;
        }
        debug_mode_found = 1;
    }
    std::fprintf(stderr, "\n? Error at line %d of file %s\n", line, file ? file : "(null)");
    gerror_display_all_error_messages();
    return 1;
}

int is_debug_mode_active_for(const char* variable, ...)
{
    const char* found = variable ? tql_getenv(variable) : nullptr;
    if (!found) {
        return 0;
    }
    const std::string value = found; // tql_getenv's buffer is shared
    va_list args;
    va_start(args, variable);
    int active = 0;
    while (const char* candidate = va_arg(args, const char*)) {
        if (value == candidate) {
            active = 1;
            break;
        }
    }
    va_end(args);
    return active;
}

} // extern "C"
