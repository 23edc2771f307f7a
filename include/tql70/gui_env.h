/* Environments: named configuration variables in four levels (site,
 * custom, home, local), their lookup, change and removal, the expansion of
 * %NAME and $NAME references in strings, the error callback, and path
 * lists. */
#ifndef TQL70_GUI_ENV_H
#define TQL70_GUI_ENV_H

#include "export.h"

TQL70_BEGIN_DECLS

/* An environment handle (opaque). */
typedef struct GuiEnvStruct* GuiEnv;

/* Level selectors. GUI_ENV_ANY searches local, home, custom, site in that
 * order; GUI_ENV_FILE loads into the local level; GUI_ENV_USERDATA (put
 * only) stores the value argument itself as the entry's user pointer. */
#define GUI_ENV_ANY 0
#define GUI_ENV_LOCAL 1
#define GUI_ENV_HOME 2
#define GUI_ENV_CUSTOM 3
#define GUI_ENV_SITE 4
#define GUI_ENV_FILE 5
#define GUI_ENV_USERDATA 6

/* Entry states. */
#define ENV_CLEAN 0
#define ENV_MODIFIED 1
#define ENV_DELETED 2
#define ENV_INCLUDED 3

/* Error callback codes. */
#define GUI_ENV_ERR_NO_FILE 2
#define GUI_ENV_ERR_NO_SYSVAR 3
#define GUI_ENV_ERR_NO_VAR 4
#define GUI_ENV_ERR_WRITE 5
/* This library's additions: a file that exists but cannot be read (no read
 * permission, a directory, a FIFO or another file that is not regular); an
 * include that would read a file already being read, named as the chain
 * "a.cfg -> b.cfg -> a.cfg"; an include nested deeper than 64 files, named
 * by the file refused. Each include is skipped; the callback's result and
 * replacement are not used. */
#define GUI_ENV_ERR_READ 6
#define GUI_ENV_ERR_INCLUDE_CYCLE 7
#define GUI_ENV_ERR_INCLUDE_DEPTH 8

/* Variable names are cut to this many characters. */
#define GUI_ENV_NAME_MAX 63

/* Called as (code, configuration name, variable or file name, out). It may
 * set *out to a replacement string (it keeps ownership; the library copies
 * it before the callback runs again) and returns non-zero when the failure
 * is handled, 0 when the operation is to fail. */
typedef int (*GuiEnvErrorFn)(int code, const char* config_name, const char* name, char** out);

/* ---- the store ---- */

/* Looks `name` up at `level`. 0: found, the value copied into `buffer`
 * (when not null) and the user pointer stored through `user` (when not
 * null). -1: env or name null or empty, or not found and the error
 * callback supplied no replacement. Positive: the value does not fit in
 * `size` bytes; the size needed (length + 1) is returned and the buffer is
 * left untouched. A variable that has no value reads as "". */
TQL70_API int gui_env_get(GuiEnv env, const char* name, char* buffer, void** user, int size, int level);

/* gui_env_put_modnew with the state ENV_MODIFIED for a new entry. */
TQL70_API int gui_env_put(GuiEnv env, const char* name, const char* value, int level);

/* Sets `name` to a copy of `value` (a deleted entry is revived). A new entry
 * goes to the site (4), custom (3) or home (2) level, else to the local
 * level, in state `state`; an existing one becomes ENV_MODIFIED unless it
 * came from an included file (ENV_INCLUDED stays, so such a change is
 * never written back). A null value empties an existing entry and creates
 * nothing. 1 on success, 0 on failure. */
TQL70_API int gui_env_put_modnew(GuiEnv env, const char* name, const char* value, int level, int state);

/* Marks `name` deleted (its slot stays, so a later put revives it). 1 when
 * an entry was marked, else 0. */
TQL70_API int gui_env_rm(GuiEnv env, const char* name, int level);

/* 1 unless gui_env_get finds nothing (a value too long for a 100-byte
 * scratch buffer still exists). */
TQL70_API int gui_env_exists(GuiEnv env, const char* name, int level);

/* Expands $NAME (process variable), %NAME (configuration variable, looked
 * up in env, then in each further environment of the null-terminated list,
 * then in the default environment), {$NAME} and {%NAME} in `source` into
 * `destination`, pass after pass until a pass finds no reference. 0 on
 * success; -1 when a pass produces nothing; otherwise the size needed
 * (length + 1), with "" in the destination. `destination` may be `source`.
 * Variables that refer to each other expand for ever. */
TQL70_API int gui_env_expand_str(char* destination, const char* source, int size, GuiEnv env, ...);

/* Same as gui_env_expand_str recognising only $NAME and {$NAME}; '%' is an
 * ordinary character. The list after env ends with a null pointer. */
TQL70_API int gui_env_expand_str_system_only(char* destination, const char* source, int size, GuiEnv env, ...);

/* gui_env_get, then, when found, gui_env_expand_str(buffer, buffer, size,
 * env, null). Returns the get result when non-zero, else the expansion's. */
TQL70_API int gui_env_get_and_expand(GuiEnv env, const char* name, char* buffer, void** user, int size, int level);

/* ---- the error callback ---- */

/* Installs `fn` (null removes the callback); returns the previous one. */
TQL70_API GuiEnvErrorFn gui_env_set_error(GuiEnvErrorFn fn);

/* Calls the callback with the configuration name of `env` (the file name
 * of its most specific level that has one, without directory, one leading
 * '.' and everything from the first '.' on). *out is cleared first. 0 when
 * no callback is installed, else the callback's result. */
TQL70_API int gui_env_apply_env_error(int code, GuiEnv env, const char* name, char** out);

/* Calls the callback with the arguments as given (*out cleared first); 0
 * when no callback is installed. */
TQL70_API int gui_env_apply_error(int code, const char* config_name, const char* name, char** out);

/* ---- the default environment and open environments ---- */

/* Makes the default environment from the "zqtarvex" files if there is
 * none: the site file (root "\config\zqtarvex.cfg") and its add-on files,
 * the custom file, the home file and the local file "zqtarvex.cfg". 1 on
 * success, 0 when the handle cannot be allocated. */
TQL70_API int gui_env_init(void);

/* A new environment for the configuration `name` (all levels for level 0,
 * one level's file for 1 to 4, the file `name` itself for 5, nothing for
 * other levels), appended to the open environments; the default one is
 * made first if there is none. Null when name is null or empty or memory
 * is short. */
TQL70_API GuiEnv gui_env_open(const char* name, int level);

/* With `save`, writes the changed levels back (site, custom, home, local);
 * then takes `env` out of the open environments and frees it. 1 when every
 * level was written back or nothing needed writing; a null env gives 1.
 * Closing the default environment makes the next default-environment call
 * build a new one. A level is rewritten through a temporary file beside it
 * that replaces it in one step, under an advisory lock, from the file as it
 * is then: a failed write, or a file that cannot be read or written or is
 * not a regular file, leaves the file as it was and tells the error
 * callback (GUI_ENV_ERR_WRITE, with the native path). */
TQL70_API int gui_env_close(GuiEnv env, int save);

/* Closes every open environment, the default one last. 1 when all closes
 * succeeded. The next default-environment call makes a new default. */
TQL70_API int gui_env_deinit(int save);

/* The installation root used for the site and custom files instead of
 * ZQTARVEX_DIR; null or "" clears it. The getter gives null when unset. */
TQL70_API void guienv_set_root_directory(const char* path);
TQL70_API const char* guienv_get_root_directory(void);

/* Writes back (with `save`) and frees the local level of every open
 * environment, enters `directory` (one pair of double quotes removed, a
 * trailing ':' given a '\\', "/tmp_mnt" dropped when entering fails), and
 * reads each local level again from its file there. 0, or -1 when the
 * directory cannot be entered or a write failed. */
TQL70_API int gui_chdir(const char* directory, int save);

/* Kept for callers that expect them: 1, and two calls that do nothing. */
TQL70_API int gui_env_getrlimit(void);
TQL70_API void gui_env_setrlimit(void);
TQL70_API void gui_env_setrlimit_max(void);

/* gui_env_get, gui_env_get_and_expand, gui_env_put and gui_env_rm on the
 * default environment, made first if there is none. */
TQL70_API int gui_env_get_ee(const char* name, char* buffer, void** user, int size, int level);
TQL70_API int gui_env_get_ee_and_expand(const char* name, char* buffer, void** user, int size, int level);
TQL70_API int gui_env_put_ee(const char* name, const char* value, int level);
TQL70_API int gui_env_rm_ee(const char* name, int level);

/* The web browser program as a new string (free with gmem_ee_free): the
 * expanded WEB_BROWSER of the "de_sim" configuration when it names an
 * existing file; else the first entry of BROWSER (':'-separated) that is an
 * existing file or a program on PATH; else the first of xdg-open,
 * x-www-browser and sensible-browser on PATH; else "". */
TQL70_API char* gui_env_getwebbrowser(void);

/* ---- process variables and path lists ---- */

/* The process variable `name` (tql_getenv), or the replacement the error
 * callback gives for GUI_ENV_ERR_NO_SYSVAR, or null. The first argument is
 * ignored. The text is valid until the next process-variable lookup. */
TQL70_API char* gui_env_get_sys(GuiEnv ignored, const char* name);

/* Delivers the elements of a path list (separated by ';' or ':', a drive
 * "C:\" or "C:/" kept whole) one per call: a non-null list starts a new
 * iteration, null continues it. 0 when an element was written; the size
 * needed when it does not fit (the same element comes again on the next
 * call); -1 for a null destination or when memory is short; -2 at the end.
 * With `expand` set the element is expanded as by gui_env_expand_str with
 * env and the further environments (null-terminated). */
TQL70_API int gui_env_extract_path(char* destination, const char* list, int expand, int size, GuiEnv env, ...);

/* The next element of a path list, in a library buffer overwritten by the
 * next call; null at the end. A non-null list starts a new iteration and
 * must stay alive until it ends. */
TQL70_API char* gui_env_get_tok(const char* list);

TQL70_END_DECLS

#endif /* TQL70_GUI_ENV_H */
