// kps_version_str: the version text fixed when the library was built.
#include <tql70/process_env.h>

#include "build_info.h"

#include <string>

extern "C" char* kps_version_str(const char* prefix)
{
    static std::string buffer;
    const std::string version =
        std::string(TQL70_VERSION_NUMBER) + "." + TQL70_FIX_LEVEL + " " + TQL70_BUILD_DATE;
    // Rewritten in place (clear keeps the storage), so an earlier result
    // pointer shows the newest text while it fits.
    buffer.clear();
    if (prefix && *prefix) {
        buffer.append(prefix).append(" (*) ");
    }
    buffer.append(version);
    return &buffer[0];
}
