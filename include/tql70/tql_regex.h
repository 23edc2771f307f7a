/* Regular expressions: a pattern compiled once into a compact node program,
 * matched against NUL-terminated strings, and the matched parts substituted
 * into a template. Every misuse is fatal: tql_regerror prints one line and
 * aborts the process. The compiler and the matcher keep no state between
 * calls apart from the record a caller passes, but one record must not be
 * used by two threads at once (matching writes its start and end pointers).
 *
 * Syntax: `^` and `$` (start and end of the string), `.` (any character),
 * bracket sets with ranges and a leading `^` for negation (a closing
 * bracket or `-` first is literal, `\` inside a set is literal), `(` `)`
 * groups, `|` alternatives, `*`, `+`, `?` on the preceding item, `\` takes
 * the next character literally. Bytes are characters. */
#ifndef TQL70_TQL_REGEX_H
#define TQL70_TQL_REGEX_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Start and end pointers per record: the whole match and groups 1 to 9. */
#define TQL_NSUBEXP 10
/* The first byte of every compiled program. */
#define TQL_REGEXP_MAGIC 0234

/* A compiled expression: one block allocated by tql_regcomp, released with
 * the standard free. */
typedef struct tql_regexp {
    char* startp[TQL_NSUBEXP]; /* starts in the last matched string, or null */
    char* endp[TQL_NSUBEXP];   /* one past the ends, or null */
    char regstart;             /* character every match begins with, or 0 */
    char reganch;              /* 1 when the pattern begins with `^` */
    char* regmust;             /* literal every match contains (in program), or null */
    int regmlen;               /* length of regmust */
    char program[1];           /* TQL_REGEXP_MAGIC, then the nodes */
} tql_regexp;

#if defined(__GNUC__) || defined(__clang__)
#  define TQL70_NORETURN __attribute__((noreturn))
#else
#  define TQL70_NORETURN
#endif

/* Compiles `pattern`. Never returns null: a null or malformed pattern, a
 * program of 32767 bytes or more and a tenth group are fatal. */
TQL70_API tql_regexp* tql_regcomp(const char* pattern);

/* 1 when `compiled` matches somewhere in `string` (leftmost start; at each
 * start the first way the backtracking finds), with startp/endp pointing
 * into `string`; 0 otherwise. Null arguments and a damaged program are
 * fatal. */
TQL70_API int tql_regexec(tql_regexp* compiled, const char* string);

/* Writes `template_text` into `destination` with `&` and `\0` replaced by
 * the whole match and `\1` to `\9` by the groups of the last tql_regexec
 * (an unset group gives nothing), `\\` and `\&` by the plain character; any
 * other `\` is copied. The size is not checked: `destination` must hold
 * strlen(template_text) + 1 bytes plus, for each reference, the length of
 * the text it names; (strlen(template_text) + 1) * (strlen(matched string)
 * + 1) bytes always suffice. Null arguments, a damaged program and a
 * matched string changed since the match are fatal. */
TQL70_API void tql_regsub(const tql_regexp* compiled, const char* template_text, char* destination);

/* Prints "\nFATAL ERROR: regexp(3): MESSAGE" to stderr (null prints as
 * ""), flushes it and aborts the process. */
TQL70_API TQL70_NORETURN void tql_regerror(const char* message);

TQL70_END_DECLS

#endif /* TQL70_TQL_REGEX_H */
