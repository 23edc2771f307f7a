// The line parser families and field extraction: cutting, marks, end
// characters, typing, the 300-field limit, the registries and their ids,
// and the positional parsers.
#include <tql70/gmem.h>
#include <tql70/gparse.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Field {
    unsigned int start, end;
    bool operator==(const Field& o) const { return start == o.start && end == o.end; }
};

std::vector<Field> fixed_fields(const char* line, const char* seps, const char* marks = "", char endc = 0)
{
    static parserec rec;
    EXPECT_EQ(gparse_parline(line, seps, marks, endc, &rec), 1u);
    std::vector<Field> out;
    for (unsigned int i = 0; i < rec.count; ++i) out.push_back({rec.fields[i].start, rec.fields[i].end});
    return out;
}

template <typename Parse, typename Free>
std::vector<Field> mem_fields(Parse parse, Free release, const char* line, const char* seps, const char* marks,
                              char endc)
{
    parserecMem rec;
    gparse_init_parserecMem(&rec);
    EXPECT_EQ(parse(line, seps, marks, endc, &rec), 1u);
    std::vector<Field> out;
    for (unsigned int i = 0; i < rec.count; ++i) out.push_back({rec.fields[i].start, rec.fields[i].end});
    EXPECT_EQ(release(&rec), 1u);
    return out;
}

TEST(LineParser, CuttingIsTheSameInEveryFamily)
{
    using V = std::vector<Field>;
    struct Case { const char* line; const char* seps; const char* marks; char endc; V fields; } cases[] = {
        {"  a  b  ", " ", "", 0, V{{2, 2}, {5, 5}}}, {"a=b", " ", "=", 0, V{{0, 0}, {1, 1}, {2, 2}}},
        {"x;y!comment", ";", "", '!', V{{0, 0}, {2, 2}}}, {"key==v", " ", "=", 0, V{{0, 2}, {3, 3}, {4, 4}, {5, 5}}},
        {"   ", " ", "", 0, V{}},
        {"a b", " ", " ", 0, V{{0, 0}, {1, 1}, {2, 2}}}, // in both sets: a mark
        {"one two", " \t", "", 'z', V{{0, 2}, {4, 6}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(fixed_fields(c.line, c.seps, c.marks, c.endc), c.fields);
        EXPECT_EQ(mem_fields(gparse_parline_mem, gparse_parline_free_mem, c.line, c.seps, c.marks, c.endc), c.fields);
        EXPECT_EQ(mem_fields(gparse_efficient_parline_mem, gparse_efficient_parline_free_mem, c.line, c.seps,
                             c.marks, c.endc),
                  c.fields);
    }
    // An end character above 127 stops the fixed parser only.
    const char line[] = "a b\xe9 c";
    EXPECT_EQ(fixed_fields(line, " ", "", '\xe9').size(), 2u);
    EXPECT_EQ(mem_fields(gparse_parline_mem, gparse_parline_free_mem, line, " ", "", '\xe9').size(), 3u);

    // The fixed record holds 300 fields; the growing ones hold them all.
    std::string many;
    for (int i = 0; i < 400; ++i) many += "w ";
    EXPECT_EQ(fixed_fields(many.c_str(), " ").size(), 300u);
    EXPECT_EQ(mem_fields(gparse_parline_mem, gparse_parline_free_mem, many.c_str(), " ", "", 0).size(), 400u);

    parserec rec;
    rec.count = 7;
    EXPECT_EQ(gparse_parline("a b", "", "", 0, &rec), 0u);
    EXPECT_EQ(rec.count, 0u);
}

TEST(LineParser, TypingAndExtraction)
{
    struct Case { const char* text; int is_int; int is_num; double value; } cases[] = {
        {"-3.", 1, 1, -3},   {"1e3", 1, 1, 1000}, {".5", 0, 1, 0.5}, {"2147483647", 1, 1, 2147483647.0},
        {"-2147483648", 0, 1, -2147483648.0},    {"1e", 0, 0, 0},    {"1e400", 0, 1, HUGE_VAL}, {"0x10", 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        parserec rec;
        ASSERT_EQ(gparse_parline(c.text, ",", "", 0, &rec), 1u);
        ASSERT_EQ(rec.count, 1u);
        EXPECT_EQ(rec.fields[0].is_int, c.is_int);
        EXPECT_EQ(rec.fields[0].is_num, c.is_num);
        EXPECT_EQ(rec.fields[0].dval, c.value);
        EXPECT_EQ(rec.fields[0].ival, c.is_int ? static_cast<int>(c.value) : 0);
    }
    // A blank inside a field (blank not a separator) is not a number.
    parserec rec;
    gparse_parline(" 5", ",", "", 0, &rec);
    EXPECT_EQ(rec.fields[0].is_num, 0);

    gparse_parline("x 12 3.5", " ", "", 0, &rec);
    int i = 99;
    double d = 99;
    float f = 99;
    EXPECT_EQ(gparse_intclump(&rec, 2, &i), 0u);
    EXPECT_EQ(i, 0);
    EXPECT_EQ(gparse_d_relclump(&rec, 2, &d), 1u);
    EXPECT_EQ(d, 3.5);
    EXPECT_EQ(gparse_s_relclump(&rec, 1, &f), 1u);
    EXPECT_EQ(f, 12.0f);
    char out[64] = "untouched";
    EXPECT_EQ(gparse_getclump(&rec, 3, out), 0u);
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(gparse_getclump(&rec, 2, out), 1u);
    EXPECT_STREQ(out, "3.5");

    gparse_parline("a  b , c", " ,", "", 0, &rec);
    char* end = gparse_getplinstr(&rec, 1, 2, out);
    EXPECT_STREQ(out, "b , c");
    EXPECT_EQ(end, out + 5);
    EXPECT_STREQ(gparse_getplinstr(&rec, 0, 99, out), ""); // out of range: empty
}

TEST(LineParser, RegistriesAndIds)
{
    for (bool efficient : {false, true}) {
        SCOPED_TRACE(efficient ? "efficient" : "plain");
        auto parse = efficient ? gparse_efficient_parline_mem : gparse_parline_mem;
        auto release = efficient ? gparse_efficient_parline_free_mem : gparse_parline_free_mem;
        auto release_all = efficient ? gparse_efficient_parline_free_all_mem : gparse_parline_free_all_mem;
        release_all();

        parserecMem a, b, c;
        gparse_init_parserecMem(&a);
        gparse_init_parserecMem(&b);
        gparse_init_parserecMem(&c);
        ASSERT_EQ(parse("a1 a2", " ", "", 0, &a), 1u);
        ASSERT_EQ(parse("b1", " ", "", 0, &b), 1u);
        ASSERT_EQ(parse("c1 c2 c3", " ", "", 0, &c), 1u);
        EXPECT_EQ(a.id * 100 + b.id * 10 + c.id, 123);

        // Parsing again reuses the registration; an empty line empties the
        // record but keeps it registered.
        ASSERT_EQ(parse("a1 a2 a3 a4", " ", "", 0, &a), 1u);
        EXPECT_EQ(a.id, 1);
        EXPECT_EQ(a.count, 4u);
        ASSERT_EQ(parse("", " ", "", 0, &a), 1u);
        EXPECT_EQ(a.count, 0u);
        ASSERT_EQ(parse("again", " ", "", 0, &a), 1u);

        // Releasing b moves c into b's slot; c keeps its id and still works.
        EXPECT_EQ(release(&b), 1u);
        EXPECT_EQ(b.id, 0);
        ASSERT_EQ(parse("c1", " ", "", 0, &c), 1u);
        EXPECT_EQ(c.id, 3);
        parserecMem stranger;
        gparse_init_parserecMem(&stranger);
        stranger.id = 42;
        EXPECT_EQ(parse("x", " ", "", 0, &stranger), 0u);
        EXPECT_EQ(release(&stranger), 0u);

        // After forgetting the registry, records keep their fields but their
        // ids are no longer known.
        parsefield* kept = c.fields;
        EXPECT_EQ(release_all(), 1u);
        EXPECT_EQ(c.fields, kept);
        EXPECT_EQ(parse("c2", " ", "", 0, &c), 0u);
        gmem_ee_free(a.fields); // owned by the records now
        gmem_ee_free(c.fields);
    }
}

TEST(LineParser, PositionalParsers)
{
    using Parse = unsigned int (*)(const char*, const char*, parseheader*);
    using Get = unsigned int (*)(parseheader*, int, char*);
    const struct { Parse parse; Get get; const char* line; unsigned int count; int index; const char* out; } cases[] = {
        {gparse_parline2, gparse_getclump2, "k v1 val\n", 2, 2, "val"},
        {gparse_parline2, gparse_getclump2, "abc", 0, 2, "ab"}, // the last field loses its final character
        {gparse_parline3, gparse_getclump3, "p q r s", 3, 3, "s"},
        {gparse_parline3, gparse_getclump3, "p q r", 2, 3, "r"}, // slot 3 repeats the last field
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.line << " slot " << c.index);
        parseheader hdr;
        char out[64];
        std::memset(out, 'Z', sizeof out);
        EXPECT_EQ(c.parse(c.line, " ", &hdr), 1u);
        EXPECT_EQ(hdr.count, c.count);
        c.get(&hdr, c.index, out);
        EXPECT_STREQ(out, c.out);
        EXPECT_EQ(c.get == gparse_getclump3 ? out[std::strlen(c.out) + 1] : '\0', '\0'); // the second NUL
        EXPECT_EQ(c.get(&hdr, c.get == gparse_getclump3 ? 4 : 3, out), 0u);
    }
    parseheader hdr;
    EXPECT_EQ(gparse_parline2("", " ", &hdr), 0u);
}

} // namespace
