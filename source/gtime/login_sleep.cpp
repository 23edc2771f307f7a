// The user's login name and a sleep in whole seconds.
#include <tql70/gmem.h>
#include <tql70/gtime.h>

#include "platform/platform.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kLoginBytes = 1024;

} // namespace

extern "C" {

char* tql_getlogin(void)
{
    char* result = static_cast<char*>(gmem_ee_calloc(kLoginBytes, 1));
    if (result) {
        const std::string name = login_name();
        std::memcpy(result, name.c_str(), std::min(name.size(), kLoginBytes - 1));
    }
    return result;
}

int tql_sleep(unsigned int seconds)
{
    sleep_seconds(seconds);
    return 0;
}

} // extern "C"
