/* Library-form names on Linux: the conversion an application needs to hand
 * names built by tql70 to other libraries. */
#ifndef TQL70_PLATFORM_H
#define TQL70_PLATFORM_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Writes the native form of the library-form name `in` into `out` and
 * returns `out`: every '\' becomes '/', and a leading drive prefix (a
 * letter and ':') is removed, so "C:\a\b" is "/a/b", "C:" and "C:\" are
 * "/" and "C:a" is "a". The result is never longer than `in`, so `out` of
 * strlen(in) + 1 bytes suffices, and `out` may be `in`. Null `in` or `out`
 * gives null. */
TQL70_API char* tql_native_path(const char* in, char* out);

TQL70_END_DECLS

#endif /* TQL70_PLATFORM_H */
