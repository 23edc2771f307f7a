// Every function that writes into a caller's buffer is called with a heap
// buffer of exactly the size its header states, over boundary inputs and a
// seeded random sweep; under AddressSanitizer a write past that size stops
// the run, and in every build the text must end inside the buffer. A second
// table holds every null-pointer call to its failure status.
#include <tql70/astr.h>
#include <tql70/base64.h>
#include <tql70/gfile.h>
#include <tql70/gparse.h>
#include <tql70/gui_env.h>
#include <tql70/platform.h>
#include <tql70/tql_os.h>
#include <tql70/zq_arrays.h>
#include <tql70/zq_paths.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/scoped_env.h"

namespace {

struct Input { std::string text; std::string other; int n; int m; double value; };

long long length(const std::string& s) { return static_cast<long long>(s.size()); }

// The |exponent| of a number text, as the exponent conversions size it.
long long exponent_of(const std::string& text)
{
    const size_t e = text.find_first_of("eE");
    return e == std::string::npos ? 0 : std::min(std::labs(std::strtol(text.c_str() + e + 1, nullptr, 10)), 401L);
}

long long fixed_size(const Input& in)
{
    return std::max<long long>({in.n, in.m + 3, 0}) + 1;
}

// Field `index` of `line` cut at blanks and ';', for the field readers.
parserec& parsed(const std::string& line)
{
    static parserec rec;
    gparse_parline(line.c_str(), " ;", "", 0, &rec);
    return rec;
}

// The size a slot reader needs: the length of its text (read once into a
// large buffer) plus `extra`.
template <typename Read>
long long slot_size(const std::string& line, int extra, Read read)
{
    std::vector<char> large(line.size() + 3);
    parseheader hdr;
    read(line.c_str(), &hdr, large.data());
    return static_cast<long long>(std::strlen(large.data())) + extra;
}

struct Row {
    const char* name;
    bool always_text; // a text always ends inside the buffer
    std::function<long long(const Input&)> size;
    std::function<void(const Input&, char*)> call;
};

const std::vector<Row>& rows()
{
    static const std::vector<Row> table = {
        {"cpystr", true, [](const Input& in) { return length(in.text) + 1; }, [](const Input& in, char* b) { gparse_cpystr(in.text.c_str(), b); }},
        {"strncpy", false, [](const Input& in) { return std::min<long long>(length(in.text), std::max(in.n, 0)) + 1; }, [](const Input& in, char* b) { gparse_strncpy(in.text.c_str(), in.n, b); }},
        {"cpystrl", true, [](const Input& in) { return std::min<long long>(length(in.text), std::max(in.n, 0)) + 1; }, [](const Input& in, char* b) { gparse_cpystrl(in.text.c_str(), b, in.n); }},
        {"cpystrn", true, [](const Input& in) { return std::max(in.n, 0) + 1LL; }, [](const Input& in, char* b) { gparse_cpystrn(in.text.c_str(), in.n, b); }},
        {"szstrlj", true, [](const Input& in) { return std::max(in.n, 0) + 1LL; }, [](const Input& in, char* b) { gparse_szstrlj(in.text.c_str(), in.n, b); }},
        {"szstrrj", true, [](const Input& in) { return std::max(in.n, 0) + 1LL; }, [](const Input& in, char* b) { gparse_szstrrj(in.text.c_str(), in.n, b); }},
        {"addstr", true, [](const Input& in) { return length(in.text) + length(in.other) + 1; }, [](const Input& in, char* b) { gparse_addstr(in.text.c_str(), in.other.c_str(), b); }},
        {"addstrn", true, [](const Input& in) { return std::max(in.n, 0) + 1LL; }, [](const Input& in, char* b) { gparse_addstrn(in.text.c_str(), in.other.c_str(), in.n, b); }},
        {"strncat", true, [](const Input& in) { return std::max(in.n, 0) + 1LL; }, [](const Input& in, char* b) {
             gparse_strncpy(in.text.c_str(), std::max(in.n, 0), b);
             b[std::min<long long>(length(in.text), std::max(in.n, 0))] = '\0';
             gparse_strncat(in.other.c_str(), in.n, b); }},
        {"strtostr", true, [](const Input& in) { return std::max(0LL, std::min<long long>(std::max(in.n, 0) - std::max(in.m, 0) + 1, length(in.text) - std::max(in.m, 0))) + 1; }, [](const Input& in, char* b) { gparse_strtostr(in.text.c_str(), in.m, in.n, b); }},
        {"strpbl", true, [](const Input& in) { return length(in.text) + 1; }, [](const Input& in, char* b) { gparse_strpbl(in.text.c_str(), b); }},
        {"inttoas", true, [](const Input& in) { return std::max(std::min(in.n, 11), 0) + 1LL; }, [](const Input& in, char* b) { gparse_inttoas(static_cast<int>(in.m * 123457LL % 2147483647), in.n, b); }},
        {"dbltoas", true, fixed_size, [](const Input& in, char* b) { gparse_dbltoas(in.value, in.n, in.m, b); }},
        {"flttoas", true, fixed_size, [](const Input& in, char* b) { gparse_flttoas(static_cast<float>(in.value), in.n, in.m, b); }},
        {"dblxxas", true, fixed_size, [](const Input& in, char* b) { gparse_dblxxas(in.value, in.n, in.m, b); }},
        {"fltxxas", true, fixed_size, [](const Input& in, char* b) { gparse_fltxxas(static_cast<float>(in.value), in.n, in.m, b); }},
        {"dblmxas", true, [](const Input& in) { return std::max(in.n, 0) + 1LL; }, [](const Input& in, char* b) { gparse_dblmxas(in.value, in.n, b); }},
        {"fltmxas", true, [](const Input& in) { return std::max(in.n, 0) + 1LL; }, [](const Input& in, char* b) { gparse_fltmxas(static_cast<float>(in.value), in.n, b); }},
        {"stripped_zeros", true, [](const Input& in) { return length(in.text) + 1; }, [](const Input& in, char* b) { gparse_cnvt_string_stripped_zeros(in.text.c_str(), b); }},
        {"from_e", true, [](const Input& in) { return length(in.text) + exponent_of(in.text) + 2; }, [](const Input& in, char* b) { gparse_cnvt_from_e_to_string(in.text.c_str(), b); }},
        {"string_stripped", true, [](const Input& in) { return length(in.text) + exponent_of(in.text) + 2; }, [](const Input& in, char* b) { gparse_cnvt_string_string_stripped(in.text.c_str(), b); }},
        {"getclump", false, [](const Input& in) { const parserec& r = parsed(in.text); return in.n >= 0 && static_cast<unsigned>(in.n) < r.count ? r.fields[in.n].end - r.fields[in.n].start + 2LL : 1LL; }, [](const Input& in, char* b) { gparse_getclump(&parsed(in.text), in.n, b); }},
        {"getplinstr", true, [](const Input& in) { const parserec& r = parsed(in.text); return r.count > 0 ? r.fields[r.count - 1].end - r.fields[0].start + 2LL : 1LL; }, [](const Input& in, char* b) { parserec& r = parsed(in.text); gparse_getplinstr(&r, 0, static_cast<int>(r.count) - 1, b); }},
        {"getclump2", true, [](const Input& in) { return slot_size(in.text, 1, [&](const char* l, parseheader* h, char* o) { gparse_parline2(l, " ;", h); gparse_getclump2(h, std::abs(in.n) % 3, o); }); },
         [](const Input& in, char* b) { parseheader h; gparse_parline2(in.text.c_str(), " ;", &h); gparse_getclump2(&h, std::abs(in.n) % 3, b); }},
        {"getclump3", true, [](const Input& in) { return slot_size(in.text, 2, [&](const char* l, parseheader* h, char* o) { gparse_parline3(l, ";", h); gparse_getclump3(h, std::abs(in.n) % 4, o); }); },
         [](const Input& in, char* b) { parseheader h; gparse_parline3(in.text.c_str(), ";", &h); gparse_getclump3(&h, std::abs(in.n) % 4, b); }},
        {"kps_get_valid_name", true, [](const Input& in) { return length(in.text) + 1; }, [](const Input& in, char* b) { astr_kps_get_valid_name(in.text.c_str(), in.m & 0x1c3, in.n & 1, '_', b); }},
        {"extract_line", false, [](const Input& in) { return std::max(in.n + 1, 0); }, [](const Input& in, char* b) { astr_extract_line_from_multilines(in.text.c_str(), b, in.n); }},
        {"stripext", true, [](const Input& in) { return length(in.text) + 1; }, [](const Input& in, char* b) { gfile_stripext(in.text.c_str(), b); }},
        {"stripdrv", true, [](const Input& in) { return length(in.text) + 1; }, [](const Input& in, char* b) { gfile_stripdrv(in.text.c_str(), b); }},
        {"filext", true, [](const Input& in) { return length(in.text) + length(in.other) + 2; }, [](const Input& in, char* b) { std::strcpy(b, in.text.c_str()); gfile_filext(b, in.n & 1, in.other.c_str()); }},
        {"fildrv", true, [](const Input& in) { return length(in.text) + length(in.other) + 2; }, [](const Input& in, char* b) { std::strcpy(b, in.text.c_str()); gfile_fildrv(b, in.n & 1, in.other.c_str()); }},
        {"prepare_dir_name", true, [](const Input& in) { return length(in.text) + 2; }, [](const Input& in, char* b) { std::strcpy(b, in.text.c_str()); gfile_prepare_dir_name(b); }},
        {"native_path", true, [](const Input& in) { return length(in.text) + 1; }, [](const Input& in, char* b) { tql_native_path(in.text.c_str(), b); }},
        {"canonical_path", false, [](const Input&) { return TQL70_PATH_BUFFER_SIZE; }, [](const Input& in, char* b) { ZQ_canonical_path(in.text.c_str(), b); }},
        {"canonical_path_force", false, [](const Input&) { return TQL70_PATH_BUFFER_SIZE; }, [](const Input& in, char* b) { ZQ_canonical_path_force(in.text.c_str(), b); }},
        {"directory_from_file", true, [](const Input&) { return TQL70_PATH_BUFFER_SIZE; }, [](const Input& in, char* b) { ZQ_get_directory_from_file(in.text.c_str(), b); }},
        {"setdefpath", false, [](const Input&) { return TQL70_PATH_BUFFER_SIZE; }, [](const Input& in, char* b) { std::snprintf(b, TQL70_PATH_BUFFER_SIZE, "%s", in.n & 1 ? "." : ".."); gfile_setdefpath(b); }},
        {"getdefpath", false, [](const Input& in) { return std::max(in.n, 1); }, [](const Input& in, char* b) { gfile_getdefpath(b, std::max(in.n, 1)); }},
        {"tmpnam", true, [](const Input&) { return TQL70_PATH_BUFFER_SIZE; }, [](const Input&, char* b) { tql_tmpnam(b); }},
        {"expand_system_only", false, [](const Input& in) { return std::max(in.n, 1); }, [](const Input& in, char* b) { gui_env_expand_str_system_only(b, in.text.c_str(), std::max(in.n, 1), nullptr, nullptr); }},
        {"extract_path", false, [](const Input& in) { return std::max(in.n, 1); }, [](const Input& in, char* b) { gui_env_extract_path(b, in.text.c_str(), 0, std::max(in.n, 1), nullptr, nullptr); }},
        {"getline_limited", false, [](const Input& in) { return std::max(in.n, 1); }, [](const Input& in, char* b) {
             std::string text = in.text + "\n";
             FILE* f = fmemopen(&text[0], text.size(), "r");
             gfile_getline_limited(f, b, std::max(in.n, 1));
             std::fclose(f); }},
        {"int32_to_bin", false, [](const Input&) { return 4; }, [](const Input& in, char* b) { atql_int32_to_bin(in.n, reinterpret_cast<unsigned char*>(b)); }},
        {"base64_encode", false, [](const Input& in) { return (length(in.text) + 2) / 3 * 4 + length(in.text) / 54 + 2 + 4; }, [](const Input& in, char* b) {
             base64_encodestate s; base64_init_encodestate(&s);
             const int n = base64_encode_block(in.text.data(), static_cast<int>(in.text.size()), b, &s);
             base64_encode_blockend(b + n, &s); }},
        {"base64_decode", false, [](const Input& in) { return length(in.text) * 3 / 4 + 2; }, [](const Input& in, char* b) {
             base64_decodestate s; base64_init_decodestate(&s);
             base64_decode_block(in.text.data(), static_cast<int>(in.text.size()), b, &s); }},
    };
    return table;
}

std::vector<Input> inputs()
{
    const std::vector<std::string> texts = {"", " ", "a", "  ab  ;x;y;z", "-.5", ".5", "+.5", "-.5e-400", "1.50E+003",
                                            " 007.500 ", "C:\\dir\\file.ext", "a/b/c.d.e", "\\\\srv\\x", "x:", "1(2,3)",
                                            "line1\nline2", "QUJDRA==", "$HOME/x;${HOME}:c", std::string(1100, 'd')};
    const std::vector<int> counts = {-1, 0, 1, 3, 12, 40};
    const std::vector<double> values = {9.92456e-20, -1e17, 0.0, -0.5, 1e300, -3.4e38, 99.995, std::nan("")};
    std::vector<Input> all;
    size_t k = 0;
    for (const std::string& text : texts) {
        for (const int n : counts) {
            all.push_back({text, texts[k % texts.size()].substr(0, 30), n, counts[k % counts.size()] + 20 * static_cast<int>(k % 3), values[k % values.size()]});
            ++k;
        }
    }
    std::mt19937 random(20261123);
    const std::string alphabet = " .-+eE0123456789;/\\:abcZ\n(,)${}";
    for (int i = 0; i < 3000; ++i) {
        std::string text(random() % 40, ' ');
        for (char& c : text) c = alphabet[random() % alphabet.size()];
        const uint64_t bits = (static_cast<uint64_t>(random()) << 32) | random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (i % 2) value = (1 + random() % 9999) * std::pow(10.0, static_cast<int>(random() % 80) - 40) * (i % 4 == 1 ? -1 : 1);
        all.push_back({text, text.substr(0, random() % 8), static_cast<int>(random() % 90) - 5, static_cast<int>(random() % 70) - 5, value});
    }
    return all;
}

TEST(BufferContract, EveryWriterKeepsToItsStatedSize)
{
    tql_test::TempDir dir;
    tql_test::ScopedCurrentDirectory here(dir.path());
    tql_test::ScopedEnv home("HOME", dir.path());
    tql_test::ScopedSettingsStore store({});
    for (const Input& in : inputs()) {
        for (const Row& row : rows()) {
            SCOPED_TRACE(std::string(row.name) + " text \"" + in.text.substr(0, 40) + "\" n " + std::to_string(in.n) + " m " + std::to_string(in.m));
            const long long size = row.size(in);
            ASSERT_GE(size, 0);
            std::unique_ptr<char[]> buffer(new char[static_cast<size_t>(size)]);
            std::memset(buffer.get(), 0x7f, static_cast<size_t>(size));
            row.call(in, buffer.get());
            if (row.always_text) {
                EXPECT_NE(std::memchr(buffer.get(), '\0', static_cast<size_t>(size)), nullptr);
            }
        }
    }
}

TEST(BufferContract, PathWritersRefuseWhatDoesNotFit)
{
    tql_test::TempDir dir;
    const std::string long_name = dir.path() + "/" + std::string(TQL70_PATH_BUFFER_SIZE, 'p');
    std::vector<char> out(TQL70_PATH_BUFFER_SIZE, 'x');
    EXPECT_EQ(ZQ_canonical_path(long_name.c_str(), out.data()), nullptr);
    EXPECT_EQ(out[0], 'x');
    EXPECT_EQ(ZQ_canonical_path_force(long_name.c_str(), out.data()), nullptr);
    EXPECT_STREQ(ZQ_get_directory_from_file((long_name + "/f").c_str(), out.data()), "");
    tql_test::ScopedEnv home("HOME", long_name);
    EXPECT_EQ(tql_tmpnam(out.data()), nullptr);
    EXPECT_STREQ(out.data(), "");
    // The regressions of the slot readers and the zero stripper, byte-exact.
    parseheader hdr;
    gparse_parline3("  ab  ;x;y;z", ";", &hdr);
    std::unique_ptr<char[]> four(new char[4]);
    EXPECT_EQ(gparse_getclump3(&hdr, 0, four.get()), 1u);
    EXPECT_EQ(std::string(four.get(), 4), std::string("ab\0\0", 4));
    for (const char* text : {"-.5", ".5", "-.5e-400"}) {
        std::unique_ptr<char[]> exact(new char[std::strlen(text) + 1]);
        EXPECT_EQ(gparse_cnvt_string_stripped_zeros(text, exact.get()), 1u);
        EXPECT_STREQ(exact.get(), text);
    }
}

TEST(NullArguments, EachCallAnswersWithItsFailureStatus)
{
    char buf[64] = "x";
    int number = 0;
    FILE* fp = nullptr;
    parseheader hdr;
    parserec rec;
    gparse_parline("a b", " ", "", 0, &rec);
    const auto address = [](const void* p) { return static_cast<long long>(reinterpret_cast<intptr_t>(p)); };
    const struct { const char* call; std::function<long long()> run; long long failure; } cases[] = {
        {"ZQ_strlwr", [&] { return address(ZQ_strlwr(nullptr)); }, 0},
        {"ZQ_path_is_absolute", [] { return ZQ_path_is_absolute(nullptr); }, 0},
        {"ZQ_canonical_path out", [&] { return address(ZQ_canonical_path("a", nullptr)); }, 0},
        {"ZQ_get_directory_from_file out", [&] { return address(ZQ_get_directory_from_file("a/b", nullptr)); }, 0},
        {"gfile_getline_limited", [&] { return gfile_getline_limited(nullptr, buf, 8); }, 0},
        {"gfile_getline buf", [&] { return gfile_getline(stdin, nullptr); }, 0},
        {"gfile_filopn fp", [] { return gfile_filopn(nullptr, "x", GFILE_READ); }, 0},
        {"gfile_filopn name", [&] { return gfile_filopn(&fp, nullptr, GFILE_READ) + address(fp); }, 0},
        {"gfile_filend", [] { return gfile_filend(nullptr); }, 0},
        {"gfile_filerr", [] { return gfile_filerr(nullptr); }, 0},
        {"gfile_getfilbuf", [&] { return gfile_getfilbuf(nullptr, 1, 1, buf); }, 0},
        {"gfile_putfilbuf", [&] { return gfile_putfilbuf(nullptr, 1, 1, buf); }, 0},
        {"gfile_getfilchr", [&] { return gfile_getfilchr(nullptr, buf); }, 0},
        {"gfile_putfilchr", [] { return gfile_putfilchr(nullptr, 'a'); }, 0},
        {"gfile_getfilptr", [] { return gfile_getfilptr(stdin, nullptr); }, 0},
        {"gfile_putfilptr", [] { return gfile_putfilptr(nullptr, 0); }, 0},
        {"gfile_resetfilptr", [] { return gfile_resetfilptr(nullptr); }, 0},
        {"gfile_putline", [] { return gfile_putline(nullptr, 1, "x"); }, 0},
        {"gfile_encrypted", [&] { return gfile_encrypted(nullptr, &number, buf); }, 0},
        {"gfile_filext", [&] { return address(gfile_filext(nullptr, 1, "c")); }, 0},
        {"tql_fgets", [&] { return address(tql_fgets(buf, 8, nullptr)); }, 0},
        {"gparse_parline2", [] { return gparse_parline2("a b", " ", nullptr); }, 0},
        {"gparse_parline3", [] { return gparse_parline3("a b", " ", nullptr); }, 0},
        {"gparse_getclump2 out", [&] { gparse_parline2("a b", " ", &hdr); return gparse_getclump2(&hdr, 0, nullptr); }, 0},
        {"gparse_getclump3 out", [&] { gparse_parline3("a;b", ";", &hdr); return gparse_getclump3(&hdr, 0, nullptr); }, 0},
        {"gparse_getclump out", [&] { return gparse_getclump(&rec, 0, nullptr); }, 0},
        {"gparse_intclump out", [&] { return gparse_intclump(&rec, 0, nullptr); }, 0},
        {"gparse_d_relclump out", [&] { return gparse_d_relclump(&rec, 0, nullptr); }, 0},
        {"gparse_s_relclump out", [&] { return gparse_s_relclump(&rec, 0, nullptr); }, 0},
        {"gparse_getplinstr out", [&] { return address(gparse_getplinstr(&rec, 0, 1, nullptr)); }, 0},
        {"gparse_dbltoas out", [] { return gparse_dbltoas(1.0, 10, 2, nullptr); }, 0},
        {"gparse_cnvt_string_stripped_zeros out", [] { return gparse_cnvt_string_stripped_zeros("1.0", nullptr); }, 0},
        {"astr_extract_line negative max", [&] { return address(astr_extract_line_from_multilines("ab\ncd", buf, -1)) + buf[0] - 'x'; }, 0},
        {"astr_kps_get_valid_name name", [&] { return astr_kps_get_valid_name(nullptr, 0, 0, '_', buf); }, 0},
        {"tql_native_path", [&] { return address(tql_native_path(nullptr, buf)); }, 0},
        // A start beyond the text stops at its NUL: no digits, the NUL's address.
        {"parse_numeric from beyond the end", [&] { const char* t = "12"; return address(gparse_parse_numeric_and_postnumeric_part(t, 9, 12, &number)) - address(t + 2) + number; }, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.call);
        EXPECT_EQ(c.run(), c.failure);
    }
}

} // namespace
