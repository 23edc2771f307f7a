// gmem_ee_*: byte counts of size times count; 0 bytes and overflowing
// products give null, and realloc's null results keep the old block.
#include <tql70/gmem.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

TEST(Gmem, ZeroAndOverflowingByteCountsGiveNullAndKeepTheOldBlock)
{
    const size_t half = SIZE_MAX / 2 + 1;
    // Products that wrap to 0 and to a small count (2 bytes) alike.
    const size_t pairs[][2] = {{0, 16}, {SIZE_MAX, 0}, {half, 2}, {half + 1, 2}, {size_t{1} << 32, size_t{1} << 32}};
    unsigned char* block = static_cast<unsigned char*>(gmem_ee_malloc(4, 4));
    ASSERT_NE(block, nullptr);
    std::memset(block, 0x5A, 16);
    for (const auto& p : pairs) {
        SCOPED_TRACE(testing::Message() << "size " << p[0] << " count " << p[1]);
        EXPECT_EQ(gmem_ee_malloc(p[0], p[1]), nullptr);
        EXPECT_EQ(gmem_ee_calloc(p[0], p[1]), nullptr);
        EXPECT_EQ(gmem_ee_realloc(nullptr, p[0], p[1]), nullptr);
        EXPECT_EQ(gmem_ee_realloc(block, p[0], p[1]), nullptr);
        EXPECT_EQ(block[15], 0x5A); // still allocated and intact
    }
    gmem_ee_free(block);
    gmem_ee_free(nullptr);
}

TEST(Gmem, CallocZeroFillsReusedMemory)
{
    // A dirtied block given back is likely to be handed out again.
    void* dirty = gmem_ee_malloc(8, 25);
    ASSERT_NE(dirty, nullptr);
    std::memset(dirty, 0xAB, 200);
    gmem_ee_free(dirty);
    unsigned char* clean = static_cast<unsigned char*>(gmem_ee_calloc(8, 25));
    ASSERT_NE(clean, nullptr);
    EXPECT_EQ(std::count(clean, clean + 200, 0), 200);
    gmem_ee_free(clean);
}
