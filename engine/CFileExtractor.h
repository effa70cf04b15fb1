// Extraction: reads files of the open image, one or a folder's worth, and hands their data to
// the writer thread, which makes the target files; or streams one file into a caller's sink.
#pragma once

#include "ChunkQueue.h"
#include "IQmzFileSystem.h"
#include "QmzTypes.h"
#include "ReaderProgress.h"

#include <QString>
#include <QStringView>
#include <cstdint>
#include <deque>

class CDiskRoomPolicy;
class CEngineSession;
class CTargetWriter;

// Takes the pieces of a file that StreamFile reads; false ends the read.
using ImageReadSink = bool (*)(const uint8_t* pData, uint32_t nLength, void* pContext);

class CFileExtractor {
public:
    CFileExtractor(ReaderProgress& progress, const CEngineSession& session,
                   CDiskRoomPolicy& diskRoom, CTargetWriter& writer)
        : m_progress(progress), m_session(session), m_diskRoom(diskRoom), m_writer(writer) {}

    // A source is a path in the engine's form; the time is a UTC FILETIME.
    qmz::Result CopyFile(const QString& source, const QString& target, const qmz::FileTime* pTime);
    // Copies the folder and all below it into targetBase, which ends in a separator. Its files
    // are written behind the reading; the first that can't be written ends the job, removed,
    // and the files after it are left as they were.
    qmz::Result CopyFolder(const QString& source, const QString& targetBase);
    // Reads a file from start to end into the sink. kFail if the sink gave up.
    qmz::Result StreamFile(const QString& source, ImageReadSink pfnSink, void* pContext);
    // Whether a name of the image can be a path component on the disk: one that could lead a
    // target path out of its folder is never written.
    static bool IsWritableName(QStringView name);

private:
    // The open image's file system; a job runs only while there is one.
    qmz::IQmzFileSystem& FileSystem() const;
    void StartJob();
    qmz::Result FinishJob(qmz::Result hr);
    qmz::Result CopyJobFile(const QString& source, const QString& target,
                            const qmz::FileTime* pTime);
    qmz::Result TransferFile(const QString& source, uint64_t ullSize, const qmz::FileTime* pTime,
                             qmz::Result hr);
    qmz::Result ReadChunks(uint64_t ullLast, qmz::Result hr);
    qmz::Result AppendChunk(const ImageChunk& chunk);
    bool KeepWaitingForRoom();
    void WaitForWriter();
    qmz::Result CopyFolderTree(const QString& source, const QString& targetBase);
    qmz::Result CopyListing(const QString& folderPath, const QString& source,
                            const QString& dstRoot, qmz::file_attr& attr,
                            std::deque<QString>& paths);

    ReaderProgress& m_progress;
    const CEngineSession& m_session;
    CDiskRoomPolicy& m_diskRoom;
    CTargetWriter& m_writer;
    QString m_strDstFile;
    // The target that the reading side could not finish, removed when the job ends.
    QString m_strUnfinishedTarget;
};
