// The block pool behind poolMem: small blocks carved first-fit out of
// 4096-byte chunks, 8-byte units, one-unit headers with 16-bit fields,
// immediate merging of free neighbours and a structure check.
//
// Chunk memory: a hidden 32-byte prefix (link to the next chunk, the
// control's chunk index, the chunk's number, the head of its free list),
// then unit 0 (a check word, the end index, the first block index) and the
// blocks. The control's state word and every link point at unit 0, so unit
// and block indexes are the same as in a chunk whose link sat in unit 0.
//
// Finding the first fit fast: each chunk lists its free blocks in index
// order, and the control keeps every chunk's largest free span in a
// max-tree ordered by chunk age. A search asks the tree for the newest
// chunk that fits and follows that chunk's free list; it runs on to the
// list's end so that the chunk's largest span stays exact. The block chosen
// is always the one a plain walk of the chain would choose.
//
// Under AddressSanitizer everything but the bytes a caller asked for is
// poisoned (headers, gaps and free blocks), so writing past a block is
// caught; the pool reads and writes its own headers uninstrumented.
#include "containers/block_pool.h"

#include <tql70/gmem.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define TQL70_POOL_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TQL70_POOL_ASAN 1
#endif
#endif

#ifdef TQL70_POOL_ASAN
#include <sanitizer/asan_interface.h>
#define POOL_INTERNAL __attribute__((no_sanitize_address))
#else
#define ASAN_POISON_MEMORY_REGION(addr, size) ((void)(addr), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(addr, size) ((void)(addr), (void)(size))
#define POOL_INTERNAL
#endif

namespace {

constexpr size_t kUnit = 8;
constexpr unsigned kChunkUnits = 512; // K: 4096 bytes
constexpr unsigned kMaxUnits = 65533; // the end index u + 2 must fit 16 bits
constexpr uint16_t kFree = 0xFCC6;
constexpr uint16_t kInUse = 0x357F;
constexpr uint16_t kFirstBlock = 1;

struct Header {
    uint16_t next;
    uint16_t prev;
    uint16_t self;
    uint16_t state;
};
static_assert(sizeof(Header) == kUnit, "a block header is one unit");

struct ChunkHead {
    uint32_t check; // derived from the chunk's address
    uint16_t end;
    uint16_t first;
};
static_assert(sizeof(ChunkHead) == kUnit, "the chunk header is one unit");

// The chunk's free blocks form a list in index order, linked through the
// first data unit of each (every free block has at least one).
struct FreeLinks {
    uint16_t next_free; // 0 at the end
    uint16_t prev_free; // 0 for the first
    uint16_t unused[2];
};

struct ChunkIndex;

struct ChunkPrefix {
    unsigned char* link; // unit 0 of the next chunk in the chain
    ChunkIndex* index;
    uint32_t number; // position in the index: older chunks have lower numbers
    uint16_t free_head; // the free block with the lowest index; 0 when none
    uint16_t unused;
    uint64_t padding; // keeps unit 0 on a 16-byte boundary
};
constexpr size_t kPrefix = sizeof(ChunkPrefix);
static_assert(kPrefix == 32, "hidden chunk prefix");

// Per control: for every chunk its largest free span (next - index of a
// free block; 0 when none), in a max-tree.
struct ChunkIndex {
    std::vector<unsigned char*> chunks;
    std::vector<uint16_t> tree; // leaves at capacity + number
    size_t capacity = 0;

    void add(unsigned char* chunk, uint16_t bound)
    {
        if (chunks.size() == capacity) {
            capacity = capacity ? capacity * 2 : 64;
            std::vector<uint16_t> grown(2 * capacity, 0);
            for (size_t i = 0; i < chunks.size(); ++i) {
                grown[capacity + i] = tree[capacity / 2 + i];
            }
            tree.swap(grown);
            for (size_t i = capacity - 1; i >= 1; --i) {
                tree[i] = std::max(tree[2 * i], tree[2 * i + 1]);
            }
        }
        chunks.push_back(chunk);
        raise(chunks.size() - 1, bound);
    }

    void raise(size_t number, uint16_t bound)
    {
        for (size_t i = capacity + number; i >= 1 && tree[i] < bound; i /= 2) {
            tree[i] = bound;
        }
    }

    void set(size_t number, uint16_t bound)
    {
        size_t i = capacity + number;
        tree[i] = bound;
        for (i /= 2; i >= 1; i /= 2) {
            const uint16_t best = std::max(tree[2 * i], tree[2 * i + 1]);
            if (tree[i] == best) {
                break;
            }
            tree[i] = best;
        }
    }

    // The newest chunk whose bound reaches `span`; -1 when none.
    long newest_reaching(uint16_t span) const
    {
        if (capacity == 0 || tree[1] < span) {
            return -1;
        }
        size_t i = 1;
        while (i < capacity) {
            i = tree[2 * i + 1] >= span ? 2 * i + 1 : 2 * i;
        }
        return static_cast<long>(i - capacity);
    }
};

// Every chunk index ever made. Chunks are never released; the registry
// keeps them reachable to the end of the process (it is never destroyed),
// so leak checkers do not report a dropped control.
ChunkIndex* new_chunk_index()
{
    static std::mutex lock;
    static auto* registry = new std::vector<std::unique_ptr<ChunkIndex>>;
    std::lock_guard<std::mutex> guard(lock);
    registry->push_back(std::make_unique<ChunkIndex>());
    return registry->back().get();
}

uint32_t chunk_check(const unsigned char* chunk)
{
    const auto address = reinterpret_cast<uintptr_t>(chunk);
    return static_cast<uint32_t>(address >> 4) ^ static_cast<uint32_t>(uint64_t(address) >> 36) ^ 0x5A17C0DEu;
}

POOL_INTERNAL ChunkPrefix* prefix(unsigned char* chunk)
{
    return reinterpret_cast<ChunkPrefix*>(chunk - kPrefix);
}

POOL_INTERNAL ChunkHead* head(unsigned char* chunk)
{
    return reinterpret_cast<ChunkHead*>(chunk);
}

POOL_INTERNAL Header* header(unsigned char* chunk, unsigned index)
{
    return reinterpret_cast<Header*>(chunk + index * kUnit);
}

unsigned char* data_of(unsigned char* chunk, unsigned index)
{
    return chunk + (index + 1) * kUnit;
}

// Units for a request of count x size bytes; 0 for 0 bytes or too many.
unsigned units_for(size_t count, size_t size, size_t& bytes)
{
    if (__builtin_mul_overflow(count, size, &bytes) || bytes == 0 || bytes > kMaxUnits * kUnit) {
        return 0;
    }
    return static_cast<unsigned>((bytes + kUnit - 1) / kUnit);
}

POOL_INTERNAL FreeLinks* links(unsigned char* chunk, unsigned index)
{
    return reinterpret_cast<FreeLinks*>(chunk + (index + 1) * kUnit);
}

// Points the neighbours of a free-list entry at `index` (or the list head).
POOL_INTERNAL void relink(unsigned char* chunk, unsigned index, const FreeLinks& l)
{
    if (l.prev_free) {
        links(chunk, l.prev_free)->next_free = static_cast<uint16_t>(index);
    } else {
        prefix(chunk)->free_head = static_cast<uint16_t>(index);
    }
    if (l.next_free) {
        links(chunk, l.next_free)->prev_free = static_cast<uint16_t>(index);
    }
}

// The free block at `to` takes the list place of the one at `from`.
POOL_INTERNAL void replace_free(unsigned char* chunk, unsigned from, unsigned to)
{
    const FreeLinks l = *links(chunk, from);
    *links(chunk, to) = l;
    relink(chunk, to, l);
}

POOL_INTERNAL void unlink_free(unsigned char* chunk, unsigned index)
{
    const FreeLinks l = *links(chunk, index);
    if (l.prev_free) {
        links(chunk, l.prev_free)->next_free = l.next_free;
    } else {
        prefix(chunk)->free_head = l.next_free;
    }
    if (l.next_free) {
        links(chunk, l.next_free)->prev_free = l.prev_free;
    }
}

// Enters the new free block at `index` after the nearest free block before
// it, found by walking back over the blocks in use.
POOL_INTERNAL void insert_free(unsigned char* chunk, unsigned index)
{
    unsigned before = header(chunk, index)->prev;
    while (before >= kFirstBlock && header(chunk, before)->state != kFree) {
        const unsigned earlier = header(chunk, before)->prev;
        before = earlier < before ? earlier : 0;
    }
    const unsigned after = before ? links(chunk, before)->next_free : prefix(chunk)->free_head;
    const FreeLinks l{static_cast<uint16_t>(after), static_cast<uint16_t>(before), {0, 0}};
    *links(chunk, index) = l;
    relink(chunk, index, l);
}

// Places a free header at `at` covering up to `next` (the old end of the
// block being cut) and links the block after it back to it. The caller
// enters it in the free list.
POOL_INTERNAL void place_free(unsigned char* chunk, unsigned at, unsigned next, unsigned prev)
{
    const unsigned end = head(chunk)->end;
    *header(chunk, at) = Header{static_cast<uint16_t>(next), static_cast<uint16_t>(prev), static_cast<uint16_t>(at), kFree};
    if (next < end) {
        header(chunk, next)->prev = static_cast<uint16_t>(at);
    }
    prefix(chunk)->index->raise(prefix(chunk)->number, static_cast<uint16_t>(next - at));
}

// Marks the free block at `index` (with more than u data units) in use,
// splitting off the rest when it leaves room for a header and one unit.
POOL_INTERNAL void* take_block(unsigned char* chunk, unsigned index, unsigned u, size_t bytes)
{
    Header* h = header(chunk, index);
    const unsigned next = h->next;
    if (u + 2 < next - index) {
        const unsigned at = index + u + 1;
        h->next = static_cast<uint16_t>(at);
        place_free(chunk, at, next, index);
        replace_free(chunk, index, at);
    } else {
        unlink_free(chunk, index);
    }
    h->state = kInUse;
    unsigned char* data = data_of(chunk, index);
    ASAN_UNPOISON_MEMORY_REGION(data, bytes);
    return data;
}

// The first free block of the chunk with more than u data units, following
// its free list; 0 when none. `others` receives the largest span of the
// chunk's other free blocks, so the chunk's bound can be made exact.
POOL_INTERNAL unsigned first_fit(unsigned char* chunk, unsigned u, unsigned& others)
{
    const unsigned end = head(chunk)->end;
    unsigned found = 0;
    others = 0;
    for (unsigned i = prefix(chunk)->free_head; i;) {
        const Header h = *header(chunk, i);
        const unsigned next_free = links(chunk, i)->next_free;
        if (h.next <= i || h.next > end || h.state != kFree) {
            break; // damaged; check_Mem reports it
        }
        if (!found && h.next - i > u) {
            found = i;
        } else {
            others = std::max(others, unsigned(h.next - i));
        }
        i = next_free > i ? next_free : 0;
    }
    return found;
}

// Takes the block at `index` and makes the chunk's bound exact again:
// the larger of its other free blocks and what the split leaves.
POOL_INTERNAL void* take_and_settle(unsigned char* chunk, unsigned index, unsigned u, size_t bytes, unsigned others)
{
    void* data = take_block(chunk, index, u, bytes);
    const Header taken = *header(chunk, index);
    const unsigned end = head(chunk)->end;
    unsigned left = 0;
    if (taken.next < end && header(chunk, taken.next)->state == kFree) {
        left = header(chunk, taken.next)->next - taken.next;
    }
    prefix(chunk)->index->set(prefix(chunk)->number, static_cast<uint16_t>(std::max(others, left)));
    return data;
}

POOL_INTERNAL unsigned char* new_chunk(void** state, unsigned units)
{
    auto* base = static_cast<unsigned char*>(gmem_ee_malloc(kPrefix + units * kUnit, 1));
    if (!base) {
        return nullptr;
    }
    unsigned char* chunk = base + kPrefix;
    auto* old_head = static_cast<unsigned char*>(*state);
    ChunkIndex* index = old_head ? prefix(old_head)->index : new_chunk_index();
    *prefix(chunk) = ChunkPrefix{old_head, index, static_cast<uint32_t>(index->chunks.size()), kFirstBlock, 0, 0};
    *head(chunk) = ChunkHead{chunk_check(chunk), static_cast<uint16_t>(units), kFirstBlock};
    *header(chunk, kFirstBlock) = Header{static_cast<uint16_t>(units), 0, kFirstBlock, kFree};
    *links(chunk, kFirstBlock) = FreeLinks{0, 0, {0, 0}};
    ASAN_POISON_MEMORY_REGION(base, kPrefix + units * kUnit);
    index->add(chunk, static_cast<uint16_t>(units - kFirstBlock));
    *state = chunk;
    return chunk;
}

// The chunk of a block in use at `data`, with its header sound and its
// neighbours' headers consistent with it; null otherwise.
POOL_INTERNAL unsigned char* chunk_of_block(void* data)
{
    if (!data || reinterpret_cast<uintptr_t>(data) % kUnit != 0) {
        return nullptr;
    }
    const Header h = *(static_cast<Header*>(data) - 1);
    if (h.state != kInUse || h.self < kFirstBlock || h.next <= h.self || h.prev >= h.self ||
        (h.self > kFirstBlock) != (h.prev >= kFirstBlock)) {
        return nullptr;
    }
    unsigned char* chunk = static_cast<unsigned char*>(data) - (h.self + 1) * kUnit;
    const ChunkHead c = *head(chunk);
    if (c.check != chunk_check(chunk) || c.first != kFirstBlock || h.next > c.end) {
        return nullptr;
    }
    if (h.next < c.end) {
        const Header after = *header(chunk, h.next);
        if (after.self != h.next || after.prev != h.self || after.next <= h.next || after.next > c.end) {
            return nullptr;
        }
        if (after.state == kFree && after.next < c.end && header(chunk, after.next)->self != after.next) {
            return nullptr;
        }
    }
    if (h.prev >= kFirstBlock) {
        const Header before = *header(chunk, h.prev);
        if (before.self != h.prev || before.next != h.self) {
            return nullptr;
        }
    }
    return chunk;
}

// Copies `units` units from `from` to `to`; the ranges may overlap.
POOL_INTERNAL void move_units(unsigned char* to, const unsigned char* from, unsigned units)
{
    auto* dst = reinterpret_cast<uint64_t*>(to);
    const auto* src = reinterpret_cast<const uint64_t*>(from);
    if (dst < src) {
        for (unsigned i = 0; i < units; ++i) {
            dst[i] = src[i];
        }
    } else {
        for (unsigned i = units; i-- > 0;) {
            dst[i] = src[i];
        }
    }
}

POOL_INTERNAL int release(void* data)
{
    unsigned char* chunk = chunk_of_block(data);
    if (!chunk) {
        return 0;
    }
    const unsigned end = head(chunk)->end;
    Header* h = static_cast<Header*>(data) - 1;
    unsigned index = h->self;
    ASAN_POISON_MEMORY_REGION(data, (h->next - index - 1) * kUnit);
    h->state = kFree;
    const unsigned free_after = h->next < end && header(chunk, h->next)->state == kFree ? h->next : 0;
    const unsigned free_before = h->prev >= kFirstBlock && header(chunk, h->prev)->state == kFree ? h->prev : 0;
    if (free_after) {
        const Header after = *header(chunk, free_after);
        h->next = after.next;
        if (after.next < end) {
            header(chunk, after.next)->prev = static_cast<uint16_t>(index);
        }
    }
    if (free_before) {
        header(chunk, free_before)->next = h->next;
        if (h->next < end) {
            header(chunk, h->next)->prev = static_cast<uint16_t>(free_before);
        }
        index = free_before;
    }
    if (free_before && free_after) {
        unlink_free(chunk, free_after);
    } else if (free_after) {
        replace_free(chunk, free_after, index);
    } else if (!free_before) {
        insert_free(chunk, index);
    }
    prefix(chunk)->index->raise(prefix(chunk)->number, static_cast<uint16_t>(header(chunk, index)->next - index));
    return 1;
}

POOL_INTERNAL void* allocate(size_t count, size_t size, void** state)
{
    size_t bytes;
    const unsigned u = units_for(count, size, bytes);
    if (!state || u == 0) {
        return nullptr;
    }
    auto* chain = static_cast<unsigned char*>(*state);
    if (u < kChunkUnits - 1 && chain) {
        ChunkIndex* index = prefix(chain)->index;
        for (long number; (number = index->newest_reaching(static_cast<uint16_t>(u + 1))) >= 0;) {
            unsigned char* chunk = index->chunks[static_cast<size_t>(number)];
            unsigned others;
            if (const unsigned found = first_fit(chunk, u, others)) {
                return take_and_settle(chunk, found, u, bytes, others);
            }
            index->set(static_cast<size_t>(number), static_cast<uint16_t>(others));
        }
    }
    unsigned char* chunk = new_chunk(state, kChunkUnits <= u + 1 ? u + 2 : kChunkUnits);
    return chunk ? take_and_settle(chunk, kFirstBlock, u, bytes, 0) : nullptr;
}

POOL_INTERNAL void* reallocate(void* data, size_t count, size_t size, void** state)
{
    unsigned char* chunk = chunk_of_block(data);
    size_t bytes;
    const unsigned u = units_for(count, size, bytes);
    if (!chunk || !state || u == 0) {
        return nullptr;
    }
    Header* h = static_cast<Header*>(data) - 1;
    const unsigned self = h->self;
    const unsigned end = head(chunk)->end;
    const unsigned units = h->next - self - 1;
    auto* block = static_cast<unsigned char*>(data);
    if (u < kChunkUnits - 2 && u <= units) {
        ASAN_POISON_MEMORY_REGION(block, units * kUnit);
        ASAN_UNPOISON_MEMORY_REGION(block, bytes);
        if (u < units) {
            const unsigned at = self + 1 + u;
            if (h->next < end && header(chunk, h->next)->state == kFree) {
                const unsigned neighbour = h->next;
                const Header after = *header(chunk, neighbour);
                h->next = static_cast<uint16_t>(at);
                place_free(chunk, at, after.next, self);
                replace_free(chunk, neighbour, at);
            } else if (u + 1 < units) {
                const unsigned next = h->next;
                h->next = static_cast<uint16_t>(at);
                place_free(chunk, at, next, self);
                insert_free(chunk, at);
            }
        }
        return data;
    }
    void* moved = allocate(count, size, state);
    if (!moved) {
        return nullptr;
    }
    move_units(static_cast<unsigned char*>(moved), block, std::min(u, end - self - 1));
    release(data);
    return moved;
}

POOL_INTERNAL int walk(void** state)
{
    if (!state) {
        return 0;
    }
    for (auto* chunk = static_cast<unsigned char*>(*state); chunk; chunk = prefix(chunk)->link) {
        const ChunkHead c = *head(chunk);
        if (c.check != chunk_check(chunk)) {
            return 0;
        }
        for (unsigned i = c.first; i < c.end;) {
            const Header h = *header(chunk, i);
            if (h.self != i || h.next <= i || h.next > c.end) {
                return 0;
            }
            i = h.next;
        }
    }
    return 1;
}

} // namespace

void* pool_alloc(size_t count, size_t size, void** state)
{
    return allocate(count, size, state);
}

void* pool_realloc(void* ptr, size_t count, size_t size, void** state)
{
    return reallocate(ptr, count, size, state);
}

int pool_free(void* ptr, void** /*state*/)
{
    return release(ptr);
}

int pool_check(void** state)
{
    return walk(state);
}

int pool_init(void** state)
{
    if (!state) {
        return 0;
    }
    *state = nullptr;
    return 1;
}
