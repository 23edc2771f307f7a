// A per-level hash index from variable name to slot number. Names are
// unique within a level (put finds deleted entries too and revives them),
// so the index gives exactly the answers of a scan from the first slot.
#ifndef TQL70_SOURCE_ENV_NAME_INDEX_H
#define TQL70_SOURCE_ENV_NAME_INDEX_H

#include <cstdint>
#include <vector>

struct GuiEnvEntry;

namespace tql::env {

class NameIndex {
public:
    // The hash of a normalised name; a lookup through several levels
    // computes it once.
    static uint32_t hash(const char* name);

    // The slot of `name` (whose hash is `name_hash`) among `entries`, or -1.
    int find(const GuiEnvEntry* entries, const char* name, uint32_t name_hash) const;
    // Makes room for `slots` names; false when memory is short. After it
    // succeeds, add() for up to that many names cannot fail.
    bool reserve(int slots);
    // Records that `slot` of `entries` now holds its name.
    void add(const GuiEnvEntry* entries, int slot);
    void clear();

private:
    // A slot number (-1: empty bucket) with its name's hash, so a probe
    // compares names only when the hashes agree.
    struct Bucket {
        int32_t slot;
        uint32_t hash;
    };
    void insert(int slot, uint32_t name_hash);

    std::vector<Bucket> buckets_; // size a power of two
};

} // namespace tql::env

#endif
