// Persistent lists: moving records, sorting, and keyed search and insert by
// binary search over a sorted list.
#include "containers/glist_internal.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

using namespace glist_internal;

namespace {

// Walks the slots of consecutive positions without a search per step.
class SlotCursor {
public:
    SlotCursor(GlistHeader* list, uint32_t index) : list_(list)
    {
        block_ = block_of(list, index);
        offset_ = index - list->block_start[block_];
    }
    Record*& operator*() const { return list_->blocks[block_]->slots[offset_]; }
    void forward()
    {
        if (++offset_ == list_->blocks[block_]->used && block_ + 1 < list_->blocks.size()) {
            ++block_;
            offset_ = 0;
        }
    }
    void backward()
    {
        if (offset_ == 0) {
            --block_;
            offset_ = list_->blocks[block_]->used;
        }
        --offset_;
    }

private:
    GlistHeader* list_;
    size_t block_;
    uint32_t offset_;
};

int sign_of(const GlistHeader* list)
{
    return (list->flags & GLIST_DESCENDING) ? -1 : 1;
}

// The hit position, or the insertion point when `hit` is false.
uint32_t search(GlistHeader* list, const void* key, bool& hit)
{
    const int sign = sign_of(list);
    uint32_t lo = 0;
    uint32_t hi = list->length;
    uint32_t probe = hi / 2;
    hit = false;
    while (hi > lo && !hit) {
        const Record* record = *slot_at(list, probe);
        const int c = list->compare(record ? record->bytes : nullptr, key) * sign;
        if (c == 0) {
            hit = true;
        } else {
            if (c < 0) {
                hi = probe;
            } else {
                lo = probe + 1;
            }
            probe = lo + (hi - lo) / 2;
        }
    }
    return probe;
}

// The quicksort of the list's order over `items`, last element as pivot.
// The smaller part is sorted by recursion and the larger by the loop, which
// gives the same order as taking the parts in turn and bounds the depth.
void quicksort(std::vector<Record*>& items, long lo, long hi, GlistCompareFn compare, int sign)
{
    auto order = [&](const Record* element, const Record* pivot) {
        return compare(element ? element->bytes : nullptr, pivot ? pivot->bytes : nullptr) * sign;
    };
    while (hi - lo >= 1) {
        const Record* pivot = items[hi];
        long left = lo;
        long right = hi;
        for (;;) {
            while (left < right && order(items[left], pivot) >= 0) {
                ++left;
            }
            while (right > left && order(items[right], pivot) <= 0) {
                --right;
            }
            if (left >= right) {
                break;
            }
            std::swap(items[left], items[right]);
        }
        std::swap(items[hi], items[left]);
        if (left - lo < hi - left) {
            quicksort(items, lo, left - 1, compare, sign);
            lo = left + 1;
        } else {
            quicksort(items, left + 1, hi, compare, sign);
            hi = left - 1;
        }
    }
}

} // namespace

extern "C" {

int glist_move(glist handle, unsigned int index, int shift)
{
    if (!handle) {
        return 0;
    }
    if (hooked(handle, kHookMove, &shift)) {
        return 1;
    }
    const uint32_t old_length = handle->length;
    if (shift < 0) {
        const uint32_t count = static_cast<uint32_t>(-static_cast<int64_t>(shift));
        if (count > index || index > old_length) {
            return 0;
        }
        SlotCursor target(handle, index - count);
        for (uint32_t i = 0; i < count; ++i, target.forward()) {
            std::free(*target);
            *target = nullptr;
        }
        if (index < old_length) {
            SlotCursor to(handle, index - count);
            SlotCursor from(handle, index);
            for (uint32_t i = index; i < old_length; ++i, to.forward(), from.forward()) {
                *to = *from;
                *from = nullptr;
            }
        }
        resize(handle, old_length - count);
    } else if (shift > 0) {
        const uint64_t grown = static_cast<uint64_t>(index >= old_length ? index : old_length) + static_cast<uint32_t>(shift);
        if (grown >= UINT32_MAX || !resize(handle, static_cast<uint32_t>(grown))) {
            return 0;
        }
        if (index < old_length) {
            SlotCursor to(handle, handle->length - 1);
            SlotCursor from(handle, old_length - 1);
            for (uint32_t i = old_length; i > index; --i) {
                *to = *from;
                *from = nullptr;
                if (i - 1 > index) {
                    to.backward();
                    from.backward();
                }
            }
        }
    }
    handle->store_count = handle->length;
    return 1;
}

int glist_sort(glist handle, unsigned int from, unsigned int to)
{
    if (!handle || from >= to || to >= handle->length) {
        return 0;
    }
    std::vector<Record*> items;
    items.reserve(to - from + 1);
    SlotCursor cursor(handle, from);
    for (uint32_t i = from; i <= to; ++i, cursor.forward()) {
        items.push_back(*cursor);
    }
    quicksort(items, 0, static_cast<long>(items.size()) - 1, handle->compare, sign_of(handle));
    SlotCursor back(handle, from);
    for (Record* record : items) {
        *back = record;
        back.forward();
    }
    if (from == 0 && to == handle->length - 1) {
        handle->flags |= GLIST_SORTED;
    }
    return 1;
}

int glist_putkeyrec(glist handle, const void* key_record, unsigned int size)
{
    if (!handle || !key_record) {
        return 0;
    }
    if (hooked(handle, kHookPutByKey, &size)) {
        return 1;
    }
    if (!(handle->flags & GLIST_SORTED)) {
        return 0;
    }
    bool failed = false;
    Record* record = make_record(key_record, size, failed);
    if (failed) {
        return 0;
    }
    bool hit = false;
    const uint32_t position = search(handle, key_record, hit);
    if (!hit || (handle->flags & GLIST_DUPLICATES)) {
        if (!glist_move(handle, position, 1)) {
            std::free(record);
            return 0;
        }
    }
    Record** slot = slot_at(handle, position);
    std::free(*slot);
    *slot = record;
    return 1;
}

int glist_putkeystr(glist handle, const char* text)
{
    if (!text) {
        return 0;
    }
    const size_t length = std::strlen(text);
    return glist_putkeyrec(handle, text, length ? static_cast<unsigned int>(length + 1) : 0);
}

int glist_getkeyrec(glist handle, unsigned int* index_out, void* key, unsigned int size, unsigned int* copied_out)
{
    if (!handle || !index_out || !key || !copied_out) {
        return 0;
    }
    if (hooked(handle, kHookGetByKey, index_out)) {
        return 1;
    }
    if (!(handle->flags & GLIST_SORTED)) {
        return 0;
    }
    bool hit = false;
    const uint32_t position = search(handle, key, hit);
    if (!hit) {
        return 0;
    }
    *index_out = position;
    const Record* record = *slot_at(handle, position);
    *copied_out = handle->copy(key, record ? record->bytes : nullptr, readable_bytes(record, size));
    return 1;
}

} // extern "C"
