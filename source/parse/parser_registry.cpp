// The heap-backed parser families (gparse_parline_mem and
// gparse_efficient_parline_mem): records registered by id so the library
// can find and release their field arrays. Each family has its own
// registry; the efficient one finds a record at slot id - 1 at once and
// starts its search for a free slot at a hint.
#include "parse/line_parser.h"

#include <tql70/gmem.h>

#include <cstring>
#include <new>
#include <vector>

using namespace tql::parse;

namespace {

struct Entry {
    const char* line = nullptr;
    parsefield* fields = nullptr;
    int id = 0;
    int in_use = 0;
    unsigned int capacity = 0; // of `fields`, so a re-parse can reuse it
};

class Registry {
public:
    explicit Registry(bool efficient) : efficient_(efficient) {}

    unsigned int parse(const char* line, const char* seps, const char* marks, char endc, parserecMem* rec);
    unsigned int release(parserecMem* rec);
    unsigned int release_all();

private:
    // The slot of the record's id, or -1.
    long find(int id) const;
    // Registers a new record; false when memory is short.
    bool register_record(parserecMem* rec);
    void release_record_fields(parserecMem* rec, Entry* entry);

    bool efficient_;
    std::vector<Entry*> slots_;
    long used_ = 0;
    long current_ = -1;
    long hint_ = 0;                  // efficient family: where to look for a free slot
    std::vector<parsefield> scratch_; // fields as they are cut
};

long Registry::find(int id) const
{
    const long count = static_cast<long>(slots_.size());
    if (efficient_ && id >= 1 && id - 1 < count && slots_[id - 1]->id == id) {
        return id - 1;
    }
    for (long i = 0; i < count; ++i) {
        if (slots_[i]->id == id) {
            return i;
        }
    }
    return -1;
}

bool Registry::register_record(parserecMem* rec)
{
    try {
        const long count = static_cast<long>(slots_.size());
        if (count == 0) {
            slots_.push_back(new Entry);
            used_ = 1;
            current_ = 0;
            rec->id = 1;
            return true;
        }
        const long from = efficient_ && hint_ < count ? hint_ : 0;
        for (long i = from; i < count; ++i) {
            if (!slots_[i]->in_use && slots_[i]->id == 0) {
                current_ = i;
                ++used_;
                // Slot 0 gives id 1; another reused slot i gives id i (an
                // appended slot i gives i + 1): the ids the family has
                // always handed out.
                rec->id = i == 0 ? 1 : static_cast<int>(i);
                if (efficient_) {
                    hint_ = rec->id;
                }
                return true;
            }
        }
        slots_.reserve(slots_.size() + 1);
        slots_.push_back(new Entry);
        current_ = count;
        ++used_;
        rec->id = static_cast<int>(count + 1);
        if (efficient_) {
            hint_ = count;
        }
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void Registry::release_record_fields(parserecMem* rec, Entry* entry)
{
    gmem_ee_free(rec->fields);
    rec->fields = nullptr;
    if (entry && entry->fields) {
        entry->fields = nullptr;
        entry->capacity = 0;
    }
}

unsigned int Registry::parse(const char* line, const char* seps, const char* marks, char endc, parserecMem* rec)
{
    if (!rec || !seps || !*seps) {
        return 0;
    }
    if (!line || !*line) {
        if (rec->id != 0) {
            const long slot = find(rec->id);
            if (slot >= 0 && rec->fields) {
                release_record_fields(rec, slots_[slot]);
            }
        }
        rec->line = nullptr;
        rec->count = 0;
        rec->fields = nullptr;
        return 1;
    }
    Entry* entry;
    if (rec->id != 0) {
        const long slot = find(rec->id);
        if (slot < 0) {
            return 0; // not registered (or the registry was emptied)
        }
        current_ = slot;
        entry = slots_[slot];
    } else {
        if (!register_record(rec)) {
            return 0;
        }
        entry = slots_[current_];
    }

    // Fields are cut straight into the record's own array while it has
    // room, past that (or without one) into the scratch array; the record
    // then gets a new array of the right size.
    const CharClasses classes(seps, marks, endc, true);
    parsefield* const owned = rec->fields && entry->fields == rec->fields ? rec->fields : nullptr;
    const unsigned int room = owned ? entry->capacity : 0;
    bool grown = true;
    const unsigned int count = cut_fields(line, classes, [&](unsigned int i) -> parsefield* {
        if (i < room) {
            return &owned[i];
        }
        if (i >= scratch_.size()) {
            try {
                scratch_.resize(2 * static_cast<size_t>(i) + 2);
            } catch (const std::bad_alloc&) {
                grown = false;
                return nullptr;
            }
        }
        if (i == room && room > 0) {
            std::memcpy(scratch_.data(), owned, sizeof(parsefield) * room);
        }
        return &scratch_[i];
    });
    if (count > room) {
        parsefield* fields = grown ? static_cast<parsefield*>(gmem_ee_malloc(sizeof(parsefield), count + 1)) : nullptr;
        if (!fields) {
            // Out of memory: the record's array may hold part of this line
            // already, so the record is left empty.
            rec->count = room > 0 ? 0 : rec->count;
            return 0;
        }
        std::memcpy(fields, scratch_.data(), sizeof(parsefield) * count);
        gmem_ee_free(rec->fields);
        rec->fields = fields;
        entry->capacity = count + 1;
    } else if (count == 0 && rec->fields) {
        release_record_fields(rec, entry);
    }
    rec->count = count;
    rec->line = line;
    entry->in_use = 1;
    entry->line = line;
    entry->fields = rec->fields;
    entry->id = rec->id;
    return 1;
}

unsigned int Registry::release(parserecMem* rec)
{
    if (!rec || slots_.empty() || (efficient_ && rec->id == 0)) {
        return 1;
    }
    const long slot = find(rec->id);
    if (slot < 0) {
        return 0;
    }
    if (rec->id == 0) {
        return 1;
    }
    rec->line = nullptr;
    rec->id = 0;
    rec->count = 0;
    gmem_ee_free(rec->fields);
    rec->fields = nullptr;

    const long last = static_cast<long>(slots_.size()) - 1;
    delete slots_[slot];
    if (slot != last) {
        // Swap-remove: the last entry moves here and keeps its id.
        slots_[slot] = slots_[last];
    }
    slots_.pop_back();
    if (slots_.empty()) {
        std::vector<Entry*>().swap(slots_);
        used_ = 0;
        current_ = -1;
        hint_ = 0;
        return 1;
    }
    --current_;
    --used_;
    if (efficient_ && hint_ > static_cast<long>(slots_.size())) {
        hint_ = static_cast<long>(slots_.size());
    }
    return 1;
}

unsigned int Registry::release_all()
{
    // The records keep their field arrays (and own them from now on).
    for (Entry* entry : slots_) {
        delete entry;
    }
    std::vector<Entry*>().swap(slots_);
    used_ = 0;
    current_ = -1;
    hint_ = 0;
    return 1;
}

Registry& plain_registry()
{
    static Registry* registry = new Registry(false);
    return *registry;
}

Registry& efficient_registry()
{
    static Registry* registry = new Registry(true);
    return *registry;
}

} // namespace

extern "C" {

unsigned int gparse_parline_mem(const char* line, const char* seps, const char* marks, char endc, parserecMem* rec)
{
    return plain_registry().parse(line, seps, marks, endc, rec);
}

unsigned int gparse_parline_free_mem(parserecMem* rec)
{
    return plain_registry().release(rec);
}

unsigned int gparse_parline_free_all_mem(void)
{
    return plain_registry().release_all();
}

unsigned int gparse_efficient_parline_mem(const char* line, const char* seps, const char* marks, char endc,
                                          parserecMem* rec)
{
    return efficient_registry().parse(line, seps, marks, endc, rec);
}

unsigned int gparse_efficient_parline_free_mem(parserecMem* rec)
{
    return efficient_registry().release(rec);
}

unsigned int gparse_efficient_parline_free_all_mem(void)
{
    return efficient_registry().release_all();
}

} // extern "C"
