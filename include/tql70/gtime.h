/* Time and process utilities: the emergency memory reserve that an
 * application releases when an allocation fails. */
#ifndef TQL70_GTIME_H
#define TQL70_GTIME_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Called with the size of the released reserve and the caller's argument
 * when memory runs out; its result is gui_stdlib_recover's. */
typedef int (*RecoveryCallback)(unsigned int size, int argument);

/* Exchanges the recovery setting: when given, *size and *callback receive
 * the current values and their new values are installed. The old reserve
 * is freed when a callback was installed; a new reserve of the new size is
 * held when both new values are non-zero. 1 on success; 0 when the new
 * reserve cannot be had (the old setting stays in force, with its reserve
 * made again when possible). Calling it with both values 0 releases the
 * reserve; calling it again with the values it handed back restores it. */
TQL70_API int zqtarvex_mem_recover_func(RecoveryCallback* callback, unsigned int* size);

/* For an application whose allocation failed: 1 when no callback is
 * installed; otherwise frees the reserve and returns callback(size of the
 * reserve freed, or 0, argument). */
TQL70_API int gui_stdlib_recover(int argument);

TQL70_END_DECLS

#endif /* TQL70_GTIME_H */
