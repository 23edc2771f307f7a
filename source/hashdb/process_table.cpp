// The process-wide table of tql_hcreate, tql_hsearch and tql_hdestroy:
// entries keyed by their C strings, growing past the size asked for.
#include <tql70/hashdb.h>

#include <cstring>
#include <deque>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace {

struct ProcessTable {
    std::unordered_map<std::string_view, ENTRY*> index;
    std::deque<ENTRY> entries; // stable addresses for the returned pointers
};

std::unique_ptr<ProcessTable> table;

} // namespace

int tql_hcreate(size_t nel)
{
    if (table) {
        return 0;
    }
    table = std::make_unique<ProcessTable>();
    table->index.reserve(nel);
    return 1;
}

ENTRY* tql_hsearch(ENTRY item, ACTION action)
{
    if (!table || !item.key) {
        return nullptr;
    }
    const auto found = table->index.find(item.key);
    if (found != table->index.end()) {
        return found->second;
    }
    if (action != ENTER) {
        return nullptr;
    }
    ENTRY* entry = &table->entries.emplace_back(item);
    table->index.emplace(std::string_view(entry->key), entry);
    return entry;
}

void tql_hdestroy(void)
{
    table.reset();
}
