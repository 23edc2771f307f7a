/* The portable OS layer under POSIX-like names: directory listing, file
 * status, directory creation, streams and temporary names. Names are taken
 * in the library form (either separator, optional drive prefix). */
#ifndef TQL70_TQL_OS_H
#define TQL70_TQL_OS_H

#include <stdio.h>

#include "export.h"

TQL70_BEGIN_DECLS

struct stat;

/* One directory entry, 260 bytes: the name's length and the name. */
typedef struct tql_dirent {
    unsigned int d_namlen;
    char d_name[256];
} tql_dirent;

/* A directory listing (opaque), from tql_opendir to tql_closedir. */
typedef struct tql_DIR tql_DIR;

/* Opens the listing of a directory; null for null or "", for a name ending
 * in '*' (patterns are refused), or when it cannot be listed. A name ending
 * in '~' means the home directory (HOME, else HOMEPATH). */
TQL70_API tql_DIR* tql_opendir(const char* path);
/* Same as tql_opendir. */
TQL70_API tql_DIR* opendir_utf8(const char* path);
/* The next entry ("." and ".." included), overwritten by the next call;
 * null at the end (and on every later call) or for a null handle. */
TQL70_API tql_dirent* tql_readdir(tql_DIR* dir);
/* Ends the listing; 0 on success or for null, -1 on failure. */
TQL70_API int tql_closedir(tql_DIR* dir);

/* Status of a file or directory ("C:" means the root; one trailing
 * separator is ignored); with a null `buf` only existence is tested. 0 on
 * success, -1 on failure. */
TQL70_API int tql_stat(const char* path, struct stat* buf);

/* Creates one directory (relative names from the current directory); the
 * mode is ignored. -1 on failure, for null, or when it exists. */
TQL70_API int tql_mkdir(const char* path, int mode);
/* Creates the directory and every missing parent; 0 also when all exist. */
TQL70_API int tql_forceDirectoryToExist(const char* path);

/* fopen of the library-form name. */
TQL70_API FILE* tql_fopen(const char* name, const char* mode);
/* fgets into buf of n bytes; null for a null buf or stream or n < 1. */
TQL70_API char* tql_fgets(char* buf, int n, FILE* f);
/* fclose; 0 for null. */
TQL70_API int tql_fclose(FILE* f);

/* A new temporary file name (in HOME, else TMPDIR, else /tmp, with the
 * default prefix) that does not exist when it is made; valid until the
 * next call. With `buf`, a buffer of TQL70_PATH_BUFFER_SIZE bytes, the name
 * followed by a rand() value (the generator reseeded with the time) is also
 * written there; when that does not fit, buf becomes "" and the result is
 * null. */
TQL70_API const char* tql_tmpnam(char* buf);

/* Sets the prefix of tql_tmpnam: taken when none is set yet, or when it has
 * exactly the length of the current one; otherwise ignored. Null is
 * ignored. */
TQL70_API void tmpnam_set_default_prefix(const char* prefix);

TQL70_END_DECLS

#endif /* TQL70_TQL_OS_H */
