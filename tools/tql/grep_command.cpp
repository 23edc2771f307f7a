// tql grep: the lines of files (or the input) that a regular expression
// matches, the matched parts (-o) or the substitutions into a template
// (-s), so that a pattern can be tried before it goes into a design file.
// A bad pattern is reported with the library's message instead of ending
// the process.
#include "commands.h"

#include "regex/regex_engine.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace tql_tool {

namespace {

struct GrepOptions {
    bool only_matching = false;
    const char* substitution = nullptr;
    std::string prefix; // "FILE:" when several files are searched
};

// Prints what the options ask for of each matching line; true when one
// matched.
bool grep_stream(std::istream& in, tql_regexp* r, const GrepOptions& options)
{
    bool any = false;
    std::string line;
    std::vector<char> out;
    while (std::getline(in, line)) {
        if (!tql_regexec(r, line.c_str())) {
            continue;
        }
        any = true;
        if (options.substitution) {
            std::size_t size = 0;
            tql::regex::substitution_size(r, options.substitution, &size);
            out.resize(size);
            tql_regsub(r, options.substitution, out.data());
            std::printf("%s%s\n", options.prefix.c_str(), out.data());
        } else if (options.only_matching) {
            std::printf("%s%.*s\n", options.prefix.c_str(), static_cast<int>(r->endp[0] - r->startp[0]), r->startp[0]);
        } else {
            std::printf("%s%s\n", options.prefix.c_str(), line.c_str());
        }
    }
    return any;
}

} // namespace

int run_grep(const Args& given)
{
    const Command& usage = *std::find_if(commands().begin(), commands().end(),
                                         [](const Command& c) { return std::string(c.name) == "grep"; });
    GrepOptions options;
    Args rest; // the pattern and the files
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (given[i] == "-o") {
            options.only_matching = true;
        } else if (given[i] != "-s") {
            rest.push_back(given[i]);
        } else if (++i < given.size()) {
            options.substitution = given[i].c_str();
        } else {
            return usage_error(usage, "-s takes a template");
        }
    }
    if (rest.empty()) {
        return usage_error(usage, "grep takes a pattern");
    }
    std::size_t next = 0;
    const std::string& pattern = rest[next++];
    const tql::regex::CompileResult compiled = tql::regex::compile(pattern.c_str());
    if (compiled.error != tql::regex::ErrorCode::none) {
        std::fprintf(stderr, "tql: bad pattern '%s': %s\n", pattern.c_str(), tql::regex::error_message(compiled.error));
        return 2;
    }
    const std::unique_ptr<tql_regexp, decltype(&std::free)> r(compiled.compiled, &std::free);
    if (next == rest.size()) {
        return grep_stream(std::cin, r.get(), options) ? 0 : 1;
    }
    bool any = false;
    bool failed = false;
    const bool several = rest.size() - next > 1;
    for (; next < rest.size(); ++next) {
        std::ifstream file(rest[next], std::ios::binary);
        if (!file) {
            std::fprintf(stderr, "tql: cannot read %s: %s\n", native(rest[next]).c_str(), std::strerror(errno));
            failed = true;
            continue;
        }
        options.prefix = several ? rest[next] + ":" : "";
        any = grep_stream(file, r.get(), options) || any;
    }
    return failed ? 2 : any ? 0 : 1;
}

} // namespace tql_tool
