// Error reporting of the file operations: GuiErrno with the system error,
// the debug banner, and the name at which a tree walk stopped.
#include "gfile/gfile_internal.h"

#include <tql70/gerror.h>
#include <tql70/gfile.h>

#include <cerrno>
#include <string>

namespace {

std::string failed_name;

} // namespace

namespace tql::gfile {

void fail(int code, int line)
{
    gerror_set_all_errors(code, errno);
    gerror_display_debug_info("source/gfile", line);
}

void fail_at(const std::string& name, int code, int line)
{
    const int error = errno;
    failed_name = name;
    errno = error;
    fail(code, line);
}

void forget_failed_name()
{
    failed_name.clear();
}

} // namespace tql::gfile

extern "C" const char* gfile_error_path(void)
{
    return failed_name.c_str();
}
