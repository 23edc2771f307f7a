/* Coded error, warning and message reports (module tag, number, fixed
 * message and printf-style text), their hooks, and the fatal exits. */
#ifndef TQL70_AERR_H
#define TQL70_AERR_H

#include "export.h"
#include "error.h"

TQL70_BEGIN_DECLS

/* Called before a fatal exit (aerr_fatal_error, aerr_memory_error). */
typedef void (*AerrExitFunction)(void);

/* Formatted report texts are cut at this many characters. */
#define AERR_MAX_TEXT 4095

/* Makes a coded error pending: module and message are kept as pointers
 * (they must outlive the error: string literals in practice); the text is
 * formatted from `format` (empty when null). Returns 1. */
TQL70_API int aerr_set(const char* module, int code, const char* message, const char* format, ...);

/* aerr_set followed by report_pending_error. */
TQL70_API void aerr_process_error(const char* module, int code, const char* message, const char* format, ...);

/* Returns 0 and writes nothing when no error is pending; else writes the
 * module, the code and a pointer to the pending text (valid until the
 * pending error changes) and returns 1. */
TQL70_API int aerr_get(const char** module, int* code, const char** text);

/* Reports the pending error; 0 when none was pending, else 1. */
TQL70_API int aerr_report(void);

/* Routes a coded warning to the legacy warning hook, else the current
 * handler, else prints "WARNING %6s%04d[ text]: message\n". Returns the
 * hook's non-zero result, or the result of the last print. */
TQL70_API int aerr_process_warning(const char* module, int code, const char* message, const char* format, ...);

/* Hands a coded message to the global message function, else prints
 * "INFO    %6s%04d[ text]: message\n". Handlers are never asked. Returns
 * the function's non-zero result, or the result of the last print. */
TQL70_API int aerr_process_message(const char* module, int code, const char* message, const char* format, ...);

/* Prints "FATAL ERROR: in %s, line %d\n", runs the exit function and ends
 * the process with status 1. */
TQL70_API void aerr_fatal_error(const char* file, int line);

/* Prints "FATAL ERROR: out of memory\n", runs the exit function and ends
 * the process with status 1. */
TQL70_API void aerr_memory_error(void);

/* The legacy error and warning hooks of the current handler, or the global
 * ones when no handler is installed. The setters return `fn`. */
TQL70_API LegacyReportFunction aerr_set_error_function(LegacyReportFunction fn);
TQL70_API LegacyReportFunction aerr_get_error_function(void);
TQL70_API LegacyReportFunction aerr_set_warning_function(LegacyReportFunction fn);
TQL70_API LegacyReportFunction aerr_get_warning_function(void);

/* The global message function and exit function. The setters return `fn`. */
TQL70_API LegacyReportFunction aerr_set_message_function(LegacyReportFunction fn);
TQL70_API LegacyReportFunction aerr_get_message_function(void);
TQL70_API AerrExitFunction aerr_set_exit_function(AerrExitFunction fn);

TQL70_END_DECLS

#endif /* TQL70_AERR_H */
