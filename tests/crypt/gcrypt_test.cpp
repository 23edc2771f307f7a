// gcrypt: round trips under each key, the failure messages in their order,
// key-file permissions, and gfile_encrypted reading what the service made.
#include <tql70/gcrypt.h>
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/gui_env.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

const char kKeyHex[] = "00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff\n";

// Configuration files, home and settings store all in a temporary directory.
class Gcrypt : public ::testing::Test {
protected:
    void SetUp() override { gcrypt_encrypt_mode(0); }
    void TearDown() override { gui_env_deinit(0); }

    static std::string user_key() { return std::getenv("XDG_CONFIG_HOME") + std::string("/zqtarvex/crypt.key"); }
    std::string write_key(const std::string& name, const char* text, mode_t mode) const
    {
        const std::string path = dir_.write_file(name, text);
        chmod(path.c_str(), mode);
        return path;
    }
    static std::string take(char* text)
    {
        std::string copy = text ? text : "(null)";
        gmem_ee_free(text);
        return copy;
    }

    const tql_test::SandboxInstallation dir_{"", "/site"};
};

TEST_F(Gcrypt, RoundTripsUnderEveryKey)
{
    const std::string installation = write_key("install.key", kKeyHex, 0600);
    const struct {
        const char* name;
        int mode;
        bool key_file;
    } keys[] = {{"built-in", 0, false}, {"installation file", 0, true}, {"user", 1, false}};
    const std::string plains[] = {"", "42 alpha", std::string(500, 'x') + "\xc3\xa9"};
    for (const auto& key : keys) {
        gui_env_put_ee("ZQTARVEX_CRYPT_KEY", key.key_file ? installation.c_str() : "", 1);
        gcrypt_encrypt_mode(key.mode);
        for (const std::string& plain : plains) {
            SCOPED_TRACE(std::string(key.name) + " / " + plain.substr(0, 10));
            const std::string line = take(gcrypt_encrypt(plain.c_str()));
            EXPECT_EQ(take(gcrypt_decrypt(line.c_str())), plain);
            EXPECT_STREQ(gcrypt_error(), "");
            EXPECT_NE(take(gcrypt_encrypt(plain.c_str())), line) << "the nonce must be fresh";
        }
    }
    struct stat st;
    ASSERT_EQ(stat(user_key().c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_EQ(st.st_size, 65);
}

TEST_F(Gcrypt, DecryptFailuresAndUnknownModesNameTheirCause)
{
    const std::string good = take(gcrypt_encrypt("7 beta"));
    EXPECT_EQ(gcrypt_encrypt_mode(1), 0); // the mode it replaces
    const std::string other_key = take(gcrypt_encrypt("7 beta"));
    // An unknown mode is refused and the mode stays.
    EXPECT_EQ(gcrypt_encrypt_mode(-1), -1);
    EXPECT_STREQ(gcrypt_error(), "GCRYPTERR: unsupported encryption mode");
    EXPECT_EQ(gcrypt_encrypt_mode(0), 1);
    EXPECT_STREQ(gcrypt_error(), "");
    const struct {
        const char* name;
        std::string text;
        const char* message;
    } cases[] = {
        {"space", good.substr(0, 8) + " " + good.substr(8), "unsupported character in string"},
        {"bad character and bad length", "AB*", "unsupported character in string"},
        {"empty", "", "invalid string"},
        {"not whole groups", good.substr(0, good.size() - 1), "invalid string"},
        {"padding inside", "AA==" + good, "invalid string"},
        {"shorter than nonce and tag", good.substr(0, 40), "invalid string"},
        {"unknown version (its high bits)", "B" + good.substr(1), "invalid string"},
        {"altered", good.substr(0, 9) + (good[9] == 'A' ? "B" : "A") + good.substr(10), "string verification failed"},
        {"other key", other_key, "string verification failed"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(gcrypt_decrypt(c.text.c_str()), nullptr);
        EXPECT_EQ(std::string(gcrypt_error()), std::string("GCRYPTERR: ") + c.message);
    }
    EXPECT_EQ(gcrypt_decrypt(nullptr), nullptr);
    EXPECT_STREQ(gcrypt_error(), "GCRYPTERR: invalid string");
    EXPECT_EQ(gcrypt_encrypt(nullptr), nullptr);
    EXPECT_STREQ(gcrypt_error(), "GCRYPTERR: invalid string");
}

TEST_F(Gcrypt, KeyFilesOpenToOthersOrUnreadableAreRefused)
{
    const std::string executable = write_key("exec.key", kKeyHex, 0700);
    const std::string short_key = write_key("short.key", "00112233\n", 0600);
    const std::string link = dir_.path() + "/link.key";
    ASSERT_EQ(symlink(write_key("target.key", kKeyHex, 0600).c_str(), link.c_str()), 0);
    const struct {
        const char* name;
        std::string file;
        const char* message_end;
    } cases[] = {
        {"owner executable", executable, " has permissions 0700, looser than 0600"},
        {"not a key", short_key, " does not hold a key"},
        {"symbolic link", link, " cannot be read: Too many levels of symbolic links"},
        {"missing", dir_.path() + "/none.key", " does not exist"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        gui_env_put_ee("ZQTARVEX_CRYPT_KEY", c.file.c_str(), 1);
        EXPECT_EQ(gcrypt_encrypt("x"), nullptr);
        EXPECT_EQ(std::string(gcrypt_error()), "GCRYPTERR: key file " + c.file + c.message_end);
    }
    // The user's key is checked when it is read for a decryption too.
    gcrypt_encrypt_mode(1);
    const std::string user = take(gcrypt_encrypt("x"));
    chmod(user_key().c_str(), 0604);
    EXPECT_EQ(gcrypt_decrypt(user.c_str()), nullptr);
    EXPECT_EQ(std::string(gcrypt_error()),
              "GCRYPTERR: key file " + user_key() + " has permissions 0604, looser than 0600");
}

TEST_F(Gcrypt, EncryptedHeaderReadsWhatTheServiceMade)
{
    const std::string header = take(gcrypt_encrypt("42 alpha"));
    gcrypt_encrypt_mode(1); // gfile_encrypted selects mode 0 itself
    FILE* file = std::fopen(dir_.write_file("f.txt", "  @;  " + header + "  \nbody\n").c_str(), "r");
    ASSERT_NE(file, nullptr);
    std::fseek(file, 3, SEEK_SET); // past the '@' mark: the call rewinds first
    int number = 0;
    char word[64] = "";
    EXPECT_EQ(gfile_encrypted(file, &number, word), 1);
    EXPECT_EQ(number, 42);
    EXPECT_STREQ(word, "alpha");
    std::fclose(file);
}

} // namespace
