/* Name validation and repair, the current configuration with string value
 * lookups, and the astr_ string helpers.
 *
 * Strings returned as new are allocated with gmem_ee_malloc and freed by
 * the caller with gmem_ee_free. Allocation failures are not returned: they
 * end the process through aerr_memory_error. */
#ifndef TQL70_ASTR_H
#define TQL70_ASTR_H

#include "export.h"

/* Name kinds (the `kind` argument of the validation functions). A kind
 * with none of these bits names a component. */
#define ASTR_KIND_COMPONENT 0x0
#define ASTR_KIND_IDENTIFIER 0x1 /* no leading digit */
#define ASTR_KIND_NODE 0x2
#define ASTR_KIND_DESIGN 0x40
#define ASTR_KIND_INDEXED 0x80 /* identifier with an index suffix "(1,2)" */
#define ASTR_KIND_WORKSPACE 0x100

/* Scopes of the astr_ environment functions. Any value other than the
 * first three means all levels (local, home, custom, site). */
#define ASTR_SCOPE_LOCAL 0
#define ASTR_SCOPE_HOME 1
#define ASTR_SCOPE_SITE 2
#define ASTR_SCOPE_ALL 3

TQL70_BEGIN_DECLS

/* ---- names ---- */

/* Null when `name` is a valid name of `kind` (or is null); otherwise a
 * message naming the first illegal character, for example
 * "`1' illegal: valid characters are alphanumeric or _ with non-numeric
 * first character". The message lives in a process-wide buffer that the
 * next call overwrites. '.' is legal only with `allow_dot`. With
 * ASTR_KIND_INDEXED a "(" starts an index suffix: digits separated by ','
 * and closed by a ')' that ends the name; a name that ends inside the
 * suffix is valid. */
TQL70_API const char* astr_kps_valid_name(const char* name, int kind, int allow_dot);

/* Copies `name` into `output` (strlen(name) + 1 bytes; it may be `name`)
 * with every character that is illegal for `kind` replaced by
 * `replacement`, and returns 1; 0 for a null name.
 * Deliberate differences from astr_kps_valid_name: an identifier (or
 * indexed) name that begins with a digit is copied unchanged; in design
 * names '$' and '%' are reported illegal but are kept; an invalid index
 * suffix is kept up to and including its offending character. With a null
 * `output` the repair is made in a scratch copy that is freed again, so
 * only the result tells anything. */
TQL70_API int astr_kps_get_valid_name(const char* name, int kind, int allow_dot, char replacement, char* output);

/* A pointer to the first special character of `name` (a leading digit, or
 * any character outside letters, digits, '_' and bytes of 128 and above;
 * '.' counts only without `allow_dot`), or null when there is none. */
TQL70_API const char* astr_kps_spl_name(const char* name, int allow_dot);

/* ---- the current configuration ---- */

/* Closes the current configuration's environment (writing changes back),
 * then makes `name` the current configuration and opens its environment
 * at all levels. A null or empty name only forgets the current one.
 * Returns 1 when an environment is open for the new name, else 0. */
TQL70_API int astr_set_environment(const char* name);

/* Closes the current environment, writing changes back; the name stays
 * current (value lookups find nothing until astr_set_environment). The
 * result of gui_env_close, or 0 when none was open. */
TQL70_API int astr_close_environment(void);

/* A new expanded copy of `variable` from the current environment (all
 * levels); null without a current environment, when the variable is not
 * found, or when its expansion yields nothing. */
TQL70_API char* astr_environment_value(const char* variable);

/* The expanded value of `variable` from the current environment in
 * `buffer`. 1 when the variable exists, even when the value does not fit
 * (the buffer then holds nothing useful); 0 without a current environment
 * or when it is not found. A null buffer only tests for the variable. */
TQL70_API int astr_environment_string(const char* variable, char* buffer, int size);

/* 1 when `variable` exists at `scope` of configuration `config`. The
 * current environment is used when `config` is the current name; any other
 * configuration is opened for the call and closed without saving. */
TQL70_API int astr_environment_var_exists(const char* config, const char* variable, int scope);

/* As astr_environment_value, for configuration `config` at `scope`. */
TQL70_API char* astr_get_environment_value(const char* config, const char* variable, int scope);

/* Sets `variable` to `value` at `scope` of configuration `config` (a new
 * variable goes to the local level for ASTR_SCOPE_LOCAL and ASTR_SCOPE_ALL).
 * With `save` the change is written to the configuration file at once;
 * for the current configuration its environment is then opened again.
 * 1 when the value was set and, with `save`, written; else 0. */
TQL70_API int astr_set_environment_value(const char* config, const char* variable, const char* value, int scope, int save);

/* A new string var("name"); null for a null name. */
TQL70_API char* astr_add_var_fn(const char* name);

/* The name inside a text of the exact form var("name"), as a new string;
 * null when the text has another form. */
TQL70_API char* astr_delete_var_fn(const char* text);

/* ---- string helpers ---- */

/* A new copy of `text`; null for null. */
TQL70_API char* astr_new_string(const char* text);

/* 1 when both are non-null and equal with ASCII letters compared without
 * case (other bytes compared exactly). */
TQL70_API int astr_strings_equal(const char* a, const char* b);

/* 1 when both are non-null and `text` ends with `tail`. */
TQL70_API int astr_str_matches_at_tail(const char* text, const char* tail);

/* Turns every '/' of `path` into '\' in place, then returns a pointer just
 * after its last '\' (the path itself when it has none); null for null. */
TQL70_API char* astr_get_leaf_name(char* path);

/* Turns every '/' of `path` into '\' in place, then returns a new copy of
 * the part before the last '\'; null when there is no '\' or the only
 * directory part is the leading one ("\name"). */
TQL70_API char* astr_get_path_name(char* path);

/* Turns every '/' of `path` into '\' in place and cuts its leaf name at the
 * first '.'; 1, or 0 for null. */
TQL70_API int astr_remove_extent(char* path);

/* Copies the first line of `text` (up to its line feed, without it) into
 * `line` and returns a pointer to the start of the next line; null when the
 * text ended without a line feed. At most `max` characters are kept
 * (`line` needs max + 1 bytes): of a longer line the character after them
 * is skipped and the returned pointer is the one after it, where the rest
 * of the line continues. A negative `max` writes nothing and gives null. */
TQL70_API const char* astr_extract_line_from_multilines(const char* text, char* line, int max);

/* A new identifier made from a data set name: '_' in front of a leading
 * digit, then every character illegal in an identifier (dots included)
 * replaced by '_'. Null for null. */
TQL70_API char* astr_translate_kps_dataset_name(const char* name);

/* 1 when `path` names an existing file that can be opened for reading. */
TQL70_API int astr_config_file_is_readable(const char* path);

TQL70_END_DECLS

#endif /* TQL70_ASTR_H */
