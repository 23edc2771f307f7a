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
    // The slot of `name` among `entries`, or -1.
    int find(const GuiEnvEntry* entries, const char* name) const;
    // Makes room for `slots` names; false when memory is short. After it
    // succeeds, add() for up to that many names cannot fail.
    bool reserve(const GuiEnvEntry* entries, int slots);
    // Records that `slot` of `entries` now holds its name.
    void add(const GuiEnvEntry* entries, int slot);
    void clear();

private:
    static uint32_t hash(const char* name);
    void insert(const GuiEnvEntry* entries, int slot);

    std::vector<int32_t> buckets_; // slot numbers, -1 for empty; size a power of two
};

} // namespace tql::env

#endif
