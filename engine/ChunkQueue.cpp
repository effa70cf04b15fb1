#include "ChunkQueue.h"

#include <cstdlib>
#include <utility>

void FreeChunk(ImageChunk& chunk) {
    std::free(chunk.pData);
    chunk.pData = nullptr;
}

ChunkQueue::ChunkQueue(size_t nMaxBytes) : m_nMaxBytes(nMaxBytes) {}

ChunkQueue::~ChunkQueue() {
    FreeAll();
}

void ChunkQueue::BeginFile(std::string targetPath) {
    {
        const std::lock_guard lock(m_mutex);
        m_targetPath = std::move(targetPath);
        m_bReading = true;
        m_bFileDone = false;
        ++m_nFileSerial;
    }
    m_writerWake.notify_one();
}

bool ChunkQueue::Append(const ImageChunk& chunk, std::chrono::milliseconds wait) {
    std::unique_lock lock(m_mutex);
    // A chunk always fits into an empty list, so a bound below the chunk size can't block.
    const auto hasRoom = [this, &chunk] {
        return m_bFileDone || m_chunks.empty() || m_nBytes + chunk.nLength <= m_nMaxBytes;
    };
    if (!hasRoom()) {
        m_bReaderWaiting = true;
        m_readerWake.wait_for(lock, wait, hasRoom);
        m_bReaderWaiting = false;
    }
    if (m_bFileDone || !hasRoom()) {
        return false;
    }
    m_chunks.push_back(chunk);
    m_nBytes += chunk.nLength;
    const bool bWake = m_bWriterWaiting;
    lock.unlock();
    if (bWake) {
        m_writerWake.notify_one();
    }
    return true;
}

void ChunkQueue::EndReading() {
    {
        const std::lock_guard lock(m_mutex);
        m_bReading = false;
    }
    m_writerWake.notify_one();
}

bool ChunkQueue::WaitFileDone(std::chrono::milliseconds wait) {
    std::unique_lock lock(m_mutex);
    return m_readerWake.wait_for(lock, wait, [this] { return m_bFileDone; });
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
    m_writerWake.wait(lock, [this] { return m_bShutdown || m_nTakenSerial != m_nFileSerial; });
    if (m_bShutdown) {
        return false;
    }
    m_nTakenSerial = m_nFileSerial;
    targetPath = m_targetPath;
    return true;
}

bool ChunkQueue::Take(ImageChunk& chunk) {
    std::unique_lock lock(m_mutex);
    if (m_chunks.empty() && m_bReading) {
        m_bWriterWaiting = true;
        m_writerWake.wait(lock, [this] { return !m_chunks.empty() || !m_bReading; });
        m_bWriterWaiting = false;
    }
    if (m_chunks.empty()) {
        return false;
    }
    chunk = m_chunks.front();
    m_chunks.pop_front();
    m_nBytes -= chunk.nLength;
    const bool bWake = m_bReaderWaiting;
    lock.unlock();
    if (bWake) {
        m_readerWake.notify_one();
    }
    return true;
}

void ChunkQueue::MarkFileDone() {
    {
        const std::lock_guard lock(m_mutex);
        m_bFileDone = true;
    }
    m_readerWake.notify_all();
}

void ChunkQueue::Shutdown() {
    {
        const std::lock_guard lock(m_mutex);
        m_bShutdown = true;
    }
    m_writerWake.notify_all();
}
