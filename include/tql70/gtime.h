/* Time and process utilities: the interval timer and date helpers, the
 * login name, a sleep in seconds, and the emergency memory reserve that an
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

/* Always 0. */
TQL70_API int gtime_clock(void);
/* Does nothing. */
TQL70_API void gtime_eewait(void);
/* The interval timer, on a monotonic clock with millisecond resolution (a
 * change of the wall clock does not move it, so intervals never go
 * negative). With `reset` non-zero: restarts the interval and returns 0;
 * with 0: the seconds since the last restart (before the first one, since
 * an unspecified moment in the past). */
TQL70_API float gtime_eetime_interval(int reset);
/* Writes the local date and time in ctime's 24-character form, without a
 * line feed ("Wed Jun 30 21:49:08 1993"), into `buffer`, which must hold
 * at least 26 bytes (never more are written). 1; 0 for a null buffer. */
TQL70_API int gtime_eewhen(char* buffer);
/* A running day count: the local day of the year (1-based) plus the whole
 * number of 365.25-day years since 1970. */
TQL70_API int gtime_jdays(void);
/* A new 1024-byte zero-filled string (free it with gmem_ee_free) holding
 * the login name, else the account name of the effective user; empty when
 * neither is known (or null only when the 1024 bytes cannot be had). */
TQL70_API char* tql_getlogin(void);
/* Suspends the calling thread for `seconds` seconds, resuming after
 * signals until the whole time has passed; 0. */
TQL70_API int tql_sleep(unsigned int seconds);

TQL70_END_DECLS

#endif /* TQL70_GTIME_H */
