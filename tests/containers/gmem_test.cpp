// gmem_ee_*: byte counts of size times count; 0 bytes and overflowing
// products give null, realloc's null results keep the old block, and calloc
// zero-fills reused memory.
#include <tql70/gmem.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

TEST(Gmem, ZeroAndOverflowingByteCountsGiveNullAndCallocZeroFills)
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
    // The dirtied block given back is likely to be handed out again.
    gmem_ee_free(block);
    unsigned char* clean = static_cast<unsigned char*>(gmem_ee_calloc(4, 4));
    ASSERT_NE(clean, nullptr);
    EXPECT_EQ(std::count(clean, clean + 16, 0), 16);
    gmem_ee_free(clean);
}
