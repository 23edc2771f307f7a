// Open-addressing hash index from normalised names to slot numbers.
#include "env/name_index.h"

#include "env/env_store.h"

#include <cstring>
#include <new>

namespace tql::env {

uint32_t NameIndex::hash(const char* name)
{
    uint32_t h = 2166136261u; // FNV-1a
    for (; *name; ++name) {
        h = (h ^ static_cast<unsigned char>(*name)) * 16777619u;
    }
    return h;
}

int NameIndex::find(const GuiEnvEntry* entries, const char* name) const
{
    if (buckets_.empty()) {
        return -1;
    }
    const size_t mask = buckets_.size() - 1;
    for (size_t i = hash(name) & mask;; i = (i + 1) & mask) {
        const int32_t slot = buckets_[i];
        if (slot < 0) {
            return -1;
        }
        if (std::strcmp(entries[slot].name, name) == 0) {
            return slot;
        }
    }
}

void NameIndex::insert(const GuiEnvEntry* entries, int slot)
{
    const size_t mask = buckets_.size() - 1;
    size_t i = hash(entries[slot].name) & mask;
    while (buckets_[i] >= 0) {
        i = (i + 1) & mask;
    }
    buckets_[i] = slot;
}

bool NameIndex::reserve(const GuiEnvEntry* entries, int slots)
{
    // Keep the load at most one half.
    size_t wanted = 16;
    while (wanted < static_cast<size_t>(slots) * 2) {
        wanted *= 2;
    }
    if (wanted <= buckets_.size()) {
        return true;
    }
    std::vector<int32_t> old;
    try {
        old.swap(buckets_);
        buckets_.assign(wanted, -1);
    } catch (const std::bad_alloc&) {
        buckets_.swap(old);
        return false;
    }
    for (int32_t slot : old) {
        if (slot >= 0) {
            insert(entries, slot);
        }
    }
    return true;
}

void NameIndex::add(const GuiEnvEntry* entries, int slot)
{
    insert(entries, slot);
}

void NameIndex::clear()
{
    std::vector<int32_t>().swap(buckets_);
}

} // namespace tql::env
