// The block pool's operations, gathered into the poolMem table.
#ifndef TQL70_SOURCE_CONTAINERS_BLOCK_POOL_H
#define TQL70_SOURCE_CONTAINERS_BLOCK_POOL_H

#include <cstddef>

void* pool_alloc(size_t count, size_t size, void** state);
void* pool_realloc(void* ptr, size_t count, size_t size, void** state);
int pool_free(void* ptr, void** state);
int pool_check(void** state);
int pool_init(void** state);

#endif
