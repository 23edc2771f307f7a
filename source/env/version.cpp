// kps_version_str: the version text fixed when the library was built.
#include <tql70/process_env.h>

#include "build_info.h"

#include <string>

extern "C" char* kps_version_str(const char* prefix)
{
    static std::string buffer;
    const std::string version =
        std::string(TQL70_VERSION_NUMBER) + "." + TQL70_FIX_LEVEL + " " + TQL70_BUILD_DATE;
    if (!prefix || !*prefix) {
        buffer = version;
    } else {
        buffer = std::string(prefix) + " (*) " + version;
    }
    return &buffer[0];
}
