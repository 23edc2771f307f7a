// tql env: the variables of the default environment with their provenance,
// changing them, and the configuration files of each level.
#include "commands.h"

#include <tql70/tql70.h>

#include "env/env_store.h"
#include "platform/platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tql_tool {

namespace {

struct LevelInfo {
    int number;
    const char* label;
};
// In precedence order: the first level that defines a name wins.
const LevelInfo kLevels[] = {
    {GUI_ENV_LOCAL, "local"}, {GUI_ENV_HOME, "home"}, {GUI_ENV_CUSTOM, "custom"}, {GUI_ENV_SITE, "site"}};

const Command& env_command()
{
    for (const Command& command : commands()) {
        if (std::string(command.name) == "env") {
            return command;
        }
    }
    std::abort();
}

// File failures name the native path and the system's reason; include
// problems are warnings, as the include is skipped and the rest is read.
int report_failure(int code, const char*, const char* name, char**)
{
    const tql::env::FileFailure& failure = tql::env::last_file_failure();
    switch (code) {
    case GUI_ENV_ERR_WRITE:
        std::fprintf(stderr, "tql: cannot write %s: %s\n", failure.path.c_str(), failure.reason.c_str());
        break;
    case GUI_ENV_ERR_READ:
        std::fprintf(stderr, "tql: warning: cannot read %s: %s\n", failure.path.c_str(), failure.reason.c_str());
        break;
    case GUI_ENV_ERR_NO_FILE:
        std::fprintf(stderr, "tql: warning: included file %s not found\n", native(name).c_str());
        break;
    case GUI_ENV_ERR_INCLUDE_CYCLE:
        std::fprintf(stderr, "tql: warning: include cycle skipped: %s\n", name);
        break;
    case GUI_ENV_ERR_INCLUDE_DEPTH:
        std::fprintf(stderr, "tql: warning: includes nested deeper than %d files, skipped: %s\n",
                     tql::env::kMaxIncludeDepth, name);
        break;
    default:
        break;
    }
    return 0;
}

struct Definition {
    const char* label;
    const GuiEnvEntry* entry;
    const GuiEnvLevel* level;
};

// Every live definition of every name, in precedence order per name.
std::map<std::string, std::vector<Definition>> definitions(GuiEnv env)
{
    std::map<std::string, std::vector<Definition>> all;
    for (const LevelInfo& info : kLevels) {
        const GuiEnvLevel& level = env->levels[tql::env::storage_index(info.number)];
        for (int slot = 0; slot < level.capacity; ++slot) {
            const GuiEnvEntry& entry = level.entries[slot];
            if (entry.name[0] && entry.state != ENV_DELETED) {
                all[entry.name].push_back({info.label, &entry, &level});
            }
        }
    }
    return all;
}

void print_definitions(GuiEnv env, const std::string& name, const std::vector<Definition>& list)
{
    const Definition& winner = list.front();
    const char* value = winner.entry->value ? winner.entry->value : "";
    std::printf("%s=%s\n", name.c_str(), value);
    // The value is shown as it is; an expansion that is a library-form
    // path gets its native form beside it.
    std::string expansion;
    const bool expands = expand_text(value, env, expansion) && expansion != value;
    const std::string shown = expands ? expansion : value;
    const std::string native_form = native(shown);
    const std::string beside =
        native_form != shown && !native_form.empty() ? "native: " + native_form : std::string();
    if (expands) {
        std::printf("    expands to: %s%s\n", expansion.c_str(), beside.empty() ? "" : ("  (" + beside + ")").c_str());
    } else if (!beside.empty()) {
        std::printf("    %s\n", beside.c_str());
    }
    for (size_t i = 0; i < list.size(); ++i) {
        const Definition& d = list[i];
        const char* from = d.entry->source ? d.entry->source : nullptr;
        std::printf("    %s %s level, %s%s\n", i == 0 ? "from" : "shadows", d.label,
                    from ? native(from).c_str() : "set by the program",
                    i == 0 ? "" : (std::string(" (") + (d.entry->value ? d.entry->value : "") + ")").c_str());
    }
}

// One line of tql env files: the level, whether its file is used or why
// not (missing, unreadable, not a regular file), and the native path.
void print_file_state(const char* label, const std::string& file)
{
    const int problem = config_file_problem(file.c_str());
    const bool missing = problem == ENOENT || problem == ENOTDIR;
    const bool irregular = problem == EISDIR || problem == kNotRegularFile;
    const char* state = problem == 0 ? "used" : missing ? "missing" : irregular ? "not a regular file" : "unreadable";
    const std::string reason = problem == 0 || missing ? std::string() : " (" + file_failure_reason(problem) + ")";
    std::printf("%-7s %-18s %s%s\n", label, state, native(file).c_str(), reason.c_str());
}

int list_files()
{
    tql::env::default_environment();
    const char* name = tql::env::kDefaultConfiguration;
    const struct {
        const char* label;
        std::string file;
    } files[] = {{"site", tql::env::level_file(GUI_ENV_SITE, name)},
                 {"custom", tql::env::level_file(GUI_ENV_CUSTOM, name)},
                 {"home", tql::env::level_file(GUI_ENV_HOME, name)},
                 {"local", tql::env::level_file(GUI_ENV_LOCAL, name)}};
    for (const auto& f : files) {
        print_file_state(f.label, f.file);
    }
    for (const std::string& addon : tql::env::addon_files(name)) {
        print_file_state("add-on", addon);
    }
    return 0;
}

int list_variables(const Args& args)
{
    GuiEnv env = tql::env::default_environment();
    const auto all = definitions(env);
    if (args.size() == 1) {
        char normalized[GUI_ENV_NAME_MAX + 1];
        tql::env::normalize_name(args[0].c_str(), normalized);
        const auto found = all.find(normalized);
        if (found == all.end()) {
            std::fprintf(stderr, "tql: %s is not defined\n", args[0].c_str());
            return 1;
        }
        print_definitions(env, found->first, found->second);
        return 0;
    }
    for (const auto& [name, list] : all) {
        print_definitions(env, name, list);
    }
    if (all.empty()) {
        std::printf("no configuration file defines a variable; the files looked for:\n");
        list_files();
    }
    return 0;
}


// Where a definition is: "file:line", or "set by the program".
std::string location(const GuiEnvEntry& entry)
{
    if (!entry.source) {
        return "set by the program";
    }
    return native(entry.source) + ":" + std::to_string(entry.line);
}

// Depth-first search of the %-reference graph; every back edge closes a
// cycle, kept once in its rotation that starts with its smallest name.
void find_cycles(const std::string& name, const std::map<std::string, std::vector<std::string>>& edges,
                 std::map<std::string, int>& state, std::vector<std::string>& path,
                 std::set<std::vector<std::string>>& cycles)
{
    state[name] = 1;
    path.push_back(name);
    const auto found = edges.find(name);
    for (const std::string& next : found == edges.end() ? std::vector<std::string>() : found->second) {
        if (state[next] == 1) {
            std::vector<std::string> cycle(std::find(path.begin(), path.end(), next), path.end());
            std::rotate(cycle.begin(), std::min_element(cycle.begin(), cycle.end()), cycle.end());
            cycles.insert(cycle);
        } else if (state[next] == 0 && edges.count(next)) {
            find_cycles(next, edges, state, path, cycles);
        }
    }
    path.pop_back();
    state[name] = 2;
}

// tql env check: every cycle of configuration variables and every
// reference to a variable that is not defined, with where each definition
// is. Status 1 when there is any.
int check_references()
{
    GuiEnv env = tql::env::default_environment();
    const auto all = definitions(env);
    std::map<std::string, std::vector<std::string>> edges;
    int problems = 0;
    for (const auto& [name, list] : all) {
        const GuiEnvEntry& winner = *list.front().entry;
        for (const tql::env::Reference& ref : tql::env::references_in(winner.value)) {
            // An empty name ("%NAME%", "50% off") is an idiom, not a mistake.
            if (ref.name.empty()) {
                continue;
            }
            if (ref.kind == '%' && all.count(ref.name)) {
                edges[name].push_back(ref.name);
            } else if (ref.kind == '%' || (!tql_getenv(ref.name.c_str()) && ref.name != "ZQTARVEX_DIR")) {
                std::printf("undefined: %c%s in %s at %s\n", ref.kind, ref.name.c_str(), name.c_str(),
                            location(winner).c_str());
                ++problems;
            }
        }
    }
    std::map<std::string, int> state;
    std::vector<std::string> path;
    std::set<std::vector<std::string>> cycles;
    for (const auto& [name, targets] : edges) {
        if (state[name] == 0) {
            find_cycles(name, edges, state, path, cycles);
        }
    }
    for (const std::vector<std::string>& cycle : cycles) {
        std::string chain;
        for (const std::string& name : cycle) {
            chain += name + " -> ";
        }
        std::printf("cycle: %s%s\n", chain.c_str(), cycle.front().c_str());
        for (const std::string& name : cycle) {
            std::printf("    %s at %s\n", name.c_str(), location(*all.at(name).front().entry).c_str());
        }
        ++problems;
    }
    if (problems == 0) {
        std::printf("no cycles or undefined references\n");
    }
    return problems ? 1 : 0;
}

// Takes "--level L" and "--save" out of `args`; false on a bad level.
bool take_options(Args& args, int& level, bool& save)
{
    level = GUI_ENV_ANY;
    save = false;
    for (size_t i = 0; i < args.size();) {
        if (args[i] == "--save") {
            save = true;
            args.erase(args.begin() + static_cast<long>(i));
        } else if (args[i] == "--level" && i + 1 < args.size()) {
            const auto match = std::find_if(std::begin(kLevels), std::end(kLevels),
                                            [&](const LevelInfo& info) { return args[i + 1] == info.label; });
            if (match == std::end(kLevels)) {
                return false;
            }
            level = match->number;
            args.erase(args.begin() + static_cast<long>(i), args.begin() + static_cast<long>(i) + 2);
        } else {
            ++i;
        }
    }
    return true;
}

int finish(bool save)
{
    return gui_env_deinit(save ? 1 : 0) ? 0 : 1;
}

} // namespace

int run_env(const Args& given)
{
    gui_env_set_error(report_failure);
    Args args = given;
    int level;
    bool save;
    if (!take_options(args, level, save)) {
        return usage_error(env_command(), "--level takes site, custom, home or local");
    }
    const std::string verb = args.empty() ? "" : args[0];
    if (verb == "files" && args.size() == 1) {
        return list_files();
    }
    if (verb == "check" && args.size() == 1) {
        return check_references();
    }
    if (verb == "get" && args.size() == 2) {
        std::vector<char> buffer(4096);
        int result;
        while ((result = gui_env_get_ee(args[1].c_str(), buffer.data(), nullptr, static_cast<int>(buffer.size()),
                                        level)) > 0) {
            buffer.resize(static_cast<size_t>(result));
        }
        if (result < 0) {
            std::fprintf(stderr, "tql: %s is not defined\n", args[1].c_str());
            return 1;
        }
        std::printf("%s\n", buffer.data());
        return 0;
    }
    if (verb == "set" && args.size() == 3) {
        if (!gui_env_put_ee(args[1].c_str(), args[2].c_str(), level)) {
            std::fprintf(stderr, "tql: cannot set %s\n", args[1].c_str());
            return 1;
        }
        return finish(save);
    }
    if (verb == "rm" && args.size() == 2) {
        if (!gui_env_rm_ee(args[1].c_str(), level)) {
            std::fprintf(stderr, "tql: %s is not defined\n", args[1].c_str());
            return 1;
        }
        return finish(save);
    }
    if (verb == "get" || verb == "set" || verb == "rm" || verb == "files" || verb == "check") {
        return usage_error(env_command(), "wrong number of arguments for env " + verb);
    }
    if (args.size() <= 1) {
        return list_variables(args);
    }
    return usage_error(env_command(), "env takes [NAME], or get|set|rm NAME [VALUE], or files, or check");
}

} // namespace tql_tool
