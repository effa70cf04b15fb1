#include "ChunkQueue.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

void FreeChunk(ImageChunk& chunk) {
    std::free(chunk.pData);
    chunk.pData = nullptr;
}

ChunkQueue::ChunkQueue(size_t nMaxBytes)
    : m_nMaxBytes(nMaxBytes), m_nWakeBytes(std::min(kWriterBatchBytes, nMaxBytes)),
      m_nRefillBytes(std::min(kWriterBatchBytes, nMaxBytes / 2)) {}

ChunkQueue::~ChunkQueue() {
    FreeChunks();
}

void ChunkQueue::StartJob() {
    const std::lock_guard lock(m_mutex);
    m_bAbandoned = false;
    m_bDraining = false;
    m_failedPath.clear();
}

bool ChunkQueue::BeginFile(const TargetFile& file, std::chrono::milliseconds wait) {
    std::unique_lock lock(m_mutex);
    if (!WaitForRoom(lock, kFileRecordBytes, wait)) {
        return false;
    }
    m_files.push_back({file});
    m_nBytes += kFileRecordBytes;
    WakeWriter(lock);
    return true;
}

bool ChunkQueue::Append(const ImageChunk& chunk, std::chrono::milliseconds wait) {
    std::unique_lock lock(m_mutex);
    if (!WaitForRoom(lock, chunk.nLength, wait) || m_files.empty()) {
        return false;
    }
    m_chunks.push_back(chunk);
    m_nBytes += chunk.nLength;
    ++m_files.back().nChunks;
    WakeWriter(lock);
    return true;
}

void ChunkQueue::EndFile() {
    std::unique_lock lock(m_mutex);
    if (!m_files.empty()) {
        m_files.back().bEnded = true;
    }
    WakeWriter(lock);
}

bool ChunkQueue::Drain(std::chrono::milliseconds wait) {
    std::unique_lock lock(m_mutex);
    m_bDraining = true;
    WakeWriter(lock);
    lock.lock();
    m_bReaderWaiting = true;
    const bool bDone = m_readerWake.wait_for(lock, wait, [this] { return m_files.empty(); });
    m_bReaderWaiting = false;
    if (bDone) {
        m_bDraining = false;
    }
    return bDone;
}

bool ChunkQueue::IsAbandoned() const {
    const std::lock_guard lock(m_mutex);
    return m_bAbandoned;
}

std::string ChunkQueue::FailedPath() const {
    const std::lock_guard lock(m_mutex);
    return m_failedPath;
}

bool ChunkQueue::NextFile(TargetFile& file) {
    std::unique_lock lock(m_mutex);
    m_bWriterWaiting = true;
    m_writerWake.wait(lock,
                      [this] { return m_bShutdown || (!m_files.empty() && WriterHasWork()); });
    m_bWriterWaiting = false;
    if (m_bShutdown) {
        return false;
    }
    file = m_files.front().target;
    // A file being written no longer waits in the list; its chunks still count.
    m_nBytes -= kFileRecordBytes;
    const bool bWake = m_bReaderWantsRoom && m_nBytes + m_nRefillBytes <= m_nMaxBytes;
    WakeReader(lock, bWake);
    return true;
}

size_t ChunkQueue::Take(ImageChunk* pChunks, size_t nMax) {
    std::unique_lock lock(m_mutex);
    if (!CurrentFileReady()) {
        m_bWriterWaiting = true;
        m_writerWake.wait(lock, [this] { return CurrentFileReady(); });
        m_bWriterWaiting = false;
    }
    if (m_files.empty()) {
        return 0;
    }
    PendingFile& current = m_files.front();
    size_t nTaken = 0;
    while (nTaken < nMax && current.nChunks > 0) {
        pChunks[nTaken] = m_chunks.front();
        m_chunks.pop_front();
        m_nBytes -= pChunks[nTaken++].nLength;
        --current.nChunks;
    }
    // A reader that waits for room is woken once a few chunks fit, not for every one.
    const bool bWake = m_bReaderWantsRoom && m_nBytes + m_nRefillBytes <= m_nMaxBytes;
    WakeReader(lock, bWake);
    return nTaken;
}

void ChunkQueue::FinishFile() {
    std::unique_lock lock(m_mutex);
    if (!m_files.empty()) {
        m_files.pop_front();
    }
    const bool bWake = m_bReaderWaiting && m_bDraining && m_files.empty();
    WakeReader(lock, bWake);
}

void ChunkQueue::Abandon(const std::string& failedPath) {
    std::unique_lock lock(m_mutex);
    FreeChunks();
    m_files.clear();
    m_nBytes = 0;
    m_bAbandoned = true;
    if (m_failedPath.empty()) {
        m_failedPath = failedPath;
    }
    WakeReader(lock, m_bReaderWaiting);
}

void ChunkQueue::Shutdown() {
    {
        const std::lock_guard lock(m_mutex);
        m_bShutdown = true;
    }
    m_writerWake.notify_all();
}

// A chunk or a record always fits into an empty list, so a bound below their size can't block.
bool ChunkQueue::HasRoom(size_t nBytes) const {
    return m_nBytes == 0 || m_nBytes + nBytes <= m_nMaxBytes;
}

bool ChunkQueue::WaitForRoom(std::unique_lock<std::mutex>& lock, size_t nBytes,
                             std::chrono::milliseconds wait) {
    if (!m_bAbandoned && !HasRoom(nBytes)) {
        m_bReaderWantsRoom = true;
        WakeWriter(lock);
        lock.lock();
        m_bReaderWaiting = true;
        m_readerWake.wait_for(lock, wait,
                              [this, nBytes] { return m_bAbandoned || HasRoom(nBytes); });
        m_bReaderWaiting = false;
        m_bReaderWantsRoom = false;
    }
    return !m_bAbandoned && HasRoom(nBytes);
}

// A sleeping writer is woken once there is a batch worth writing, the reader waits for room, or
// the job ends: waking it for every chunk or file would cost more than writing them.
bool ChunkQueue::WriterHasWork() const {
    return m_bDraining || m_nBytes >= m_nWakeBytes || (m_bReaderWantsRoom && m_nBytes > 0);
}

// The writer goes on with its file once the file is complete, or has chunks and a batch is
// due. Only a file still being read can be short of chunks, and then every chunk in the list
// is its own.
bool ChunkQueue::CurrentFileReady() const {
    if (m_bShutdown || m_files.empty()) {
        return true;
    }
    const PendingFile& current = m_files.front();
    return current.nChunks > 0 ? current.bEnded || WriterHasWork() : current.bEnded;
}

void ChunkQueue::WakeWriter(std::unique_lock<std::mutex>& lock) {
    const bool bWake = m_bWriterWaiting && WriterHasWork();
    lock.unlock();
    if (bWake) {
        m_writerWake.notify_one();
    }
}

void ChunkQueue::WakeReader(std::unique_lock<std::mutex>& lock, bool bWake) {
    lock.unlock();
    if (bWake) {
        m_readerWake.notify_all();
    }
}

void ChunkQueue::FreeChunks() {
    for (ImageChunk& chunk : m_chunks) {
        FreeChunk(chunk);
    }
    m_chunks.clear();
}
