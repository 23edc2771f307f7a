/* The hash database: a disk-backed hash table in fixed-size pages
 * (hash_open and its DB handle), the process-wide table of tql_hcreate,
 * tql_hsearch and tql_hdestroy, and tql_mkstemp.
 *
 * Names: DB, DBT, HASHINFO and the R_ flags are the names a C program also
 * finds in a Berkeley-style <db.h>, so this header and <db.h> cannot be used
 * in one translation unit (define TQL70_OMIT_HASHDB before including the
 * umbrella header tql70.h to leave this header out). ENTRY, ACTION, FIND and
 * ENTER are taken from the C library's <search.h>, which this header
 * includes, so both headers can be used together in either order. */
#ifndef TQL70_HASHDB_H
#define TQL70_HASHDB_H

#include <search.h>
#include <stddef.h>
#include <stdint.h>

#include "export.h"

TQL70_BEGIN_DECLS

/* A key or a datum: `size` bytes at `data`. */
typedef struct DBT {
    void* data;
    size_t size;
} DBT;

/* Flags of seq and put. */
#define R_FIRST 3
#define R_NEXT 7
#define R_NOOVERWRITE 8

/* Creation settings; a zero member takes the default (page size 4096 or
 * the file's own, a power of two from 256 to 65536). */
typedef struct HASHINFO {
    unsigned bsize;     /* page size in bytes */
    unsigned ffactor;   /* pairs per bucket before the table grows */
    unsigned nelem;     /* expected number of pairs */
    unsigned cachesize; /* bytes of pages kept in memory */
    uint32_t (*hash)(const void*, size_t); /* the hash function */
    int lorder;         /* 0, 1234 or 4321; files are little-endian */
} HASHINFO;

/* An open database. Every operation answers 0 when done, 1 when the key is
 * not found, already there (put with R_NOOVERWRITE) or the sequence has
 * ended, and -1 on error with errno set. Data given back by get and seq
 * stays valid until the next call on the handle. */
typedef struct DB {
    int (*close)(struct DB* db);
    int (*del)(const struct DB* db, const DBT* key, unsigned flags);
    int (*get)(const struct DB* db, const DBT* key, DBT* data, unsigned flags);
    int (*put)(const struct DB* db, DBT* key, const DBT* data, unsigned flags);
    int (*seq)(const struct DB* db, DBT* key, DBT* data, unsigned flags);
    int (*sync)(const struct DB* db, unsigned flags);
    int (*fd)(const struct DB* db);
    void* internal; /* the implementation's state */
} DB;

/* Opens or creates the database `file` with the open(2) `flags` (O_RDONLY,
 * O_RDWR, O_CREAT, O_TRUNC, O_EXCL) and permission bits `mode`; a null
 * `file` makes an anonymous table in a temporary file that is removed on
 * close. `info` may be null. `dflags` is unused. Null with errno set on
 * failure (EINVAL for a file that is not a sound hash database). */
TQL70_API DB* hash_open(const char* file, int flags, int mode, const HASHINFO* info, int dflags);

/* The process-wide table: tql_hcreate makes it for about `nel` entries
 * (it grows past them) and answers non-zero on success; tql_hsearch finds
 * `item.key` (FIND) or adds `item` when the key is new (ENTER), null when
 * not found; tql_hdestroy frees the table (not the keys or data). */
TQL70_API int tql_hcreate(size_t nel);
TQL70_API ENTRY* tql_hsearch(ENTRY item, ACTION action);
TQL70_API void tql_hdestroy(void);

/* Replaces the trailing "XXXXXX" of `template` and creates that file;
 * its open descriptor, or -1 with errno set. */
TQL70_API int tql_mkstemp(char* template_name);

TQL70_END_DECLS

#endif /* TQL70_HASHDB_H */
