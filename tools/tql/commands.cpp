// The subcommands of tql: version, getenv and errors.
#include "commands.h"

#include <tql70/tql70.h>

#include "gfile/gfile_internal.h"

#include <cstdio>
#include <cstdlib>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace tql_tool {

namespace {

// Progress of a tree walk on a terminal: the count of entries and the
// current one, rewritten on one line of standard error at most ten times a
// second. Nothing when standard error is not a terminal.
class WalkProgress {
public:
    WalkProgress()
    {
        if (isatty(2)) {
            tql::gfile::set_walk_observer(&WalkProgress::reached);
        }
    }
    ~WalkProgress()
    {
        tql::gfile::set_walk_observer(nullptr);
        if (count_ > 0 && isatty(2)) {
            std::fprintf(stderr, "\r\033[K");
        }
    }
    WalkProgress(const WalkProgress&) = delete;
    WalkProgress& operator=(const WalkProgress&) = delete;

private:
    static void reached(const std::string& name)
    {
        ++count_;
        const auto now = std::chrono::steady_clock::now();
        if (now - shown_ >= std::chrono::milliseconds(100)) {
            shown_ = now;
            std::fprintf(stderr, "\r\033[K%lu  %s", count_, native(name).c_str());
        }
    }
    static inline unsigned long count_ = 0;
    static inline std::chrono::steady_clock::time_point shown_{};
};

// The result of `operation`, a tree walk, with its progress shown (and
// cleared before anything else is printed).
template <typename Operation>
int walk(Operation operation)
{
    WalkProgress progress;
    return operation();
}

const Command& find(const char* name)
{
    return *find_command(name);
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

int run_expand(const Args& args)
{
    if (args.size() != 1) {
        return usage_error(find("expand"), "expand takes one text");
    }
    std::string expanded;
    if (!expand_text(args[0].c_str(), nullptr, expanded)) {
        std::fprintf(stderr, "tql: '%s' expands to nothing\n", args[0].c_str());
        return 1;
    }
    std::printf("%s\n", expanded.c_str());
    return 0;
}

// "path native PATH": the Linux form of a library-form path; "path canon
// PATH": its absolute canonical library form.
int run_path(const Args& args)
{
    if (args.size() != 2 || (args[0] != "native" && args[0] != "canon")) {
        return usage_error(find("path"), "path takes 'native' or 'canon' and one path");
    }
    if (args[0] == "native") {
        std::vector<char> out(args[1].size() + 1);
        std::printf("%s\n", tql_native_path(args[1].c_str(), out.data()));
        return 0;
    }
    // The canonical form is at most the current directory, a separator and
    // the path itself.
    std::vector<char> out(args[1].size() + 8192);
    if (!ZQ_canonical_path(args[1].c_str(), out.data())) {
        std::fprintf(stderr, "tql: '%s' reduces to nothing\n", args[1].c_str());
        return 1;
    }
    std::printf("%s\n", out.data());
    return 0;
}

// Prints the library's text of the last file error with the system's
// reason, or what the checks before a walk refused when the operation
// reports failure by its result alone. A walk through a tree also names
// the entry where it stopped.
int file_failure(const char* what, const std::string& path, bool recursive)
{
    const int code = gerror_get_error();
    const std::string stopped_at = gfile_error_path();
    const std::string at = stopped_at.empty() ? "" : ": " + native(stopped_at);
    if (code >= 22 && code <= 28) {
        std::fprintf(stderr, "tql: %s %s%s: %s (%s)\n", what, native(path).c_str(), at.c_str(),
                     gerror_get_error_message(), gerror_get_system_error_message());
        return kFailed;
    }
    // The checks before a walk fail without an error code: say which one.
    const bool wildcard = path.find_first_of("*?") != std::string::npos;
    const char* why = wildcard                   ? "no such files, or a destination that is not a directory"
                      : !gfile_exists(path.c_str()) ? std::strerror(ENOENT)
                      : !gfile_is_dir(path.c_str()) ? "refused"
                      : !recursive                  ? "is a directory (-r for a tree)"
                                                    : "the destination is not a directory and cannot be made one";
    std::fprintf(stderr, "tql: %s %s: %s\n", what, native(path).c_str(), why);
    return kFailed;
}

// Takes "-r" out of `args`; true when it was there.
bool take_recursive(Args& args)
{
    const auto found = std::find(args.begin(), args.end(), "-r");
    if (found == args.end()) {
        return false;
    }
    args.erase(found);
    return true;
}

int run_cp(const Args& given)
{
    Args args = given;
    const bool recursive = take_recursive(args);
    if (args.size() != 2) {
        return usage_error(find("cp"), "cp takes a source and a destination");
    }
    gerror_set_error(0);
    if (!walk([&] { return gfile_cp(args[0].c_str(), args[1].c_str(), recursive); })) {
        return file_failure("cannot copy", args[0], recursive);
    }
    return 0;
}

int run_rm(const Args& given)
{
    Args args = given;
    const bool recursive = take_recursive(args);
    if (args.size() != 1) {
        return usage_error(find("rm"), "rm takes one path");
    }
    gerror_set_error(0);
    if (!walk([&] { return gfile_rm(args[0].c_str(), recursive); })) {
        return file_failure("cannot remove", args[0], recursive);
    }
    return 0;
}

int run_du(const Args& args)
{
    if (args.size() != 1) {
        return usage_error(find("du"), "du takes one directory");
    }
    if (!gfile_is_dir(args[0].c_str())) {
        std::fprintf(stderr, "tql: %s is not a directory\n", native(args[0]).c_str());
        return 1;
    }
    std::printf("%d\n", walk([&] { return gfile_dirsize(args[0].c_str()); }));
    return 0;
}

int run_df(const Args& args)
{
    if (args.size() != 1) {
        return usage_error(find("df"), "df takes one directory");
    }
    std::string directory = args[0];
    if (!gfile_is_dir(directory.c_str())) {
        std::fprintf(stderr, "tql: %s is not a directory\n", native(directory).c_str());
        return 1;
    }
    std::printf("%d\n", gfile_freedir_space(&directory[0]));
    return 0;
}

// The name kinds by their words.
const struct {
    const char* word;
    int kind;
} kNameKinds[] = {{"identifier", ASTR_KIND_IDENTIFIER}, {"indexed", ASTR_KIND_INDEXED},
                  {"workspace", ASTR_KIND_WORKSPACE}, {"design", ASTR_KIND_DESIGN},
                  {"node", ASTR_KIND_NODE},           {"component", ASTR_KIND_COMPONENT}};

// "name check|fix KIND NAME [--allow-dot]": validates or repairs a name.
int run_name(const Args& given)
{
    Args args = given;
    int allow_dot = 0;
    const auto dot = std::find(args.begin(), args.end(), "--allow-dot");
    if (dot != args.end()) {
        allow_dot = 1;
        args.erase(dot);
    }
    if (args.size() != 3 || (args[0] != "check" && args[0] != "fix")) {
        return usage_error(find("name"), "name takes check or fix, a kind and a name");
    }
    int kind = -1;
    for (const auto& entry : kNameKinds) {
        if (args[1] == entry.word) {
            kind = entry.kind;
        }
    }
    if (kind < 0) {
        return usage_error(find("name"),
                           "the kind is one of identifier, indexed, workspace, design, node, component");
    }
    if (args[0] == "check") {
        if (const char* message = astr_kps_valid_name(args[2].c_str(), kind, allow_dot)) {
            std::printf("%s\n", message);
            return 1;
        }
        std::printf("valid\n");
        return 0;
    }
    std::vector<char> fixed(args[2].size() + 1);
    astr_kps_get_valid_name(args[2].c_str(), kind, allow_dot, '_', fixed.data());
    std::printf("%s\n", fixed.data());
    return 0;
}


// "parse [--seps S] [--marks M] [--end C] [FILE]": every line's fields with
// their type and value.
int run_parse(const Args& given)
{
    Args args = given;
    std::string seps = " \t";
    std::string marks;
    std::string end;
    if (!take_option(args, "--seps", seps) || !take_option(args, "--marks", marks) ||
        !take_option(args, "--end", end) || args.size() > 1 || end.size() > 1 || seps.empty()) {
        return usage_error(find("parse"), "parse takes [--seps S] [--marks M] [--end C] [FILE]");
    }
    FILE* in = stdin;
    if (!args.empty() && !gfile_filopn(&in, args[0].c_str(), GFILE_READ)) {
        std::fprintf(stderr, "tql: cannot open %s: %s\n", native(args[0]).c_str(), std::strerror(errno));
        return 1;
    }
    parserecMem rec;
    gparse_init_parserecMem(&rec);
    std::string line;
    for (unsigned long number = 1; gfile_getline_std_string(in, &line); ++number) {
        if (!gparse_efficient_parline_mem(line.c_str(), seps.c_str(), marks.c_str(), end.empty() ? 0 : end[0], &rec)) {
            std::fprintf(stderr, "tql: line %lu cannot be parsed\n", number);
            continue;
        }
        std::printf("line %lu: %u field%s\n", number, rec.count, rec.count == 1 ? "" : "s");
        std::vector<char> text(line.size() + 1);
        for (unsigned int i = 0; i < rec.count; ++i) {
            const parsefield& f = rec.fields[i];
            gparse_getclump_mem(&rec, static_cast<int>(i), text.data());
            if (f.is_int) {
                std::printf("  %u  integer  %d\n", i, f.ival);
            } else if (f.is_num) {
                std::printf("  %u  number   %.17g\n", i, f.dval);
            } else {
                std::printf("  %u  text     %s\n", i, text.data());
            }
        }
    }
    gparse_efficient_parline_free_mem(&rec);
    if (in != stdin) {
        gfile_filcls(in);
    }
    return 0;
}

// "num fmt VALUE WIDTH DECIMALS": every formatter's result for the value.
int run_num(const Args& args)
{
    int width = 0;
    int decimals = 0;
    double value = 0;
    if (args.size() != 4 || args[0] != "fmt" || !gparse_astodbl(args[1].c_str(), &value) ||
        !gparse_astoint(args[2].c_str(), &width) || !gparse_astoint(args[3].c_str(), &decimals) || width < 0 ||
        width > 200 || decimals < -1 || decimals > 200) {
        return usage_error(find("num"), "num takes fmt, a number, a width (0-200) and decimals (-1-200)");
    }
    std::vector<char> out(static_cast<size_t>(width > decimals + 3 ? width : decimals + 3) + 2);
    auto show = [&](const char* name, unsigned int status) {
        std::printf("%-14s %u  \"%s\"\n", name, status, out.data());
    };
    show("gparse_dbltoas", gparse_dbltoas(value, width, decimals, out.data()));
    show("gparse_dblmxas", gparse_dblmxas(value, width, out.data()));
    show("gparse_dblxxas", gparse_dblxxas(value, width, decimals, out.data()));
    const float single = static_cast<float>(value);
    show("gparse_flttoas", gparse_flttoas(single, width, decimals, out.data()));
    show("gparse_fltmxas", gparse_fltmxas(single, width, out.data()));
    show("gparse_fltxxas", gparse_fltxxas(single, width, decimals, out.data()));
    int integer = 0;
    if (gparse_astoint(args[1].c_str(), &integer)) {
        show("gparse_inttoas", gparse_inttoas(integer, width, out.data()));
    }
    return 0;
}

} // namespace

// Takes "--NAME VALUE" out of `args` into `value`; false when it is last.
bool take_option(Args& args, const char* name, std::string& value)
{
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == name) {
            if (i + 1 >= args.size()) {
                return false;
            }
            value = args[i + 1];
            args.erase(args.begin() + static_cast<long>(i), args.begin() + static_cast<long>(i) + 2);
            return true;
        }
    }
    return true;
}

const std::vector<Command>& commands()
{
    static const std::vector<Command> all = {
        {"env", "tql env [NAME]\n  or: tql env get|set|rm NAME [VALUE] [--level LEVEL] [--save]\n  or: tql env files|check",
         "show the configuration variables, change them, list the files",
         run_env,
         "Without arguments, lists every variable of the default environment with its value, the\n"
         "expansion (and its native form when it is a path), the level and file that define it and\n"
         "the definitions it shadows; with NAME, only that variable. get prints one value, set and rm\n"
         "change one, files marks each configuration file used, missing, unreadable or not a regular\n"
         "file, check reports reference cycles and references to undefined variables.",
         {{"--level LEVEL", "site, custom, home or local: the level get, set and rm act on"},
          {"--save", "write the changed level back to its file"}},
         "tql env set EDITOR vi --level home --save"},
        {"version", "tql version", "print the library version text", run_version,
         "Prints the library version text, as tql --version does.", {}, "tql version"},
        {"getenv", "tql getenv NAME", "print a process variable or its settings-store value", run_getenv,
         "Prints the value of a process variable, or the settings-store value when the process has none;\n"
         "status 1 when neither defines it.",
         {}, "tql getenv ZQTARVEX_DIR"},
        {"errors", "tql errors", "list every GuiErrno code with its text", run_errors,
         "Lists the error codes of the library (0 to 30) with their texts.", {}, "tql errors"},
        {"expand", "tql expand TEXT", "expand $NAME and %NAME references in TEXT", run_expand,
         "Expands the $NAME (process) and %NAME (configuration) references in TEXT in the default\n"
         "environment; status 1 when it expands to nothing.",
         {}, "tql expand '%EDITOR -w $HOME/notes'"},
        {"name", "tql name check|fix KIND NAME [--allow-dot]", "validate or repair a name", run_name,
         "check prints the first illegal character of NAME (status 1) or \"valid\"; fix prints NAME with\n"
         "every illegal character replaced by '_'. KIND is identifier, indexed, workspace, design,\n"
         "node or component.",
         {{"--allow-dot", "accept '.' in the name"}}, "tql name fix workspace 'my work:space'"},
        {"parse", "tql parse [--seps S] [--marks M] [--end C] [FILE]", "split lines into typed fields", run_parse,
         "Splits each line of FILE (or of the input) into fields and prints each field's type\n"
         "(integer, number or text) and value.",
         {{"--seps S", "the separator characters (default blank and tab)"},
          {"--marks M", "characters that are fields of their own"},
          {"--end C", "the character that ends a line's fields (a comment)"}},
         "tql parse --seps '; ' --marks = data.txt"},
        {"num", "tql num fmt VALUE WIDTH DECIMALS", "print what each number formatter makes of VALUE", run_num,
         "Prints the status and text of each number formatter for VALUE, WIDTH (0-200) and\n"
         "DECIMALS (-1-200).",
         {}, "tql num fmt 123.456 13 2"},
        {"cp", "tql cp SRC DST [-r]", "copy a file, a wildcard set or a directory tree", run_cp,
         "Copies a file, a wildcard set (\"dir/*.txt\") or, with -r, a directory tree. On a terminal,\n"
         "a tree copy shows its progress on standard error.",
         {{"-r", "copy directories and everything below them"}}, "tql cp project backup -r"},
        {"rm", "tql rm PATH [-r]", "remove a file, a wildcard set or a directory tree", run_rm,
         "Removes a file, a wildcard set or, with -r, a directory tree. On a terminal, a tree removal\n"
         "shows its progress on standard error.",
         {{"-r", "remove directories and everything below them"}}, "tql rm 'build/*.o'"},
        {"du", "tql du DIR", "kilobytes used below a directory", run_du,
         "Prints the kilobytes used below DIR. On a terminal, the walk shows its progress on standard\n"
         "error.",
         {}, "tql du ."},
        {"df", "tql df DIR", "free kilobytes of the volume holding a directory", run_df,
         "Prints the free kilobytes of the volume that holds DIR.", {}, "tql df ."},
        {"math", "tql math FUNCTION ARGS...", "evaluate one gmath_ function", run_math,
         "Evaluates one gmath_ function (the prefix may be left out) and prints its result and the\n"
         "math error state after it.",
         {}, "tql math snopwr 2 0.5"},
        {"path", "tql path native|canon PATH", "print the native or the canonical form of a path", run_path,
         "native prints the Linux form of a library-form path; canon prints its absolute canonical\n"
         "library form (status 1 when it reduces to nothing).",
         {}, "tql path native 'C:\\data\\x.txt'"},
        {"grep", "tql grep [-o] [-s TEMPLATE] PATTERN [FILE...]", "print the lines a regular expression matches",
         run_grep,
         "Prints the lines of the files (or of the input) that PATTERN matches. As grep does, the\n"
         "status is 1 when no line matches and 2 on a bad pattern or a file that cannot be read.",
         {{"-o", "print only the matched parts"},
          {"-s TEMPLATE", "print TEMPLATE with & and \\1..\\9 replaced by the match"}},
         "tql grep -o '[a-z]+@[a-z.]+' mail.txt"},
        {"crypt", "tql crypt encrypt|decrypt TEXT\n  or: tql crypt header NUMBER WORD",
         "encrypt or decrypt a text, or make an encrypted header", run_crypt,
         "Encrypts or decrypts TEXT with the installation key, or prints the encrypted header line\n"
         "of a text file.",
         {}, "tql crypt header 42 alpha"},
        {"hash", "tql hash dump|stat FILE\n  or: tql hash get FILE KEY\n  or: tql hash put FILE KEY VALUE",
         "list, look up or add pairs of a hash database", run_hash,
         "dump lists every pair of the hash database FILE, get prints one value (status 1 when the\n"
         "key is missing), put adds or replaces a pair (creating FILE), stat shows its size.",
         {}, "tql hash put names.db alice 'Alice Smith'"},
        {"msg", "tql msg SET NUMBER [--lang L]\n  or: tql msg list SET [--lang L]",
         "print a message of the catalogue", run_msg,
         "Prints message NUMBER of SET from the message catalogue, or every message of SET with its\n"
         "number.",
         {{"--lang L", "the language of the catalogue"}}, "tql msg list errors"},
        {"prj", "tql prj new DIR [--subdirs A;B] [--copy SRC,DST;...] [--overwrite]\n"
                "  or: tql prj test|info|rm DIR\n  or: tql prj copy DIR DST [--overwrite]",
         "create, test, copy, remove or describe a project", run_prj,
         "new creates a project directory, test says whether DIR is a project of the current\n"
         "version (status 1 when not), info describes it, copy and rm copy or remove one.",
         {{"--subdirs A;B", "subdirectories to create in a new project"},
          {"--copy SRC,DST;...", "files to copy into a new project"},
          {"--overwrite", "replace an existing project"}},
         "tql prj new work/alpha --subdirs 'src;doc'"},
    };
    return all;
}

const Command* find_command(const std::string& name)
{
    for (const Command& command : commands()) {
        if (name == command.name) {
            return &command;
        }
    }
    return nullptr;
}

void print_command_help(const Command& command)
{
    std::printf("usage: %s\n\n%s\n", command.synopsis, command.description);
    if (!command.options.empty()) {
        std::printf("\noptions:\n");
        for (const OptionHelp& option : command.options) {
            std::printf("  %-20s %s\n", option.form, option.text);
        }
    }
    std::printf("  %-20s %s\n", "--help", "print this help");
    std::printf("\nexample:\n  %s\n\nexit status: 0 done, 1 the operation failed, 2 a usage error\n",
                command.example);
}

std::string native(const std::string& path)
{
    std::string out(path.size() + 1, '\0');
    tql_native_path(path.c_str(), &out[0]);
    return out.c_str();
}

bool expand_text(const char* text, GuiEnv env, std::string& out)
{
    std::vector<char> buffer(1024);
    int result;
    while ((result = gui_env_expand_str(buffer.data(), text, static_cast<int>(buffer.size()), env,
                                        static_cast<GuiEnv>(nullptr))) > 0) {
        buffer.resize(static_cast<size_t>(result));
    }
    out = result == 0 ? std::string(buffer.data()) : std::string();
    return result == 0;
}

int usage_error(const Command& command, const std::string& message)
{
    std::fprintf(stderr, "tql: %s\nTry 'tql %s --help'.\n", message.c_str(), command.name);
    return kUsage;
}

} // namespace tql_tool
