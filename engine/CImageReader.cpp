#include "CImageReader.h"

#include "COvDataItem.h"

#include <algorithm>

CImageReader* g_pImageReader = nullptr;

CImageReader::CImageReader(const QString& enginePath) : m_session(m_progress, enginePath) {}

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

void CImageReader::WriterThreadProc(CImageReader* pReader) {
    if (pReader != nullptr) {
        pReader->m_writer.Run();
    }
}

qmz::Result CImageReader::ReopenImage() {
    return m_session.Reopen();
}

void CImageReader::CloseImage() {
    m_session.Close();
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

qmz::Result CImageReader::CopyFile(const QString& source, const QString& target,
                                   const qmz::FileTime* pTime) {
    return m_extractor.CopyFile(source, target, pTime);
}

qmz::Result CImageReader::CopyFolder(const QString& source, const QString& targetBase) {
    return m_extractor.CopyFolder(source, targetBase);
}

qmz::Result CImageReader::StreamFile(const QString& source, ImageReadSink pfnSink, void* pContext) {
    return m_extractor.StreamFile(source, pfnSink, pContext);
}

bool CImageReader::IsWritableName(QStringView name) {
    return CFileExtractor::IsWritableName(name);
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
