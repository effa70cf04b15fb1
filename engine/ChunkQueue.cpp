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
    FreeAll();
}

// The writer is woken by data or by the end of reading, not here: a small file is then handed
// over with one wake-up.
void ChunkQueue::BeginFile(std::string targetPath) {
    const std::lock_guard lock(m_mutex);
    m_targetPath = std::move(targetPath);
    m_bReading = true;
    m_bFileDone = false;
    ++m_nFileSerial;
}

bool ChunkQueue::Append(const ImageChunk& chunk, std::chrono::milliseconds wait) {
    std::unique_lock lock(m_mutex);
    // A chunk always fits into an empty list, so a bound below the chunk size can't block.
    const auto hasRoom = [this, &chunk] {
        return m_bFileDone || m_chunks.empty() || m_nBytes + chunk.nLength <= m_nMaxBytes;
    };
    if (!hasRoom()) {
        m_bReaderWantsRoom = true;
        WakeWriter(lock);
        lock.lock();
        m_bReaderWaiting = true;
        m_readerWake.wait_for(lock, wait, hasRoom);
        m_bReaderWaiting = false;
        m_bReaderWantsRoom = false;
    }
    if (m_bFileDone || !hasRoom()) {
        return false;
    }
    m_chunks.push_back(chunk);
    m_nBytes += chunk.nLength;
    WakeWriter(lock);
    return true;
}

void ChunkQueue::EndReading() {
    std::unique_lock lock(m_mutex);
    m_bReading = false;
    WakeWriter(lock);
}

bool ChunkQueue::WaitFileDone(std::chrono::milliseconds wait) {
    std::unique_lock lock(m_mutex);
    m_bReaderWaiting = true;
    const bool bDone = m_readerWake.wait_for(lock, wait, [this] { return m_bFileDone; });
    m_bReaderWaiting = false;
    return bDone;
}

void ChunkQueue::FreeAll() {
    const std::lock_guard lock(m_mutex);
    for (ImageChunk& chunk : m_chunks) {
        FreeChunk(chunk);
    }
    m_chunks.clear();
    m_nBytes = 0;
}

bool ChunkQueue::WaitForFile(std::string& targetPath) {
    std::unique_lock lock(m_mutex);
    m_bWriterWaiting = true;
    m_writerWake.wait(lock, [this] {
        return m_bShutdown || (m_nTakenSerial != m_nFileSerial && WriterHasWork());
    });
    m_bWriterWaiting = false;
    if (m_bShutdown) {
        return false;
    }
    m_nTakenSerial = m_nFileSerial;
    targetPath = m_targetPath;
    return true;
}

size_t ChunkQueue::Take(ImageChunk* pChunks, size_t nMax) {
    std::unique_lock lock(m_mutex);
    if (m_chunks.empty() && m_bReading) {
        m_bWriterWaiting = true;
        m_writerWake.wait(lock, [this] { return WriterHasWork(); });
        m_bWriterWaiting = false;
    }
    size_t nTaken = 0;
    while (nTaken < nMax && !m_chunks.empty()) {
        pChunks[nTaken] = m_chunks.front();
        m_chunks.pop_front();
        m_nBytes -= pChunks[nTaken++].nLength;
    }
    // A reader that waits for room is woken once a few chunks fit, not for every one.
    const bool bWake = m_bReaderWantsRoom && m_nBytes + m_nRefillBytes <= m_nMaxBytes;
    lock.unlock();
    if (bWake) {
        m_readerWake.notify_all();
    }
    return nTaken;
}

void ChunkQueue::MarkFileDone() {
    std::unique_lock lock(m_mutex);
    m_bFileDone = true;
    const bool bWake = m_bReaderWaiting;
    lock.unlock();
    if (bWake) {
        m_readerWake.notify_all();
    }
}

void ChunkQueue::Shutdown() {
    {
        const std::lock_guard lock(m_mutex);
        m_bShutdown = true;
    }
    m_writerWake.notify_all();
}

// A sleeping writer is woken once there is a batch worth writing, the reader waits for room, or
// reading has ended: waking it for every chunk would cost more than the chunk's write.
bool ChunkQueue::WriterHasWork() const {
    return !m_bReading || m_nBytes >= m_nWakeBytes || (m_bReaderWantsRoom && !m_chunks.empty());
}

void ChunkQueue::WakeWriter(std::unique_lock<std::mutex>& lock) {
    const bool bWake = m_bWriterWaiting && WriterHasWork();
    lock.unlock();
    if (bWake) {
        m_writerWake.notify_one();
    }
}
