// The subcommands of tql: version, getenv and errors.
#include "commands.h"

#include <tql70/tql70.h>

#include <cstdio>
#include <cstdlib>

namespace tql_tool {

namespace {

const Command& find(const char* name)
{
    for (const Command& command : commands()) {
        if (std::string(command.name) == name) {
            return command;
        }
    }
    std::abort();
}

int run_version(const Args& args)
{
    if (!args.empty()) {
        return usage_error(find("version"), "version takes no arguments");
    }
    std::printf("%s\n", kps_version_str(""));
    return 0;
}

int run_getenv(const Args& args)
{
    if (args.size() != 1 || args[0].empty()) {
        return usage_error(find("getenv"), "getenv takes one variable name");
    }
    const char* value = tql_getenv(args[0].c_str());
    if (!value) {
        std::fprintf(stderr, "tql: %s is not defined\n", args[0].c_str());
        return 1;
    }
    std::printf("%s\n", value);
    return 0;
}

// The texts of the library error codes that the library defines (0 to 30),
// as gerror_get_error_message gives them; code 0 therefore shows the
// out-of-range text, as it does for applications.
int run_errors(const Args& args)
{
    if (!args.empty()) {
        return usage_error(find("errors"), "errors takes no arguments");
    }
    const int saved = gerror_get_error();
    for (int code = 0; code <= 30; ++code) {
        gerror_set_error(code);
        std::printf("%3d  %s\n", code, gerror_get_error_message());
    }
    gerror_set_error(saved);
    return 0;
}

} // namespace

const std::vector<Command>& commands()
{
    static const std::vector<Command> all = {
        {"version", "tql version", "print the library version text", run_version},
        {"getenv", "tql getenv NAME",
         "print a process variable, or the settings-store value when the process has none;\n"
         "                       exit status 1 when neither defines it",
         run_getenv},
        {"errors", "tql errors", "list every GuiErrno code with its text", run_errors},
    };
    return all;
}

int usage_error(const Command& command, const std::string& message)
{
    std::fprintf(stderr, "tql: %s\nusage: %s\n", message.c_str(), command.synopsis);
    return 2;
}

} // namespace tql_tool
