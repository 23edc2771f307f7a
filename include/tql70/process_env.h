/* Process environment with the settings-store fallback, the version text,
 * and the library's quicksort. */
#ifndef TQL70_PROCESS_ENV_H
#define TQL70_PROCESS_ENV_H

#include <stddef.h>
#include "export.h"

TQL70_BEGIN_DECLS

/* The value of a process variable, or, when the process does not define
 * it, of the key of that name in the settings store; null when neither
 * has it. The UTF-8 text lives in one process-wide buffer that the next
 * call overwrites. */
TQL70_API char* tql_getenv(const char* name);

/* "7.0.0 2026-11-21" (version, fix level and build date) for an empty
 * prefix, "PREFIX (*) 7.0.0 2026-11-21" otherwise, in a process-wide
 * buffer that the next call overwrites. The prefix must not be null. */
TQL70_API char* kps_version_str(const char* prefix);

/* Sorts `count` elements of `size` bytes in place (Bentley-McIlroy
 * quicksort, not stable). `compare` gets two element addresses and
 * returns negative, zero or positive. */
TQL70_API void tql_qsort(void* base, size_t count, size_t size,
                         int (*compare)(const void*, const void*));

TQL70_END_DECLS

#ifdef __cplusplus
class QString;

/* Same as tql_getenv, with the name given as ASCII text and the value
 * delivered as a QString; true when found. */
TQL70_API bool getenv_and_registry_qt(const char* name, QString& value);
/* Same as getenv_and_registry_qt, with the name as a QString. */
TQL70_API bool getenv_and_registry_qt_2(const QString& name, QString& value);
#endif

#endif /* TQL70_PROCESS_ENV_H */
