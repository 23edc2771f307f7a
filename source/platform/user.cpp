// The user's login name: the session's login, else the account of the
// effective user id.
#include "platform/platform.h"

#include <pwd.h>
#include <unistd.h>

#include <vector>

std::string login_name()
{
    char name[1024];
    if (getlogin_r(name, sizeof name) == 0 && name[0] != '\0') {
        return name;
    }
    const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<size_t>(suggested) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_name) {
        return found->pw_name;
    }
    return "";
}
