/* The gfile family: parts of file names (extension, directory or drive
 * prefix, trailing separator) and their repair. Several of these recognise
 * only '\' as a separator, as stated per function. */
#ifndef TQL70_GFILE_H
#define TQL70_GFILE_H

#include <stdio.h>

#include "export.h"

TQL70_BEGIN_DECLS

/* ---- file handles: status-returning streams (1 success, 0 failure) ---- */

/* Open modes of gfile_filopn. */
#define GFILE_WRITE 0
#define GFILE_READ 1
#define GFILE_APPEND 3

/* Line limit of gfile_getline, the terminating NUL included. */
#define GFILE_LINE_MAX 1024

/* Opens `name` for writing (0, "w"), reading (1, "r") or appending (3, "a")
 * and stores the stream (or null) in *fp; other modes leave *fp alone.
 * Returns whether *fp is non-null. */
TQL70_API int gfile_filopn(FILE** fp, const char* name, int mode);
/* Closes the stream; 0 for null or a failed close. */
TQL70_API int gfile_filcls(FILE* fp);
/* 1 at end of file. */
TQL70_API int gfile_filend(FILE* fp);
/* 1 when the stream's error indicator is set. */
TQL70_API int gfile_filerr(FILE* fp);
/* fread / fwrite of `count` items of `size` bytes (buf holds size * count
 * bytes); 1 unless the error indicator is set afterwards (a short read at
 * end of file succeeds). */
TQL70_API int gfile_getfilbuf(FILE* fp, size_t size, size_t count, void* buf);
TQL70_API int gfile_putfilbuf(FILE* fp, size_t size, size_t count, const void* buf);
/* Stores the next byte (0xFF at end of file); 0 only when both the error
 * and end-of-file indicators are set. */
TQL70_API int gfile_getfilchr(FILE* fp, char* c);
/* fputc; 1 unless the error indicator is set. */
TQL70_API int gfile_putfilchr(FILE* fp, char c);
/* Stores the position (ftell); 0 when it fails. */
TQL70_API int gfile_getfilptr(FILE* fp, long* pos);
/* Seeks to the absolute position / to the start; 1 on success. */
TQL70_API int gfile_putfilptr(FILE* fp, long pos);
TQL70_API int gfile_resetfilptr(FILE* fp);
/* gfile_getline_limited(fp, buf, GFILE_LINE_MAX): buf holds GFILE_LINE_MAX
 * bytes. */
TQL70_API int gfile_getline(FILE* fp, char* buf);
/* Reads one line into buf of n bytes (at most n - 1 characters; the rest of a longer
 * line is read and thrown away), cut at its first CR, LF or Ctrl-Z. 0 at
 * end of file, or when the line starts with Ctrl-Z (the end-of-file mark). */
TQL70_API int gfile_getline_limited(FILE* fp, char* buf, int n);
/* Writes `text`, and "\n" when `newline` is set; 0 when a write fails. */
TQL70_API int gfile_putline(FILE* fp, int newline, const char* text);

/* ---- tests of files (1 true, 0 false) ---- */

/* File type bits of gfile_type. */
#define GFILE_TYPE_DIRECTORY 0x4000
#define GFILE_TYPE_FILE 0x8000

TQL70_API int gfile_exists(const char* path);
TQL70_API int gfile_is_dir(const char* path);
TQL70_API int gfile_is_readable(const char* path);
TQL70_API int gfile_is_writable(const char* path);
TQL70_API int gfile_is_executable(const char* path);
/* 1 when `a` was modified strictly later than `b` (despite the name: the
 * first file is the newer one); 0 when either cannot be stat'ed. */
TQL70_API int gfile_is_file_older(const char* a, const char* b);
/* The st_mode & 0xF000 bits (GFILE_TYPE_DIRECTORY, GFILE_TYPE_FILE, ...),
 * one trailing separator ignored; 0 when missing or longer than 1,024. */
TQL70_API int gfile_type(const char* path);
/* Size in bytes, at most 2,147,483,647; 0 for null; -1 when missing. */
TQL70_API int gfile_filesize(const char* path);
/* Does nothing; 0. */
TQL70_API int gfile_cstat(void);
/* Prints the descriptor number of a new temporary file ("gfile: current
 * number of files open = %d\n") to stderr; 1, or 0 when none can be made. */
TQL70_API int gfile_fopen_status(void);
/* A new 64-byte string (gmem) naming the operating system ("Linux"). */
TQL70_API char* gfile_win_os(void);

/* 1 when the open text file starts with an encrypted header line that
 * decrypts: its number and word are stored and the stream is left after
 * the header; `word` needs GFILE_LINE_MAX bytes. Otherwise 0 with the stream rewound (GuiErrno 28 when it
 * cannot be, 24 when the first line cannot be read). */
TQL70_API int gfile_encrypted(FILE* stream, int* number, char* word);

/* ---- operations ---- */

/* Copies the bytes of `src` to `dst` (created or truncated) and gives it
 * the times of `src`; permissions are not copied. The emergency memory
 * reserve is given up for the copy. 0 with GuiErrno 22 (no source), 23
 * (cannot open), 24 (read), 25 (write) or 27 (no memory). */
TQL70_API int gfile_copy(const char* src, const char* dst);
/* Removes one file; 0 with GuiErrno 26 on failure. */
TQL70_API int gfile_erasefil(const char* path);
/* gfile_copy then gfile_erasefil of the source; a failed erase leaves both. */
TQL70_API int gfile_move(const char* src, const char* dst);
/* Appends the lines of `src` to `dst`, each written without its line end
 * (the historical behaviour: the lines run together). 0 when either file
 * cannot be opened. */
TQL70_API int gfile_append_file_to_file(const char* dst, const char* src);
/* Appends `line` and a line feed (nothing for a null or empty line); 0 when
 * `dst` cannot be opened. */
TQL70_API int gfile_append_line_to_file(const char* dst, const char* line);

/* Copies a file (into a directory when `dst` is one), the files of a
 * wildcard name such as "dir\*.txt" (into a directory, not descending), or
 * with `recursive` a directory tree (`dst` is created when missing; an
 * existing plain file refuses it; symbolic links inside it are copied as
 * links, never followed). Names over 1,024 characters are refused; paths
 * inside a tree may be of any length. A failure stops the copy and leaves
 * what was copied; gfile_error_path names where it stopped. */
TQL70_API int gfile_cp(const char* src, const char* dst, int recursive);
/* Removes a file, the files of a wildcard name, or with `recursive` a
 * directory and everything below it (symbolic links are removed, never
 * followed). A failure does not stop a walk; the answer is then 0 and
 * gfile_error_path names the first failure. */
TQL70_API int gfile_rm(const char* path, int recursive);
/* chmod of a file or of every entry matching a wildcard name (directories
 * are not entered); 1 when all succeeded. */
TQL70_API int gfile_chmod(const char* path, int mode);
/* The name (with '\' separators) of the entry at which the last gfile_cp
 * or gfile_rm that failed inside a tree stopped or first failed; its
 * reason is in GuiErrno and the system error. "" when the last call did
 * not fail inside a tree. Valid until the next gfile_cp or gfile_rm. */
TQL70_API const char* gfile_error_path(void);

/* ---- directories ---- */

/* Creates the directory `path` (converted in place to '\'), with every
 * missing parent when `parents` is set. $NAME and %NAME% components are
 * replaced by the process variable (an unset one prints a message and
 * fails). A path beginning with '\' or "C:\" is walked from its third
 * character, as it always has been. 1 on success (also when it exists).
 * Only the separators of `path` are rewritten; the expanded text is never
 * written back, so the buffer needs nothing beyond strlen(path) + 1. */
TQL70_API int gfile_mkdir(char* path, int parents, int mode);
/* 1 when the directory exists and is writable or could be created (with
 * `parents`: judged by its deepest existing ancestor; without: only the
 * last component may be missing). Nothing is created; `path` is converted
 * in place as by gfile_mkdir and never grows. */
TQL70_API int gfile_makebledir(char* path, int parents);
/* Kilobytes of everything below `dir` (at most 2,147,483,647); names
 * beginning with '.' and symbolic links are not entered. */
TQL70_API int gfile_dirsize(const char* dir);
/* Free kilobytes of the volume holding `dir` (converted in place), at most
 * 2,147,483,647; 0 with a message when it is not a directory. */
TQL70_API int gfile_freedir_space(char* dir);
/* Rewrites the directory name `dir` in place as the absolute name of the
 * current directory it leads to (native separators) followed by one '\';
 * `dir` is a buffer of TQL70_PATH_BUFFER_SIZE bytes. 0, with `dir` only
 * converted to '\', when it is empty, cannot be entered or the name does
 * not fit. The current directory is changed for the call and restored. */
TQL70_API int gfile_setdefpath(char* dir);
/* The current directory in library form with a trailing '\'; 0 for a null
 * buffer or when it does not fit in `size` bytes. */
TQL70_API int gfile_getdefpath(char* buf, int size);
/* Does nothing. */
TQL70_API void gmain_exit_list(void);

/* ---- parts of file names ---- */

/* File-name comparisons without regard to case, with the signs of
 * strcasecmp and strncasecmp. */
TQL70_API int gfile_file_name_strcmp(const char* a, const char* b);
TQL70_API int gfile_file_name_strncmp(const char* a, const char* b, int n);

/* 1 when `path` starts with '/' or '\', or with a letter and ':'; 0 for
 * null or "". */
TQL70_API int gfile_hasfullpath(const char* path);

/* A new zero-filled string with everything after the first '.' of the whole
 * name (directories are not considered: "a.b.c" gives "b.c"); "" without a
 * dot. Free with gmem_ee_free. */
TQL70_API char* gfile_getext(const char* name);

/* *pos = one-based position of the last '.' when it lies after the last
 * separator ('/' or '\'), else 0; returns *pos >= 1. A leading dot counts. */
TQL70_API int gfile_hasext(const char* name, int* pos);

/* Copies `name` without its extension into `out` (strlen(name) + 1 bytes). */
TQL70_API void gfile_stripext(const char* name, char* out);

/* Gives `name` the extension `ext` (without the dot): an existing one is
 * kept unless `replace` is set. '/' becomes '\' in every case. The buffer
 * needs strlen(name) + strlen(ext) + 2 bytes. Returns `name` (null for null). */
TQL70_API char* gfile_filext(char* name, int replace, const char* ext);

/* *pos = one-based position of the last ':' or '\' ('/' is not seen),
 * else 0; returns *pos >= 1. Reports any directory or drive prefix. */
TQL70_API int gfile_hasdrv(const char* name, int* pos);

/* Copies what follows the prefix found by gfile_hasdrv into `out`
 * (strlen(name) + 1 bytes). */
TQL70_API void gfile_stripdrv(const char* name, char* out);

/* Gives `name` the directory or drive prefix `prefix` (an existing prefix
 * is kept unless `replace` is set), '/' becoming '\' and a '\' put between
 * them unless `prefix` is empty or ends in one. The buffer needs
 * strlen(name) + strlen(prefix) + 2 bytes. */
TQL70_API void gfile_fildrv(char* name, int replace, const char* prefix);

/* Removes one trailing '\' (a last '/' of a longer string is converted
 * first); a drive root such as "C:\" (an ASCII letter, ':', '\') is kept
 * whole. Returns 1. */
TQL70_API int gfile_strip_dir_name(char* dir);

/* Converts a last '/' to '\' and appends '\' unless already there; "" stays
 * "". Needs room for one more character. Returns 1. */
TQL70_API int gfile_prepare_dir_name(char* dir);

/* The absolute path QFileInfo gives for `name`, with '\' separators, as a
 * new string freed with free(). */
TQL70_API char* gfile_abs_path(const char* name);

/* Repairs a path whose backslash escapes were read as control characters:
 * each of the codes 7 to 13 becomes '\\' followed by a, b, t, n, v, f or r.
 * `*path` must come from malloc and is reallocated. Returns 1; 0 (path
 * unchanged) when the result would be 1024 bytes or longer or memory is
 * short. */
TQL70_API int gfile_fix_path(char** path);

/* Always false. */
TQL70_API TQL70_BOOL gfile_allow_spaces_in_files(void);

TQL70_END_DECLS

#ifdef __cplusplus
#include <string>

class QString;

/* Reads one line of any length into *line, with the line rules of
 * gfile_getline_limited; false at end of file or at the end-of-file mark. */
TQL70_API bool gfile_getline_std_string(FILE* fp, std::string* line);

/* Removes one trailing '/' or '\' from `dir`; a three-character string
 * whose second character is ':' is left alone. */
TQL70_API QString gfile_strip_dir_name_qt(const QString& dir);
/* Turns '/' into '\', then gfile_strip_dir_name_qt. */
TQL70_API QString gfile_strip_dir_name_and_convert_qt(const QString& dir);
#endif

#endif /* TQL70_GFILE_H */
