// gcrypt_encrypt_mode, gcrypt_encrypt, gcrypt_decrypt and gcrypt_error.
//
// A cipher line is the base64 form (standard alphabet, '=' padding, no
// line breaks) of: one version byte (1), the 24-byte random nonce, then
// the XChaCha20-Poly1305 cipher text of the plain text with its 16-byte
// tag. The version byte is also the associated data, so it is covered by
// the tag.
#include <tql70/base64.h>
#include <tql70/gcrypt.h>
#include <tql70/gmem.h>

#include "crypt/keys.h"

#include <cstring>
#include <string>
#include <vector>

namespace {

using tql::crypt::Key;

constexpr unsigned char kVersion = 1;
constexpr size_t kNonceSize = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr size_t kTagSize = crypto_aead_xchacha20poly1305_ietf_ABYTES;
constexpr size_t kHeaderSize = 1 + kNonceSize;
// libb64 counts in int; plain texts stay far below its limit.
constexpr size_t kMaxPlain = size_t(1) << 28;

const char kPrefix[] = "GCRYPTERR: ";
const char kBadCharacter[] = "unsupported character in string";
const char kInvalid[] = "invalid string";
const char kVerification[] = "string verification failed";
const char kBadMode[] = "unsupported encryption mode";

int current_mode = GCRYPT_MODE_INSTALLATION;
std::string last_error;

void succeed()
{
    last_error.clear();
}

// Records the failure `message`; returns null for the caller to return.
char* fail(const std::string& message)
{
    last_error = kPrefix + message;
    return nullptr;
}

bool ready(std::string& error)
{
    if (sodium_init() < 0) {
        error = "the cryptographic library cannot be initialised";
        return false;
    }
    return true;
}

bool is_base64_character(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/' ||
           c == '=';
}

// A well-formed line: whole groups of four, '=' only as one or two final
// characters.
bool is_well_formed(const char* text, size_t length)
{
    if (length == 0 || length % 4 != 0) {
        return false;
    }
    const char* first_pad = std::strchr(text, '=');
    return !first_pad || (text + length - first_pad <= 2 && (first_pad[1] == '\0' || first_pad[1] == '='));
}

char* new_string(const unsigned char* bytes, size_t length)
{
    char* out = static_cast<char*>(gmem_ee_malloc(1, length + 1));
    if (out) {
        std::memcpy(out, bytes, length);
        out[length] = '\0';
    }
    return out;
}

} // namespace

extern "C" {

int gcrypt_encrypt_mode(int mode)
{
    if (mode != GCRYPT_MODE_INSTALLATION && mode != GCRYPT_MODE_USER) {
        fail(kBadMode);
        return -1;
    }
    const int previous = current_mode;
    current_mode = mode;
    succeed();
    return previous;
}

char* gcrypt_encrypt(const char* plain)
{
    if (!plain || std::strlen(plain) > kMaxPlain) {
        return fail(kInvalid);
    }
    std::string error;
    Key key;
    if (!ready(error) || !tql::crypt::load_key(current_mode, key, error)) {
        return fail(error);
    }
    const size_t plain_length = std::strlen(plain);
    std::vector<unsigned char> sealed(kHeaderSize + plain_length + kTagSize);
    sealed[0] = kVersion;
    randombytes_buf(&sealed[1], kNonceSize);
    unsigned long long sealed_length = 0;
    crypto_aead_xchacha20poly1305_ietf_encrypt(&sealed[kHeaderSize], &sealed_length,
                                               reinterpret_cast<const unsigned char*>(plain), plain_length,
                                               &sealed[0], 1, nullptr, &sealed[1], key.bytes);
    const int in_length = static_cast<int>(kHeaderSize + sealed_length);
    // libb64 writes a line feed after every 72 characters and at the end;
    // they are dropped to make one line.
    std::vector<char> encoded(static_cast<size_t>((in_length + 2) / 3 * 4 + in_length / 54 + 8));
    base64_encodestate state;
    base64_init_encodestate(&state);
    int written = base64_encode_block(reinterpret_cast<const char*>(sealed.data()), in_length, encoded.data(), &state);
    written += base64_encode_blockend(encoded.data() + written, &state);
    std::vector<unsigned char> line;
    line.reserve(static_cast<size_t>(written));
    for (int i = 0; i < written; ++i) {
        if (encoded[static_cast<size_t>(i)] != '\n') {
            line.push_back(static_cast<unsigned char>(encoded[static_cast<size_t>(i)]));
        }
    }
    char* out = new_string(line.data(), line.size());
    if (!out) {
        return fail("out of memory");
    }
    succeed();
    return out;
}

char* gcrypt_decrypt(const char* text)
{
    if (!text) {
        return fail(kInvalid);
    }
    const size_t length = std::strlen(text);
    for (size_t i = 0; i < length; ++i) {
        if (!is_base64_character(text[i])) {
            return fail(kBadCharacter);
        }
    }
    if (length > kMaxPlain * 2 || !is_well_formed(text, length)) {
        return fail(kInvalid);
    }
    std::vector<unsigned char> sealed(length / 4 * 3 + 2);
    base64_decodestate state;
    base64_init_decodestate(&state);
    const size_t sealed_length = static_cast<size_t>(
        base64_decode_block(text, static_cast<int>(length), reinterpret_cast<char*>(sealed.data()), &state));
    if (sealed_length < kHeaderSize + kTagSize || sealed[0] != kVersion) {
        return fail(kInvalid);
    }
    std::string error;
    Key key;
    if (!ready(error) || !tql::crypt::load_key(current_mode, key, error)) {
        return fail(error);
    }
    std::vector<unsigned char> plain(sealed_length - kHeaderSize - kTagSize + 1);
    unsigned long long plain_length = 0;
    if (crypto_aead_xchacha20poly1305_ietf_decrypt(plain.data(), &plain_length, nullptr, &sealed[kHeaderSize],
                                                   sealed_length - kHeaderSize, &sealed[0], 1, &sealed[1],
                                                   key.bytes) != 0) {
        return fail(kVerification);
    }
    char* out = new_string(plain.data(), static_cast<size_t>(plain_length));
    sodium_memzero(plain.data(), plain.size());
    if (!out) {
        return fail("out of memory");
    }
    succeed();
    return out;
}

const char* gcrypt_error(void)
{
    return last_error.c_str();
}

} // extern "C"
