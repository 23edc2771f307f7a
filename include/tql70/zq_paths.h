/* Path utilities: the ZQ_ path functions, file-name parts and path
 * comparison. Names are accepted with either separator; names the library
 * builds use '\'. */
#ifndef TQL70_ZQ_PATHS_H
#define TQL70_ZQ_PATHS_H

#include "export.h"

TQL70_BEGIN_DECLS

/* A new copy of `s` (gmem_ee_malloc; free with gmem_ee_free); null gives a
 * new empty string. Null only when the allocation fails. */
TQL70_API char* ZQ_stringcopy(const char* s);

TQL70_END_DECLS

#endif /* TQL70_ZQ_PATHS_H */
