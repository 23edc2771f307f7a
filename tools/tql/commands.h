// The subcommands of tql. Each takes the arguments after its name and
// returns the process exit status.
#ifndef TQL70_TOOLS_TQL_COMMANDS_H
#define TQL70_TOOLS_TQL_COMMANDS_H

#include <tql70/gui_env.h>

#include <string>
#include <vector>

namespace tql_tool {

using Args = std::vector<std::string>;

// One option or form of a command, as its --help lists it.
struct OptionHelp {
    const char* form;
    const char* text;
};

// A subcommand: its name, the usage line(s) of its --help, the one line
// tql --help shows, what runs it, and the rest of its own --help.
struct Command {
    const char* name;
    const char* synopsis;
    const char* summary;
    int (*run)(const Args& args);
    const char* description;
    std::vector<OptionHelp> options;
    const char* example;
};

// The exit statuses of every command.
enum Status { kDone = 0, kFailed = 1, kUsage = 2 };

// Every subcommand, in the order --help lists them.
const std::vector<Command>& commands();

// The subcommand called `name`; null when there is none.
const Command* find_command(const std::string& name);

// Prints the --help of `command` to standard output.
void print_command_help(const Command& command);

// The native form of a path ("/a/b" for "C:\a\b").
std::string native(const std::string& path);

// The expansion of `text` in `env` (null: the default environment), the
// buffer grown to the size the library asks for; false when it expands to
// nothing.
bool expand_text(const char* text, GuiEnv env, std::string& out);

// tql env (env_commands.cpp).
int run_env(const Args& args);
// tql crypt (crypt_commands.cpp).
int run_crypt(const Args& args);

// tql math (math_commands.cpp).
int run_math(const Args& args);

// tql grep (grep_command.cpp).
int run_grep(const Args& args);

// tql hash (hash_commands.cpp).
int run_hash(const Args& args);

// tql msg (msg_commands.cpp) and tql prj (prj_commands.cpp).
int run_msg(const Args& args);
int run_prj(const Args& args);

// Takes "--NAME VALUE" out of `args` into `value`; false when the value
// is missing.
bool take_option(Args& args, const char* name, std::string& value);

// Prints "tql: MESSAGE" and where to find the command's help to stderr;
// returns kUsage.
int usage_error(const Command& command, const std::string& message);

} // namespace tql_tool

#endif
