// The running program's short name, as the C library keeps it.
#include "platform/platform.h"

#include <errno.h>

std::string process_name()
{
    return program_invocation_short_name;
}
