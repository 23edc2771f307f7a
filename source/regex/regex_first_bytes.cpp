// The set of bytes a match can begin with, kept in a private trailer after
// the program (a flag byte, then a 256-bit table), so that the matcher can
// skip start positions where no attempt could succeed. Patterns that can
// match the empty string get no table: every position is tried.
#include "regex_program.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace tql::regex {

namespace {

class FirstBytes {
public:
    explicit FirstBytes(unsigned char* table) : table_(table) {}

    // Adds the bytes that can come first from `node` on; false when the
    // path from `node` can reach the end without consuming a byte.
    bool add(const char* node)
    {
        while (node) {
            if (std::find(seen_.begin(), seen_.end(), node) != seen_.end()) {
                return true; // already counted
            }
            seen_.push_back(node);
            const unsigned char op = opcode(node);
            switch (op) {
            case kEnd:
                return false;
            case kLineEnd:
                mark(0);
                return true;
            case kAny:
                for (int c = 1; c < 256; ++c) {
                    mark(c);
                }
                return true;
            case kLiteral:
                mark(static_cast<unsigned char>(*operand(node)));
                return true;
            case kAnyOf:
            case kAnyBut:
                for (int c = 1; c < 256; ++c) {
                    if (in_set(operand(node), static_cast<char>(c)) == (op == kAnyOf)) {
                        mark(c);
                    }
                }
                return true;
            case kBranch: {
                bool ok = true;
                for (const char* alt = node; alt && opcode(alt) == kBranch; alt = next_node(alt)) {
                    ok = add(operand(alt)) && ok;
                }
                return ok;
            }
            case kStar:
                if (!add(operand(node))) {
                    return false;
                }
                break;
            case kPlus:
                return add(operand(node));
            default: // line start, back link, empty, group marks: no byte
                break;
            }
            node = next_node(node);
        }
        return false;
    }

private:
    unsigned char* table_;
    std::vector<const char*> seen_;

    void mark(int c) { table_[c >> 3] |= static_cast<unsigned char>(1u << (c & 7)); }
};

// The end node: the last node of the program, after the top-level branches.
const char* end_node(const char* program)
{
    const char* node = program + 1;
    while (node && opcode(node) == kBranch) {
        node = next_node(node);
    }
    return node && opcode(node) == kEnd ? node : nullptr;
}

} // namespace

void write_first_bytes(const char* program, unsigned char* trailer)
{
    std::memset(trailer, 0, kFirstBytesSize);
    FirstBytes first(trailer + 1);
    trailer[0] = first.add(program + 1) ? 1 : 0;
}

const unsigned char* first_bytes(const char* program)
{
    const char* end = end_node(program);
    if (!end) {
        return nullptr;
    }
    const auto* trailer = reinterpret_cast<const unsigned char*>(end + kNodeSize);
    return trailer[0] == 1 ? trailer + 1 : nullptr;
}

} // namespace tql::regex
