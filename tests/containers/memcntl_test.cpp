// Memory controls: the plain table, the block pool's layout, first-fit
// order, merging, reallocation, and refusal of bad pointers.
#include <tql70/gmem.h>
#include <tql70/memcntl.h>

#include "support/child_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define POOL_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define POOL_TEST_ASAN 1
#endif
#endif
#ifdef POOL_TEST_ASAN
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

UNCHECKED uint16_t chunk_end(const void* chunk)
{
    return static_cast<const uint16_t*>(chunk)[2];
}

UNCHECKED void set_self(void* chunk, unsigned index, uint16_t self)
{
    static_cast<uint16_t*>(chunk)[4 * index + 2] = self;
}

void* data_of(void* chunk, unsigned index)
{
    return static_cast<char*>(chunk) + 8 * (index + 1);
}

// The block a plain first-fit walk of the chain chooses for u units (the
// link to the next chunk sits in the hidden word 32 bytes before unit 0);
// null when a new chunk is needed.
UNCHECKED void* plain_first_fit(void* chunk, unsigned u)
{
    for (; chunk; chunk = *reinterpret_cast<void**>(static_cast<char*>(chunk) - 32)) {
        for (unsigned i = 1; i < chunk_end(chunk); i = header_at(chunk, i).next) {
            const Header h = header_at(chunk, i);
            if (h.state == kFree && h.next - i > u) {
                return data_of(chunk, i);
            }
        }
    }
    return nullptr;
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

TEST(MemCntl, PoolLayoutSplitAndMerge)
{
    MemCntl pool = fresh_pool();
    void* one = alloc_Mem(&pool, 1, 1);
    void* chunk = pool.state;
    ASSERT_NE(chunk, nullptr);
    EXPECT_EQ(one, data_of(chunk, 1));
    EXPECT_EQ(chunk_end(chunk), 512);
    void* b = alloc_Mem(&pool, 2, 8); // index 3, 2 units (placement: the random-use test)
    void* c = alloc_Mem(&pool, 1, 8); // index 6
    EXPECT_EQ(free_Mem(&pool, b), 1);
    EXPECT_EQ(free_Mem(&pool, b), 0); // a second release is refused
    EXPECT_EQ(free_Mem(&pool, one), 1);
    EXPECT_EQ(free_Mem(&pool, c), 1);
    const Header merged = header_at(chunk, 1);
    EXPECT_TRUE(merged.next == 512 && merged.state == kFree);
    EXPECT_EQ(check_Mem(&pool), 1);
    EXPECT_EQ(dump_Mem(&pool), 1);

    // A free block one header and one unit longer than the request is split.
    void* d = alloc_Mem(&pool, 3, 8);
    alloc_Mem(&pool, 1, 8);
    EXPECT_EQ(free_Mem(&pool, d), 1);
    EXPECT_EQ(alloc_Mem(&pool, 1, 8), d);
    EXPECT_EQ(header_at(chunk, 1).next, 3);

    void* big = alloc_Mem(&pool, 5000, 1); // a chunk of its own
    EXPECT_NE(pool.state, chunk);
    EXPECT_EQ(big, data_of(pool.state, 1));
    EXPECT_EQ(chunk_end(pool.state), 627);
    EXPECT_EQ(alloc_Mem(&pool, 0, 1), nullptr);
    EXPECT_EQ(alloc_Mem(&pool, 65534, 8), nullptr);
    EXPECT_EQ(realloc_Mem(&pool, big, 0, 1), nullptr); // and the block is kept:
    EXPECT_EQ(free_Mem(&pool, big), 1);
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

TEST(MemCntl, RandomUseKeepsDataAndStructure)
{
    MemCntl pool = fresh_pool();
    struct Block { unsigned char* data = nullptr; size_t size = 0; unsigned char fill = 0; };
    std::vector<Block> blocks(300);
    std::mt19937 random(1);
    const auto intact = [](const Block& b) { return std::count(b.data, b.data + b.size, b.fill) == long(b.size); };
    for (int step = 0; step < 20000; ++step) {
        Block& b = blocks[random() % blocks.size()];
        const size_t size = random() % 5 == 0 ? 1 + random() % 6000 : 1 + random() % 200;
        ASSERT_TRUE(intact(b)) << step;
        if (b.data && random() % 2 == 0) {
            b.data = static_cast<unsigned char*>(realloc_Mem(&pool, b.data, size, 1));
            ASSERT_NE(b.data, nullptr);
            b.size = std::min(b.size, size);
            ASSERT_TRUE(intact(b)) << step; // the kept part survives a move
        } else {
            if (b.data) {
                ASSERT_EQ(free_Mem(&pool, b.data), 1);
            }
            const unsigned units = static_cast<unsigned>((size + 7) / 8);
            void* expected = units < 511 ? plain_first_fit(pool.state, units) : nullptr;
            b.data = static_cast<unsigned char*>(alloc_Mem(&pool, size, 1));
            ASSERT_NE(b.data, nullptr);
            ASSERT_TRUE(!expected || b.data == expected) << step; // the plain walk's choice
        }
        b.size = size;
        b.fill = static_cast<unsigned char>(step);
        std::memset(b.data, b.fill, size);
        if (step % 1000 == 0) {
            ASSERT_EQ(check_Mem(&pool), 1) << step;
        }
    }
    for (Block& b : blocks) {
        EXPECT_TRUE(!b.data || free_Mem(&pool, b.data) == 1);
    }
    EXPECT_EQ(check_Mem(&pool), 1);
}

TEST(MemCntl, WritingPastABlockIsCaughtUnderAddressSanitizer)
{
#ifndef POOL_TEST_ASAN
    GTEST_SKIP() << "needs an AddressSanitizer build";
#else
    const auto child = tql_test::run_in_child([] {
        MemCntl pool{nullptr, nullptr};
        initialize_MemCntl(&pool, &poolMem);
        char* first = static_cast<char*>(alloc_Mem(&pool, 12, 1));
        alloc_Mem(&pool, 12, 1);
        std::memset(first, 1, 12);
        volatile char* past = first + 12;
        *past = 1;
    });
    EXPECT_FALSE(child.exited && child.exit_status == 0);
    EXPECT_NE(child.err.find("AddressSanitizer"), std::string::npos) << child.err;
#endif
}

} // namespace
