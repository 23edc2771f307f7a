// tql msg: messages of the catalogues named by the configuration files,
// one by set and number or a whole set with its numbers.
#include "commands.h"

#include <tql70/tql70.h>

#include <cstdio>

namespace tql_tool {

namespace {

const Command& msg_command()
{
    for (const Command& command : commands()) {
        if (std::string(command.name) == "msg") {
            return command;
        }
    }
    return commands().front();
}

int catalogue_failure(const std::string& what)
{
    std::fprintf(stderr, "tql: %s: %s\n", what.c_str(), gerror_get_error_message());
    return 1;
}

// Prints message `number`; false (GuiErrno set) when there is none.
bool print_message(GmsgHandle handle, const std::string& set, int number, bool numbered)
{
    char text[GMSG_MESSAGE_SIZE];
    if (!gmsg_retrieve_message(handle, set.c_str(), number, text)) {
        return false;
    }
    if (numbered) {
        std::printf("%5d  %s\n", number, text);
    } else {
        std::printf("%s\n", text);
    }
    return true;
}

} // namespace

int run_msg(const Args& given)
{
    Args args = given;
    std::string language;
    for (size_t i = 0; i + 1 < args.size(); ++i) {
        if (args[i] == "--lang") {
            language = args[i + 1];
            args.erase(args.begin() + static_cast<long>(i), args.begin() + static_cast<long>(i) + 2);
            break;
        }
    }
    const bool list = args.size() == 2 && args[0] == "list";
    int number = 0;
    if (!list) {
        if (args.size() != 2 || std::sscanf(args[1].c_str(), "%d", &number) != 1) {
            return usage_error(msg_command(), "msg takes a set and a message number, or list and a set");
        }
    }
    GmsgHandle handle = gmsg_open(nullptr, nullptr, language.empty() ? nullptr : language.c_str());
    if (!handle) {
        return catalogue_failure("cannot open the message catalogue");
    }
    const std::string set = list ? args[1] : args[0];
    int status = 0;
    if (list) {
        int shown = 0;
        while (print_message(handle, set, shown + 1, true)) {
            ++shown;
        }
        if (shown == 0) {
            status = catalogue_failure("set " + set);
        }
    } else if (!print_message(handle, set, number, false)) {
        status = catalogue_failure("message " + set + " " + args[1]);
    }
    gmsg_close(handle);
    return status;
}

} // namespace tql_tool
