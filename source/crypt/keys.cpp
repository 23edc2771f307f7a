// The keys of the encryption modes. A key file holds the 32-byte key as 64
// hexadecimal digits, optionally followed by white space.
//
// Mode 0 reads the file that ZQTARVEX_CRYPT_KEY names; with no such
// variable it uses the key below, which ships inside every copy of the
// library: text made with it is obfuscated, not secret.
//
// Mode 1 reads $XDG_CONFIG_HOME/zqtarvex/crypt.key and makes it, with a
// new random key, the first time it is needed.
#include "crypt/keys.h"

#include <tql70/gui_env.h>

#include "platform/platform.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

namespace tql::crypt {

namespace {

constexpr size_t kKeySize = crypto_aead_xchacha20poly1305_ietf_KEYBYTES;
constexpr size_t kHexSize = 2 * kKeySize;

const unsigned char kBuiltInKey[kKeySize] = {
    0x5a, 0x71, 0x74, 0x61, 0x72, 0x76, 0x65, 0x78, 0x2d, 0x74, 0x71, 0x6c, 0x37, 0x30, 0x2d, 0x6f,
    0x62, 0x66, 0x75, 0x73, 0x63, 0x61, 0x74, 0x69, 0x6f, 0x6e, 0x2d, 0x6b, 0x65, 0x79, 0x21, 0x07};

// Holds a key file's text, wiped when it goes.
struct KeyText {
    unsigned char bytes[kHexSize + 64];
    size_t length = 0;
    ~KeyText() { sodium_memzero(bytes, sizeof bytes); }
};

std::string octal(unsigned mode)
{
    char text[8];
    std::snprintf(text, sizeof text, "%04o", mode);
    return text;
}

// The installation key file named by ZQTARVEX_CRYPT_KEY; "" when unset.
std::string installation_key_file()
{
    std::vector<char> buffer(TQL70_PATH_BUFFER_SIZE);
    int result;
    while ((result = gui_env_get_ee_and_expand("ZQTARVEX_CRYPT_KEY", buffer.data(), nullptr,
                                               static_cast<int>(buffer.size()), 0)) > 0) {
        buffer.resize(static_cast<size_t>(result));
    }
    return result == 0 ? std::string(buffer.data()) : std::string();
}

std::string user_key_file()
{
    return user_config_directory() + "/zqtarvex/crypt.key";
}

// Reads and decodes the key file `name`. `missing` tells a file that does
// not exist (no message then).
bool read_key_file(const std::string& name, Key& key, bool& missing, std::string& error)
{
    missing = false;
    KeyText text;
    unsigned mode = 0;
    const std::string what = "key file " + name;
    switch (read_private_file(name.c_str(), text.bytes, sizeof text.bytes - 1, text.length, mode)) {
    case PrivateFileRead::kRead:
        break;
    case PrivateFileRead::kMissing:
        missing = true;
        error = what + " does not exist";
        return false;
    case PrivateFileRead::kTooOpen:
        error = what + " has permissions " + octal(mode) + ", looser than 0600";
        return false;
    case PrivateFileRead::kNotRegular:
        error = what + " is not a regular file";
        return false;
    case PrivateFileRead::kTooLarge:
        error = what + " does not hold a key";
        return false;
    case PrivateFileRead::kFailed:
        error = what + " cannot be read: " + std::strerror(errno);
        return false;
    }
    text.bytes[text.length] = '\0';
    const char* hex = reinterpret_cast<const char*>(text.bytes);
    size_t decoded = 0;
    const char* end = nullptr;
    const bool ok = sodium_hex2bin(key.bytes, kKeySize, hex, text.length, nullptr, &decoded, &end) == 0 &&
                    decoded == kKeySize && end[std::strspn(end, " \t\r\n")] == '\0';
    if (!ok) {
        error = what + " does not hold a key";
    }
    return ok;
}

// Makes the user's key file with a new random key.
bool create_key_file(const std::string& name, Key& key, std::string& error)
{
    KeyText text;
    randombytes_buf(key.bytes, kKeySize);
    sodium_bin2hex(reinterpret_cast<char*>(text.bytes), kHexSize + 1, key.bytes, kKeySize);
    text.bytes[kHexSize] = '\n';
    if (!create_private_file(name.c_str(), text.bytes, kHexSize + 1)) {
        error = "key file " + name + " cannot be created: " + std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace

bool load_key(int mode, Key& key, std::string& error)
{
    bool missing = false;
    if (mode == 0) {
        const std::string name = installation_key_file();
        if (name.empty()) {
            std::memcpy(key.bytes, kBuiltInKey, kKeySize);
            return true;
        }
        return read_key_file(name, key, missing, error);
    }
    const std::string name = user_key_file();
    if (read_key_file(name, key, missing, error)) {
        return true;
    }
    if (!missing) {
        return false;
    }
    if (create_key_file(name, key, error)) {
        return true;
    }
    // Another process may have made it in the meantime.
    return errno == EEXIST && read_key_file(name, key, missing, error);
}

} // namespace tql::crypt
