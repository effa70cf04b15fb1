// The hand-over between the reading side and the writer: the bound on buffered bytes, the order
// of chunks, and which chunks the writer sees as taken after reading ended.
#include "ChunkQueue.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace {

using std::chrono::milliseconds;

ImageChunk Chunk(uint32_t nLength) {
    return {static_cast<uint8_t*>(std::calloc(nLength, 1)), nLength};
}

TEST(ChunkQueueTest, AFullListMakesTheReaderWaitUntilTheWriterTakes) {
    ChunkQueue queue(100);
    queue.BeginFile("target");
    ASSERT_TRUE(queue.Append(Chunk(60), milliseconds(0)));
    ASSERT_TRUE(queue.Append(Chunk(40), milliseconds(0)));
    ImageChunk late = Chunk(1);
    EXPECT_FALSE(queue.Append(late, milliseconds(20))) << "100 bytes are the bound";

    std::string path;
    ASSERT_TRUE(queue.WaitForFile(path));
    EXPECT_EQ(path, "target");
    std::thread writer([&queue] {
        ImageChunk taken;
        ASSERT_EQ(queue.Take(&taken, 1), 1u);
        EXPECT_EQ(taken.nLength, 60u) << "oldest first";
        FreeChunk(taken);
    });
    EXPECT_TRUE(queue.Append(late, milliseconds(10'000)));
    writer.join();
    queue.FreeAll();
}

TEST(ChunkQueueTest, TheWriterEmptiesTheListAfterReadingEnds) {
    ChunkQueue queue(1 << 20);
    queue.BeginFile("target");
    ASSERT_TRUE(queue.Append(Chunk(10), milliseconds(0)));
    ASSERT_TRUE(queue.Append(Chunk(20), milliseconds(0)));
    queue.EndReading();
    ImageChunk taken[4];
    ASSERT_EQ(queue.Take(taken, 4), 2u) << "all there is, in one batch";
    EXPECT_EQ(taken[1].nLength, 20u);
    FreeChunk(taken[0]);
    FreeChunk(taken[1]);
    EXPECT_EQ(queue.Take(taken, 4), 0u) << "nothing left, reading over";
    EXPECT_FALSE(queue.WaitFileDone(milliseconds(0)));
    queue.MarkFileDone();
    EXPECT_TRUE(queue.WaitFileDone(milliseconds(0)));
    // A writer that has given up lets a reader that waits for room go on.
    ImageChunk extra = Chunk(1);
    queue.BeginFile("next");
    ASSERT_TRUE(queue.Append(Chunk(1 << 20), milliseconds(0)));
    queue.MarkFileDone();
    EXPECT_FALSE(queue.Append(extra, milliseconds(10'000)));
    FreeChunk(extra);
}

TEST(ChunkQueueTest, ShutdownEndsTheWritersWaitForAFile) {
    ChunkQueue queue(100);
    std::thread writer([&queue] {
        std::string path;
        EXPECT_FALSE(queue.WaitForFile(path));
    });
    queue.Shutdown();
    writer.join();
}

} // namespace
