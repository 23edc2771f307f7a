/* dbug: function entry and exit tracing, keyword-selected debug output,
 * a per-function profile, and assertions.
 *
 * Use in a function:
 *     int f(int x) { DBUG_ENTER("f"); DBUG_PRINT("info", ("x=%d", x)); DBUG_RETURN(x + 1); }
 * Every function that says DBUG_ENTER leaves through DBUG_RETURN or
 * DBUG_VOID_RETURN. With TQL70_DBUG_OFF defined the macros compile to
 * nothing (the returns to plain returns).
 *
 * Tracing is switched on by a control string (DBUG_PUSH, or the process
 * variable ZQTARVEX_DBUG, pushed at the first use of any macro); see
 * docs/tracing.md.
 * While nothing is pushed, a traced function costs one load and one test
 * at entry and at return. */
#ifndef TQL70_DBUG_H
#define TQL70_DBUG_H

#include "export.h"

TQL70_BEGIN_DECLS

/* What DBUG_ENTER keeps on the caller's stack for its DBUG_RETURN. */
struct _db_frame_ {
    const char* function;
    const char* file;
    int entered; /* _db_enter_ ran for it */
    long long start_ns;
};

/* Non-zero while some control string is pushed (and before the first use,
 * which reads ZQTARVEX_DBUG). */
TQL70_API extern int _db_on_;

/* Makes `control` the current settings, keeping the previous ones. */
TQL70_API void _db_push_(const char* control);
/* Restores the settings before the last push; writes the profile file
 * when the popped settings asked for one. */
TQL70_API void _db_pop_(void);
TQL70_API void _db_enter_(const char* function, const char* file, int line, struct _db_frame_* frame);
TQL70_API void _db_return_(int line, struct _db_frame_* frame);
/* Non-zero when debug output of `keyword` is on for the current function. */
TQL70_API int _db_keyword_(const char* keyword);
/* Records the line and keyword of the following _db_doprnt_. */
TQL70_API void _db_pargs_(int line, const char* keyword);
/* Writes one debug line (printf format). */
TQL70_API void _db_doprnt_(const char* format, ...);
/* Prints "%s %s(%d): assertion '%s' failed\n" (process name, file, line,
 * expression) to standard error and aborts. */
TQL70_API void _db_assert_(const char* file, int line, const char* expression);

TQL70_END_DECLS

#ifdef TQL70_DBUG_OFF
#define DBUG_ENTER(name)
#define DBUG_RETURN(value) return (value)
#define DBUG_VOID_RETURN return
#define DBUG_PRINT(keyword, arglist)
#define DBUG_PUSH(control)
#define DBUG_POP()
#define DBUG_ASSERT(expression)
#else
#define DBUG_ENTER(name)                                   \
    struct _db_frame_ _db_here_ = {0, 0, 0, 0};            \
    if (_db_on_) {                                         \
        _db_enter_((name), __FILE__, __LINE__, &_db_here_); \
    }
#define DBUG_RETURN(value)                       \
    do {                                         \
        if (_db_here_.entered) {                 \
            _db_return_(__LINE__, &_db_here_);   \
        }                                        \
        return (value);                          \
    } while (0)
#define DBUG_VOID_RETURN                         \
    do {                                         \
        if (_db_here_.entered) {                 \
            _db_return_(__LINE__, &_db_here_);   \
        }                                        \
        return;                                  \
    } while (0)
#define DBUG_PRINT(keyword, arglist)                      \
    do {                                                  \
        if (_db_on_ && _db_keyword_(keyword)) {           \
            _db_pargs_(__LINE__, (keyword));              \
            _db_doprnt_ arglist;                          \
        }                                                 \
    } while (0)
#define DBUG_PUSH(control) _db_push_(control)
#define DBUG_POP() _db_pop_()
#define DBUG_ASSERT(expression)                              \
    do {                                                     \
        if (!(expression)) {                                 \
            _db_assert_(__FILE__, __LINE__, #expression);    \
        }                                                    \
    } while (0)
#endif

#endif /* TQL70_DBUG_H */
