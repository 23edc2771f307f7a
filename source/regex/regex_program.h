// The node program of a compiled expression: opcodes and node access. A
// node is an opcode byte and a two-byte offset (high byte first) to the
// next node, 0 for none; the back link counts its offset backwards. The
// operand follows: a NUL-terminated literal run, or for a set a
// NUL-terminated list of (low, high) character pairs.
#ifndef TQL70_REGEX_REGEX_PROGRAM_H
#define TQL70_REGEX_REGEX_PROGRAM_H

namespace tql::regex {

enum Op : unsigned char {
    kEnd = 0,
    kLineStart = 1,
    kLineEnd = 2,
    kAny = 3,
    kAnyOf = 4,
    kAnyBut = 5,
    kBranch = 6,   // try the operand, else the next branch
    kBack = 7,     // loop back to an earlier node
    kLiteral = 8,
    kNothing = 9,
    kStar = 10,    // operand: one simple node, repeated greedily
    kPlus = 11,
    kOpen = 20,    // kOpen + n opens group n (1..9)
    kClose = 30,   // kClose + n closes group n
};

constexpr int kNodeSize = 3;
constexpr int kMaxProgramSize = 32767;
constexpr int kGroups = 10; // the whole match and nine groups

inline unsigned char opcode(const char* node) { return static_cast<unsigned char>(node[0]); }

inline int next_offset(const char* node)
{
    return (static_cast<unsigned char>(node[1]) << 8) | static_cast<unsigned char>(node[2]);
}

inline const char* next_node(const char* node)
{
    const int offset = next_offset(node);
    if (offset == 0) {
        return nullptr;
    }
    return opcode(node) == kBack ? node - offset : node + offset;
}

inline const char* operand(const char* node) { return node + kNodeSize; }

// Whether `c` (non-zero) is in the pair list `set`.
inline bool in_set(const char* set, char c)
{
    const auto u = static_cast<unsigned char>(c);
    for (; *set; set += 2) {
        if (u >= static_cast<unsigned char>(set[0]) && u <= static_cast<unsigned char>(set[1])) {
            return true;
        }
    }
    return false;
}

// The private trailer after the program: a flag byte (1 when the table is
// valid) and a 256-bit table of the bytes a match can begin with.
constexpr int kFirstBytesSize = 1 + 32;

void write_first_bytes(const char* program, unsigned char* trailer);

// The table of `program`'s trailer, or null when every position must be
// tried.
const unsigned char* first_bytes(const char* program);

inline bool has_byte(const unsigned char* table, unsigned char c) { return (table[c >> 3] >> (c & 7)) & 1; }

} // namespace tql::regex

#endif
