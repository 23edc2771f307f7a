// What the file operations need of the string-encryption service: a mode
// switch and the decryption of one line that can fail. The library's string
// encryption (gcrypt) is installed; tests may install their own.
#ifndef TQL70_SOURCE_GFILE_DECRYPT_SERVICE_H
#define TQL70_SOURCE_GFILE_DECRYPT_SERVICE_H

#include <string>

namespace tql::gfile {

struct DecryptService {
    // Selects the service's decryption mode.
    void (*select_mode)(int mode);
    // Turns one line of cipher text into plain text; false on failure.
    bool (*decrypt_line)(const char* cipher, std::string& plain);
};

// The service in use.
DecryptService& decrypt_service();

} // namespace tql::gfile

#endif
