// The record of an open list and the helpers that the list's files share:
// the chain of blocks of record slots, found by position through an index
// of the blocks kept beside the chain.
#ifndef TQL70_SOURCE_CONTAINERS_GLIST_INTERNAL_H
#define TQL70_SOURCE_CONTAINERS_GLIST_INTERNAL_H

#include <tql70/glist.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace glist_internal {

// Operation codes passed to a list's hook.
enum HookOperation {
    kHookSetLength = 30,
    kHookGetString = 31,
    kHookGetRecord = 32,
    kHookPutRecord = 33,
    kHookMove = 34,
    kHookClose = 35,
    kHookGetByKey = 38,
    kHookPutByKey = 39,
};

using HookFn = int (*)(glist list, int operation, void* argument);

// A record: a heap copy of the caller's bytes followed by one NUL, so that
// reading it as a string never runs past the copy.
struct Record {
    uint32_t size;
    char bytes[1];
};

// A block of record slots. It holds capacity + 1 records (61 with the
// default 256 block bytes): the slot array has capacity + 1 entries.
struct Block {
    Block* next;
    Block** prev_link;
    uint32_t used;
    uint32_t capacity;
    Record** slots;
};

constexpr uint32_t kDefaultBlockBytes = 256;
constexpr uint32_t kBlockHeadBytes = 20;
constexpr int kNameLength = 8;
constexpr int kDescriptionLength = GLIST_DESCRIPTION_SIZE - 1;

} // namespace glist_internal

struct GlistHeader {
    GlistHeader* next;
    GlistHeader** prev_link;
    glist_internal::Block* first_block;
    glist_internal::Block** tail_link;
    uint32_t length;
    uint32_t empty_capacity; // always 0
    char description[GLIST_DESCRIPTION_SIZE];
    GlistHeader* self;
    int32_t open_count;
    uint32_t flags;
    uint32_t store_count;
    uint32_t block_bytes;
    GlistCompareFn compare;
    GlistCopyFn copy;
    glist_internal::HookFn hook;
    char name[glist_internal::kNameLength + 1];
    void** attachment;
    // Every block in chain order and the position of its first record: all
    // blocks but the last are full, so a position is found by a binary
    // search of `block_start`.
    std::vector<glist_internal::Block*> blocks;
    std::vector<uint32_t> block_start;
    // Records per block while every block holds the same number (the
    // block of a position is then a division), else 0.
    uint32_t uniform_records;
};

namespace glist_internal {

// The block holding position `index` (< length).
inline size_t block_of(const GlistHeader* list, uint32_t index)
{
    if (list->uniform_records) {
        return index / list->uniform_records;
    }
    const auto found = std::upper_bound(list->block_start.begin(), list->block_start.end(), index);
    return static_cast<size_t>(found - list->block_start.begin()) - 1;
}
// The slot of position `index` (< length).
inline Record** slot_at(GlistHeader* list, uint32_t index)
{
    const size_t block = block_of(list, index);
    return &list->blocks[block]->slots[index - list->block_start[block]];
}
// Stores `record` at `index`, growing the list to index + 1 when needed
// and releasing the record it replaces; false when the list cannot grow.
bool store_record(GlistHeader* list, uint32_t index, Record* record);
// Sets the length, appending empty slots or releasing records and blocks;
// false when a block cannot be allocated.
bool resize(GlistHeader* list, uint32_t length);
// A heap record of `size` bytes of `data` (null for size 0 or on failure;
// `failed` tells the two apart).
Record* make_record(const void* data, uint32_t size, bool& failed);
// The record's text ("" for an empty record).
inline const char* record_text(const Record* record)
{
    return record ? record->bytes : "";
}
// Whether the list's hook takes the operation over.
inline bool hooked(GlistHeader* list, int operation, void* argument)
{
    return list->hook(list, operation, argument) != 0;
}
// Bytes the copy function may read from `record` for a request of `size`.
uint32_t readable_bytes(const Record* record, uint32_t size);

} // namespace glist_internal

#endif
