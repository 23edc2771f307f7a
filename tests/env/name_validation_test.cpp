// Name validation: which characters each kind of name may hold, the exact
// message that names the first illegal one, the index suffix of indexed
// identifiers, the repair with a replacement character (and where it
// deliberately differs from the check), and the special-character search.
#include <tql70/astr.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace {

// The message of each kind for the illegal character `c`, written out in
// full so that any change of wording or quoting shows.
std::string message(char c, const char* kind_words, const char* extra)
{
    return std::string("`") + c + "' illegal: valid characters " + kind_words + "are alphanumeric or _" + extra;
}
std::string identifier_message(char c) { return message(c, "", " with non-numeric first character"); }
std::string design_message(char c) { return message(c, "in design names ", "`@#&+-=^"); }

struct ValidCase {
    const char* name;
    int kind;
    int allow_dot;
    std::string expected; // "<valid>" or the full message
};

TEST(NameValidation, EdgeCasesAndMessages)
{
    const std::string valid = "<valid>";
    const std::vector<ValidCase> cases = {
        // A leading digit is illegal only in identifiers.
        {"1abc", ASTR_KIND_IDENTIFIER, 1, identifier_message('1')}, {"1abc", ASTR_KIND_WORKSPACE, 1, valid},
        {"", ASTR_KIND_IDENTIFIER, 0, valid}, {"a!b", ASTR_KIND_DESIGN | ASTR_KIND_NODE, 0, design_message('!')},
        // Index suffixes: an unclosed one is accepted, an empty element is not.
        {"bus(1,2", ASTR_KIND_INDEXED, 0, valid}, {"bus(1,)", ASTR_KIND_INDEXED, 0, identifier_message(',')},
        {"bus()", ASTR_KIND_INDEXED, 0, identifier_message('(')},
        {"bus(1a)", ASTR_KIND_INDEXED, 0, identifier_message('a')},
        {"bus(1)x", ASTR_KIND_INDEXED, 0, identifier_message('x')},
        // Without the indexed bit "(" is illegal in every kind.
        {"bus(1)", ASTR_KIND_IDENTIFIER, 0, identifier_message('(')},
        // The first illegal character is the one reported, in its kind's words.
        {"a b!c", ASTR_KIND_DESIGN, 0, design_message(' ')},
        {"a~b", ASTR_KIND_COMPONENT, 0, message('~', "in component names ", "`@#&+-=^$%")},
        // Each kind's characters: letters, digits and _ everywhere; '.' where
        // allowed; design adds `@#&+-=^, component and node add $ and %, node !.
        {"a+b", ASTR_KIND_WORKSPACE, 0, message('+', "in workspace names ", "")},
        {"a+b", ASTR_KIND_DESIGN, 0, valid}, {"a+b", ASTR_KIND_INDEXED, 0, identifier_message('+')},
        {"a$b", ASTR_KIND_COMPONENT, 0, valid}, {"a%b", ASTR_KIND_DESIGN, 0, design_message('%')},
        {"a!b", ASTR_KIND_NODE, 0, valid}, {"a.b", ASTR_KIND_NODE, 0, message('.', "in node names ", "`@#&+-=^$%!")},
        {"a.b", ASTR_KIND_IDENTIFIER, 1, valid}, {"a_7", ASTR_KIND_WORKSPACE, 0, valid},
        // Bytes of 128 and above are letters to the check.
        {"caf\xc3\xa9", ASTR_KIND_IDENTIFIER, 0, valid},
    };
    for (const ValidCase& c : cases) {
        SCOPED_TRACE(std::string("name \"") + c.name + "\" kind " + std::to_string(c.kind));
        const char* message = astr_kps_valid_name(c.name, c.kind, c.allow_dot);
        EXPECT_EQ(message ? message : "<valid>", c.expected);
    }
    EXPECT_EQ(astr_kps_valid_name(nullptr, ASTR_KIND_IDENTIFIER, 0), nullptr);
    // Every message comes from the same buffer: the next call overwrites it.
    EXPECT_EQ(astr_kps_valid_name("1a", ASTR_KIND_IDENTIFIER, 0), astr_kps_valid_name("a b", ASTR_KIND_COMPONENT, 0));

    // The special-character search: a leading digit, else the first byte
    // that is not a letter, digit or _ ('.' only when allowed); -1: none.
    for (const auto& [name, allow_dot, offset] :
         {std::tuple{"1abc", 0, 0L}, {"a.b!", 0, 1L}, {"a.b!", 1, 3L}, {"caf\xc3\xa9_9", 0, -1L}}) {
        const char* found = astr_kps_spl_name(name, allow_dot);
        EXPECT_EQ(found ? found - name : -1L, offset) << name << " allow_dot " << allow_dot;
    }
    EXPECT_EQ(astr_kps_spl_name(nullptr, 0), nullptr);
}

struct RepairCase { const char* name; int kind; int allow_dot; char replacement; const char* expected; };

TEST(NameValidationRepair, ReplacesWhatTheCheckRefuses)
{
    const std::vector<RepairCase> cases = {
        // The characters the check refuses, with the caller's replacement.
        {"a b.c!d", ASTR_KIND_COMPONENT, 0, '#', "a#b#c!d"}, {"a+b@c.d", ASTR_KIND_IDENTIFIER, 1, '_', "a_b_c.d"},
        // Design names keep '$' and '%' although the check reports them.
        {"a$b%c", ASTR_KIND_DESIGN, 0, '_', "a$b%c"}, {"a$b%c", ASTR_KIND_IDENTIFIER, 0, '_', "a_b_c"},
        // An identifier that begins with a digit is not repaired at all.
        {"1a b", ASTR_KIND_IDENTIFIER, 0, '_', "1a b"}, {"1a b", ASTR_KIND_WORKSPACE, 0, '_', "1a_b"},
        // A valid index suffix ends the repair; an invalid one is kept up
        // to its offending character and the repair goes on after it.
        {"a b(1,2)", ASTR_KIND_INDEXED, 0, '_', "a_b(1,2)"}, {"bus(1a)", ASTR_KIND_INDEXED, 0, '_', "bus(1a_"},
        {"bus(1)x y", ASTR_KIND_INDEXED, 0, '_', "bus(1)x_y"},
    };
    for (const RepairCase& c : cases) {
        SCOPED_TRACE(std::string("name \"") + c.name + "\" kind " + std::to_string(c.kind));
        char output[64];
        std::fill(std::begin(output), std::end(output), '#');
        EXPECT_EQ(astr_kps_get_valid_name(c.name, c.kind, c.allow_dot, c.replacement, output), 1);
        EXPECT_STREQ(output, c.expected);
    }
    EXPECT_EQ(astr_kps_get_valid_name(nullptr, ASTR_KIND_COMPONENT, 0, '_', nullptr), 0);
    // The name's own buffer may be the output.
    char name[] = "in place";
    EXPECT_EQ(astr_kps_get_valid_name(name, ASTR_KIND_COMPONENT, 0, '_', name), 1);
    EXPECT_STREQ(name, "in_place");
    // Without an output the work happens in a scratch copy; the name stays.
    const char original[] = "a b";
    EXPECT_EQ(astr_kps_get_valid_name(original, ASTR_KIND_COMPONENT, 0, '_', nullptr), 1);
    EXPECT_STREQ(original, "a b");
}

} // namespace
