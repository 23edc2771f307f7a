// Which characters workspace, design, component, node and identifier names
// may hold: the character classes, the check that reports the first
// illegal character, the repair that replaces illegal characters, and the
// parser of the index suffix "(1,2)" of indexed identifiers.
#include <tql70/astr.h>

#include <tql70/gmem.h>

#include <array>
#include <cstdio>
#include <cstring>

namespace {

// Character classes. Class 0 is never illegal; each other class is
// illegal for some kinds (see is_illegal).
enum CharClass : unsigned char {
    kPlain = 0,
    kAlwaysIllegal = 1, // ~ * ) [ ] { } / \ < > ? , : " blank tab | ' ;
    kOperator = 2,      // + - = ^
    kDot = 3,           // .
    kMark = 4,          // ` @ # &
    kOpenParen = 5,     // (  (starts an index suffix in indexed names)
    kBang = 6,          // !
    kDollarPercent = 7, // $ %
};

constexpr int kIdentifierKinds = ASTR_KIND_IDENTIFIER | ASTR_KIND_INDEXED;
constexpr int kStrictKinds = ASTR_KIND_IDENTIFIER | ASTR_KIND_INDEXED | ASTR_KIND_WORKSPACE;

const std::array<unsigned char, 256>& class_table()
{
    static const std::array<unsigned char, 256> table = [] {
        std::array<unsigned char, 256> t{};
        auto assign = [&t](const char* characters, CharClass c) {
            for (const char* p = characters; *p; ++p) {
                t[static_cast<unsigned char>(*p)] = c;
            }
        };
        assign("~*)[]{}/\\<>?,:\" \t|';", kAlwaysIllegal);
        assign("+-=^", kOperator);
        assign(".", kDot);
        assign("`@#&", kMark);
        assign("(", kOpenParen);
        assign("!", kBang);
        assign("$%", kDollarPercent);
        return t;
    }();
    return table;
}

unsigned char class_of(char c)
{
    return class_table()[static_cast<unsigned char>(c)];
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

bool starts_with_forbidden_digit(const char* name, int kind)
{
    return (kind & kIdentifierKinds) && is_digit(name[0]);
}

// Whether a character of class `c` is illegal in a name of `kind`. The
// "(" is not decided here: it depends on the index suffix.
bool is_illegal(unsigned char c, int kind, int allow_dot)
{
    switch (c) {
    case kAlwaysIllegal:
        return true;
    case kOperator:
    case kMark:
        return (kind & kStrictKinds) != 0;
    case kDot:
        return allow_dot == 0;
    case kBang:
        return (kind & ~ASTR_KIND_NODE) != 0;
    case kDollarPercent:
        return (kind & (ASTR_KIND_DESIGN | kStrictKinds)) != 0;
    default:
        return false;
    }
}

// In the repair, design names keep '$' and '%' although the check reports
// them: only identifier, indexed and workspace names lose them.
bool is_replaced(unsigned char c, int kind, int allow_dot)
{
    if (c == kDollarPercent) {
        return (kind & kStrictKinds) != 0;
    }
    return is_illegal(c, kind, allow_dot);
}

constexpr long kSuffixValid = -1;

// Checks the index suffix that starts with the "(" at `open`: digits, ','
// between numbers, and a ')' that ends the name; ',' and ')' must follow a
// digit. A name that ends inside the suffix is accepted. Returns
// kSuffixValid, or the offset of the offending character: the first one
// that breaks the rules, except that for a ',' or ')' that does not follow
// a digit it is the character before it.
long check_index_suffix(const char* name, long open)
{
    for (long at = open + 1; name[at]; ++at) {
        const char c = name[at];
        if (is_digit(c)) {
            continue;
        }
        if (c != ',' && c != ')') {
            return at;
        }
        if (!is_digit(name[at - 1])) {
            return at - 1;
        }
        if (c == ')') {
            return name[at + 1] == '\0' ? kSuffixValid : at + 1;
        }
    }
    return kSuffixValid;
}

// The offset of the first illegal character of `name`, or -1.
long first_illegal(const char* name, int kind, int allow_dot)
{
    if (starts_with_forbidden_digit(name, kind)) {
        return 0;
    }
    for (long at = 0; name[at]; ++at) {
        const unsigned char c = class_of(name[at]);
        if (c == kOpenParen) {
            // A "(" ends the scan: the rest is an index suffix or illegal.
            if (kind & ASTR_KIND_INDEXED) {
                return check_index_suffix(name, at);
            }
            return at;
        }
        if (is_illegal(c, kind, allow_dot)) {
            return at;
        }
    }
    return -1;
}

// The process-wide message of astr_kps_valid_name.
char message_buffer[256];

void format_message(char illegal, int kind)
{
    if (kind & kIdentifierKinds) {
        std::snprintf(message_buffer, sizeof message_buffer,
                      "`%c' illegal: valid characters are alphanumeric or _ with non-numeric first character",
                      illegal);
    } else if (kind & ASTR_KIND_WORKSPACE) {
        std::snprintf(message_buffer, sizeof message_buffer,
                      "`%c' illegal: valid characters in workspace names are alphanumeric or _", illegal);
    } else if (kind & ASTR_KIND_DESIGN) {
        std::snprintf(message_buffer, sizeof message_buffer,
                      "`%c' illegal: valid characters in design names are alphanumeric or _%s%s", illegal, "`@#&",
                      "+-=^");
    } else {
        const bool node = (kind & ASTR_KIND_NODE) != 0;
        // Component names may not hold '!', so nothing follows "$%" for them.
        std::snprintf(message_buffer, sizeof message_buffer,
                      "`%c' illegal: valid characters in %s names are alphanumeric or _%s%s%s%s", illegal,
                      node ? "node" : "component", "`@#&", "+-=^", "$%", node ? "!" : "");
    }
}

} // namespace

extern "C" {

const char* astr_kps_valid_name(const char* name, int kind, int allow_dot)
{
    if (!name) {
        return nullptr;
    }
    const long at = first_illegal(name, kind, allow_dot);
    if (at < 0) {
        return nullptr;
    }
    format_message(name[at], kind);
    return message_buffer;
}

int astr_kps_get_valid_name(const char* name, int kind, int allow_dot, char replacement, char* output)
{
    if (!name) {
        return 0;
    }
    // Without an output buffer the repair runs in a scratch copy.
    char* scratch = output ? nullptr : astr_new_string(name);
    char* out = output ? output : scratch;
    if (out != name) {
        std::memmove(out, name, std::strlen(name) + 1);
    }
    if (!starts_with_forbidden_digit(out, kind)) {
        for (long at = 0; out[at]; ++at) {
            const unsigned char c = class_of(out[at]);
            if (c == kOpenParen && (kind & ASTR_KIND_INDEXED)) {
                const long offending = check_index_suffix(out, at);
                if (offending == kSuffixValid) {
                    break;
                }
                // An invalid suffix is kept up to and including its
                // offending character; the repair goes on after it.
                at = offending;
                continue;
            }
            if (c == kOpenParen || is_replaced(c, kind, allow_dot)) {
                out[at] = replacement;
            }
        }
    }
    gmem_ee_free(scratch);
    return 1;
}

const char* astr_kps_spl_name(const char* name, int allow_dot)
{
    if (!name) {
        return nullptr;
    }
    if (is_digit(name[0])) {
        return name;
    }
    for (const char* p = name; *p; ++p) {
        const unsigned char c = class_of(*p);
        if (c == kDot ? allow_dot == 0 : c != kPlain) {
            return p;
        }
    }
    return nullptr;
}

} // extern "C"
