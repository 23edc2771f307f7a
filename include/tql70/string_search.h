/* Searches and comparisons of strings that tolerate null arguments. */
#ifndef TQL70_STRING_SEARCH_H
#define TQL70_STRING_SEARCH_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Case-insensitive search (ASCII tolower). Null or empty haystack: null;
 * null or empty needle: the haystack. The result points into `haystack`. */
TQL70_API char* tql_strcasestr(const char* haystack, const char* needle);

/* Byte-wise comparison giving -1, 0 or 1; null counts as "". */
TQL70_API int tql_strcmp(const char* a, const char* b);

/* The last occurrence of `needle` in `haystack`, or null. An empty needle
 * gives the needle itself. */
TQL70_API char* strrstr(const char* haystack, const char* needle);

TQL70_END_DECLS

#endif /* TQL70_STRING_SEARCH_H */
