/* Allocation wrappers: the allocator of every string and array the library
 * hands to its callers. */
#ifndef TQL70_GMEM_H
#define TQL70_GMEM_H

#include <stddef.h>
#include "export.h"

TQL70_BEGIN_DECLS

/* The byte count is size times count. A count of 0 bytes, or a product
 * that does not fit in size_t, gives null without allocating. A failed
 * allocation gives null. */
TQL70_API void* gmem_ee_malloc(size_t size, size_t count);
/* Same as gmem_ee_malloc, with the block zero-filled. */
TQL70_API void* gmem_ee_calloc(size_t size, size_t count);
/* Resizes `pointer` (null allocates). A byte count of 0 gives null and
 * leaves the old block allocated; so does a failure. */
TQL70_API void* gmem_ee_realloc(void* pointer, size_t size, size_t count);
/* Frees a block of the wrappers above; null does nothing. */
TQL70_API void gmem_ee_free(void* pointer);

TQL70_END_DECLS

#endif /* TQL70_GMEM_H */
