// Memory controls: the plain table, the block pool's layout, first-fit
// order, merging, reallocation, refusal of bad pointers, and the poisoned
// bytes past a block under AddressSanitizer.
#include <tql70/gmem.h>
#include <tql70/memcntl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#define POOL_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define POOL_TEST_ASAN 1
#endif
#endif
#ifdef POOL_TEST_ASAN
#include <sanitizer/asan_interface.h>
#define UNCHECKED __attribute__((no_sanitize_address))
#else
#define UNCHECKED
#endif

namespace {

struct Header {
    uint16_t next, prev, self, state;
};
constexpr uint16_t kFree = 0xFCC6;
constexpr uint16_t kInUse = 0x357F;

// Pool headers are poisoned under AddressSanitizer: read them unchecked.
UNCHECKED Header header_at(const void* chunk, unsigned index)
{
    const auto* unit = static_cast<const uint16_t*>(chunk) + 4 * index;
    return Header{unit[0], unit[1], unit[2], unit[3]};
}

UNCHECKED void set_self(void* chunk, unsigned index, uint16_t self)
{
    static_cast<uint16_t*>(chunk)[4 * index + 2] = self;
}

void* data_of(void* chunk, unsigned index)
{
    return static_cast<char*>(chunk) + 8 * (index + 1);
}

// Each test gets a fresh pool; its chunks stay with the pool's registry.
MemCntl fresh_pool()
{
    MemCntl cntl{nullptr, reinterpret_cast<void*>(1)};
    EXPECT_EQ(initialize_MemCntl(&cntl, &poolMem), 1);
    EXPECT_EQ(cntl.state, nullptr);
    return cntl;
}

TEST(MemCntl, TablesAndNullControls)
{
    MemCntl plain{nullptr, reinterpret_cast<void*>(1)};
    MemCntl none{nullptr, nullptr};
    ASSERT_EQ(initialize_MemCntl(&plain, &tarvexMem), 1);
    EXPECT_EQ(plain.state, nullptr);
    void* block = realloc_Mem(&plain, alloc_Mem(&plain, 3, 4), 100, 2);
    ASSERT_NE(block, nullptr);
    const struct {
        const char* call;
        long long result;
        long long expected;
    } cases[] = {
        {"plain free", free_Mem(&plain, block), 1},
        {"plain free null", free_Mem(&plain, nullptr), 0},
        {"plain check", check_Mem(&plain), 1},
        {"plain set", set_MemCntl(&plain), 0},
        {"init null table", initialize_MemCntl(&none, nullptr), 0},
        {"init null control", initialize_MemCntl(nullptr, &poolMem), 0},
        {"no table alloc", alloc_Mem(&none, 1, 1) != nullptr, 0},
        {"no table free", free_Mem(&none, block), 0},
        {"no table dump", dump_Mem(&none), 0},
        {"null control realloc", realloc_Mem(nullptr, block, 1, 1) != nullptr, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.call);
        EXPECT_EQ(c.result, c.expected);
    }
    plain.state = reinterpret_cast<void*>(8); // dump never looks at it
    EXPECT_EQ(dump_Mem(&plain), 1);
}

// One pool through its layout, shrinking in place, growing by a move (down
// and up), every kind of merge, a chunk of its own and first fit across
// chunks.
TEST(MemCntl, PoolLayoutReallocSplitAndMerge)
{
    MemCntl pool = fresh_pool();
    auto* r = static_cast<unsigned char*>(alloc_Mem(&pool, 25, 1)); // index 1, 4 units
    void* chunk = pool.state;
    ASSERT_NE(chunk, nullptr);
    EXPECT_EQ(r, data_of(chunk, 1));
#ifdef POOL_TEST_ASAN
    EXPECT_TRUE(__asan_address_is_poisoned(r + 25)); // a write past it is reported
#endif
    void* s = alloc_Mem(&pool, 4, 8); // index 6
    auto* t = static_cast<unsigned char*>(alloc_Mem(&pool, 2, 8)); // index 11, free space behind it
    std::memset(t, 0x3C, 16);
    // In front of a block in use the freed tail gets a header (at 3) that s
    // links back to; in front of a free block that block's header moves down.
    EXPECT_EQ(realloc_Mem(&pool, r, 1, 8), r);
    EXPECT_EQ(realloc_Mem(&pool, t, 1, 8), t);
    EXPECT_TRUE(header_at(chunk, 11).next == 13 && header_at(chunk, 13).state == kFree);
    EXPECT_EQ(free_Mem(&pool, s), 1); // its neighbours still point back at it
    EXPECT_EQ(free_Mem(&pool, s), 0); // a second release is refused

    // t moves down into the lowest free block that fits (3 to 11, taken
    // whole), r moves up to 11.
    auto* grown = static_cast<unsigned char*>(realloc_Mem(&pool, t, 7, 8));
    EXPECT_EQ(grown, data_of(chunk, 3));
    EXPECT_EQ(std::count(grown, grown + 8, 0x3C), 8);
    void* moved_up = realloc_Mem(&pool, r, 2, 8);
    EXPECT_EQ(moved_up, data_of(chunk, 11));

    // A free block (1 to 11) one header and one unit longer than the request
    // is split.
    EXPECT_EQ(free_Mem(&pool, grown), 1);
    void* split = alloc_Mem(&pool, 7, 8);
    EXPECT_EQ(header_at(chunk, 1).next, 9);
    EXPECT_EQ(free_Mem(&pool, split), 1);
    EXPECT_EQ(free_Mem(&pool, moved_up), 1);
    const Header merged = header_at(chunk, 1);
    EXPECT_TRUE(merged.next == 512 && merged.state == kFree); // the whole chunk of 4096 bytes
    EXPECT_EQ(dump_Mem(&pool), 1);

    void* big = alloc_Mem(&pool, 5000, 1); // a chunk of its own
    EXPECT_EQ(big, data_of(pool.state, 1));
    EXPECT_EQ(header_at(pool.state, 1).next, 627); // its end
    EXPECT_EQ(alloc_Mem(&pool, 0, 1), nullptr);
    EXPECT_EQ(alloc_Mem(&pool, 65534, 8), nullptr);
    EXPECT_EQ(realloc_Mem(&pool, big, 0, 1), nullptr); // and the block is kept:
    EXPECT_EQ(free_Mem(&pool, big), 1);
    for (int i = 0; i < 65; ++i) alloc_Mem(&pool, 4000, 1); // a chunk each but the first
    EXPECT_EQ(alloc_Mem(&pool, 8, 1), data_of(pool.state, 502)); // the newest chunk that fits
    EXPECT_EQ(check_Mem(&pool), 1);
}

TEST(MemCntl, BadPointersAndDamageAreRefused)
{
    MemCntl pool = fresh_pool();
    void* a = alloc_Mem(&pool, 1, 8);
    alloc_Mem(&pool, 1, 8);
    char* c = static_cast<char*>(alloc_Mem(&pool, 4, 8));
    std::memset(c, 0, 32);
    void* chunk = pool.state;
    void* heap = gmem_ee_malloc(64, 1);
    const struct {
        const char* what;
        void* pointer;
    } foreign[] = {
        {"malloc block", heap},
        {"misaligned", static_cast<char*>(a) + 1},
        {"inside a block", c + 16},
    };
    for (const auto& f : foreign) {
        SCOPED_TRACE(f.what);
        EXPECT_TRUE(free_Mem(&pool, f.pointer) == 0 && realloc_Mem(&pool, f.pointer, 2, 8) == nullptr);
    }
    gmem_ee_free(heap);
    EXPECT_EQ(check_Mem(&pool), 1);
    set_self(chunk, 3, 9); // damage b's header
    EXPECT_EQ(check_Mem(&pool), 0);
    EXPECT_EQ(dump_Mem(&pool), 0);
    EXPECT_EQ(free_Mem(&pool, a), 0); // its neighbour is damaged
    EXPECT_EQ(header_at(chunk, 1).state, kInUse);
}

} // namespace
