// tql crypt: encrypting and decrypting one text with the installation key,
// and making the header line of an encrypted text file.
#include "commands.h"

#include <tql70/gcrypt.h>
#include <tql70/gmem.h>
#include <tql70/gparse.h>

#include <cstdio>

namespace tql_tool {

namespace {

int fail_usage(const char* message)
{
    for (const Command& command : commands()) {
        if (std::string(command.name) == "crypt") {
            return usage_error(command, message);
        }
    }
    return 2;
}

// Prints `prefix` and the result of `operation` on `text`.
int print_result(char* (*operation)(const char*), const std::string& text, const char* prefix)
{
    gcrypt_encrypt_mode(GCRYPT_MODE_INSTALLATION);
    char* result = operation(text.c_str());
    if (!result) {
        std::fprintf(stderr, "tql: %s\n", gcrypt_error());
        return 1;
    }
    std::printf("%s%s\n", prefix, result);
    gmem_ee_free(result);
    return 0;
}

} // namespace

int run_crypt(const Args& args)
{
    if (args.size() == 2 && args[0] == "encrypt") {
        return print_result(gcrypt_encrypt, args[1], "");
    }
    if (args.size() == 2 && args[0] == "decrypt") {
        return print_result(gcrypt_decrypt, args[1], "");
    }
    if (args.size() == 3 && args[0] == "header") {
        int number = 0;
        if (!gparse_astoint(args[1].c_str(), &number)) {
            return fail_usage("the header's NUMBER is an integer");
        }
        if (args[2].empty() || args[2].find_first_of(" \t\r\n") != std::string::npos) {
            return fail_usage("the header's WORD is one word");
        }
        return print_result(gcrypt_encrypt, std::to_string(number) + " " + args[2], "@& ");
    }
    return fail_usage("crypt takes encrypt or decrypt and a text, or header, a number and a word");
}

} // namespace tql_tool
