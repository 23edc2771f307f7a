/* Parsing and conversion: string helpers (fixed-width copies, clean-up,
 * case changes and comparisons) and the numeric conversions (the number
 * rule, the integer and float rules, and the bounded-width formatters). */
#ifndef TQL70_GPARSE_H
#define TQL70_GPARSE_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Conventions of the helpers below: arguments go source first, then a
 * length, then the destination. Output buffers belong to the caller; each
 * function states the bytes its output needs and never writes more. A null
 * output makes a call do nothing (and fail where it has a status). A null input text
 * counts as "" unless a comment says otherwise. Lengths, positions and
 * widths below 0 count as 0. "Blank" means the space character only (not
 * TAB), and case changes touch the ASCII letters only. */

/* Copies `src` into `dst`, terminating NUL included: strlen(src) + 1 bytes. */
TQL70_API void gparse_cpystr(const char* src, char* dst);

/* Bounded copy. n = 0 writes nothing at all; when strlen(src) <= n the whole
 * text is copied with its NUL (bytes after that NUL stay untouched);
 * otherwise the first n characters and a NUL at dst[n]. dst needs
 * min(strlen(src), n) + 1 bytes. */
TQL70_API void gparse_strncpy(const char* src, int n, char* dst);

/* Bounded copy that may work in place. Different buffers: n = 0 gives "",
 * else as gparse_strncpy. dst == src: the text is cut at n when longer. dst needs
 * min(strlen(src), n) + 1 bytes. */
TQL70_API void gparse_cpystrl(const char* src, char* dst, int n);

/* Fixed-width copy: dst is exactly n characters, the text padded with blanks
 * or cut at n; writes n + 1 bytes. dst may equal src (a longer text stays cut). */
TQL70_API void gparse_cpystrn(const char* src, int n, char* dst);

/* Left-justified fixed-width copy: as gparse_cpystrn after skipping the
 * leading blanks of `src` (n + 1 bytes). dst may equal src. */
TQL70_API void gparse_szstrlj(const char* src, int n, char* dst);

/* Right-justified fixed-width copy: a text of at most n characters gets
 * blanks on its left up to exactly n; a longer one is cut to its first n
 * characters (n = 0 gives ""). dst needs n + 1 bytes and may equal src. */
TQL70_API void gparse_szstrrj(const char* src, int n, char* dst);

/* out = a followed by b (strlen(a) + strlen(b) + 1 bytes). out may equal a or b: b is copied aside with the
 * library allocator first; when that allocation fails out becomes "". */
TQL70_API void gparse_addstr(const char* a, const char* b, char* out);

/* out is exactly n characters: when strlen(a) >= n, a padded or cut to n;
 * else a followed by b padded or cut to the n - strlen(a) remaining
 * positions; n + 1 bytes. out may equal a or b. */
TQL70_API void gparse_addstrn(const char* a, const char* b, int n, char* out);

/* When strlen(dst) < n, dst becomes the first n characters of dst followed by
 * src (so at most n characters in all: n + 1 bytes); otherwise dst is left
 * unchanged. src may be dst itself. */
TQL70_API void gparse_strncat(const char* src, int n, char* dst);

/* out = the characters of `text` at positions from..to inclusive, ending
 * early at the end of the text; "" when from > to or from lies beyond the
 * text. out needs to - from + 2 bytes (at most strlen(text) + 1) and may
 * equal text. */
TQL70_API void gparse_strtostr(const char* text, int from, int to, char* out);

/* dst = src without its leading and trailing blanks (TABs are kept), at most
 * strlen(src) + 1 bytes. dst may equal src. A null src writes nothing. */
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

/* Writes a NUL at text[n], whatever the current length, and returns text
 * (text needs n + 1 bytes). A null text or a negative n writes nothing. */
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

/* ---- Numeric conversion and formatting ----
 *
 * Status results are 1 for success and 0 for failure. None of these calls
 * depends on the process locale: the decimal point is always ".".
 *
 * Number rule: `text` is a number when it is not empty, the standard
 * text-to-double conversion reads all of it as a decimal number (hexadecimal
 * forms, "inf" and "nan" are not numbers), its first character is "+", "-",
 * "." or a digit and its last character is "." or a digit. So "1e5", "5." and
 * ".5" are numbers; " 7", "7 ", "1e" and "0x10" are not. A null text is not a
 * number. */

/* The number rule. *out always gets the value of the decimal number that the
 * text starts with (0 when there is none, or the text is null). A null out is
 * not written; the status is returned all the same. */
TQL70_API unsigned int gparse_astodbl(const char* text, double* out);

/* Integer rule: a number with a zero fractional part whose value lies within
 * -2147483647 .. 2147483647 ("-2147483648" is a number but not an integer).
 * *out is the value, or 0 on failure. "3e2" gives 300; "12.5" fails. */
TQL70_API unsigned int gparse_astoint(const char* text, int* out);

/* Same rule and result as gparse_astoint. */
TQL70_API unsigned int gparse_astolng(const char* text, int* out);

/* Float rule: a number within +-1.701411e38. *out is the value rounded to
 * single precision, 0 when the text is not a number; beyond the limit *out is
 * +-1.7014110e38 (bit patterns 0x7efffff8 and 0xfefffff8) and the result 0. */
TQL70_API unsigned int gparse_astoflt(const char* text, float* out);

/* Decimal text of `value` ("-" for negatives, no padding, no "+"), when sign
 * and digits fit in `width`. On failure the result is 0 and: for a negative
 * value out becomes ""; for any other value out is left as it was. out
 * needs min(width, 11) + 1 bytes (at least 1). */
TQL70_API unsigned int gparse_lngtoas(int value, int width, char* out);

/* gparse_lngtoas, and out set to "" on failure; the same size. */
TQL70_API unsigned int gparse_inttoas(int value, int width, char* out);

/* Fixed notation with `decimals` digits after the point, falling back to
 * exponent notation when the value does not fit `width` (one position of
 * which is kept for a sign) or is too small to show, and for decimals < 0.
 * Fixed results are not padded: 123 with 0 decimals gives "123.", 0.05 with 3
 * gives "0.050"; a zero alone with 0 decimals gives "0". Zero and values of
 * at most 1e-23 give "0." and `decimals` zeros, right-aligned with blanks in
 * width - 1 positions. Exponent notation: sign, one digit, ".", width - 8
 * more digits, "e", the exponent's sign and three digits ("1.23456e+002" in
 * width 13); it needs a width of at least 9, else the call fails. Infinities
 * and NaN fail. On failure out becomes "". out needs max(width,
 * decimals + 3) + 1 bytes. */
TQL70_API unsigned int gparse_dbltoas(double value, int width, int decimals, char* out);

/* As gparse_dbltoas for a float: exponent notation has width - 7 digits
 * after the point and a two-digit exponent, and needs a width of at least 8.
 * out needs max(width, decimals + 3) + 1 bytes. */
TQL70_API unsigned int gparse_flttoas(float value, int width, int decimals, char* out);

/* As gparse_dbltoas with the most decimals that fit in `width`: width - 3
 * less the count of integer digits beyond the first (width - 3 for values
 * below 1). out needs width + 1 bytes. */
TQL70_API unsigned int gparse_dblmxas(double value, int width, char* out);

/* gparse_dblmxas for a float, with the float exponent notation; width + 1
 * bytes. */
TQL70_API unsigned int gparse_fltmxas(float value, int width, char* out);

/* Fixed notation only: as gparse_dbltoas without the exponent fallback for
 * large and small values (every value below 10^-decimals gives the zero
 * text). Fails, with out "", when the integer part needs more than
 * width - decimals - 2 digits. decimals < 0 still gives exponent notation.
 * out needs max(width, decimals + 3) + 1 bytes. */
TQL70_API unsigned int gparse_dblxxas(double value, int width, int decimals, char* out);

/* gparse_dblxxas for a float (float exponent notation for decimals < 0);
 * the same size. */
TQL70_API unsigned int gparse_fltxxas(float value, int width, int decimals, char* out);

/* Splits `value` into *mantissa (|m| from 1 up to 10, negative for negative
 * values) and *exponent, a whole power of ten: 1234 gives 1.234 and 3,
 * 0.002 gives 2 and -3. Values of magnitude up to 1e-99, zero included, give
 * 10.0 (negated for negative values) and -99. Infinities and NaN give NaN in
 * both. Null outputs are not written. */
TQL70_API void gparse_cnvt_double_e_format(double value, double* mantissa, double* exponent);

/* Zero stripping: a number text (leading and trailing blanks ignored) is
 * rewritten without redundant characters: leading zeros of the integer part
 * (one "0" stays before the point), trailing zeros of the fraction, a bare
 * point, a "+" sign, and in an exponent its "+" sign and leading zeros; an
 * exponent of zero is dropped and the exponent letter becomes "e". A zero
 * value gives "0" (no sign). A bare leading point gets a "0" in front only
 * where the result still fits in the text's own length (".50" gives "0.5",
 * ".5" and "-.5" stay as they are). "007.500" gives "7.5", "-1.50E+003" gives
 * "-1.5e3", "100" stays "100". A text that is not a number is copied
 * unchanged and the result is 0. out may equal text and needs
 * strlen(text) + 1 bytes. A null out writes nothing. */
TQL70_API unsigned int gparse_cnvt_string_stripped_zeros(const char* text, char* out);

/* Exponent text to plain decimal text. When text does not start with a digit
 * or a sign, or is not a number, or has an exponent beyond +-400, out becomes
 * " " and the result is 0. A number without "e" or "E" is copied unchanged.
 * Otherwise the point is moved by the exponent, the exact digits kept: "+"
 * and leading zeros of the integer part go (one "0" stays), the fraction is
 * kept as far as it reaches: "1.23456e+002" gives "123.456", "1.50e1" gives
 * "15.0", "-5E-3" gives "-0.005", "2.5e3" gives "2500". out may equal text and
 * needs strlen(text) + |exponent| + 2 bytes. A null out writes nothing. */
TQL70_API unsigned int gparse_cnvt_from_e_to_string(const char* text, char* out);

/* Any number text to its shortest plain decimal text: leading and trailing
 * blanks are dropped, then gparse_cnvt_from_e_to_string and
 * gparse_cnvt_string_stripped_zeros: "1.500e+001" gives "15", "  0.050"
 * gives "0.05". Its result and failure text (" ") are those of
 * gparse_cnvt_from_e_to_string, and so is its size: strlen(text) +
 * |exponent| + 2 bytes. out may equal text. */
TQL70_API unsigned int gparse_cnvt_string_string_stripped(const char* text, char* out);

/* gparse_dbltoas(value, width, decimals) with width and decimals each capped
 * at 30, then gparse_cnvt_string_stripped_zeros: (123.456, 10, 4) gives
 * "123.456", (7.0, 10, 0) gives "7", a zero gives "0", and an exponent
 * fallback keeps its exponent: (123456789012.0, 12, 2) gives "1.2346e11".
 * "" when the formatting fails. The text lives in one library-global buffer
 * that the next call overwrites. */
TQL70_API const char* gparse_cnvt_double_string_stripped(double value, int width, int decimals);

/* ---- the line parser ---- */

/* One field of a parsed line: positions of its first and last character in
 * the caller's line (inclusive), and its value by the integer and number
 * rules (ival 0 unless is_int; dval 0.0 unless is_num; every integer is
 * also a number). */
typedef struct parsefield {
    unsigned int start;
    unsigned int end;
    int is_int;
    int ival;
    int is_num;
    double dval;
} parsefield;

/* Fields kept by the fixed record; further text is ignored. */
#define GPARSE_MAX_FIELDS 300

/* The fixed record of gparse_parline. The line is not copied: it must stay
 * alive while fields are read. */
typedef struct parserec {
    const char* line;
    unsigned int count;
    parsefield fields[GPARSE_MAX_FIELDS];
} parserec;

/* The record of the _mem families: fields on the heap, owned by the record;
 * `id` registers it with its family (0: not yet). Zero it with
 * gparse_init_parserecMem before the first use. */
typedef struct parserecMem {
    const char* line;
    unsigned int count;
    parsefield* fields;
    int id;
} parserecMem;

/* The header of gparse_parline2 / gparse_parline3: the line and the number
 * of fields closed by a separator. The positions live in library slots. */
typedef struct parseheader {
    const char* line;
    unsigned int count;
} parseheader;

/* Splits `line` into fields: a run of separators (`seps`) ends a field;
 * each mark (`marks`, tested first) is a one-character field of its own;
 * reading stops at the end character `endc` (0: the end of the line). At
 * most GPARSE_MAX_FIELDS fields are kept. 0 when seps is empty. */
TQL70_API unsigned int gparse_parline(const char* line, const char* seps, const char* marks, char endc, parserec* rec);

/* Same as gparse_parline with no field limit, the fields in a heap array
 * owned by the record and the record registered with the family (ids as
 * the family has always given them). An end character above 127 never
 * stops these families (it is compared as a signed character). 0 for an
 * empty seps, a record whose id is not registered, or no memory. Not
 * reentrant. */
TQL70_API unsigned int gparse_parline_mem(const char* line, const char* seps, const char* marks, char endc, parserecMem* rec);
/* Releases the record's fields and its registration; 1, or 0 when its id is
 * not registered. */
TQL70_API unsigned int gparse_parline_free_mem(parserecMem* rec);
/* Forgets the whole registry; the records keep (and own) their fields. */
TQL70_API unsigned int gparse_parline_free_all_mem(void);

/* The same family on a registry of its own whose lookup is constant-time;
 * it allocates nothing per call once warm (a record's field array is kept
 * and reused while large enough). */
TQL70_API unsigned int gparse_efficient_parline_mem(const char* line, const char* seps, const char* marks, char endc, parserecMem* rec);
TQL70_API unsigned int gparse_efficient_parline_free_mem(parserecMem* rec);
TQL70_API unsigned int gparse_efficient_parline_free_all_mem(void);

/* Zeroes the record; returns it. */
TQL70_API parserecMem* gparse_init_parserecMem(parserecMem* rec);

/* Separators only: the first two (three) fields closed by a separator go to
 * library slots 0 and 1 (0, 1 and 2); a field left open at the end goes to
 * the last slot (parline3: with two or three closed fields, slots 2 and 3,
 * or 3). Slots keep earlier values when a line does not fill them. 0 for an
 * empty line or seps (parline2 also when slot 0 ends at the line's length). */
TQL70_API unsigned int gparse_parline2(const char* line, const char* seps, parseheader* hdr);
TQL70_API unsigned int gparse_parline3(const char* line, const char* seps, parseheader* hdr);

/* ---- fields of a parsed line ---- */

/* The text of field `index` (0-based); 0 with out untouched for a bad index.
 * out needs the field's length + 1 bytes (end - start + 2), at most
 * strlen(line) + 1. */
TQL70_API unsigned int gparse_getclump(parserec* rec, int index, char* out);
TQL70_API unsigned int gparse_getclump_mem(parserecMem* rec, int index, char* out);
/* The integer value; 0 with *out = 0 when the field is not an integer. */
TQL70_API unsigned int gparse_intclump(parserec* rec, int index, int* out);
TQL70_API unsigned int gparse_intclump_mem(parserecMem* rec, int index, int* out);
/* The real value (integers too); 0 with *out = 0 when not a number. */
TQL70_API unsigned int gparse_d_relclump(parserec* rec, int index, double* out);
TQL70_API unsigned int gparse_d_relclump_mem(parserecMem* rec, int index, double* out);
TQL70_API unsigned int gparse_s_relclump(parserec* rec, int index, float* out);
TQL70_API unsigned int gparse_s_relclump_mem(parserecMem* rec, int index, float* out);
/* The line from the start of field `first` to the end of field `last`,
 * separators included; returns the address of the output's terminating NUL
 * (null for a null out). Indices outside the parsed fields give "". out
 * needs the span's length + 1 bytes, at most strlen(line) + 1. */
TQL70_API char* gparse_getplinstr(parserec* rec, int first, int last, char* out);
TQL70_API char* gparse_getplinstr_mem(parserecMem* rec, int first, int last, char* out);
/* Slot `index` (0..2) of gparse_parline2, stripped of blanks; the last slot
 * loses its final character (the line end) unless it is one character. out
 * needs the stripped text's length + 1 bytes, at most strlen(line) + 1. */
TQL70_API unsigned int gparse_getclump2(parseheader* hdr, int index, char* out);
/* Slot `index` (0..3) of gparse_parline3, stripped of blanks, followed by a
 * second NUL: out needs the stripped text's length + 2 bytes, at most
 * strlen(line) + 2. */
TQL70_API unsigned int gparse_getclump3(parseheader* hdr, int index, char* out);

TQL70_END_DECLS

#endif /* TQL70_GPARSE_H */
