// tql: command-line access to the tql70 library. The global options and
// the command name are parsed here; everything after the command name is
// the command's own, and "--help" among it asks for the command's help.
#include "commands.h"

#include <tql70/process_env.h>

#include <QCommandLineParser>
#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

void print_help()
{
    std::printf("usage: tql [--help | --version]\n   or: tql COMMAND [ARGUMENTS]\n\ncommands:\n");
    for (const tql_tool::Command& command : tql_tool::commands()) {
        std::printf("  %-9s %s\n", command.name, command.summary);
    }
    std::printf("\noptions:\n"
                "  -h, --help     print this help; tql COMMAND --help prints a command's own\n"
                "  -V, --version  print the library version text\n"
                "\nexit status: 0 done, 1 the operation failed, 2 a usage error\n");
}

// The arguments of a command that has options, parsed against the options
// its help lists: options anywhere, "--" ending them, an unknown option or
// a missing value an error. The command gets the other arguments in their
// order, then each option in its own spelling (with its value). Arguments
// pass through Latin-1 so that every byte comes back as it was given.
bool parse_command_options(const tql_tool::Command& command, const tql_tool::Args& given, tql_tool::Args& out,
                           QString& error)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    struct Spelling {
        std::string spelled;
        QString name;
        bool valued;
    };
    std::vector<Spelling> spellings;
    for (const tql_tool::OptionHelp& option : command.options) {
        const std::string form = option.form;
        const std::string spelled = form.substr(0, form.find(' '));
        const QString name = QString::fromLatin1(spelled.c_str() + spelled.find_first_not_of('-'));
        const bool valued = spelled.size() < form.size();
        QCommandLineOption qt_option(name);
        if (valued) {
            qt_option.setValueName(QString::fromLatin1(form.c_str() + spelled.size() + 1));
        }
        parser.addOption(qt_option);
        spellings.push_back({spelled, name, valued});
    }
    QStringList arguments{"tql"};
    for (const std::string& argument : given) {
        arguments << QString::fromLatin1(argument.data(), static_cast<int>(argument.size()));
    }
    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return false;
    }
    for (const QString& positional : parser.positionalArguments()) {
        out.push_back(positional.toLatin1().toStdString());
    }
    for (const Spelling& option : spellings) {
        if (!option.valued && parser.isSet(option.name)) {
            out.push_back(option.spelled);
        }
        for (const QString& value : option.valued ? parser.values(option.name) : QStringList()) {
            out.push_back(option.spelled);
            out.push_back(value.toLatin1().toStdString());
        }
    }
    return true;
}

int global_usage_error(const QString& message)
{
    std::fprintf(stderr, "tql: %s\nTry 'tql --help'.\n", message.toLocal8Bit().constData());
    return tql_tool::kUsage;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption help({"h", "help"}, "print this help");
    const QCommandLineOption version({"V", "version"}, "print the library version text");
    parser.addOption(help);
    parser.addOption(version);
    parser.addPositionalArgument("command", "the command to run");
    if (!parser.parse(arguments)) {
        return global_usage_error(parser.errorText());
    }
    const QStringList rest = parser.positionalArguments();
    if (parser.isSet(help)) {
        print_help();
        return tql_tool::kDone;
    }
    if (parser.isSet(version)) {
        std::printf("%s\n", kps_version_str(""));
        return tql_tool::kDone;
    }
    if (rest.isEmpty()) {
        return global_usage_error("no command given");
    }
    if (rest.front() == "help" && rest.size() <= 2) {
        const tql_tool::Command* about = rest.size() == 2 ? tql_tool::find_command(rest[1].toStdString()) : nullptr;
        if (rest.size() == 2 && !about) {
            return global_usage_error("unknown command '" + rest[1] + "'");
        }
        about ? tql_tool::print_command_help(*about) : print_help();
        return tql_tool::kDone;
    }
    const tql_tool::Command* command = tql_tool::find_command(rest.front().toStdString());
    if (!command) {
        return global_usage_error("unknown command '" + rest.front() + "'");
    }
    // The arguments go to the command as the system gave them.
    const tql_tool::Args args(argv + argc - (rest.size() - 1), argv + argc);
    if (std::find(args.begin(), args.end(), "--help") != args.end()) {
        tql_tool::print_command_help(*command);
        return tql_tool::kDone;
    }
    if (command->options.empty()) {
        return command->run(args);
    }
    tql_tool::Args parsed;
    QString error;
    if (!parse_command_options(*command, args, parsed, error)) {
        return tql_tool::usage_error(*command, error.toLocal8Bit().toStdString());
    }
    return command->run(parsed);
}
