// Matching a compiled program against a string: the hints choose where to
// try (one place when anchored, each occurrence of the first character, or
// every position up to and including the terminating NUL, less those the
// first-byte table or a leading repetition's run rule out), and each
// attempt runs the node program with backtracking. Choice points live on an
// explicit stack, so long subjects cannot exhaust the call stack; group
// pointers are set through an undo trail so that a failed path restores
// them.
#include "regex_engine.h"
#include "regex_program.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace tql::regex {

namespace {

struct Choice {
    const char* node;   // the branch to try next, or the kStar/kPlus node
    const char* input;  // where the choice was made
    std::ptrdiff_t count; // kStar/kPlus: the repeat count to try next; -1 for a branch
    std::size_t trail;  // trail length to restore
};

struct Saved {
    char** slot;
    char* old;
};

// How many times the simple node `item` matches from `input` on, or -1
// when `item` is not a simple node.
std::ptrdiff_t repeat(const char* item, const char* input)
{
    const char* p = input;
    switch (opcode(item)) {
    case kAny:
        return static_cast<std::ptrdiff_t>(std::strlen(input));
    case kLiteral: {
        const char c = *operand(item);
        while (*p == c) {
            ++p;
        }
        break;
    }
    case kAnyOf:
        while (*p && in_set(operand(item), *p)) {
            ++p;
        }
        break;
    case kAnyBut:
        while (*p && !in_set(operand(item), *p)) {
            ++p;
        }
        break;
    default:
        return -1;
    }
    return p - input;
}

// The kStar/kPlus node a one-alternative program begins with, or null.
const char* leading_repeat(const char* program)
{
    const char* top = program + 1;
    const char* after = next_node(top);
    const char* first = operand(top);
    if (!after || opcode(after) != kEnd || (opcode(first) != kStar && opcode(first) != kPlus)) {
        return nullptr;
    }
    return repeat(operand(first), "") < 0 ? nullptr : first;
}

class Matcher {
public:
    Matcher(tql_regexp* r, const char* string, std::uint64_t step_limit)
        : r_(r), string_(string), step_limit_(step_limit), choices_(stacks().choices), trail_(stacks().trail)
    {
        choices_.clear();
        trail_.clear();
    }

    // One attempt at `at`; on failure the group pointers are as before.
    bool attempt(const char* at)
    {
        choices_.clear();
        trail_.clear();
        const bool matched = run(at);
        if (!matched) {
            undo(0);
        }
        return matched;
    }

    ErrorCode error() const { return error_; }

private:
    tql_regexp* r_;
    const char* string_;
    std::uint64_t step_limit_;
    std::uint64_t steps_ = 0;
    ErrorCode error_ = ErrorCode::none;
    std::vector<Choice>& choices_;
    std::vector<Saved>& trail_;

    // Reused between calls: matching allocates only while they grow.
    struct Stacks {
        std::vector<Choice> choices;
        std::vector<Saved> trail;
    };
    static Stacks& stacks()
    {
        static thread_local Stacks instance;
        return instance;
    }

    void record(char** slot, const char* input)
    {
        trail_.push_back({slot, *slot});
        *slot = const_cast<char*>(input);
    }

    void undo(std::size_t length)
    {
        while (trail_.size() > length) {
            *trail_.back().slot = trail_.back().old;
            trail_.pop_back();
        }
    }

    // The largest count in [least, count] after which the node following
    // `repeat_node` can start, when that node is a literal; else `count`.
    // -1 when there is none.
    static std::ptrdiff_t viable(const char* repeat_node, const char* base, std::ptrdiff_t count, std::ptrdiff_t least)
    {
        const char* after = next_node(repeat_node);
        if (after && opcode(after) == kLiteral) {
            const char c = *operand(after);
            while (count >= least && base[count] != c) {
                --count;
            }
        }
        return count >= least ? count : -1;
    }

    bool stop(ErrorCode code)
    {
        error_ = code;
        return false;
    }

    bool run(const char* input)
    {
        const char* start = input;
        const char* node = r_->program + 1;
        for (;;) {
            if (step_limit_ && ++steps_ > step_limit_) {
                return stop(ErrorCode::step_limit);
            }
            if (!node) {
                return stop(ErrorCode::corrupted_pointers);
            }
            bool ok = true;
            const unsigned char op = opcode(node);
            switch (op) {
            case kEnd:
                record(&r_->startp[0], start);
                record(&r_->endp[0], input);
                return true;
            case kLineStart:
                ok = input == string_;
                break;
            case kLineEnd:
                ok = *input == '\0';
                break;
            case kAny:
                ok = *input != '\0';
                input += ok;
                break;
            case kLiteral: {
                const char* text = operand(node);
                ok = *text == *input;
                if (ok && text[1]) {
                    const std::size_t length = std::strlen(text);
                    ok = std::strncmp(text, input, length) == 0;
                    input += ok ? length : 0;
                } else {
                    input += ok;
                }
                break;
            }
            case kAnyOf:
            case kAnyBut:
                ok = *input != '\0' && in_set(operand(node), *input) == (op == kAnyOf);
                input += ok;
                break;
            case kNothing:
            case kBack:
                break;
            case kBranch:
                // Alternatives that begin with a literal not found here are
                // passed over without a choice point.
                for (;;) {
                    const char* first = operand(node);
                    const char* other = next_node(node);
                    if (!other || opcode(other) != kBranch) {
                        node = first;
                        break;
                    }
                    if (opcode(first) == kLiteral && *operand(first) != *input) {
                        node = other;
                        continue;
                    }
                    choices_.push_back({other, input, -1, trail_.size()});
                    node = first;
                    break;
                }
                continue;
            case kStar:
            case kPlus: {
                const std::ptrdiff_t least = op == kPlus ? 1 : 0;
                const std::ptrdiff_t most = repeat(operand(node), input);
                if (most < 0) {
                    return stop(ErrorCode::internal_foulup);
                }
                steps_ += static_cast<std::uint64_t>(most); // the scan counts towards a step limit
                const std::ptrdiff_t count = viable(node, input, most, least);
                ok = count >= 0;
                if (ok) {
                    if (count > least) {
                        choices_.push_back({node, input, count - 1, trail_.size()});
                    }
                    input += count;
                }
                break;
            }
            default:
                if (op > kOpen && op < kOpen + kGroups) {
                    record(&r_->startp[op - kOpen], input);
                } else if (op > kClose && op < kClose + kGroups) {
                    record(&r_->endp[op - kClose], input);
                } else {
                    return stop(ErrorCode::memory_corruption);
                }
                break;
            }
            if (ok) {
                node = next_node(node);
                continue;
            }
            // Backtrack to the latest choice that still has a way left.
            for (;;) {
                if (choices_.empty()) {
                    return false;
                }
                const Choice choice = choices_.back();
                choices_.pop_back();
                undo(choice.trail);
                input = choice.input;
                if (choice.count < 0) {
                    node = choice.node;
                    break;
                }
                const std::ptrdiff_t least = opcode(choice.node) == kPlus ? 1 : 0;
                const std::ptrdiff_t count = viable(choice.node, input, choice.count, least);
                if (count < 0) {
                    continue;
                }
                if (count > least) {
                    choices_.push_back({choice.node, input, count - 1, trail_.size()});
                }
                input += count;
                node = next_node(choice.node);
                break;
            }
        }
    }
};

} // namespace

MatchResult match(tql_regexp* r, const char* string, std::uint64_t step_limit)
{
    MatchResult result;
    if (!r || !string) {
        result.error = ErrorCode::null_parameter;
        return result;
    }
    if (static_cast<unsigned char>(r->program[0]) != TQL_REGEXP_MAGIC) {
        result.error = ErrorCode::corrupted_program;
        return result;
    }
    if (r->regmust && !std::strstr(string, r->regmust)) {
        return result;
    }
    for (int i = 0; i < kGroups; ++i) {
        r->startp[i] = nullptr;
        r->endp[i] = nullptr;
    }
    Matcher matcher(r, string, step_limit);
    if (r->reganch) {
        result.matched = matcher.attempt(string);
    } else if (r->regstart) {
        for (const char* p = string; (p = std::strchr(p, r->regstart)) != nullptr; ++p) {
            if ((result.matched = matcher.attempt(p)) || matcher.error() != ErrorCode::none) {
                break;
            }
        }
    } else {
        const unsigned char* table = first_bytes(r->program);
        const char* lead = leading_repeat(r->program);
        for (const char* p = string;; ++p) {
            if (!table || has_byte(table, static_cast<unsigned char>(*p))) {
                if ((result.matched = matcher.attempt(p)) || matcher.error() != ErrorCode::none) {
                    break;
                }
                if (lead) {
                    // A failed attempt has tried every end of the leading
                    // repetition; attempts inside its run have fewer ends.
                    const std::ptrdiff_t run = repeat(operand(lead), p);
                    p += opcode(lead) == kPlus ? std::max<std::ptrdiff_t>(run - 1, 0) : run;
                }
            }
            if (!*p) {
                break;
            }
        }
    }
    result.error = matcher.error();
    if (result.error != ErrorCode::none) {
        result.matched = false;
    }
    return result;
}

} // namespace tql::regex
