// gfile_encrypted: recognising a text file whose first line is an
// encrypted header ("@&", "@;" or "@!" followed by cipher text), and the
// decrypt service it uses: the library's string encryption.
#include <tql70/gcrypt.h>
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/gparse.h>

#include "gfile/decrypt_service.h"
#include "gfile/gfile_internal.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace tql::gfile {

namespace {

void gcrypt_select_mode(int mode)
{
    gcrypt_encrypt_mode(mode);
}

bool gcrypt_decrypt_line(const char* cipher, std::string& plain)
{
    char* text = gcrypt_decrypt(cipher);
    if (!text) {
        return false;
    }
    plain = text;
    gmem_ee_free(text);
    return true;
}

} // namespace

DecryptService& decrypt_service()
{
    static DecryptService service{gcrypt_select_mode, gcrypt_decrypt_line};
    return service;
}

} // namespace tql::gfile

using namespace tql::gfile;

namespace {

// The results of the last header read.
int last_number = 0;
std::string last_word;

bool rewind_stream(FILE* stream)
{
    if (std::fseek(stream, 0, SEEK_SET) != 0) {
        fail(kCannotRewind, __LINE__);
        return false;
    }
    return true;
}

} // namespace

extern "C" int gfile_encrypted(FILE* stream, int* number, char* word)
{
    last_number = 0;
    last_word.clear();
    if (!stream || !rewind_stream(stream)) {
        return 0;
    }
    char line[GFILE_LINE_MAX];
    if (!gfile_getline_limited(stream, line, sizeof line)) {
        fail(kReadError, __LINE__);
        return 0;
    }
    gparse_strpbl(line, line);
    if (line[0] == '@' && line[1] && std::strchr("&;!", line[1])) {
        DecryptService& service = decrypt_service();
        service.select_mode(0);
        char cipher[GFILE_LINE_MAX];
        gparse_strpbl(line + 2, cipher);
        std::string plain;
        if (service.decrypt_line(cipher, plain)) {
            char scanned_word[GFILE_LINE_MAX] = "";
            std::sscanf(plain.c_str(), "%d %1023s", &last_number, scanned_word);
            last_word = scanned_word;
            if (number) {
                *number = last_number;
            }
            if (word) {
                std::strcpy(word, scanned_word);
            }
            return 1;
        }
    }
    rewind_stream(stream);
    return 0;
}
