// The C library's knowledge of errno values.
#include "platform/platform.h"

#include <cstring>

bool system_error_is_known(int code)
{
    return code >= 1 && strerrorname_np(code) != nullptr;
}

const char* system_error_text(int code)
{
    return std::strerror(code);
}
