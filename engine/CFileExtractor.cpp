#include "CFileExtractor.h"

#include "CDiskRoomPolicy.h"
#include "CEngineSession.h"
#include "CTargetWriter.h"
#include "EngineFields.h"
#include "FileTimeConversion.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <unistd.h>

using enginefields::NameOf;
using enginefields::Utf16;

namespace {

constexpr uint32_t kChunkBytes = 32768;
// Slices in which the reading side waits for the writer, keeping the interface alive between.
constexpr auto kAppendWait = std::chrono::milliseconds(10);
constexpr auto kWriterWait = std::chrono::milliseconds(100);

} // namespace

qmz::IQmzFileSystem& CFileExtractor::FileSystem() const {
    return *m_session.FileSystem();
}

qmz::Result CFileExtractor::CopyFile(const QString& source, const QString& target,
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

qmz::Result CFileExtractor::CopyFolder(const QString& source, const QString& targetBase) {
    if (!m_session.IsImageOpen()) {
        return qmz::kFail;
    }
    m_progress.bCopying = 1;
    StartJob();
    const qmz::Result hr = FinishJob(CopyFolderTree(source, targetBase));
    m_progress.bCopying = 0;
    return hr;
}

void CFileExtractor::StartJob() {
    m_writer.StartJob();
    m_strUnfinishedTarget.clear();
}

// Waits until the writer is through with every file of the job, then reports what it gave up
// on and removes the target that the reading side left unfinished.
qmz::Result CFileExtractor::FinishJob(qmz::Result hr) {
    WaitForWriter();
    if (m_writer.GaveUp()) {
        hr = qmz::kFail;
        m_progress.Notify(
            m_writer.WriteFailed() ? NOTIFY_WRITE_FAILED : NOTIFY_ACCESS_DENIED,
            QFile::decodeName(QByteArray::fromStdString(m_writer.Queue().FailedPath())),
            ReaderProgress::kLongPayloadChars);
    }
    // A stop that came after the writer had finished every file leaves the job whole.
    if (m_progress.bStop != 0 && (hr == qmz::kStopped || m_writer.Queue().IsAbandoned())) {
        hr = qmz::kStopped;
    }
    if (!m_strUnfinishedTarget.isEmpty()) {
        ::unlink(QFile::encodeName(m_strUnfinishedTarget).constData());
        m_strUnfinishedTarget.clear();
    }
    return hr;
}

// Hands one file to the writer, which may still be busy with the ones before it. A target that
// the writer gave up on is its own to remove; one that the reading side could not finish, or
// that a stop came to, is removed at the end of the job, even when it existed before.
qmz::Result CFileExtractor::CopyJobFile(const QString& source, const QString& target,
                                        const qmz::FileTime* pTime) {
    m_strDstFile = target;
    if (m_writer.GaveUp()) {
        return qmz::kFail;
    }
    uint64_t ullSize = 0;
    qmz::Result hr = FileSystem().OpenFile(Utf16(source), &ullSize);
    if (hr >= 0) {
        hr = TransferFile(source, ullSize, pTime, hr);
        FileSystem().CloseFile();
    }
    if (hr < 0 && !m_writer.GaveUp()) {
        m_strUnfinishedTarget = target;
    }
    return hr;
}

// Reads an open file into the writer's list. Returns hr, or what failed; a read's own code
// takes hr's place.
qmz::Result CFileExtractor::TransferFile(const QString& source, uint64_t ullSize,
                                         const qmz::FileTime* pTime, qmz::Result hr) {
    // The highest offset to read; 0 also means nothing to read, so a file of one byte is
    // created empty, like one of none.
    const uint64_t ullLast = ullSize == 0 ? 0 : ullSize - 1;
    const QString folder = QFileInfo(m_strDstFile).absolutePath() + u'/';
    if (m_diskRoom.FileSystemCanHold(folder, ullSize) == 0) {
        m_progress.Notify(NOTIFY_NO_ROOM, m_strDstFile, ReaderProgress::kLongPayloadChars);
        return qmz::kFail;
    }
    m_progress.bStop = 0;
    m_progress.Notify(NOTIFY_COPY_BEGIN, source, ReaderProgress::kShortPayloadChars);
    m_writer.Start();
    TargetFile file{QFile::encodeName(m_strDstFile).toStdString()};
    if (pTime != nullptr) {
        const filetime::UnixTime t = filetime::ToUnix(enginefields::TicksOf(*pTime));
        file.bHasTime = true;
        file.modified = {static_cast<time_t>(t.seconds), static_cast<long>(t.nanoseconds)};
    }
    while (!m_writer.Queue().BeginFile(file, kAppendWait)) {
        if (!KeepWaitingForRoom()) {
            return m_progress.bStop != 0 ? qmz::kStopped : qmz::kFail;
        }
    }
    hr = ReadChunks(ullLast, hr);
    m_writer.Queue().EndFile();
    return hr;
}

qmz::Result CFileExtractor::ReadChunks(uint64_t ullLast, qmz::Result hr) {
    uint64_t ullDone = 0;
    uint32_t nChunk = kChunkBytes;
    for (;;) {
        if (m_progress.bStop != 0) {
            return qmz::kStopped;
        }
        if (m_writer.GaveUp()) {
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
        hr = FileSystem().ReadFile(chunk.pData, nChunk, &nRead, 0);
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
qmz::Result CFileExtractor::AppendChunk(const ImageChunk& chunk) {
    while (!m_writer.Queue().Append(chunk, kAppendWait)) {
        if (!KeepWaitingForRoom()) {
            return qmz::kFail;
        }
    }
    return qmz::kOk;
}

// The interface stays alive while the list is full; a stop or a writer that gave up ends the
// wait.
bool CFileExtractor::KeepWaitingForRoom() {
    m_progress.Pump();
    return m_progress.bStop == 0 && !m_writer.Queue().IsAbandoned();
}

void CFileExtractor::WaitForWriter() {
    while (!m_writer.Queue().Drain(kWriterWait)) {
        m_progress.Pump();
    }
}

// The files of the folder go to the writer one after the other; FinishJob waits for the last.
qmz::Result CFileExtractor::CopyFolderTree(const QString& source, const QString& targetBase) {
    QDir().mkdir(targetBase);
    const QString dstRoot = targetBase + source.mid(source.lastIndexOf(u'\\') + 1);
    QDir().mkdir(dstRoot);
    std::deque<QString> paths{source};
    qmz::file_attr attr;
    qmz::Result hr = qmz::kOk;
    while (!paths.empty() && m_progress.bStop == 0) {
        const QString path = std::move(paths.front());
        paths.pop_front();
        hr = FileSystem().FindFirst(Utf16(path), &attr);
        if (hr == qmz::kFindFolderEmpty) {
            continue;
        }
        if (hr < 0) {
            break;
        }
        hr = CopyListing(path, source, dstRoot, attr, paths);
        // A failing FindClose ends the walk, but the walk's result stays what it was.
        if (FileSystem().FindClose() < 0) {
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
qmz::Result CFileExtractor::CopyListing(const QString& folderPath, const QString& source,
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
            hr = FileSystem().FindNext(&attr);
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
        hr = FileSystem().FindNext(&attr);
    }
    return hr;
}

bool CFileExtractor::IsWritableName(QStringView name) {
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/');
}

qmz::Result CFileExtractor::StreamFile(const QString& source, ImageReadSink pfnSink,
                                       void* pContext) {
    if (!m_session.IsImageOpen()) {
        return qmz::kUnexpected;
    }
    uint64_t ullSize = 0;
    qmz::Result hr = FileSystem().OpenFile(Utf16(source), &ullSize);
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
        hr = FileSystem().ReadFile(buffer.data(), nWant, &nRead, 0);
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
    FileSystem().CloseFile();
    return hr;
}
