#include "FixedBlockPool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

namespace {

TEST(FixedBlockPool, HandsOutDistinctAlignedBlocksAcrossSlabsAndReturnsThemAll) {
    for (const size_t blockSize : {size_t{1}, size_t{24}, size_t{192}, size_t{4000}}) {
        FixedBlockPool pool(blockSize);
        const size_t nBlocks = 3 * FixedBlockPool::kSlabBytes / blockSize + 7;
        std::vector<void*> blocks;
        std::set<uintptr_t> seen;
        for (size_t i = 0; i < nBlocks; ++i) {
            void* p = pool.Allocate();
            ASSERT_NE(p, nullptr);
            std::memset(p, 0xAB, blockSize);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % alignof(std::max_align_t), 0u);
            EXPECT_TRUE(seen.insert(reinterpret_cast<uintptr_t>(p)).second) << blockSize;
            blocks.push_back(p);
        }
        EXPECT_GE(pool.SlabCount(), 2u);
        EXPECT_EQ(pool.LiveBlocks(), nBlocks);
        // A freed block is the next one handed out.
        pool.Free(blocks[5]);
        EXPECT_EQ(pool.Allocate(), blocks[5]);
        for (void* p : blocks) {
            pool.Free(p);
        }
        EXPECT_EQ(pool.LiveBlocks(), 0u);
        EXPECT_EQ(pool.SlabCount(), 0u) << "an empty pool keeps no memory";
        EXPECT_NE(pool.Allocate(), nullptr) << "and starts again";
    }
}

} // namespace
