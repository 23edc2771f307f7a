// The regular-expression engine behind tql_regex.h, reporting every failure
// as a value (an error code with its fixed message) so that callers other
// than the exported layer (tests, the fuzzer, the tql tool) can go on after
// a bad pattern. The exported functions turn a failure into tql_regerror.
#ifndef TQL70_REGEX_REGEX_ENGINE_H
#define TQL70_REGEX_REGEX_ENGINE_H

#include <tql70/tql_regex.h>

#include <cstddef>
#include <cstdint>

namespace tql::regex {

enum class ErrorCode {
    none,
    // Compilation.
    null_argument,
    too_big,
    out_of_space,
    too_many_groups,
    unmatched_parens,
    junk_on_end,
    empty_operand,
    nested_repeat,
    invalid_range,
    unmatched_bracket,
    repeat_follows_nothing,
    trailing_backslash,
    internal_urp,
    internal_disaster,
    // Matching.
    null_parameter,
    corrupted_program,
    memory_corruption,
    corrupted_pointers,
    internal_foulup,
    step_limit, // only with a step limit; never reaches the exported layer
    // Substitution.
    null_substitution_argument,
    damaged_substitution_program,
    damaged_match_string,
};

// The fixed message of `code` ("" for none).
const char* error_message(ErrorCode code);

struct CompileResult {
    tql_regexp* compiled = nullptr; // malloc'd block, or null on error
    ErrorCode error = ErrorCode::none;
};

CompileResult compile(const char* pattern);

struct MatchResult {
    bool matched = false;
    ErrorCode error = ErrorCode::none;
};

// Matches `compiled` against `string`. A non-zero `step_limit` stops the
// backtracking after that many node steps with ErrorCode::step_limit.
MatchResult match(tql_regexp* compiled, const char* string, std::uint64_t step_limit = 0);

// Writes the substitution of `template_text` into `destination`.
ErrorCode substitute(const tql_regexp* compiled, const char* template_text, char* destination);

// The bytes (NUL included) that substitute would write, in `*size`.
ErrorCode substitution_size(const tql_regexp* compiled, const char* template_text, std::size_t* size);

} // namespace tql::regex

#endif
