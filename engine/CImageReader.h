// The one object through which the program reaches an image: it loads and drives the engine,
// opens an image and walks it into a tree of COvDataItem nodes, and copies files and folders
// out of it onto a disk. Each of those jobs is a class of its own; this one ties them together
// over the progress and notification state they share.
#pragma once

#include "CDiskRoomPolicy.h"
#include "CEngineSession.h"
#include "CFileExtractor.h"
#include "CImageWalk.h"
#include "CTargetWriter.h"
#include "NodeText.h"
#include "QmzTypes.h"
#include "ReaderProgress.h"

#include <QString>
#include <QStringView>
#include <cstdint>

class COvDataItem;

// Query codes of GetProgress.
enum : int32_t { PROGRESS_OPEN = 5000, PROGRESS_COPY = 5001 };

class CImageReader {
public:
    // Loads the engine beside the executable, or from enginePath when one is given.
    explicit CImageReader(const QString& enginePath = QString());
    ~CImageReader() = default;
    CImageReader(const CImageReader&) = delete;
    CImageReader& operator=(const CImageReader&) = delete;

    int SetCallback(ImageReaderCallback pfnCallback, void* pContext);
    void SetPump(ImageReaderPump pfnPump, void* pContext);
    bool IsOpening() const { return m_progress.bOpening != 0; }
    int32_t GetProgress(int32_t query, int32_t* pPercent) const;
    void SetStop(int32_t bStop) { m_progress.bStop = bStop; }
    int32_t GetStop() const { return m_progress.bStop; }
    bool IsCopying() const { return m_progress.bCopying != 0; }
    void SetCopyPercent(int32_t nPercent) { m_progress.nCopyPercent = nPercent; }
    void SetTotalBytes(uint64_t ullBytes) { m_progress.ullTotalBytes = ullBytes; }
    uint64_t GetTotalBytes() const { return m_progress.ullTotalBytes; }
    void SetDoneBytes(uint64_t ullBytes) { m_progress.ullDoneBytes = ullBytes; }
    uint64_t GetDoneBytes() const { return m_progress.ullDoneBytes; }

    qmz::Result OpenImage(const QString& imagePath, COvDataItem* pRoot);
    qmz::Result ReopenImage();
    void CloseImage();

    qmz::Result ConnectEngine();
    void DisconnectEngine();
    qmz::Result CanOpen(const QString& imagePath);

    // Extraction. A source is a path in the engine's form; the time is a UTC FILETIME. The
    // command that runs a job sets the total bytes before it and clears the figures after it.
    qmz::Result CopyFile(const QString& source, const QString& target, const qmz::FileTime* pTime);
    // Copies the folder and all below it into targetBase, which ends in a separator. Its files
    // are written behind the reading; the first that can't be written ends the job, removed,
    // and the files after it are left as they were.
    qmz::Result CopyFolder(const QString& source, const QString& targetBase);
    // Whether a name of the image can be a path component on the disk: one that could lead a
    // target path out of its folder is never written.
    static bool IsWritableName(QStringView name);
    static bool IsWritableName(const NodeText& name) { return IsWritableName(name.ToString()); }
    // 1 if the bytes fit on the volume of path with one percent to spare, else 0.
    static int CheckDiskRoom(const QString& path, uint64_t ullBytes);
    static bool FitsInFreeBytes(uint64_t ullBytes, uint64_t ullFreeBytes);
    static qmz::Result GetFreeBytes(const QString& path, uint64_t* pFreeBytes);
    // 1 if the file system of folder (ending in a separator) can hold a file of that size.
    int FileSystemCanHold(const QString& folder, uint64_t ullSize);
    // The table of mounts that FileSystemCanHold reads; tests give one of their own.
    void SetMountTable(const QString& tablePath);
    // The body of the writer thread that extraction starts.
    static void WriterThreadProc(CImageReader* pReader);
    // Reads a file of the image from start to end into a sink of the caller's (standard output,
    // say), where a target file is not wanted. kFail if the sink gave up.
    qmz::Result StreamFile(const QString& source, ImageReadSink pfnSink, void* pContext);

    // The engine's word on which file system it read (the first field of fsInfo).
    uint32_t GetFileSystemKind() const { return m_session.FileSystemKind(); }
    const QString& GetImagePath() const { return m_session.ImagePath(); }
    bool IsImageOpen() const { return m_session.IsImageOpen(); }
    bool HasEngine() const { return m_session.HasEngine(); }

private:
    ReaderProgress m_progress;
    // Members are destroyed in reverse order: the writer thread ends before the engine goes.
    CEngineSession m_session;
    CImageWalk m_walk{m_progress};
    CDiskRoomPolicy m_diskRoom;
    CTargetWriter m_writer{m_progress};
    CFileExtractor m_extractor{m_progress, m_session, m_diskRoom, m_writer};
};

// The process's one reader, set by whoever owns it and cleared before it goes. Null while
// there is none: every user tests for that and then does nothing.
extern CImageReader* g_pImageReader;
