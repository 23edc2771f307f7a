// Fuzz target for the line parser families, field extraction and the
// number rule. The input's first bytes choose the separators, marks and end
// character; the rest is the line. Every field must lie inside the line,
// every family must cut the same fields, and the number rule must agree
// with the fields' typing, values included.
#include <tql70/gparse.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

void check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 3) {
        return 0;
    }
    const std::string seps(1, static_cast<char>(data[0] ? data[0] : ' '));
    const std::string marks = data[1] ? std::string(1, static_cast<char>(data[1])) : std::string();
    const char endc = static_cast<char>(data[2] & 0x7f); // the families agree below 128
    std::string line(reinterpret_cast<const char*>(data + 3), size - 3);
    line.resize(std::strlen(line.c_str()));

    static parserec fixed;
    check(gparse_parline(line.c_str(), seps.c_str(), marks.c_str(), endc, &fixed) == 1);
    parserecMem plain;
    parserecMem efficient;
    gparse_init_parserecMem(&plain);
    gparse_init_parserecMem(&efficient);
    check(gparse_parline_mem(line.c_str(), seps.c_str(), marks.c_str(), endc, &plain) == 1);
    check(gparse_efficient_parline_mem(line.c_str(), seps.c_str(), marks.c_str(), endc, &efficient) == 1);
    check(efficient.count == plain.count);
    check(fixed.count == (plain.count < GPARSE_MAX_FIELDS ? plain.count : GPARSE_MAX_FIELDS));

    std::vector<char> text(line.size() + 2);
    for (unsigned int i = 0; i < plain.count; ++i) {
        const parsefield& f = plain.fields[i];
        check(f.start <= f.end && f.end < line.size());
        check(std::memcmp(&f, &efficient.fields[i], sizeof f) == 0);
        if (i < fixed.count) {
            check(std::memcmp(&f, &fixed.fields[i], sizeof f) == 0);
        }
        check(gparse_getclump_mem(&plain, static_cast<int>(i), text.data()) == 1);
        double value = 0;
        const unsigned int is_num = gparse_astodbl(text.data(), &value);
        check(is_num == static_cast<unsigned int>(f.is_num));
        check(!is_num || std::memcmp(&value, &f.dval, sizeof value) == 0);
        int integer = 0;
        check(gparse_astoint(text.data(), &integer) == static_cast<unsigned int>(f.is_int));
        check(!f.is_int || integer == f.ival);
    }
    if (plain.count > 0) {
        gparse_getplinstr_mem(&plain, 0, static_cast<int>(plain.count) - 1, text.data());
    }
    parseheader header;
    gparse_parline2(line.c_str(), seps.c_str(), &header);
    for (int slot = 0; slot < 3; ++slot) {
        gparse_getclump2(&header, slot, text.data());
    }
    gparse_parline_free_mem(&plain);
    gparse_efficient_parline_free_mem(&efficient);
    return 0;
}
