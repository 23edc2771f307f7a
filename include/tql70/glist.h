/* The glist family: named, reference-counted lists of variable-length
 * records (usually strings), addressed by position or, in a sorted list, by
 * key, and loaded from or stored to a text file with one record per line.
 * Functions return 1 for success and 0 for failure unless stated; a null
 * handle or null pointer argument is a failure. */
#ifndef TQL70_GLIST_H
#define TQL70_GLIST_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Handle of an open list. */
typedef struct GlistHeader* glist;

/* Compares a record with a key: negative when the key sorts before the
 * record, 0 when equal, positive when it sorts after. */
typedef int (*GlistCompareFn)(const void* record, const void* key);
/* Copies n bytes of `source` into `destination`; returns the bytes copied. */
typedef unsigned int (*GlistCopyFn)(void* destination, const void* source, unsigned int n);

/* Flags of glist_create (bits outside GLIST_CREATE_FLAGS are dropped). */
#define GLIST_ATTRIBUTE_A 0x001  /* caller attribute, reported by query 24 */
#define GLIST_ATTRIBUTE_B 0x002  /* caller attribute, reported by query 25 */
#define GLIST_ATTRIBUTE_C 0x004  /* caller attribute, toggled by set 29 */
#define GLIST_SORTED 0x100       /* the whole list is in compare order */
#define GLIST_DESCENDING 0x200   /* every comparison result is negated */
#define GLIST_DUPLICATES 0x400   /* keyed inserts keep equal keys */
#define GLIST_CREATE_FLAGS 0x703

/* Query and set codes of glist_query and glist_set. */
#define GLIST_STORE_COUNT 20  /* unsigned int: records glist_store writes */
#define GLIST_LENGTH 21       /* unsigned int: records in the list */
#define GLIST_DESCRIPTION 22  /* text of at most 128 characters */
#define GLIST_VALID 23
#define GLIST_HAS_A 24
#define GLIST_HAS_B 25
#define GLIST_SHARED 26       /* opened more than once */
#define GLIST_IS_SORTED 27
#define GLIST_BLOCK_BYTES 28  /* unsigned int: bytes per new block, default 256 */
#define GLIST_HAS_C 29

/* Size of the description buffer of codes 22, terminating NUL included. */
#define GLIST_DESCRIPTION_SIZE 129
/* Bytes of the message buffer of glist_load and glist_store: the path's
 * length plus this much. */
#define GLIST_MESSAGE_EXTRA 64

/* Creates an empty list and stores its handle in *handle_out. Only the
 * GLIST_CREATE_FLAGS bits of `flags` are kept; the name is cut to 8
 * characters and the description to 128 (null means ""). */
TQL70_API int glist_create(glist* handle_out, int flags, const char* name, const char* description);
/* Finds the first open list called `name` and counts one more opening. */
TQL70_API int glist_open(glist* handle_out, const char* name);
/* Counts one opening less; the last close releases the list. */
TQL70_API int glist_close(glist handle);
/* Closes every open list whatever its opening count. Returns 1. */
TQL70_API int glist_closeall(void);

/* Grows the list with empty records or shrinks it, releasing the records
 * from position n on. */
TQL70_API int glist_setlength(glist handle, unsigned int n);
/* Stores a copy of `size` bytes at `index` (0 bytes: an empty record),
 * growing the list to index + 1 when needed. Clears the sorted flag. */
TQL70_API int glist_putrec(glist handle, unsigned int index, const void* data, unsigned int size);
/* glist_putrec with the text and its NUL, or an empty record for "". */
TQL70_API int glist_putstr(glist handle, unsigned int index, const char* text);
/* Copies the record at `index` into `destination` with the list's copy
 * function, at most `size` bytes and never more than the record holds;
 * *copied_out receives the bytes copied. */
TQL70_API int glist_getrec(glist handle, unsigned int index, void* destination, unsigned int size, unsigned int* copied_out);
/* Copies the record at `index` as a string into `out`, which must hold the
 * record's text and its NUL (glist_getrec bounds the copy); "" for an
 * empty record. 0 when index >= length. */
TQL70_API int glist_getstr(glist handle, unsigned int index, char* out);

/* Keyed insert into a sorted list: a record equal to the key is replaced,
 * unless the list allows duplicates, in which case the new record goes
 * before it. 0 when the list is not sorted. */
TQL70_API int glist_putkeyrec(glist handle, const void* key_record, unsigned int size);
/* glist_putkeyrec with the text and its NUL. */
TQL70_API int glist_putkeystr(glist handle, const char* text);
/* Binary search of a sorted list for `key`. On a hit, *index_out gets the
 * position and the found record is copied over `key` (at most `size`
 * bytes, *copied_out the count). 0 when absent or not sorted. */
TQL70_API int glist_getkeyrec(glist handle, unsigned int* index_out, void* key, unsigned int size, unsigned int* copied_out);

/* shift < 0: removes the -shift records before `index`, closing the gap
 * (0 when -shift > index or index > length); shift > 0: opens `shift`
 * empty records at `index` (past the end: grows to index + shift). The
 * store count becomes the new length. */
TQL70_API int glist_move(glist handle, unsigned int index, int shift);
/* Sorts positions from..to inclusive (from < to < length) in the list's
 * compare order; sorting the whole list sets the sorted flag. */
TQL70_API int glist_sort(glist handle, unsigned int from, unsigned int to);

/* Query and set by code (20..29, see above); other codes give 0. Codes 20,
 * 21 and 28 read and write an unsigned int; code 22 a text: glist_query
 * writes at most GLIST_DESCRIPTION_SIZE bytes. A null handle stores 0 (""
 * for 22) where the code writes and returns 0. */
TQL70_API int glist_query(glist handle, int code, void* out);
TQL70_API int glist_set(glist handle, int code, const void* in);
/* Replaces the compare and/or copy function (null keeps the present one). */
TQL70_API int glist_setuserfn(glist handle, GlistCompareFn compare, GlistCopyFn copy);

/* Loads the lines of the file `path` into positions 0..n-1 (TABs become
 * blanks, at most 1023 characters of a line are kept) and sets the store
 * count to n; records beyond n stay. On failure writes a message into
 * `message_out` (strlen(path) + GLIST_MESSAGE_EXTRA bytes). */
TQL70_API int glist_load(glist handle, const char* path, char* message_out);
/* Writes the first store-count records to `path`, one line each. The file
 * is replaced in one step once written whole: on failure the old file is
 * left as it was and a message goes into `message_out` (size as above). */
TQL70_API int glist_store(glist handle, const char* path, char* message_out);

/* Attaches two caller words to the list (replacing an earlier pair). */
TQL70_API int glist_save_stfh(glist handle, void* a, void* b);
/* Returns the attached words; 0 when none is attached. */
TQL70_API int glist_remote_stfh(glist handle, void** a_out, void** b_out);
/* Releases the attached words; 0 when none is attached. */
TQL70_API int glist_remove_stfh(glist handle);

TQL70_END_DECLS

#endif /* TQL70_GLIST_H */
