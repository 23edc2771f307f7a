// Persistent lists: the table of open lists, their blocks of record slots,
// positional access, the query and set codes and the caller attachment.
#include "containers/glist_internal.h"

#include <tql70/string_search.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

using namespace glist_internal;

namespace {

// The table of open lists, in creation order.
GlistHeader* g_first_list = nullptr;
GlistHeader** g_tail_link = &g_first_list;

int default_compare(const void* record, const void* key)
{
    if (!record) {
        return key ? 1 : 0;
    }
    if (!key) {
        return -1;
    }
    const signed char* r = static_cast<const signed char*>(record);
    const signed char* k = static_cast<const signed char*>(key);
    for (;; ++r, ++k) {
        if (*r != *k) {
            return *k - *r;
        }
        if (*r == 0) {
            return 0;
        }
    }
}

unsigned int default_copy(void* destination, const void* source, unsigned int n)
{
    if (!destination || !source || n == 0) {
        return 0;
    }
    std::memcpy(destination, source, n);
    return n;
}

int default_hook(glist, int, void*)
{
    return 0;
}

// Records one block holds with `block_bytes` bytes per block.
uint32_t block_records(uint32_t block_bytes)
{
    return (block_bytes - kBlockHeadBytes) / 4 + 2;
}

bool append_block(GlistHeader* list)
{
    Block* block = new (std::nothrow) Block{};
    if (!block) {
        return false;
    }
    block->capacity = block_records(list->block_bytes) - 1;
    block->slots = static_cast<Record**>(std::calloc(block->capacity + 1, sizeof(Record*)));
    if (!block->slots) {
        delete block;
        return false;
    }
    const uint32_t records = block->capacity + 1;
    try {
        list->block_start.push_back(list->length);
        list->blocks.push_back(block);
    } catch (const std::bad_alloc&) {
        list->block_start.resize(list->blocks.size());
        std::free(block->slots);
        delete block;
        return false;
    }
    list->uniform_records = list->blocks.size() == 1 ? records
        : list->uniform_records == records           ? records
                                                     : 0;
    block->prev_link = list->tail_link;
    *list->tail_link = block;
    list->tail_link = &block->next;
    return true;
}

void release_last_block(GlistHeader* list)
{
    Block* block = list->blocks.back();
    *block->prev_link = nullptr;
    list->tail_link = block->prev_link;
    list->blocks.pop_back();
    list->block_start.pop_back();
    std::free(block->slots);
    delete block;
}

void unlink_list(GlistHeader* list)
{
    *list->prev_link = list->next;
    if (list->next) {
        list->next->prev_link = list->prev_link;
    } else {
        g_tail_link = list->prev_link;
    }
}

void release_list(GlistHeader* list)
{
    resize(list, 0);
    unlink_list(list);
    std::free(list->attachment);
    delete list;
}

void copy_text(char* destination, const char* source, size_t limit)
{
    const size_t length = source ? strnlen(source, limit) : 0;
    std::memcpy(destination, source ? source : "", length);
    destination[length] = '\0';
}

} // namespace

namespace glist_internal {

bool store_record(GlistHeader* list, uint32_t index, Record* record)
{
    Record** slot;
    if (index == list->length && !list->blocks.empty() && list->blocks.back()->used <= list->blocks.back()->capacity) {
        // Appending to a block with room: no search.
        Block* last = list->blocks.back();
        slot = &last->slots[last->used++];
        ++list->length;
    } else {
        if (index >= list->length && !resize(list, index + 1)) {
            return false;
        }
        slot = slot_at(list, index);
    }
    std::free(*slot);
    *slot = record;
    return true;
}

bool resize(GlistHeader* list, uint32_t length)
{
    while (list->length > length) {
        Block* last = list->blocks.back();
        const uint32_t drop = std::min(last->used, list->length - length);
        for (uint32_t i = last->used - drop; i < last->used; ++i) {
            std::free(last->slots[i]);
            last->slots[i] = nullptr;
        }
        last->used -= drop;
        list->length -= drop;
        if (last->used == 0) {
            release_last_block(list);
        }
    }
    while (list->length < length) {
        if (list->blocks.empty() || list->blocks.back()->used > list->blocks.back()->capacity) {
            if (!append_block(list)) {
                return false;
            }
        }
        Block* last = list->blocks.back();
        const uint32_t add = std::min(last->capacity + 1 - last->used, length - list->length);
        last->used += add;
        list->length += add;
    }
    return true;
}

Record* make_record(const void* data, uint32_t size, bool& failed)
{
    failed = false;
    if (size == 0) {
        return nullptr;
    }
    Record* record = static_cast<Record*>(std::malloc(offsetof(Record, bytes) + size + 1));
    if (!record) {
        failed = true;
        return nullptr;
    }
    record->size = size;
    std::memcpy(record->bytes, data, size);
    record->bytes[size] = '\0';
    return record;
}

uint32_t readable_bytes(const Record* record, uint32_t size)
{
    return record ? std::min(size, record->size) : size;
}

} // namespace glist_internal

extern "C" {

int glist_create(glist* handle_out, int flags, const char* name, const char* description)
{
    if (!handle_out) {
        return 0;
    }
    GlistHeader* list = new (std::nothrow) GlistHeader{};
    if (!list) {
        return 0;
    }
    list->tail_link = &list->first_block;
    copy_text(list->description, description, kDescriptionLength);
    list->self = list;
    list->open_count = 1;
    list->flags = static_cast<uint32_t>(flags) & GLIST_CREATE_FLAGS;
    list->block_bytes = kDefaultBlockBytes;
    list->compare = default_compare;
    list->copy = default_copy;
    list->hook = default_hook;
    std::strncpy(list->name, name ? name : "", kNameLength);
    list->prev_link = g_tail_link;
    *g_tail_link = list;
    g_tail_link = &list->next;
    *handle_out = list;
    return 1;
}

int glist_open(glist* handle_out, const char* name)
{
    if (!handle_out || !name) {
        return 0;
    }
    char wanted[kNameLength + 1] = {};
    std::strncpy(wanted, name, kNameLength);
    for (GlistHeader* list = g_first_list; list; list = list->next) {
        if (tql_strcmp(list->name, wanted) == 0) {
            ++list->open_count;
            *handle_out = list;
            return 1;
        }
    }
    return 0;
}

int glist_close(glist handle)
{
    if (!handle) {
        return 0;
    }
    if (hooked(handle, kHookClose, nullptr)) {
        return 1;
    }
    if (--handle->open_count <= 0) {
        release_list(handle);
    }
    return 1;
}

int glist_closeall(void)
{
    while (g_first_list) {
        GlistHeader* list = g_first_list;
        list->open_count = 1;
        glist_close(list);
        if (g_first_list == list) {
            // The hook kept it open: release it all the same so that the
            // walk ends.
            release_list(list);
        }
    }
    return 1;
}

int glist_setlength(glist handle, unsigned int n)
{
    if (!handle) {
        return 0;
    }
    if (hooked(handle, kHookSetLength, &n)) {
        return 1;
    }
    return resize(handle, n) ? 1 : 0;
}

int glist_putrec(glist handle, unsigned int index, const void* data, unsigned int size)
{
    if (!handle || (!data && size > 0) || index == UINT32_MAX) {
        return 0;
    }
    if (hooked(handle, kHookPutRecord, const_cast<void*>(data))) {
        return 1;
    }
    bool failed = false;
    Record* record = make_record(data, size, failed);
    if (failed || !store_record(handle, index, record)) {
        std::free(record);
        return 0;
    }
    handle->flags &= ~static_cast<uint32_t>(GLIST_SORTED);
    return 1;
}

int glist_putstr(glist handle, unsigned int index, const char* text)
{
    if (!text) {
        return 0;
    }
    const size_t length = std::strlen(text);
    return glist_putrec(handle, index, text, length ? static_cast<unsigned int>(length + 1) : 0);
}

int glist_getrec(glist handle, unsigned int index, void* destination, unsigned int size, unsigned int* copied_out)
{
    if (!handle || !destination || !copied_out) {
        return 0;
    }
    if (hooked(handle, kHookGetRecord, destination)) {
        return 1;
    }
    if (index >= handle->length) {
        return 0;
    }
    const Record* record = *slot_at(handle, index);
    *copied_out = handle->copy(destination, record ? record->bytes : nullptr, readable_bytes(record, size));
    return 1;
}

int glist_getstr(glist handle, unsigned int index, char* out)
{
    if (!handle || !out) {
        return 0;
    }
    if (hooked(handle, kHookGetString, out)) {
        return 1;
    }
    if (index >= handle->length) {
        return 0;
    }
    std::strcpy(out, record_text(*slot_at(handle, index)));
    return 1;
}

int glist_setuserfn(glist handle, GlistCompareFn compare, GlistCopyFn copy)
{
    if (!handle) {
        return 0;
    }
    if (compare) {
        handle->compare = compare;
    }
    if (copy) {
        handle->copy = copy;
    }
    return 1;
}

int glist_query(glist handle, int code, void* out)
{
    unsigned int* number = static_cast<unsigned int*>(out);
    switch (code) {
    case GLIST_STORE_COUNT:
    case GLIST_LENGTH:
    case GLIST_BLOCK_BYTES:
        if (!number) {
            return 0;
        }
        *number = !handle ? 0
            : code == GLIST_STORE_COUNT ? handle->store_count
            : code == GLIST_LENGTH ? handle->length
                                    : handle->block_bytes;
        return handle ? 1 : 0;
    case GLIST_DESCRIPTION:
        if (!out) {
            return 0;
        }
        std::strcpy(static_cast<char*>(out), handle ? handle->description : "");
        return handle ? 1 : 0;
    case GLIST_VALID:
        return handle ? 1 : 0;
    case GLIST_HAS_A:
        return handle ? static_cast<int>(handle->flags & GLIST_ATTRIBUTE_A) : 0;
    case GLIST_HAS_B:
        return handle ? static_cast<int>(handle->flags & GLIST_ATTRIBUTE_B) : 0;
    case GLIST_SHARED:
        return handle && handle->open_count > 1 ? 1 : 0;
    case GLIST_IS_SORTED:
        return handle ? static_cast<int>(handle->flags & GLIST_SORTED) : 0;
    case GLIST_HAS_C:
        return handle ? static_cast<int>(handle->flags & GLIST_ATTRIBUTE_C) : 0;
    default:
        return 0;
    }
}

int glist_set(glist handle, int code, const void* in)
{
    if (!handle) {
        return 0;
    }
    const unsigned int* number = static_cast<const unsigned int*>(in);
    switch (code) {
    case GLIST_STORE_COUNT:
        if (!number) {
            return 0;
        }
        handle->store_count = *number;
        return 1;
    case GLIST_DESCRIPTION:
        if (!in) {
            return 0;
        }
        copy_text(handle->description, static_cast<const char*>(in), kDescriptionLength);
        return 1;
    case GLIST_BLOCK_BYTES:
        // A block must at least hold its head.
        if (!number || *number < kBlockHeadBytes) {
            return 0;
        }
        handle->block_bytes = *number;
        return 1;
    case GLIST_HAS_C:
        handle->flags ^= GLIST_ATTRIBUTE_C;
        return 1;
    default:
        return 0;
    }
}

int glist_save_stfh(glist handle, void* a, void* b)
{
    if (!handle) {
        return 0;
    }
    void** words = static_cast<void**>(std::malloc(2 * sizeof(void*)));
    if (!words) {
        return 0;
    }
    words[0] = b;
    words[1] = a;
    std::free(handle->attachment);
    handle->attachment = words;
    return 1;
}

int glist_remote_stfh(glist handle, void** a_out, void** b_out)
{
    if (!handle || !handle->attachment || !a_out || !b_out) {
        return 0;
    }
    *a_out = handle->attachment[1];
    *b_out = handle->attachment[0];
    return 1;
}

int glist_remove_stfh(glist handle)
{
    if (!handle || !handle->attachment) {
        return 0;
    }
    std::free(handle->attachment);
    handle->attachment = nullptr;
    return 1;
}

} // extern "C"
