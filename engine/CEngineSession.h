// The engine and the image it has open: loads the engine, connects to it, opens an image with
// the wait for the engine's scan of it, and closes and reopens it.
#pragma once

#include "IQmzDrive.h"
#include "IQmzEngine.h"
#include "IQmzFileSystem.h"
#include "IQmzReader.h"
#include "NamedMutex.h"
#include "ReaderProgress.h"

#include <QString>
#include <cstdint>

class CEngineModule;

class CEngineSession {
public:
    // Loads the engine beside the executable, or from enginePath when one is given.
    CEngineSession(ReaderProgress& progress, const QString& enginePath);
    ~CEngineSession();
    CEngineSession(const CEngineSession&) = delete;
    CEngineSession& operator=(const CEngineSession&) = delete;

    qmz::Result Connect();
    void Disconnect();
    qmz::Result CanOpen(const QString& imagePath);

    // Closes the image open before, opens imagePath and reads its file system's figures into
    // info. A failure may leave engine objects open; Close releases them.
    qmz::Result Open(const QString& imagePath, qmz::fsInfo& info);
    // The image that Reopen opens again: the last one that was opened and walked in full.
    void RememberImage(const QString& imagePath) { m_szImagePath = imagePath; }
    qmz::Result Reopen();
    void Close();

    qmz::IQmzFileSystem* FileSystem() const { return m_pFileSystem; }
    uint32_t FileSystemKind() const { return m_uFileSystemKind; }
    const QString& ImagePath() const { return m_szImagePath; }
    bool IsImageOpen() const { return m_pFileSystem != nullptr; }
    bool HasEngine() const { return m_pEngine != nullptr; }

private:
    qmz::Result OpenEngineObjects(const QString& imagePath, int32_t nPercentLimit);
    qmz::Result CreateEngineReader();
    qmz::Result WaitForScan(qmz::Result hr, int32_t nPercentLimit);
    qmz::Result StopScan();

    ReaderProgress& m_progress;
    CEngineModule* m_pModule = nullptr;
    qmz::IQmzEngine* m_pEngine = nullptr;
    qmz::IQmzDrive* m_pDrv = nullptr;
    qmz::IQmzReader* m_pReader = nullptr;
    qmz::IQmzFileSystem* m_pFileSystem = nullptr;
    int32_t m_bAttached = 0;
    int32_t m_bLoaded = 0;
    QString m_szImagePath;
    NamedMutex m_hImageMutex;
    uint32_t m_uFileSystemKind = 0;
};
