// tql: command-line access to the tql70 library.
#include "commands.h"

#include <cstdio>
#include <cstring>

namespace {

void print_help(FILE* out)
{
    std::fprintf(out, "usage: tql COMMAND [ARGUMENTS]\n\ncommands:\n");
    for (const tql_tool::Command& command : tql_tool::commands()) {
        std::fprintf(out, "  %-20s %s\n", command.synopsis, command.summary);
    }
    std::fprintf(out, "\n  tql --help           print this help\n");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        print_help(stderr);
        return 2;
    }
    if (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0 ||
        std::strcmp(argv[1], "help") == 0) {
        print_help(stdout);
        return 0;
    }
    for (const tql_tool::Command& command : tql_tool::commands()) {
        if (std::strcmp(argv[1], command.name) == 0) {
            return command.run(tql_tool::Args(argv + 2, argv + argc));
        }
    }
    std::fprintf(stderr, "tql: unknown command '%s'\n", argv[1]);
    print_help(stderr);
    return 2;
}
