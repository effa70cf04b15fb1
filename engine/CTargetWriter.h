// The writer thread of extraction: it writes the target files that the reading side hands over
// through the chunk list, in order, and counts the bytes written for the copy's percent value.
#pragma once

#include "ChunkQueue.h"
#include "ReaderProgress.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>

class CTargetWriter {
public:
    explicit CTargetWriter(ReaderProgress& progress);
    ~CTargetWriter();
    CTargetWriter(const CTargetWriter&) = delete;
    CTargetWriter& operator=(const CTargetWriter&) = delete;

    // The hand-over between the reading side and the writer.
    ChunkQueue& Queue() { return m_oBuffers; }
    // Forgets what the writer gave up on in the job before.
    void StartJob();
    // The thread lives across the jobs once started; the destructor ends it.
    void Start();
    // The thread's body: writes the files handed over until the list shuts down.
    void Run();

    bool GaveUp() const { return m_bWriteFailed != 0 || m_bAccessDenied != 0; }
    // Whether the writer gave up for a failed write rather than for a target it may not write.
    bool WriteFailed() const { return m_bWriteFailed != 0; }

private:
    // Chunks written with one call: a megabyte, where one call a chunk would cost 32 calls.
    static constexpr size_t kWriteBatchChunks = 32;

    void WriteTargetFile(const TargetFile& file);
    void GiveUpTarget(const std::string& path);
    // Returns the bytes written.
    size_t WriteChunks(int fd, const ImageChunk* pChunks, size_t nChunks);

    ReaderProgress& m_progress;
    ChunkQueue m_oBuffers;
    std::thread m_hWriterThread;
    // Set on the writer's thread, read on the reading side's.
    std::atomic<int32_t> m_bWriteFailed = 0;
    std::atomic<int32_t> m_bAccessDenied = 0;
};
