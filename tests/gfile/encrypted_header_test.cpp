// Recognition of encrypted header lines around the decrypt service: the
// stand-in rejects every line; a test service shows the success path.
#include "support/scoped_env.h"

#include "gfile/decrypt_service.h"

#include <tql70/gerror.h>
#include <tql70/gfile.h>

#include <gtest/gtest.h>

#include <string>

namespace tql_test {
namespace {

std::string g_cipher;

// Accepts cipher text "ok:<plain>".
bool test_decrypt(const char* cipher, std::string& plain)
{
    g_cipher = cipher;
    if (std::string(cipher).rfind("ok:", 0) != 0) return false;
    plain = cipher + 3;
    return true;
}

struct Result {
    int answer;
    int number;
    std::string word;
    long position; // of the stream afterwards
};

Result read_header(const std::string& file)
{
    FILE* fp = nullptr;
    gfile_filopn(&fp, file.c_str(), GFILE_READ);
    std::fseek(fp, 3, SEEK_SET); // past a header's "@" mark: the call rewinds first
    Result result{0, -1, "", 0};
    char word[64] = "unset";
    result.answer = gfile_encrypted(fp, &result.number, word);
    result.word = word;
    result.position = std::ftell(fp);
    gfile_filcls(fp);
    return result;
}

TEST(EncryptedHeader, StandInRejectsEveryLineATestServiceAcceptsItsOwn)
{
    TempDir dir;
    const Result rejected = read_header(dir.write_file("h.txt", "@&ok:7 word\nbody\n"));
    EXPECT_EQ(rejected.answer, 0);
    EXPECT_EQ(rejected.position, 0); // rewound

    tql::gfile::DecryptService saved = tql::gfile::decrypt_service();
    tql::gfile::decrypt_service() = {[](int) {}, test_decrypt};

    const Result found = read_header(dir.write_file("a.txt", "  @;  ok:42 secret  \nbody\n"));
    EXPECT_EQ(found.answer, 1);
    EXPECT_EQ(found.number, 42);
    EXPECT_EQ(found.word, "secret");
    EXPECT_EQ(found.position, 21); // after the header line
    EXPECT_EQ(g_cipher, "ok:42 secret");

    for (const char* text : {"@x ok:1 w\n", "plain ok:1 w\n", "@\n", ""}) {
        SCOPED_TRACE(text);
        gerror_set_all_errors(0, 0);
        const Result r = read_header(dir.write_file("b.txt", text));
        EXPECT_EQ(r.answer, 0);
        EXPECT_EQ(r.position, 0);
        EXPECT_EQ(GuiErrno, *text ? 0 : 24); // only an empty file is a read error
    }
    gerror_set_all_errors(0, 0);
    tql::gfile::decrypt_service() = saved;
}

} // namespace
} // namespace tql_test
