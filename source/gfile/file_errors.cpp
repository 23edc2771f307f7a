// Error reporting of the file operations: GuiErrno with the system error,
// and the debug banner.
#include "gfile/gfile_internal.h"

#include <tql70/gerror.h>

#include <cerrno>

namespace tql::gfile {

void fail(int code, int line)
{
    gerror_set_all_errors(code, errno);
    gerror_display_debug_info("source/gfile", line);
}

} // namespace tql::gfile
