// gui_env_getwebbrowser: the configured browser, else the one the desktop
// names through BROWSER, else a standard opener found on PATH.
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/gui_env.h>
#include <tql70/process_env.h>
#include <tql70/zq_paths.h>

#include "platform/platform.h"

#include <string>
#include <vector>

namespace {

// WEB_BROWSER of the "de_sim" configuration, expanded, at every level.
std::string configured_browser()
{
    GuiEnv env = gui_env_open("de_sim", GUI_ENV_ANY);
    if (!env) {
        return "";
    }
    std::vector<char> buffer(1024);
    int result;
    while ((result = gui_env_get_and_expand(env, "WEB_BROWSER", buffer.data(), nullptr,
                                            static_cast<int>(buffer.size()), GUI_ENV_ANY)) > 0) {
        buffer.resize(static_cast<size_t>(result));
    }
    gui_env_close(env, 0);
    return result == 0 ? std::string(buffer.data()) : std::string();
}

std::string desktop_browser()
{
    if (const char* list = tql_getenv("BROWSER")) {
        const std::string entries = list;
        size_t start = 0;
        while (start <= entries.size()) {
            const size_t end = std::min(entries.find(':', start), entries.size());
            const std::string entry = entries.substr(start, end - start);
            if (!entry.empty()) {
                if (gfile_exists(entry.c_str()) && !gfile_is_dir(entry.c_str())) {
                    return entry;
                }
                const std::string found = find_program(entry);
                if (!found.empty()) {
                    return found;
                }
            }
            start = end + 1;
        }
    }
    for (const char* opener : {"xdg-open", "x-www-browser", "sensible-browser"}) {
        const std::string found = find_program(opener);
        if (!found.empty()) {
            return found;
        }
    }
    return "";
}

} // namespace

extern "C" char* gui_env_getwebbrowser(void)
{
    std::string browser = configured_browser();
    if (browser.empty() || !gfile_exists(browser.c_str())) {
        browser = desktop_browser();
    }
    return ZQ_stringcopy(browser.c_str());
}
