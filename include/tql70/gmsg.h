/* The gmsg family: message catalogues. A catalogue handle ties a message
 * directory (a configuration-format file mapping set names to message
 * files) to a language; message N of a set is line N of the set's file.
 * Failures leave their code in GuiErrno (gerror.h). */
#ifndef TQL70_GMSG_H
#define TQL70_GMSG_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Handle of an open catalogue. */
typedef struct GmsgCatalogue* GmsgHandle;

/* Size of a buffer that holds any message, terminating NUL included: a
 * message is one line of its file, of at most 1023 characters. */
#define GMSG_MESSAGE_SIZE 1024

/* Opens a catalogue from the settings of the configuration `config_name`
 * (null or "": "zqtarvexsess", falling back to "zqtarvex"): the directory
 * file PREFIX_MSG_FILE (prefix null or "": "zqtarvex"), and for `language`
 * (null or "": ZQTARVEX_LANGUAGE, else "ENGLISH") the extension
 * LANGUAGE_MSG_EXT ("msg") and font LANGUAGE_MSG_FONT ("9x15bold"). Null
 * on failure. A missing language, extension or font variable is not a
 * failure but leaves GuiErrno 7, 8 or 9. Release with gmsg_close. */
TQL70_API GmsgHandle gmsg_open(const char* config_name, const char* prefix, const char* language);
/* Copies message `number` (from 1) of `set_name` into `buffer`, which must
 * hold GMSG_MESSAGE_SIZE bytes; each message separator (MSG_SEPARATOR,
 * default the character 14) has its first character turned into "\n".
 * 1 on success, else 0 with GuiErrno set. */
TQL70_API int gmsg_retrieve_message(GmsgHandle handle, const char* set_name, int number, char* buffer);
/* 1 when the set can be loaded and 1 <= number <= its message count. */
TQL70_API int gmsg_check_index(GmsgHandle handle, const char* set_name, int number);
/* The font name of the catalogue's language, owned by the handle; null for
 * a null handle. */
TQL70_API const char* gmsg_query_font(GmsgHandle handle);
/* Releases the handle and its loaded set; a null handle gives 1. On a
 * failure (GuiErrno 4) the result is 0. */
TQL70_API int gmsg_close(GmsgHandle handle);

TQL70_END_DECLS

#endif /* TQL70_GMSG_H */
