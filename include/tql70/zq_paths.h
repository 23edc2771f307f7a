/* Path utilities: canonical forms, comparison, search along path lists,
 * quoting of command-line words. Names are accepted with either separator;
 * names the library builds use '\'. Strings returned as new are allocated
 * with gmem_ee_malloc and freed with gmem_ee_free. */
#ifndef TQL70_ZQ_PATHS_H
#define TQL70_ZQ_PATHS_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Rewrites `path` in place: every run of separators (and "\.\" steps)
 * becomes one '\', a leading pair of backslashes (UNC) is kept, trailing
 * separators are removed. ".." is not resolved and a final "\." stays.
 * Null is ignored. */
TQL70_API void ZQ_fixup_path(char* path);

/* The absolute canonical form of `path` (relative names are joined to the
 * current directory) written into `out`, a buffer of TQL70_PATH_BUFFER_SIZE
 * bytes; returns `out`, or null when `path` or `out` is null, `path`
 * reduces to nothing ("./") or the result does not fit, leaving `out`
 * untouched. */
TQL70_API char* ZQ_canonical_path(const char* path, char* out);

/* As ZQ_canonical_path, with the directory part replaced by its canonical
 * directory name, in TQL70_PATH_BUFFER_SIZE bytes: longer paths give null. */
TQL70_API char* ZQ_canonical_path_force(const char* path, char* out);

/* The true absolute name of an existing directory (symbolic links resolved,
 * the case of each component as on disk), as a new string; the caller's
 * name when it cannot be entered; null when memory is short. Answers are
 * cached for the life of the process under the caller's name (matched
 * without regard to case). The current directory is changed for the
 * duration of the lookup. */
TQL70_API char* ZQ_get_canonical_directory_name(const char* dir);

/* 1 when the canonical forms of `a` and `b` are equal ignoring ASCII case;
 * with `first_is_file`, `a` is first cut at its last separator (does file
 * `a` lie directly in directory `b`?). */
TQL70_API int ZQ_paths_are_same(const char* a, const char* b, int first_is_file);

/* 1 when `a` and `b` are equal ignoring case after '/' becomes '\' and one
 * trailing separator is removed. */
TQL70_API int gdir_compare_paths(const char* a, const char* b);

/* 1 when `path` starts with '/', '\' or a drive ("C:foo" counts); 0 for
 * null. */
TQL70_API int ZQ_path_is_absolute(const char* path);

/* A pointer into `file` past its last '/' or '\' (no copy); `file` itself
 * without a separator; null for null. */
TQL70_API const char* ZQ_get_basename_from_file(const char* file);

/* The canonical form of the directory part of `file` in `out`, a buffer of
 * TQL70_PATH_BUFFER_SIZE bytes ("." when there is none, giving the current
 * directory followed by "\."). `out` is "" when the directory reduces to
 * nothing or does not fit. Returns `out` (null for a null out). */
TQL70_API char* ZQ_get_directory_from_file(const char* file, char* out);

/* The first existing candidate for `name`: an absolute name as it is, a
 * relative one in each directory of `path_list` (';' or ':' separated,
 * null means "."). Files that are symbolic links are not accepted;
 * directories are when `accept_dirs` is set. A new string, or null. Uses
 * the gui_env_get_tok iteration. */
TQL70_API char* ZQ_find_file(const char* name, const char* path_list, int accept_dirs);

/* `arg` as one double-quoted command-line word, with '"' and '\' escaped
 * by a backslash, in a process-wide buffer overwritten by the next call;
 * null when the buffer cannot grow. */
TQL70_API char* ZQ_quote_argument(const char* arg);

/* A new copy of ZQ_quote_argument(arg); for null, a copy of "\"\"". */
TQL70_API char* ZQ_quote_argument_copy(const char* arg);

/* A new copy of `s` (gmem_ee_malloc; free with gmem_ee_free); null gives a
 * new empty string. Null only when the allocation fails. */
TQL70_API char* ZQ_stringcopy(const char* s);

/* Lower-cases ASCII letters of `s` in place; returns `s` (null for null). */
TQL70_API char* ZQ_strlwr(char* s);

/* Every '/' of `name` becomes '\', in place; returns `name`. */
TQL70_API char* convertFileName(char* name);

TQL70_END_DECLS

#endif /* TQL70_ZQ_PATHS_H */
