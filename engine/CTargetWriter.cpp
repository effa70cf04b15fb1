#include "CTargetWriter.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

// Read-ahead that a slow target disk lets pile up before the reading side waits for it.
constexpr size_t kMaxQueuedBytes = size_t{64} << 20;
// The file being written goes to the disk in windows of this size: each full window is handed to
// the disk at once, and the writer waits for the one before it. The page cache then holds at most
// two windows of the file unwritten. Without this, gigabytes pile up dirty: a write can then be
// held for seconds while the file system writes back everything (ext4 does so when its dirty
// data nears its free space), and removing a stopped file waits until its pages under writeback
// reach the disk; either kept a stop near the end of a large file waiting for seconds.
constexpr uint64_t kWritebackWindowBytes = uint64_t{8} << 20;

// Writes all the parts, going on after a partial write; returns the bytes written, fewer than
// asked for when the system refused the rest.
size_t WriteAll(int fd, iovec* pParts, size_t nParts) {
    size_t nTotal = 0;
    while (nParts > 0) {
        const ssize_t n = ::writev(fd, pParts, static_cast<int>(nParts));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break;
        }
        nTotal += static_cast<size_t>(n);
        auto nLeft = static_cast<size_t>(n);
        while (nParts > 0 && nLeft >= pParts->iov_len) {
            nLeft -= pParts->iov_len;
            ++pParts;
            --nParts;
        }
        if (nParts > 0) {
            pParts->iov_base = static_cast<uint8_t*>(pParts->iov_base) + nLeft;
            pParts->iov_len -= nLeft;
        }
    }
    return nTotal;
}

// Hands every window that the file has filled since the last call to the disk, and waits for the
// window before each. A target that can't do this (a pipe) is written without it: the call is a
// hint about timing, and a failed write still shows in the write or the close.
void WriteBackFullWindows(int fd, uint64_t& ullWindowStart, uint64_t ullWritten) {
    while (ullWritten - ullWindowStart >= kWritebackWindowBytes) {
        ::sync_file_range(fd, static_cast<off_t>(ullWindowStart), kWritebackWindowBytes,
                          SYNC_FILE_RANGE_WRITE);
        if (ullWindowStart >= kWritebackWindowBytes) {
            ::sync_file_range(fd, static_cast<off_t>(ullWindowStart - kWritebackWindowBytes),
                              kWritebackWindowBytes,
                              SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE |
                                  SYNC_FILE_RANGE_WAIT_AFTER);
        }
        ullWindowStart += kWritebackWindowBytes;
    }
}

// Opens the target for writing from its start. The user agreed to replace what stands there,
// so a symbolic link is replaced itself, never the file it points to, which may lie outside
// the chosen folder. A FIFO that nobody reads fails at once (ENXIO) instead of blocking the
// writer for ever; one that is read is written like a file.
std::FILE* OpenTarget(const std::string& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode)) {
        ::unlink(path.c_str());
    }
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    constexpr mode_t kMode = 0666;
    const int fd = ::open(path.c_str(), kFlags, kMode);
    if (fd < 0) {
        return nullptr;
    }
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    std::FILE* pFile = ::fdopen(fd, "wb");
    if (pFile == nullptr) {
        ::close(fd);
    }
    return pFile;
}

} // namespace

CTargetWriter::CTargetWriter(ReaderProgress& progress)
    : m_progress(progress), m_oBuffers(kMaxQueuedBytes) {}

CTargetWriter::~CTargetWriter() {
    if (m_hWriterThread.joinable()) {
        m_oBuffers.Shutdown();
        m_hWriterThread.join();
    }
}

void CTargetWriter::StartJob() {
    m_bWriteFailed = 0;
    m_bAccessDenied = 0;
    m_oBuffers.StartJob();
}

void CTargetWriter::Start() {
    if (!m_hWriterThread.joinable()) {
        m_hWriterThread = std::thread(&CTargetWriter::Run, this);
    }
}

// The writer lives across the files of a job: it writes the files that the reading side hands
// over, in order, and sleeps while there is nothing worth writing.
void CTargetWriter::Run() {
    TargetFile file;
    while (m_oBuffers.NextFile(file)) {
        WriteTargetFile(file);
    }
}

// Writes one file and gives it the image's modification time; the creation and access times
// and the permissions stay as the system made them. A failure or a stop removes the file and
// ends the job's writing.
void CTargetWriter::WriteTargetFile(const TargetFile& file) {
    if (m_progress.bStop != 0) {
        m_oBuffers.Abandon({});
        return;
    }
    std::FILE* pFile = OpenTarget(file.path);
    if (pFile == nullptr) {
        (errno == EACCES ? m_bAccessDenied : m_bWriteFailed) = 1;
        // A failed copy leaves no target, not even one that was there before and refused to
        // be opened for writing.
        GiveUpTarget(file.path);
        return;
    }
    // The chunks go to the system directly, several in one call; a stream buffer would only
    // copy them once more and cost a status query per file.
    std::setvbuf(pFile, nullptr, _IONBF, 0);
    // Every chunk is counted and its write checked, the last ones of a file too: the reading
    // side may finish long before the writer, and a short write there must not go unnoticed.
    std::array<ImageChunk, kWriteBatchChunks> batch;
    size_t nTaken = 0;
    uint64_t ullWritten = 0;
    uint64_t ullWindowStart = 0;
    while (m_progress.bStop == 0 && m_bWriteFailed == 0 &&
           (nTaken = m_oBuffers.Take(batch.data(), batch.size())) > 0) {
        ullWritten += WriteChunks(fileno(pFile), batch.data(), nTaken);
        for (size_t i = 0; i < nTaken; ++i) {
            FreeChunk(batch[i]);
        }
        WriteBackFullWindows(fileno(pFile), ullWindowStart, ullWritten);
    }
    if (file.bHasTime && m_progress.bStop == 0 && m_bWriteFailed == 0) {
        const timespec times[2] = {{0, UTIME_OMIT}, file.modified};
        ::futimens(fileno(pFile), times);
    }
    // Closing can be where a disk reports that it could not keep the data.
    if (std::fclose(pFile) != 0 && m_progress.bStop == 0) {
        m_bWriteFailed = 1;
    }
    if (m_progress.bStop != 0 || m_bWriteFailed != 0) {
        GiveUpTarget(file.path);
        return;
    }
    m_oBuffers.FinishFile();
}

// Removes the target and ends the job's writing; a stop names no target as the failed one.
void CTargetWriter::GiveUpTarget(const std::string& path) {
    ::unlink(path.c_str());
    m_oBuffers.Abandon(m_progress.bStop != 0 ? std::string() : path);
}

size_t CTargetWriter::WriteChunks(int fd, const ImageChunk* pChunks, size_t nChunks) {
    std::array<iovec, kWriteBatchChunks> parts{};
    size_t nParts = 0;
    size_t nWanted = 0;
    for (size_t i = 0; i < nChunks; ++i) {
        if (pChunks[i].pData != nullptr && pChunks[i].nLength != 0) {
            parts[nParts++] = {pChunks[i].pData, pChunks[i].nLength};
            nWanted += pChunks[i].nLength;
        }
    }
    const size_t nWritten = WriteAll(fd, parts.data(), nParts);
    const uint64_t ullDone = m_progress.ullDoneBytes += nWritten;
    const uint64_t ullTotal = m_progress.ullTotalBytes;
    // A job whose total was never set has no percent value to show.
    if (ullTotal != 0) {
        m_progress.nCopyPercent = static_cast<int32_t>(ullDone * 100 / ullTotal);
    }
    if (nWritten < nWanted) {
        m_bWriteFailed = 1;
    }
    return nWritten;
}
