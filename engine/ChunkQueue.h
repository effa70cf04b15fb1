// The list of read buffers between the thread that reads the image and the thread that writes
// the target files, and the hand-over of each file between the two.
//
// Files go through in order: a file's record, then its chunks. Within one job the reading side
// may hand over the next files before the writer has finished the first, and waits for the
// writer only when the job ends (Drain). The writer is woken when a batch is worth writing (a
// megabyte of chunks and file records), when the reader waits for room, or when the job ends;
// not per file, because on two cores waking a sleeping thread costs more than writing a small
// file.
//
// The list is bounded in bytes: when the disk is slower than the image, the reading side waits
// in short slices (and keeps the interface alive between them) instead of growing without end.
// The writer sleeps while there is nothing to do, so it never takes a core away from the reader.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <ctime>
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

// What the writer needs to make one target file.
struct TargetFile {
    std::string path;
    bool bHasTime = false;
    timespec modified{};
};

class ChunkQueue {
public:
    explicit ChunkQueue(size_t nMaxBytes);
    ~ChunkQueue();
    ChunkQueue(const ChunkQueue&) = delete;
    ChunkQueue& operator=(const ChunkQueue&) = delete;

    // Reading side. StartJob forgets that the writer gave up on the last job; the queue is
    // drained by then.
    void StartJob();
    // Hands a new target file to the writer. False, with nothing handed over, if the list stayed
    // full for the whole wait or the writer has given up on the job.
    bool BeginFile(const TargetFile& file, std::chrono::milliseconds wait);
    // Appends to the file begun last. False, with the chunk left to the caller, if the list
    // stayed full for the whole wait or the writer has given up on the job.
    bool Append(const ImageChunk& chunk, std::chrono::milliseconds wait);
    // Nothing more will be appended to the file begun last.
    void EndFile();
    // True once the writer is through with every file handed over; waits at most `wait`.
    bool Drain(std::chrono::milliseconds wait);
    bool IsAbandoned() const;
    // The target that made the writer give up, or empty.
    std::string FailedPath() const;

    // Writer side. Waits for a file to write; false when the queue shuts down.
    bool NextFile(TargetFile& file);
    // Takes up to nMax of the current file's oldest chunks, waiting while there are none and the
    // file is still being read. 0 once the file is complete.
    size_t Take(ImageChunk* pChunks, size_t nMax);
    // The writer is through with the current file.
    void FinishFile();
    // The writer gives up on the job: the files not yet written are dropped, and the reading
    // side is turned away until the next job. failedPath is empty for a stop.
    void Abandon(const std::string& failedPath);

    // Ends the writer's wait for a next file, for good.
    void Shutdown();

    static constexpr size_t kWriterBatchBytes = size_t{1} << 20;
    // What a waiting file record weighs in the bound and the batch: a run of empty files is a
    // batch too, and their records can't pile up without end.
    static constexpr size_t kFileRecordBytes = 4096;

private:
    struct PendingFile {
        TargetFile target;
        size_t nChunks = 0;
        bool bEnded = false;
    };

    bool HasRoom(size_t nBytes) const;
    // Waits, with the writer told, until nBytes fit or the job is given up.
    bool WaitForRoom(std::unique_lock<std::mutex>& lock, size_t nBytes,
                     std::chrono::milliseconds wait);
    bool WriterHasWork() const;
    bool CurrentFileReady() const;
    // Unlocks, then wakes the writer if it sleeps and has work.
    void WakeWriter(std::unique_lock<std::mutex>& lock);
    // Unlocks, then wakes the reader if it waits.
    void WakeReader(std::unique_lock<std::mutex>& lock, bool bWake);
    void FreeChunks();

    mutable std::mutex m_mutex;
    std::condition_variable m_writerWake;
    std::condition_variable m_readerWake;
    std::deque<ImageChunk> m_chunks;
    // The first record is the writer's once NextFile has handed it out.
    std::deque<PendingFile> m_files;
    size_t m_nBytes = 0;
    const size_t m_nMaxBytes;
    const size_t m_nWakeBytes;
    const size_t m_nRefillBytes;
    std::string m_failedPath;
    bool m_bDraining = false;
    bool m_bAbandoned = false;
    bool m_bShutdown = false;
    bool m_bWriterWaiting = false;
    bool m_bReaderWaiting = false;
    bool m_bReaderWantsRoom = false;
};
