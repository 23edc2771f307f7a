// gparse_parline2 and gparse_parline3: separators only, with the positions
// of the first fields in library slots, read back by gparse_getclump2 and
// gparse_getclump3.
#include <tql70/gparse.h>

#include <cstring>
#include <string>

namespace {

struct Slot {
    unsigned int start = 0;
    unsigned int end = 0;
};
Slot slots2[3]; // fields 0 and 1, and the last field
Slot slots3[4];

// Cuts `line` by `seps`; `closed(index, start, end)` for every field a
// separator closes; returns whether a field is open at the end, with its
// positions.
template <typename Closed>
bool walk(const char* line, const char* seps, Closed closed, Slot& open)
{
    bool inside = false;
    unsigned int index = 0;
    const size_t length = std::strlen(line);
    for (size_t pos = 0; pos < length; ++pos) {
        const bool separator = std::strchr(seps, line[pos]) != nullptr;
        if (!separator) {
            if (!inside) {
                open.start = static_cast<unsigned int>(pos);
                inside = true;
            }
            open.end = static_cast<unsigned int>(pos);
        } else if (inside) {
            closed(index++, open);
            inside = false;
        }
    }
    return inside;
}

// A one-character field is stored with its end one past it.
Slot trailing(const Slot& open)
{
    Slot slot = open;
    if (slot.start == slot.end) {
        ++slot.end;
    }
    return slot;
}

// The characters start..end of `line`, bounded by the line itself (slots
// may still hold positions of a longer earlier line).
std::string slot_text(const char* line, unsigned int start, unsigned int end)
{
    const size_t length = std::strlen(line);
    if (start > end || start > length) {
        return std::string();
    }
    const size_t last = end < length ? end : length;
    return std::string(line + start, last - start + (end < length ? 1 : 0));
}

// `text` without its leading and trailing blanks. Slots are stripped before
// they are written, so the caller's buffer only ever holds the result.
std::string stripped(std::string text)
{
    gparse_strpbl(text.c_str(), &text[0]);
    text.resize(std::strlen(text.c_str()));
    return text;
}

// Starts a positional parse: the header gets the line and a count of 0;
// false when there is nothing to parse.
bool begin(parseheader* hdr, const char* line, const char* seps)
{
    if (!hdr) {
        return false;
    }
    hdr->line = line;
    hdr->count = 0;
    return seps && *seps && line && *line;
}

} // namespace

extern "C" {

unsigned int gparse_parline2(const char* line, const char* seps, parseheader* hdr)
{
    if (!begin(hdr, line, seps)) {
        return 0;
    }
    Slot open;
    const bool open_at_end = walk(line, seps, [&](unsigned int index, const Slot& field) {
        if (index < 2) {
            slots2[index] = field;
        }
        ++hdr->count;
    }, open);
    if (open_at_end) {
        slots2[2] = trailing(open);
    }
    return slots2[0].end == std::strlen(line) ? 0 : 1;
}

unsigned int gparse_parline3(const char* line, const char* seps, parseheader* hdr)
{
    if (!begin(hdr, line, seps)) {
        return 0;
    }
    Slot open;
    const bool open_at_end = walk(line, seps, [&](unsigned int index, const Slot& field) {
        if (index < 3) {
            slots3[index] = field;
        }
        ++hdr->count;
    }, open);
    if (open_at_end && (hdr->count == 2 || hdr->count == 3)) {
        if (hdr->count == 2) {
            slots3[2] = trailing(open);
        }
        slots3[3] = trailing(open);
    }
    return 1;
}

unsigned int gparse_getclump2(parseheader* hdr, int index, char* out)
{
    if (!hdr || !hdr->line || !out || index < 0 || index > 2) {
        return 0;
    }
    const Slot& slot = slots2[index];
    // The last field loses its final character (the line end it carries);
    // a one-character last field was stored one longer and comes out whole.
    const unsigned int end = index == 2 ? slot.end - 1 : slot.end;
    const std::string text = slot.start <= end && !(index == 2 && slot.end == 0)
                                 ? stripped(slot_text(hdr->line, slot.start, end))
                                 : std::string();
    std::memcpy(out, text.c_str(), text.size() + 1);
    return 1;
}

unsigned int gparse_getclump3(parseheader* hdr, int index, char* out)
{
    if (!hdr || !hdr->line || !out || index < 0 || index > 3) {
        return 0;
    }
    const Slot& slot = slots3[index];
    const std::string text = stripped(slot_text(hdr->line, slot.start, slot.end));
    std::memcpy(out, text.c_str(), text.size() + 1);
    out[text.size() + 1] = '\0'; // the second NUL callers rely on
    return 1;
}

} // extern "C"
