#include "CImageReader.h"

#include "COvDataItem.h"
#include "EngineFields.h"
#include "FileTimeConversion.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr uint32_t kChunkBytes = 32768;
// Read-ahead that a slow target disk lets pile up before the reading side waits for it.
constexpr size_t kMaxQueuedBytes = size_t{64} << 20;
// Slices in which the reading side waits for the writer, keeping the interface alive between.
constexpr auto kAppendWait = std::chrono::milliseconds(10);
constexpr auto kWriterWait = std::chrono::milliseconds(100);

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

} // namespace

using enginefields::NameOf;
using enginefields::Utf16;

CImageReader::CImageReader(const QString& enginePath)
    : m_session(m_progress, enginePath), m_oBuffers(kMaxQueuedBytes) {}

CImageReader::~CImageReader() {
    if (m_hWriterThread.joinable()) {
        m_oBuffers.Shutdown();
        m_hWriterThread.join();
    }
}

int CImageReader::SetCallback(ImageReaderCallback pfnCallback, void* pContext) {
    m_progress.pfnCallback = pfnCallback;
    m_progress.pCallbackContext = pContext;
    return 1;
}

void CImageReader::SetPump(ImageReaderPump pfnPump, void* pContext) {
    m_progress.pfnPump = pfnPump;
    m_progress.pPumpContext = pContext;
}

int32_t CImageReader::GetProgress(int32_t query, int32_t* pPercent) const {
    if (pPercent == nullptr) {
        return 0;
    }
    if (query == PROGRESS_OPEN) {
        *pPercent = m_progress.nOpenPercent;
    } else if (query == PROGRESS_COPY) {
        *pPercent = m_progress.nCopyPercent;
    }
    return 0;
}

qmz::Result CImageReader::ConnectEngine() {
    return m_session.Connect();
}

void CImageReader::DisconnectEngine() {
    m_session.Disconnect();
}

qmz::Result CImageReader::CanOpen(const QString& imagePath) {
    return m_session.CanOpen(imagePath);
}

// Opening is the engine's scan of the image followed by the walk of it into the tree; the image
// is kept for a reopen only once both went through.
qmz::Result CImageReader::OpenImage(const QString& imagePath, COvDataItem* pRoot) {
    if (!m_session.HasEngine()) {
        return qmz::kUnexpected;
    }
    m_progress.bOpening = 1;
    qmz::fsInfo info;
    qmz::Result hr = m_session.Open(imagePath, info);
    if (hr >= 0) {
        const char16_t* pEnd = std::find(info.strVolID, info.strVolID + qmz::kVolIdChars, u'\0');
        pRoot->m_strName = QString::fromUtf16(info.strVolID, pEnd - info.strVolID).trimmed();
        hr = m_walk.Run(*m_session.FileSystem(), pRoot,
                        static_cast<int32_t>(info.uCount1 + info.uCount2));
    }
    if (hr < 0) {
        m_session.Close();
    } else {
        m_session.RememberImage(imagePath);
    }
    m_progress.bOpening = 0;
    return hr;
}

qmz::Result CImageReader::ReopenImage() {
    return m_session.Reopen();
}

void CImageReader::CloseImage() {
    m_session.Close();
}

qmz::Result CImageReader::CopyFile(const QString& source, const QString& target,
                                   const qmz::FileTime* pTime) {
    if (!m_session.IsImageOpen()) {
        return qmz::kUnexpected;
    }
    m_progress.bCopying = 1;
    StartJob();
    const qmz::Result hr = FinishJob(CopyJobFile(source, target, pTime));
    m_progress.bCopying = 0;
    return hr;
}

void CImageReader::StartJob() {
    m_bWriteFailed = 0;
    m_bAccessDenied = 0;
    m_strUnfinishedTarget.clear();
    m_oBuffers.StartJob();
}

// Waits until the writer is through with every file of the job, then reports what it gave up
// on and removes the target that the reading side left unfinished.
qmz::Result CImageReader::FinishJob(qmz::Result hr) {
    WaitForWriter();
    if (WriterGaveUp()) {
        hr = qmz::kFail;
        m_progress.Notify(m_bWriteFailed != 0 ? NOTIFY_WRITE_FAILED : NOTIFY_ACCESS_DENIED,
                          QFile::decodeName(QByteArray::fromStdString(m_oBuffers.FailedPath())),
                          ReaderProgress::kLongPayloadChars);
    }
    // A stop that came after the writer had finished every file leaves the job whole.
    if (m_progress.bStop != 0 && (hr == qmz::kStopped || m_oBuffers.IsAbandoned())) {
        hr = qmz::kStopped;
    }
    if (!m_strUnfinishedTarget.isEmpty()) {
        ::unlink(QFile::encodeName(m_strUnfinishedTarget).constData());
        m_strUnfinishedTarget.clear();
    }
    return hr;
}

bool CImageReader::WriterGaveUp() const {
    return m_bWriteFailed != 0 || m_bAccessDenied != 0;
}

// Hands one file to the writer, which may still be busy with the ones before it. A target that
// the writer gave up on is its own to remove; one that the reading side could not finish, or
// that a stop came to, is removed at the end of the job, even when it existed before.
qmz::Result CImageReader::CopyJobFile(const QString& source, const QString& target,
                                      const qmz::FileTime* pTime) {
    m_strDstFile = target;
    if (WriterGaveUp()) {
        return qmz::kFail;
    }
    uint64_t ullSize = 0;
    qmz::Result hr = m_session.FileSystem()->OpenFile(Utf16(source), &ullSize);
    if (hr >= 0) {
        hr = TransferFile(source, ullSize, pTime, hr);
        m_session.FileSystem()->CloseFile();
    }
    if (hr < 0 && !WriterGaveUp()) {
        m_strUnfinishedTarget = target;
    }
    return hr;
}

// Reads an open file into the writer's list. Returns hr, or what failed; a read's own code
// takes hr's place.
qmz::Result CImageReader::TransferFile(const QString& source, uint64_t ullSize,
                                       const qmz::FileTime* pTime, qmz::Result hr) {
    // The highest offset to read; 0 also means nothing to read, so a file of one byte is
    // created empty, like one of none.
    const uint64_t ullLast = ullSize == 0 ? 0 : ullSize - 1;
    const QString folder = QFileInfo(m_strDstFile).absolutePath() + u'/';
    if (FileSystemCanHold(folder, ullSize) == 0) {
        m_progress.Notify(NOTIFY_NO_ROOM, m_strDstFile, ReaderProgress::kLongPayloadChars);
        return qmz::kFail;
    }
    m_progress.bStop = 0;
    m_progress.Notify(NOTIFY_COPY_BEGIN, source, ReaderProgress::kShortPayloadChars);
    StartWriter();
    TargetFile file{QFile::encodeName(m_strDstFile).toStdString()};
    if (pTime != nullptr) {
        const filetime::UnixTime t = filetime::ToUnix(enginefields::TicksOf(*pTime));
        file.bHasTime = true;
        file.modified = {static_cast<time_t>(t.seconds), static_cast<long>(t.nanoseconds)};
    }
    while (!m_oBuffers.BeginFile(file, kAppendWait)) {
        if (!KeepWaitingForRoom()) {
            return m_progress.bStop != 0 ? qmz::kStopped : qmz::kFail;
        }
    }
    hr = ReadChunks(ullLast, hr);
    m_oBuffers.EndFile();
    return hr;
}

qmz::Result CImageReader::ReadChunks(uint64_t ullLast, qmz::Result hr) {
    uint64_t ullDone = 0;
    uint32_t nChunk = kChunkBytes;
    for (;;) {
        if (m_progress.bStop != 0) {
            return qmz::kStopped;
        }
        if (WriterGaveUp()) {
            return qmz::kFail;
        }
        if (ullDone > ullLast || ullLast == 0) {
            return hr;
        }
        if (ullDone + nChunk > ullLast) {
            nChunk = static_cast<uint32_t>(ullLast - ullDone + 1);
        }
        ImageChunk chunk;
        chunk.pData = static_cast<uint8_t*>(std::calloc(nChunk, 1));
        if (chunk.pData == nullptr) {
            return qmz::kOutOfMemory;
        }
        uint32_t nRead = 0;
        hr = m_session.FileSystem()->ReadFile(chunk.pData, nChunk, &nRead, 0);
        if (hr < 0) {
            FreeChunk(chunk);
            m_progress.Notify(NOTIFY_READ_FAILED, QString(), ReaderProgress::kShortPayloadChars);
            return hr;
        }
        // An engine that claims more than it was asked for is held to the buffer's size.
        chunk.nLength = std::min(nRead, nChunk);
        if (AppendChunk(chunk) != qmz::kOk) {
            FreeChunk(chunk);
            continue;
        }
        ullDone += chunk.nLength;
        m_progress.Pump();
    }
}

// Hands a chunk to the writer, waiting while its list is full; kFail, with the chunk still the
// caller's, when the writer has given up or a stop came in the meantime.
qmz::Result CImageReader::AppendChunk(const ImageChunk& chunk) {
    while (!m_oBuffers.Append(chunk, kAppendWait)) {
        if (!KeepWaitingForRoom()) {
            return qmz::kFail;
        }
    }
    return qmz::kOk;
}

// The interface stays alive while the list is full; a stop or a writer that gave up ends the
// wait.
bool CImageReader::KeepWaitingForRoom() {
    m_progress.Pump();
    return m_progress.bStop == 0 && !m_oBuffers.IsAbandoned();
}

void CImageReader::StartWriter() {
    if (!m_hWriterThread.joinable()) {
        m_hWriterThread = std::thread(WriterThreadProc, this);
    }
}

void CImageReader::WaitForWriter() {
    while (!m_oBuffers.Drain(kWriterWait)) {
        m_progress.Pump();
    }
}

// The writer lives across the files of a job: it writes the files that the reading side hands
// over, in order, and sleeps while there is nothing worth writing.
void CImageReader::WriterThreadProc(CImageReader* pReader) {
    if (pReader == nullptr) {
        return;
    }
    TargetFile file;
    while (pReader->m_oBuffers.NextFile(file)) {
        pReader->WriteTargetFile(file);
    }
}

// Writes one file and gives it the image's modification time; the creation and access times
// and the permissions stay as the system made them. A failure or a stop removes the file and
// ends the job's writing.
void CImageReader::WriteTargetFile(const TargetFile& file) {
    if (m_progress.bStop != 0) {
        m_oBuffers.Abandon({});
        return;
    }
    std::FILE* pFile = std::fopen(file.path.c_str(), "wb");
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
    while (m_progress.bStop == 0 && m_bWriteFailed == 0 &&
           (nTaken = m_oBuffers.Take(batch.data(), batch.size())) > 0) {
        WriteChunks(fileno(pFile), batch.data(), nTaken);
        for (size_t i = 0; i < nTaken; ++i) {
            FreeChunk(batch[i]);
        }
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
void CImageReader::GiveUpTarget(const std::string& path) {
    ::unlink(path.c_str());
    m_oBuffers.Abandon(m_progress.bStop != 0 ? std::string() : path);
}

void CImageReader::WriteChunks(int fd, const ImageChunk* pChunks, size_t nChunks) {
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
}

qmz::Result CImageReader::CopyFolder(const QString& source, const QString& targetBase) {
    if (!m_session.IsImageOpen()) {
        return qmz::kFail;
    }
    m_progress.bCopying = 1;
    StartJob();
    const qmz::Result hr = FinishJob(CopyFolderTree(source, targetBase));
    m_progress.bCopying = 0;
    return hr;
}

// The files of the folder go to the writer one after the other; FinishJob waits for the last.
qmz::Result CImageReader::CopyFolderTree(const QString& source, const QString& targetBase) {
    QDir().mkdir(targetBase);
    const QString dstRoot = targetBase + source.mid(source.lastIndexOf(u'\\') + 1);
    QDir().mkdir(dstRoot);
    std::deque<QString> paths{source};
    qmz::file_attr attr;
    qmz::Result hr = qmz::kOk;
    while (!paths.empty() && m_progress.bStop == 0) {
        const QString path = std::move(paths.front());
        paths.pop_front();
        hr = m_session.FileSystem()->FindFirst(Utf16(path), &attr);
        if (hr == qmz::kFindFolderEmpty) {
            continue;
        }
        if (hr < 0) {
            break;
        }
        hr = CopyListing(path, source, dstRoot, attr, paths);
        // A failing FindClose ends the walk, but the walk's result stays what it was.
        if (m_session.FileSystem()->FindClose() < 0) {
            break;
        }
        if (hr == qmz::kFindNoMoreEntries) {
            hr = qmz::kOk;
        }
        if (hr < 0) {
            break;
        }
    }
    if (hr == qmz::kFindFolderEmpty || hr == qmz::kFindNoMoreEntries) {
        hr = qmz::kOk;
    }
    return hr;
}

// Copies the rest of a listing that FindFirst has begun: files at once, folders created and
// queued for later. Returns the code that ended the listing.
qmz::Result CImageReader::CopyListing(const QString& folderPath, const QString& source,
                                      const QString& dstRoot, qmz::file_attr& attr,
                                      std::deque<QString>& paths) {
    // Every occurrence of the source's text is taken out, not only the leading one.
    QString intermediate = folderPath;
    intermediate.remove(source);
    intermediate.replace(u'\\', u'/');
    qmz::Result hr = qmz::kOk;
    while (hr >= 0 && m_progress.bStop == 0) {
        const QString name = NameOf(attr).toString();
        // The root has no name of its own to build targets from, and a name that isn't a plain
        // path component could lead outside the target folder: neither is written.
        if (folderPath.isEmpty() || !IsWritableName(name)) {
            hr = m_session.FileSystem()->FindNext(&attr);
            continue;
        }
        const QString srcName = folderPath + u'\\' + name;
        const QString dstName = dstRoot + intermediate + u'/' + name;
        if ((attr.uAttributes & qmz::kAttrDirectory) != 0) {
            QDir().mkdir(dstName);
            paths.push_back(srcName);
        } else {
            const qmz::FileTime utc = enginefields::UtcTimeOf(attr);
            hr = CopyJobFile(srcName, dstName, &utc);
            if (hr < 0) {
                break;
            }
        }
        hr = m_session.FileSystem()->FindNext(&attr);
    }
    return hr;
}

bool CImageReader::IsWritableName(QStringView name) {
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/');
}

int CImageReader::CheckDiskRoom(const QString& path, uint64_t ullBytes) {
    return CDiskRoomPolicy::CheckDiskRoom(path, ullBytes);
}

bool CImageReader::FitsInFreeBytes(uint64_t ullBytes, uint64_t ullFreeBytes) {
    return CDiskRoomPolicy::FitsInFreeBytes(ullBytes, ullFreeBytes);
}

qmz::Result CImageReader::GetFreeBytes(const QString& path, uint64_t* pFreeBytes) {
    return CDiskRoomPolicy::GetFreeBytes(path, pFreeBytes);
}

int CImageReader::FileSystemCanHold(const QString& folder, uint64_t ullSize) {
    return m_diskRoom.FileSystemCanHold(folder, ullSize);
}

void CImageReader::SetMountTable(const QString& tablePath) {
    m_diskRoom.SetMountTable(tablePath);
}

qmz::Result CImageReader::StreamFile(const QString& source, ImageReadSink pfnSink, void* pContext) {
    if (!m_session.IsImageOpen()) {
        return qmz::kUnexpected;
    }
    uint64_t ullSize = 0;
    qmz::Result hr = m_session.FileSystem()->OpenFile(Utf16(source), &ullSize);
    if (hr < 0) {
        return hr;
    }
    m_progress.bStop = 0;
    std::array<uint8_t, kChunkBytes> buffer{};
    uint64_t ullDone = 0;
    while (ullDone < ullSize && hr >= 0) {
        const auto nWant =
            static_cast<uint32_t>(std::min<uint64_t>(kChunkBytes, ullSize - ullDone));
        uint32_t nRead = 0;
        hr = m_session.FileSystem()->ReadFile(buffer.data(), nWant, &nRead, 0);
        nRead = std::min(nRead, nWant);
        if (hr >= 0 && (nRead == 0 || !pfnSink(buffer.data(), nRead, pContext))) {
            hr = nRead == 0 ? qmz::kEngineReadFailed : qmz::kFail;
        }
        ullDone += nRead;
        m_progress.Pump();
        if (m_progress.bStop != 0) {
            hr = qmz::kStopped;
        }
    }
    m_session.FileSystem()->CloseFile();
    return hr;
}
