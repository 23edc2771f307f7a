/* gcrypt: authenticated encryption of short strings (XChaCha20-Poly1305
 * from libsodium), the cipher text as one printable base64 line.
 *
 * The calls share one process-wide state (the mode and the last failure):
 * use them from one thread at a time. */
#ifndef TQL70_GCRYPT_H
#define TQL70_GCRYPT_H

#include "export.h"

TQL70_BEGIN_DECLS

/* Mode 0: the installation key, read from the file that the configuration
 * variable ZQTARVEX_CRYPT_KEY names, else the key built into the library
 * (obfuscation only: everyone who has the library can read such text). */
#define GCRYPT_MODE_INSTALLATION 0
/* Mode 1: the user's own key, $XDG_CONFIG_HOME/zqtarvex/crypt.key, made
 * with permissions 0600 on first use. */
#define GCRYPT_MODE_USER 1

/* Selects the key of the following calls (mode 0 at start) and returns the
 * previous mode. An unknown mode is refused with -1 and the mode stays. */
TQL70_API int gcrypt_encrypt_mode(int mode);

/* `plain` encrypted under the current mode's key with a fresh random nonce,
 * as a new NUL-terminated printable line (free with gmem_ee_free); null on
 * failure (null `plain`, unreadable key). */
TQL70_API char* gcrypt_encrypt(const char* plain);

/* The plain text of a line that gcrypt_encrypt made under the current
 * mode's key, as a new string (free with gmem_ee_free); null on failure
 * (null `text`, bad character, malformed, wrong key or altered text). */
TQL70_API char* gcrypt_decrypt(const char* text);

/* "GCRYPTERR: " and the message of the last call's failure; "" when the
 * last call succeeded. The string belongs to the library and stays valid
 * until the next gcrypt call. */
TQL70_API const char* gcrypt_error(void);

TQL70_END_DECLS

#endif /* TQL70_GCRYPT_H */
