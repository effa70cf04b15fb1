// The hand-over between the reading side and the writer: the bound on buffered bytes, files
// passing through in order with their own chunks, and a writer that gives up on a job.
#include "ChunkQueue.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>
#include <utility>
#include <vector>

namespace {

using std::chrono::milliseconds;

constexpr size_t kKiB = 1024;

ImageChunk Chunk(uint32_t nLength) {
    return {static_cast<uint8_t*>(std::calloc(nLength, 1)), nLength};
}

TargetFile Target(const char* path) {
    return TargetFile{path};
}

// Writes nothing: records each file with the lengths of its chunks, as the writer takes them.
std::vector<std::pair<std::string, std::vector<uint32_t>>> RunWriter(ChunkQueue& queue,
                                                                     size_t nFiles) {
    std::vector<std::pair<std::string, std::vector<uint32_t>>> seen;
    TargetFile file;
    while (seen.size() < nFiles && queue.NextFile(file)) {
        seen.emplace_back(file.path, std::vector<uint32_t>{});
        ImageChunk taken[2];
        while (size_t n = queue.Take(taken, 2)) {
            for (size_t i = 0; i < n; ++i) {
                seen.back().second.push_back(taken[i].nLength);
                FreeChunk(taken[i]);
            }
        }
        queue.FinishFile();
    }
    return seen;
}

TEST(ChunkQueueTest, AFullListMakesTheReaderWaitUntilTheWriterTakes) {
    ChunkQueue queue(64 * kKiB);
    ASSERT_TRUE(queue.BeginFile(Target("target"), milliseconds(0)));
    ASSERT_TRUE(queue.Append(Chunk(30 * kKiB), milliseconds(0)));
    ASSERT_TRUE(queue.Append(Chunk(30 * kKiB), milliseconds(0)));
    // Bigger than the record's share, which the writer frees when it takes the file.
    ImageChunk late = Chunk(8 * kKiB);
    EXPECT_FALSE(queue.Append(late, milliseconds(20))) << "the record and 60 KiB fill the bound";

    std::thread writer([&queue] {
        TargetFile file;
        ASSERT_TRUE(queue.NextFile(file));
        EXPECT_EQ(file.path, "target");
        ImageChunk taken;
        ASSERT_EQ(queue.Take(&taken, 1), 1u);
        FreeChunk(taken);
    });
    EXPECT_TRUE(queue.Append(late, milliseconds(10'000)));
    writer.join();
    queue.EndFile();
    ImageChunk left[2];
    EXPECT_EQ(queue.Take(left, 2), 2u) << "the rest of the file, once it is complete";
    FreeChunk(left[0]);
    FreeChunk(left[1]);
    queue.FinishFile();
    EXPECT_TRUE(queue.Drain(milliseconds(0)));
}

TEST(ChunkQueueTest, FilesReachTheWriterInOrderEachWithItsOwnChunks) {
    ChunkQueue queue(64 * kKiB);
    std::vector<std::pair<std::string, std::vector<uint32_t>>> seen;
    std::thread writer([&queue, &seen] { seen = RunWriter(queue, 3); });
    const std::vector<std::pair<std::string, std::vector<uint32_t>>> sent = {
        {"a", {10, 20, 30}}, {"empty", {}}, {"b", {32 * kKiB, 32 * kKiB, 5}}};
    for (const auto& [path, lengths] : sent) {
        ASSERT_TRUE(queue.BeginFile(Target(path.c_str()), milliseconds(10'000)));
        for (uint32_t nLength : lengths) {
            ASSERT_TRUE(queue.Append(Chunk(nLength), milliseconds(10'000)));
        }
        queue.EndFile();
    }
    while (!queue.Drain(milliseconds(100))) {
    }
    writer.join();
    EXPECT_EQ(seen, sent);
}

TEST(ChunkQueueTest, AWriterThatGivesUpTurnsTheJobAwayUntilTheNext) {
    ChunkQueue queue(64 * kKiB);
    ASSERT_TRUE(queue.BeginFile(Target("first"), milliseconds(0)));
    ASSERT_TRUE(queue.Append(Chunk(100), milliseconds(0)));
    queue.EndFile();
    ASSERT_TRUE(queue.BeginFile(Target("second"), milliseconds(0)));
    ASSERT_TRUE(queue.Append(Chunk(100), milliseconds(0)));

    std::thread writer([&queue] {
        TargetFile file;
        ASSERT_TRUE(queue.NextFile(file));
        queue.Abandon(file.path);
    });
    EXPECT_TRUE(queue.Drain(milliseconds(10'000))) << "the dropped files count as done";
    writer.join();
    EXPECT_TRUE(queue.IsAbandoned());
    EXPECT_EQ(queue.FailedPath(), "first");
    ImageChunk refused = Chunk(1);
    EXPECT_FALSE(queue.Append(refused, milliseconds(0)));
    EXPECT_FALSE(queue.BeginFile(Target("third"), milliseconds(0)));

    queue.StartJob();
    EXPECT_FALSE(queue.IsAbandoned());
    EXPECT_EQ(queue.FailedPath(), "");
    EXPECT_TRUE(queue.BeginFile(Target("third"), milliseconds(0)));
    EXPECT_TRUE(queue.Append(refused, milliseconds(0)));
    queue.EndFile();
    queue.Shutdown();
}

TEST(ChunkQueueTest, ShutdownEndsTheWritersWaitForAFile) {
    ChunkQueue queue(100);
    std::thread writer([&queue] {
        TargetFile file;
        EXPECT_FALSE(queue.NextFile(file));
    });
    queue.Shutdown();
    writer.join();
}

} // namespace
