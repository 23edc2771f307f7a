/* Memory controls: one interface over two allocators, the plain library
 * allocator (tarvexMem) and a pool of small blocks carved out of 4096-byte
 * chunks (poolMem). */
#ifndef TQL70_MEMCNTL_H
#define TQL70_MEMCNTL_H

#include <stddef.h>
#include "export.h"

TQL70_BEGIN_DECLS

/* An operation table. Every function gets the address of the control's
 * state word as its last argument. */
typedef struct MemCntlOps {
    /* A block of count x size bytes, or null. */
    void* (*alloc)(size_t count, size_t size, void** state);
    /* The block resized to count x size bytes, or null. */
    void* (*realloc)(void* ptr, size_t count, size_t size, void** state);
    /* 1 when the block was released. */
    int (*free)(void* ptr, void** state);
    /* 1 when the allocator's structures are sound. */
    int (*check)(void** state);
    /* Prepares the state word; 1. */
    int (*init)(void** state);
    /* 0 in both tables. */
    int (*set)(void** state);
} MemCntlOps;

/* A memory control: the table in use, then the allocator's state word (for
 * the pool the first chunk of its chain, null when it has none; 0 for the
 * plain allocator). Caller-owned; one thread at a time. */
typedef struct MemCntl {
    const MemCntlOps* ops;
    void* state;
} MemCntl;

/* The plain allocator: gmem_ee_malloc / gmem_ee_realloc / gmem_ee_free;
 * free answers null with 0; check is always 1. */
TQL70_API extern const MemCntlOps tarvexMem;

/* The pool. Sizes are counted in 8-byte units; each block has a one-unit
 * header before its data, and data addresses are multiples of 8. A request
 * of 0 bytes, or of more than 524,264 bytes (65,533 units), gives null.
 * Allocation is first-fit over the chunk chain, newest chunk first;
 * released blocks merge at once with free neighbours; chunks are never
 * given back to the system. Release returns 0 without changing anything
 * for a pointer that is not a block in use (a double release, a foreign or
 * misaligned pointer) or whose neighbours' headers are damaged; check
 * walks every chunk and returns 0 at the first damaged header.
 * Reallocation to 0 bytes gives null and keeps the block; to a larger size
 * (or to 510 units or more) it copies as many bytes as the new size asks
 * for, taken from the old data and what follows it in its chunk. */
TQL70_API extern const MemCntlOps poolMem;

/* Stores the table in the control and returns its init on the state word;
 * 0 (control unchanged) for a null control or table. */
TQL70_API int initialize_MemCntl(MemCntl* cntl, const MemCntlOps* table);
/* The table's alloc; null for a null control or one without a table. */
TQL70_API void* alloc_Mem(MemCntl* cntl, size_t count, size_t size);
/* The table's realloc; null without a table or for a null ptr. */
TQL70_API void* realloc_Mem(MemCntl* cntl, void* ptr, size_t count, size_t size);
/* The table's free; 0 without a table. */
TQL70_API int free_Mem(MemCntl* cntl, void* ptr);
/* The table's check; 0 without a table. Prints nothing. */
TQL70_API int check_Mem(MemCntl* cntl);
/* The table's set; 0 without a table. */
TQL70_API int set_MemCntl(MemCntl* cntl);
/* 1 for a control using tarvexMem; the pool's structure walk (1 sound,
 * 0 damaged) for one using poolMem; 0 otherwise. Prints nothing. */
TQL70_API int dump_Mem(MemCntl* cntl);

TQL70_END_DECLS

#endif /* TQL70_MEMCNTL_H */
