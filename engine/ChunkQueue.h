// The list of read buffers between the thread that reads the image and the thread that writes
// the target file, and the hand-over of each file between the two.
//
// The list is bounded in bytes: when the disk is slower than the image, the reading side waits
// in short slices (and keeps the interface alive between them) instead of growing without end.
// The writer sleeps while there is nothing to do, so it never takes a core away from the reader.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

// One buffer of a file's data. The buffer comes from the plain allocator and is owned by the
// chunk's holder; a chunk that has not been read into yet has no buffer and a length of all ones.
struct ImageChunk {
    uint8_t* pData = nullptr;
    uint32_t nLength = UINT32_MAX;
};

void FreeChunk(ImageChunk& chunk);

class ChunkQueue {
public:
    explicit ChunkQueue(size_t nMaxBytes);
    ~ChunkQueue();
    ChunkQueue(const ChunkQueue&) = delete;
    ChunkQueue& operator=(const ChunkQueue&) = delete;

    // Reading side. BeginFile hands a new target file to the writer, with reading under way.
    void BeginFile(std::string targetPath);
    // False, with the chunk left to the caller, if the list stayed full for the whole wait or
    // the writer is through with the file.
    bool Append(const ImageChunk& chunk, std::chrono::milliseconds wait);
    // Nothing more will be appended to the current file.
    void EndReading();
    // True once the writer has finished the current file; waits at most `wait` for it.
    bool WaitFileDone(std::chrono::milliseconds wait);
    void FreeAll();

    // Writer side. Waits for the next file; false when the queue is shutting down.
    bool WaitForFile(std::string& targetPath);
    // Takes up to nMax of the oldest chunks, waiting while the list is empty and reading is
    // under way. 0 when the list is empty and reading has ended.
    size_t Take(ImageChunk* pChunks, size_t nMax);
    // The writer is through with the current file, written or given up; a reader that waits for
    // room goes on at once.
    void MarkFileDone();

    // Ends the writer's wait for a next file, for good.
    void Shutdown();

    static constexpr size_t kWriterBatchBytes = size_t{1} << 20;

private:
    bool WriterHasWork() const;
    // Unlocks, then wakes the writer if it sleeps and has work.
    void WakeWriter(std::unique_lock<std::mutex>& lock);

    std::mutex m_mutex;
    std::condition_variable m_writerWake;
    std::condition_variable m_readerWake;
    std::deque<ImageChunk> m_chunks;
    size_t m_nBytes = 0;
    const size_t m_nMaxBytes;
    const size_t m_nWakeBytes;
    const size_t m_nRefillBytes;
    std::string m_targetPath;
    uint64_t m_nFileSerial = 0;
    uint64_t m_nTakenSerial = 0;
    bool m_bReading = false;
    bool m_bFileDone = true;
    bool m_bShutdown = false;
    bool m_bWriterWaiting = false;
    bool m_bReaderWaiting = false;
    bool m_bReaderWantsRoom = false;
};
