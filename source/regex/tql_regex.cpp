// The exported regular-expression functions: the engine's results, with
// every failure turned into the fatal tql_regerror.
#include "regex_engine.h"

#include <cstdio>
#include <cstdlib>

namespace tql::regex {

const char* error_message(ErrorCode code)
{
    switch (code) {
    case ErrorCode::none: return "";
    case ErrorCode::null_argument: return "NULL argument";
    case ErrorCode::too_big: return "regexp too big";
    case ErrorCode::out_of_space: return "out of space";
    case ErrorCode::too_many_groups: return "too many ()";
    case ErrorCode::unmatched_parens: return "unmatched ()";
    case ErrorCode::junk_on_end: return "junk on end";
    case ErrorCode::empty_operand: return "*+ operand could be empty";
    case ErrorCode::nested_repeat: return "nested *?+";
    case ErrorCode::invalid_range: return "invalid [] range";
    case ErrorCode::unmatched_bracket: return "unmatched []";
    case ErrorCode::repeat_follows_nothing: return "?+* follows nothing";
    case ErrorCode::trailing_backslash: return "trailing \\";
    case ErrorCode::internal_urp: return "internal urp";
    case ErrorCode::internal_disaster: return "internal disaster";
    case ErrorCode::null_parameter: return "NULL parameter";
    case ErrorCode::corrupted_program: return "corrupted program";
    case ErrorCode::memory_corruption: return "memory corruption";
    case ErrorCode::corrupted_pointers: return "corrupted pointers";
    case ErrorCode::internal_foulup: return "internal foulup";
    case ErrorCode::step_limit: return "step limit reached";
    case ErrorCode::null_substitution_argument: return "NULL parm to regsub";
    case ErrorCode::damaged_substitution_program: return "damaged regexp fed to regsub";
    case ErrorCode::damaged_match_string: return "damaged match string";
    }
    return "";
}

} // namespace tql::regex

using tql::regex::ErrorCode;

extern "C" {

tql_regexp* tql_regcomp(const char* pattern)
{
    const tql::regex::CompileResult result = tql::regex::compile(pattern);
    if (result.error != ErrorCode::none) {
        tql_regerror(tql::regex::error_message(result.error));
    }
    return result.compiled;
}

int tql_regexec(tql_regexp* compiled, const char* string)
{
    const tql::regex::MatchResult result = tql::regex::match(compiled, string);
    if (result.error != ErrorCode::none) {
        tql_regerror(tql::regex::error_message(result.error));
    }
    return result.matched ? 1 : 0;
}

void tql_regsub(const tql_regexp* compiled, const char* template_text, char* destination)
{
    const ErrorCode error = tql::regex::substitute(compiled, template_text, destination);
    if (error != ErrorCode::none) {
        tql_regerror(tql::regex::error_message(error));
    }
}

void tql_regerror(const char* message)
{
    std::fprintf(stderr, "\nFATAL ERROR: regexp(3): %s", message ? message : "");
    std::fflush(stderr);
    std::abort();
}

} // extern "C"
