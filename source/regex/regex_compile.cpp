// Compilation of a pattern into the node program, with the match hints
// (first character, anchor, required literal). One parse both checks the
// syntax and builds the program; once the program reaches the size limit
// the parse goes on counting only, so that syntax errors still come first,
// then the size, the allocation and the group count, in that order.
#include "regex_engine.h"
#include "regex_program.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace tql::regex {

namespace {

// Properties of a parsed item.
enum Flags : int {
    kWorst = 0,
    kHasWidth = 1, // always consumes at least one character
    kSimple = 2,   // exactly one character: may be the operand of kStar/kPlus
    kStartsWithRepeat = 4,
};

bool is_repeat(char c) { return c == '*' || c == '+' || c == '?'; }

bool is_special(char c) { return std::strchr("^$.[()|?+*\\", c) != nullptr; }

class Compiler {
public:
    explicit Compiler(const char* pattern) : in_(pattern) { code_.push_back(static_cast<char>(TQL_REGEXP_MAGIC)); }

    // Parses the whole pattern; returns its flags.
    int parse()
    {
        int flags = 0;
        alternation(false, &flags);
        return flags;
    }

    ErrorCode error() const { return error_; }
    std::size_t size() const { return size_; }
    bool too_many_groups() const { return groups_ > kGroups; }
    const std::vector<char>& code() const { return code_; }

private:
    const char* in_;
    std::vector<char> code_;
    std::size_t size_ = 1;
    bool emitting_ = true;
    int groups_ = 1;
    ErrorCode error_ = ErrorCode::none;

    int fail(ErrorCode code)
    {
        error_ = code;
        return -1;
    }
    bool failed() const { return error_ != ErrorCode::none; }

    void grow(std::size_t bytes)
    {
        size_ += bytes;
        if (size_ >= static_cast<std::size_t>(kMaxProgramSize)) {
            emitting_ = false; // the result is refused; keep counting only
        }
    }

    int node(int op)
    {
        const int at = static_cast<int>(code_.size());
        if (emitting_) {
            code_.insert(code_.end(), {static_cast<char>(op), 0, 0});
        }
        grow(kNodeSize);
        return emitting_ ? at : 0;
    }

    void bytes(const char* data, std::size_t length)
    {
        if (emitting_) {
            code_.insert(code_.end(), data, data + length);
        }
        grow(length);
    }

    // Puts a node in front of the item that starts at `at` (the last one).
    void insert(int op, int at)
    {
        if (emitting_) {
            code_.insert(code_.begin() + at, {static_cast<char>(op), 0, 0});
        }
        grow(kNodeSize);
    }

    int next_of(int at) const
    {
        if (!emitting_) {
            return -1;
        }
        const char* p = &code_[static_cast<std::size_t>(at)];
        const char* n = next_node(p);
        return n ? static_cast<int>(n - code_.data()) : -1;
    }

    // Links the last node of the chain starting at `at` to `target`.
    void tail(int at, int target)
    {
        if (!emitting_ || at < 0) {
            return;
        }
        for (int n = next_of(at); n >= 0; n = next_of(at)) {
            at = n;
        }
        const int offset = opcode(&code_[static_cast<std::size_t>(at)]) == kBack ? at - target : target - at;
        code_[static_cast<std::size_t>(at) + 1] = static_cast<char>((offset >> 8) & 0xff);
        code_[static_cast<std::size_t>(at) + 2] = static_cast<char>(offset & 0xff);
    }

    // tail() on the operand of a branch node; nothing for other nodes.
    void operand_tail(int at, int target)
    {
        if (emitting_ && at >= 0 && opcode(&code_[static_cast<std::size_t>(at)]) == kBranch) {
            tail(at + kNodeSize, target);
        }
    }

    // Alternatives separated by `|`, in a group when `group` is set.
    int alternation(bool group, int* flags)
    {
        *flags = kHasWidth;
        int first = -1;
        int number = 0;
        if (group) {
            number = groups_++;
            first = node(kOpen + (number < kGroups ? number : kGroups - 1));
        }
        int branch_flags = 0;
        int branch = alternative(&branch_flags);
        if (failed()) {
            return -1;
        }
        for (;;) {
            if (first >= 0) {
                tail(first, branch);
            } else {
                first = branch;
            }
            if (!(branch_flags & kHasWidth)) {
                *flags &= ~kHasWidth;
            }
            *flags |= branch_flags & kStartsWithRepeat;
            if (*in_ != '|') {
                break;
            }
            ++in_;
            branch = alternative(&branch_flags);
            if (failed()) {
                return -1;
            }
        }
        const int ender = node(group ? kClose + (number < kGroups ? number : kGroups - 1) : kEnd);
        tail(first, ender);
        for (int at = first; at >= 0; at = next_of(at)) {
            operand_tail(at, ender);
        }
        if (group) {
            if (*in_ != ')') {
                return fail(ErrorCode::unmatched_parens);
            }
            ++in_;
        } else if (*in_ != '\0') {
            return fail(*in_ == ')' ? ErrorCode::unmatched_parens : ErrorCode::junk_on_end);
        }
        return first;
    }

    // One alternative: a branch node whose operand is a chain of pieces.
    int alternative(int* flags)
    {
        *flags = kWorst;
        const int branch = node(kBranch);
        int chain = -1;
        while (*in_ != '\0' && *in_ != '|' && *in_ != ')') {
            int piece_flags = 0;
            const int latest = piece(&piece_flags);
            if (failed()) {
                return -1;
            }
            *flags |= piece_flags & kHasWidth;
            if (chain < 0) {
                *flags |= piece_flags & kStartsWithRepeat;
            } else {
                tail(chain, latest);
            }
            chain = latest;
        }
        if (chain < 0) {
            node(kNothing);
        }
        return branch;
    }

    // An atom with an optional repetition. A simple atom becomes the
    // operand of kStar/kPlus; others are built from branches and a back
    // link: x* is (x<back>|), x+ is x(<back>|), x? is (x|).
    int piece(int* flags)
    {
        int atom_flags = 0;
        const int item = atom(&atom_flags);
        if (failed()) {
            return -1;
        }
        const char op = *in_;
        if (!is_repeat(op)) {
            *flags = atom_flags;
            return item;
        }
        if (!(atom_flags & kHasWidth) && op != '?') {
            return fail(ErrorCode::empty_operand);
        }
        *flags = op == '+' ? kHasWidth : kStartsWithRepeat;
        if (op == '*' && (atom_flags & kSimple)) {
            insert(kStar, item);
        } else if (op == '*') {
            insert(kBranch, item);
            operand_tail(item, node(kBack));
            operand_tail(item, item);
            tail(item, node(kBranch));
            tail(item, node(kNothing));
        } else if (op == '+' && (atom_flags & kSimple)) {
            insert(kPlus, item);
        } else if (op == '+') {
            const int loop = node(kBranch);
            tail(item, loop);
            tail(node(kBack), item);
            tail(loop, node(kBranch));
            tail(item, node(kNothing));
        } else {
            insert(kBranch, item);
            tail(item, node(kBranch));
            const int skip = node(kNothing);
            tail(item, skip);
            operand_tail(item, skip);
        }
        ++in_;
        if (is_repeat(*in_)) {
            return fail(ErrorCode::nested_repeat);
        }
        return item;
    }

    int atom(int* flags)
    {
        *flags = kWorst;
        const char c = *in_;
        switch (c) {
        case '^':
            ++in_;
            return node(kLineStart);
        case '$':
            ++in_;
            return node(kLineEnd);
        case '.':
            ++in_;
            *flags |= kHasWidth | kSimple;
            return node(kAny);
        case '[':
            ++in_;
            return set(flags);
        case '(': {
            ++in_;
            int inner = 0;
            const int item = alternation(true, &inner);
            *flags |= inner & (kHasWidth | kStartsWithRepeat);
            return item;
        }
        case '\0':
        case '|':
        case ')':
            return fail(ErrorCode::internal_urp); // the callers stop at these
        case '?':
        case '+':
        case '*':
            return fail(ErrorCode::repeat_follows_nothing);
        default:
            return literal(flags);
        }
    }

    // `[...]`: a list of (low, high) pairs.
    int set(int* flags)
    {
        const bool negated = *in_ == '^';
        if (negated) {
            ++in_;
        }
        const int item = node(negated ? kAnyBut : kAnyOf);
        std::string pairs;
        if (*in_ == ']' || *in_ == '-') {
            pairs.append(2, *in_++);
        }
        while (*in_ != '\0' && *in_ != ']') {
            const char low = in_[0];
            if (in_[1] == '-' && in_[2] != ']' && in_[2] != '\0') {
                const char high = in_[2];
                if (static_cast<unsigned char>(low) > static_cast<unsigned char>(high)) {
                    return fail(ErrorCode::invalid_range);
                }
                pairs += low;
                pairs += high;
                in_ += 3;
            } else {
                pairs.append(2, low);
                ++in_;
            }
        }
        if (*in_ != ']') {
            return fail(ErrorCode::unmatched_bracket);
        }
        ++in_;
        bytes(pairs.c_str(), pairs.size() + 1);
        *flags |= kHasWidth | kSimple;
        return item;
    }

    // A run of ordinary and escaped characters. A run followed by a
    // repetition leaves its last character to the repetition.
    int literal(int* flags)
    {
        std::string text;
        for (;;) {
            const char* unit = in_;
            char c = *in_;
            if (c == '\\') {
                if (in_[1] == '\0') {
                    return fail(ErrorCode::trailing_backslash);
                }
                c = in_[1];
                in_ += 2;
            } else if (c == '\0' || is_special(c)) {
                break;
            } else {
                ++in_;
            }
            if (is_repeat(*in_) && !text.empty()) {
                in_ = unit;
                break;
            }
            text += c;
            if (is_repeat(*in_)) {
                break;
            }
        }
        if (text.empty()) {
            return fail(ErrorCode::internal_disaster);
        }
        *flags |= kHasWidth | (text.size() == 1 ? kSimple : 0);
        const int item = node(kLiteral);
        bytes(text.c_str(), text.size() + 1);
        return item;
    }
};

// First character, anchor and required literal, from the program of a
// pattern that is one alternative.
void set_hints(tql_regexp* r, bool starts_with_repeat)
{
    const char* first = r->program + 1;
    const char* after = next_node(first);
    if (!after || opcode(after) != kEnd) {
        return;
    }
    const char* scan = operand(first);
    if (opcode(scan) == kLiteral) {
        r->regstart = *operand(scan);
    } else if (opcode(scan) == kLineStart) {
        r->reganch = 1;
    }
    if (!starts_with_repeat) {
        return;
    }
    std::size_t longest = 0;
    for (; scan; scan = next_node(scan)) {
        if (opcode(scan) == kLiteral && std::strlen(operand(scan)) >= longest) {
            r->regmust = const_cast<char*>(operand(scan));
            longest = std::strlen(operand(scan));
        }
    }
    r->regmlen = static_cast<int>(longest);
}

} // namespace

CompileResult compile(const char* pattern)
{
    CompileResult result;
    if (!pattern) {
        result.error = ErrorCode::null_argument;
        return result;
    }
    Compiler compiler(pattern);
    const int flags = compiler.parse();
    if (compiler.error() != ErrorCode::none) {
        result.error = compiler.error();
        return result;
    }
    if (compiler.size() >= static_cast<std::size_t>(kMaxProgramSize)) {
        result.error = ErrorCode::too_big;
        return result;
    }
    void* block = std::calloc(1, offsetof(tql_regexp, program) + compiler.size() + kFirstBytesSize);
    if (!block) {
        result.error = ErrorCode::out_of_space;
        return result;
    }
    if (compiler.too_many_groups()) {
        std::free(block);
        result.error = ErrorCode::too_many_groups;
        return result;
    }
    auto* r = static_cast<tql_regexp*>(block);
    std::memcpy(r->program, compiler.code().data(), compiler.size());
    set_hints(r, (flags & kStartsWithRepeat) != 0);
    write_first_bytes(r->program, reinterpret_cast<unsigned char*>(r->program) + compiler.size());
    result.compiled = r;
    return result;
}

} // namespace tql::regex
