/* Parsing and conversion: string helpers (fixed-width copies, clean-up,
 * case changes and comparisons). */
#ifndef TQL70_GPARSE_H
#define TQL70_GPARSE_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Conventions of the helpers below: arguments go source first, then a
 * length, then the destination. Output buffers belong to the caller and are
 * not checked; a null output makes a call do nothing. A null input text
 * counts as "" unless a comment says otherwise. Lengths, positions and
 * widths below 0 count as 0. "Blank" means the space character only (not
 * TAB), and case changes touch the ASCII letters only. */

/* Copies `src` into `dst`, terminating NUL included. */
TQL70_API void gparse_cpystr(const char* src, char* dst);

/* Bounded copy. n = 0 writes nothing at all; when strlen(src) <= n the whole
 * text is copied with its NUL (bytes after that NUL stay untouched);
 * otherwise the first n characters and a NUL at dst[n]. */
TQL70_API void gparse_strncpy(const char* src, int n, char* dst);

/* Bounded copy that may work in place. Different buffers: n = 0 gives "",
 * else as gparse_strncpy. dst == src: the text is cut at n when longer. */
TQL70_API void gparse_cpystrl(const char* src, char* dst, int n);

/* Fixed-width copy: dst is exactly n characters, the text padded with blanks
 * or cut at n; writes n + 1 bytes. dst may equal src (a longer text stays cut). */
TQL70_API void gparse_cpystrn(const char* src, int n, char* dst);

/* Left-justified fixed-width copy: as gparse_cpystrn after skipping the
 * leading blanks of `src`. dst may equal src. */
TQL70_API void gparse_szstrlj(const char* src, int n, char* dst);

/* Right-justified fixed-width copy: a text of at most n characters gets
 * blanks on its left up to exactly n; a longer one is cut to its first n
 * characters (n = 0 gives ""). dst may equal src. */
TQL70_API void gparse_szstrrj(const char* src, int n, char* dst);

/* out = a followed by b. out may equal a or b: b is copied aside with the
 * library allocator first; when that allocation fails out becomes "". */
TQL70_API void gparse_addstr(const char* a, const char* b, char* out);

/* out is exactly n characters: when strlen(a) >= n, a padded or cut to n;
 * else a followed by b padded or cut to the n - strlen(a) remaining
 * positions. out may equal a or b. */
TQL70_API void gparse_addstrn(const char* a, const char* b, int n, char* out);

/* When strlen(dst) < n, dst becomes the first n characters of dst followed by
 * src (so at most n characters in all); otherwise dst is left unchanged. src
 * may be dst itself. */
TQL70_API void gparse_strncat(const char* src, int n, char* dst);

/* out = the characters of `text` at positions from..to inclusive, ending
 * early at the end of the text; "" when from > to or from lies beyond the
 * text. out may equal text. */
TQL70_API void gparse_strtostr(const char* text, int from, int to, char* out);

/* dst = src without its leading and trailing blanks (TABs are kept). dst may
 * equal src. A null src writes nothing. */
TQL70_API void gparse_strpbl(const char* src, char* dst);

/* Replaces every TAB of `text` by one blank, in place. */
TQL70_API void gparse_strptab(char* text);

/* ASCII lower to upper case in place. Returns the address of the terminating
 * NUL (the text itself when empty); null for a null text. */
TQL70_API char* gparse_lowtoup(char* text);

/* ASCII upper to lower case in place. Returns the address of the terminating
 * NUL (the text itself when empty); null for a null text. */
TQL70_API char* gparse_uptolow(char* text);

/* strlen; 0 for null. */
TQL70_API int gparse_strlength(const char* text);

/* Writes a NUL at text[n], whatever the current length, and returns text.
 * A null text or a negative n writes nothing. */
TQL70_API char* gparse_setstrlength(char* text, int n);

/* 1 when a and b hold the same bytes, else 0; null and "" are equal. */
TQL70_API int gparse_eqlstr(const char* a, const char* b);

/* 0 when `a` and `b` are equal ignoring case; otherwise toupper(a[i]) -
 * toupper(b[i]) at the first difference, with each character taken as a
 * signed char (bytes of 128 and above are negative and unchanged). Null
 * counts as "". */
TQL70_API int gparse_stricmp(const char* a, const char* b);

/* 1 when a and b are equal after removing leading and trailing blanks and
 * ignoring ASCII case, else 0. */
TQL70_API int gparse_simstr(const char* a, const char* b);

/* 1 when a and b have the same length and are equal ignoring ASCII case
 * (blanks count), else 0. */
TQL70_API int gparse_simstr2(const char* a, const char* b);

/* 1 when a > b, 0 when equal, -1 when a < b. */
TQL70_API int gparse_intcmp(int a, int b);

/* Natural order ignoring ASCII case: -1, 0 or 1. Embedded numbers compare by
 * value when the texts after them are identical ("file9" < "file10");
 * otherwise characters compare one by one with digits ranked after every
 * other byte ("x10a" < "x9b"). Equal numbers stop the walk and the longer
 * text is greater ("a01" > "a1"). Null counts as "". */
TQL70_API int gparse_alpha_numeric_strcasecmp(const char* a, const char* b);

/* 1 when `col` is a tab column: -8 or a multiple of 8 from 0 to 256
 * inclusive; 0 otherwise. */
TQL70_API int gparse_tabpos(int col);

/* Reads the run of decimal digits at text[from], stopping before position
 * `to` or at the first non-digit (the NUL included). *num gets its value, 0
 * for an empty run and 2147483647 for a value above that. Returns the address
 * of the first position after the run; null for a null text. */
TQL70_API char* gparse_parse_numeric_and_postnumeric_part(const char* text, int from, int to, int* num);

/* 1 when every character of `text` at positions from..to-1 is a decimal
 * digit, or the range is empty; 0 otherwise. Stops at the first non-digit,
 * so it never reads past the NUL. A null text holds no digits. */
TQL70_API int gparse_all_digits(const char* text, int from, int to);

TQL70_END_DECLS

#endif /* TQL70_GPARSE_H */
