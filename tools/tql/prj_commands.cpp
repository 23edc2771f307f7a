// tql prj: creating, testing, copying, removing and describing project
// directories. The project configuration file is named by the variable
// PROJECT_CFG_NAME of the default environment ("project" when unset).
#include "commands.h"

#include <tql70/tql70.h>

#include <cstdio>

namespace tql_tool {

namespace {

const Command& prj_command()
{
    for (const Command& command : commands()) {
        if (std::string(command.name) == "prj") {
            return command;
        }
    }
    return commands().front();
}

// Takes the flag `name` out of `args`; true when it was there.
bool take_flag(Args& args, const char* name)
{
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == name) {
            args.erase(args.begin() + static_cast<long>(i));
            return true;
        }
    }
    return false;
}

bool initialise()
{
    char name[256] = "project";
    gui_env_get_ee_and_expand("PROJECT_CFG_NAME", name, nullptr, sizeof name, 0);
    return gprj_init(name[0] ? name : "project", nullptr) != 0;
}

int project_failure(const std::string& what)
{
    const char* text = gprj_errstr(GprjErrorNo);
    std::fprintf(stderr, "tql: %s: %s\n", what.c_str(), text ? text : "unknown project error");
    return 1;
}

int run_new(Args args)
{
    std::string subdirs;
    std::string copy_list;
    const int overwrite = take_flag(args, "--overwrite") ? 1 : 0;
    if (!take_option(args, "--subdirs", subdirs) || !take_option(args, "--copy", copy_list) || args.size() != 1) {
        return usage_error(prj_command(), "prj new takes a directory [--subdirs A;B] [--copy SRC,DST;...] [--overwrite]");
    }
    if (!gprj_create(args[0].c_str(), subdirs.c_str(), &copy_list[0], overwrite)) {
        return project_failure("cannot create " + native(args[0]));
    }
    return 0;
}

int run_test(const Args& args, bool describe)
{
    if (args.size() != 1) {
        return usage_error(prj_command(), "prj test and prj info take one directory");
    }
    char version[GPRJ_VERSION_SIZE];
    GprjErrorNo = 0;
    const int accepted = gprj_is_project(args[0].c_str(), version);
    if (describe) {
        std::printf("directory: %s\nversion: %s\nproject: %s\n", native(args[0]).c_str(), version[0] ? version : "(none)",
                    accepted ? "yes" : "no");
        if (!accepted && GprjErrorNo) {
            std::printf("reason: %s\n", gprj_errstr(GprjErrorNo));
        }
        return accepted ? 0 : 1;
    }
    if (!accepted) {
        if (GprjErrorNo) {
            return project_failure(native(args[0]) + " is not a project");
        }
        std::fprintf(stderr, "tql: %s is not a project of the current version (version %s)\n", native(args[0]).c_str(),
                     version[0] ? version : "none");
        return 1;
    }
    std::printf("%s is a project, version %s\n", native(args[0]).c_str(), version);
    return 0;
}

int run_copy(Args args)
{
    const int overwrite = take_flag(args, "--overwrite") ? 1 : 0;
    if (args.size() != 2) {
        return usage_error(prj_command(), "prj copy takes a source and a destination [--overwrite]");
    }
    return gprj_copy(args[0].c_str(), args[1].c_str(), overwrite) ? 0 : project_failure("cannot copy " + native(args[0]));
}

int run_remove(const Args& args)
{
    if (args.size() != 1) {
        return usage_error(prj_command(), "prj rm takes one directory");
    }
    return gprj_delete(args[0].c_str()) ? 0 : project_failure("cannot remove " + native(args[0]));
}

} // namespace

int run_prj(const Args& given)
{
    if (given.empty()) {
        return usage_error(prj_command(), "prj takes new, test, copy, rm or info");
    }
    const std::string action = given[0];
    const Args args(given.begin() + 1, given.end());
    if (action != "new" && action != "test" && action != "copy" && action != "rm" && action != "info") {
        return usage_error(prj_command(), "prj takes new, test, copy, rm or info");
    }
    if (!initialise()) {
        std::fprintf(stderr, "tql: cannot set up the project functions\n");
        return 1;
    }
    if (action == "new") {
        return run_new(args);
    }
    if (action == "copy") {
        return run_copy(args);
    }
    if (action == "rm") {
        return run_remove(args);
    }
    return run_test(args, action == "info");
}

} // namespace tql_tool
