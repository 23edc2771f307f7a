/* Numbered library error codes (GuiErrno) with the saved system error,
 * their message texts, and the debug banner. */
#ifndef TQL70_GERROR_H
#define TQL70_GERROR_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Library error code of the environment, catalogue and file functions. */
TQL70_API extern int GuiErrno;

TQL70_API int gerror_get_error(void);
/* Sets GuiErrno; returns `code`. */
TQL70_API int gerror_set_error(int code);
TQL70_API int gerror_get_system_error(void);
/* Sets the saved system error; returns `code`. */
TQL70_API int gerror_set_system_error(int code);
/* Writes both codes; returns the system error. */
TQL70_API int gerror_get_all_errors(int* gui, int* sys);
TQL70_API void gerror_set_all_errors(int gui, int sys);

/* The text of GuiErrno. A code is looked up only when it lies in 1..124
 * (the historical range check), so code 0 gives "GuiErrno out of range",
 * as does every code without an entry. */
TQL70_API const char* gerror_get_error_message(void);

/* The C library's text for the saved system error when the C library
 * knows the code, else "system errno out of range". */
TQL70_API const char* gerror_get_system_error_message(void);

/* Prints the GuiErrno text and a line feed to stderr; returns the number
 * of characters printed. */
TQL70_API int gerror_display_error_message(void);

/* Prints "lib : sys\n", "lib\n", "sys\n" or nothing to stderr, by which of
 * the two codes are valid; returns the number of characters printed. */
TQL70_API int gerror_display_all_error_messages(void);

/* When ZQTARVEX_DEBUG_MODE is "error" or "all" (checked until it is first
 * found so, then remembered for the life of the process), prints
 * "\n? Error at line %d of file %s\n" and all error messages to stderr and
 * returns 1; otherwise prints nothing and returns 0. */
TQL70_API int gerror_display_debug_info(const char* file, int line);

/* 1 when `variable` is defined (process environment or settings store) and
 * its value equals one of the further strings exactly; the list ends with
 * a null pointer. */
TQL70_API int is_debug_mode_active_for(const char* variable, ...);

TQL70_END_DECLS

#endif /* TQL70_GERROR_H */
