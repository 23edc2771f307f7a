// Open-addressing hash index from normalised names to slot numbers.
#include "env/name_index.h"

#include "env/env_store.h"

#include <cstring>
#include <new>

namespace tql::env {

uint32_t NameIndex::hash(const char* name)
{
    // Eight bytes at a time, each word mixed in with a multiply.
    constexpr uint64_t kMultiplier = 0x9e3779b97f4a7c15u;
    size_t length = std::strlen(name);
    uint64_t h = length * kMultiplier;
    for (; length >= 8; length -= 8, name += 8) {
        uint64_t word;
        std::memcpy(&word, name, 8);
        h = (h ^ word) * kMultiplier;
        h ^= h >> 29;
    }
    if (length > 0) {
        uint64_t word = 0;
        std::memcpy(&word, name, length);
        h = (h ^ word) * kMultiplier;
        h ^= h >> 29;
    }
    return static_cast<uint32_t>(h ^ (h >> 32));
}

int NameIndex::find(const GuiEnvEntry* entries, const char* name, uint32_t name_hash) const
{
    if (buckets_.empty()) {
        return -1;
    }
    const size_t mask = buckets_.size() - 1;
    for (size_t i = name_hash & mask;; i = (i + 1) & mask) {
        const Bucket& bucket = buckets_[i];
        if (bucket.slot < 0) {
            return -1;
        }
        if (bucket.hash == name_hash && std::strcmp(entries[bucket.slot].name, name) == 0) {
            return bucket.slot;
        }
    }
}

void NameIndex::insert(int slot, uint32_t name_hash)
{
    const size_t mask = buckets_.size() - 1;
    size_t i = name_hash & mask;
    while (buckets_[i].slot >= 0) {
        i = (i + 1) & mask;
    }
    buckets_[i] = Bucket{slot, name_hash};
}

bool NameIndex::reserve(int slots)
{
    // Keep the load at most one half.
    size_t wanted = 16;
    while (wanted < static_cast<size_t>(slots) * 2) {
        wanted *= 2;
    }
    if (wanted <= buckets_.size()) {
        return true;
    }
    std::vector<Bucket> old;
    try {
        old.swap(buckets_);
        buckets_.assign(wanted, Bucket{-1, 0});
    } catch (const std::bad_alloc&) {
        buckets_.swap(old);
        return false;
    }
    for (const Bucket& bucket : old) {
        if (bucket.slot >= 0) {
            insert(bucket.slot, bucket.hash);
        }
    }
    return true;
}

void NameIndex::add(const GuiEnvEntry* entries, int slot)
{
    insert(slot, hash(entries[slot].name));
}

void NameIndex::clear()
{
    std::vector<Bucket>().swap(buckets_);
}

} // namespace tql::env
