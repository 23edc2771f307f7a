/* Parsing and conversion: string helpers (fixed-width copies, clean-up,
 * case changes and comparisons). */
#ifndef TQL70_GPARSE_H
#define TQL70_GPARSE_H

#include "export.h"

TQL70_BEGIN_DECLS

/* 0 when `a` and `b` are equal ignoring case; otherwise toupper(a[i]) -
 * toupper(b[i]) at the first difference, with each character taken as a
 * signed char (bytes of 128 and above are negative and unchanged). Null
 * counts as "". */
TQL70_API int gparse_stricmp(const char* a, const char* b);

TQL70_END_DECLS

#endif /* TQL70_GPARSE_H */
