/* The gprj family: project directories, a directory holding a fixed set of
 * sub-directories and a configuration file that carries the project's
 * format version ("PROJECT_VERSION=1000"). Every failure returns 0 and
 * leaves its code in GprjErrorNo; gprj_errstr gives its text. Call
 * gprj_init first. */
#ifndef TQL70_GPRJ_H
#define TQL70_GPRJ_H

#include "export.h"

TQL70_BEGIN_DECLS

/* The code of the last failure (never reset to 0 by these functions). */
TQL70_API extern int GprjErrorNo;

/* Accepts a project of another version: called as (current version,
 * version found, project directory); non-zero accepts. */
typedef int (*GprjVersionFn)(const char* current, const char* found, const char* directory);

/* Size of the version buffer of gprj_is_project and gprj_open, NUL
 * included (a version is one configuration line of at most 1023
 * characters). */
#define GPRJ_VERSION_SIZE 1024
/* Sub-directories a project may name, and the bytes of each full path. */
#define GPRJ_MAX_SUBDIRS 10
#define GPRJ_SUBDIR_PATH_SIZE 256

/* Names the configuration file of every project (`cfg_name` followed by
 * ".cfg" in the project directory) and keeps `callback` unless it is null
 * (an earlier one then stays). 0 for a null name. */
TQL70_API int gprj_init(const char* cfg_name, GprjVersionFn callback);
/* Creates the project `dir`: its sub-directories (`subdirs`, names
 * separated by ";"; null or "": data, networks, synthesis, verification),
 * the copies listed in `copy_list` ("source,destination;..." with the
 * destination relative to the project; its '/' are turned into '\' in
 * place) and the configuration file. An existing `dir` fails (code 12)
 * unless `overwrite` is 1, which removes it first. Nothing is rolled back:
 * the code tells the step that failed. */
TQL70_API int gprj_create(const char* dir, const char* subdirs, char* copy_list, int overwrite);
/* Copies the directory `src` to `dst`; an existing `dst` fails (code 16)
 * unless `overwrite` is 1, which removes it first. */
TQL70_API int gprj_copy(const char* src, const char* dst, int overwrite);
/* Removes the directory `dir` and everything below it. */
TQL70_API int gprj_delete(const char* dir);
/* 1 when `dir` holds "data" and "networks" and its configuration names the
 * current version, or the version callback accepts the version it names.
 * The version found goes into `version` (GPRJ_VERSION_SIZE bytes; "" when
 * none was read). */
TQL70_API int gprj_is_project(const char* dir, char* version);
/* Same as gprj_is_project. */
TQL70_API int gprj_open(const char* dir, char* version);
/* The text of a GprjErrorNo code (0 to 21), or null. */
TQL70_API const char* gprj_errstr(int code);

TQL70_END_DECLS

#endif /* TQL70_GPRJ_H */
