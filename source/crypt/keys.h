// The keys of the encryption modes: where each comes from, how a key file
// is read and made, and a holder that wipes the key when it goes.
#ifndef TQL70_SOURCE_CRYPT_KEYS_H
#define TQL70_SOURCE_CRYPT_KEYS_H

#include <sodium.h>

#include <string>

namespace tql::crypt {

// A key, wiped when the holder is destroyed.
struct Key {
    unsigned char bytes[crypto_aead_xchacha20poly1305_ietf_KEYBYTES];
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() { sodium_memzero(bytes, sizeof bytes); }
};

// Loads the key of `mode` (0 installation, 1 user) into `key`. False with
// a message naming the key file (never its content) in `error`.
bool load_key(int mode, Key& key, std::string& error);

} // namespace tql::crypt

#endif
