/* Export and linkage macros shared by every tql70 header, and the size of
 * the path buffers the interface asks for. */
#ifndef TQL70_EXPORT_H
#define TQL70_EXPORT_H

/* The library is built with hidden visibility; TQL70_API marks the
 * declarations that form its interface. */
#if defined(__GNUC__) || defined(__clang__)
#  define TQL70_API __attribute__((visibility("default")))
#else
#  define TQL70_API
#endif

/* Plain functions and variables have C linkage, so C programs and foreign
 * function interfaces can call them by their plain names. */
#ifdef __cplusplus
#  define TQL70_BEGIN_DECLS extern "C" {
#  define TQL70_END_DECLS }
#  define TQL70_BOOL bool
#else
#  define TQL70_BEGIN_DECLS
#  define TQL70_END_DECLS
#  define TQL70_BOOL _Bool
#endif

/* Bytes of a path buffer: the functions whose output is a path the caller
 * cannot size beforehand (gfile_setdefpath, tql_tmpnam, ZQ_canonical_path
 * and its relatives) take a buffer of this size and fail, writing nothing,
 * when the path with its NUL would not fit. */
#define TQL70_PATH_BUFFER_SIZE 1024

#endif /* TQL70_EXPORT_H */
