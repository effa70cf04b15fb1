#include "CEngineSession.h"

#include "CEngineModule.h"
#include "EngineFields.h"
#include "IBwRegPath.h"
#include "Locations.h"
#include "RegTypes.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <new>
#include <string>

using enginefields::Utf16;

namespace {

constexpr const char16_t* kEngineFileName = u"Qmz.so";
constexpr uint32_t kWaitTimeoutMs = 100;
// The scan fills the first half of the open's percent range and the walk the second; a reopen
// has no walk.
constexpr int32_t kOpenScanLimit = 50;
constexpr int32_t kReopenScanLimit = 100;

} // namespace

CEngineSession::CEngineSession(ReaderProgress& progress, const QString& enginePath)
    : m_progress(progress) {
    m_pModule = new (std::nothrow) CEngineModule();
    if (m_pModule == nullptr) {
        return;
    }
    const QString folder = ProgramFolder();
    // The engine and the skin are found relative to the program's own folder.
    if (!QDir::setCurrent(folder)) {
        return;
    }
    const QString path =
        enginePath.isEmpty() ? folder + u'/' + QString::fromUtf16(kEngineFileName) : enginePath;
    if (m_pModule->Load(path) >= 0) {
        Connect();
    }
}

CEngineSession::~CEngineSession() {
    Disconnect();
    delete m_pModule;
}

qmz::Result CEngineSession::Connect() {
    if (m_pEngine != nullptr) {
        return qmz::kOk;
    }
    qmz::Result hr = qmz::kUnexpected;
    if (m_pModule != nullptr) {
        hr = m_pModule->CreateObject(qmz::kClsidQmzEngine, nullptr, qmz::kIidQmzEngine,
                                     reinterpret_cast<void**>(&m_pEngine));
    }
    if (m_pEngine == nullptr) {
        return qmz::kUnexpected;
    }
    qmz::IBwRegPath* pRegPath = nullptr;
    m_pEngine->QueryInterface(qmz::kIidBwRegPath, reinterpret_cast<void**>(&pRegPath));
    if (pRegPath != nullptr) {
        const uint32_t hKeyRoot = qmz::kHkeyLocalMachine;
        const auto nKeyChars =
            static_cast<uint32_t>(std::char_traits<char16_t>::length(kSettingsKey));
        pRegPath->SetRegPath(&hKeyRoot, kSettingsKey, nKeyChars, 1);
        pRegPath->Release();
    }
    return hr;
}

void CEngineSession::Disconnect() {
    Close();
    if (m_pEngine != nullptr) {
        m_pEngine->Release();
        m_pEngine = nullptr;
    }
}

qmz::Result CEngineSession::CanOpen(const QString& imagePath) {
    if (!QFileInfo::exists(imagePath)) {
        return qmz::kUnexpected;
    }
    if (m_pEngine == nullptr) {
        return qmz::kFail;
    }
    qmz::IQmzDrive* pDrv = nullptr;
    const qmz::Result hr = m_pEngine->OpenDrive(0, qmz::kAccessRead, Utf16(imagePath), &pDrv);
    if (pDrv != nullptr) {
        pDrv->Release();
    }
    return hr;
}

qmz::Result CEngineSession::Open(const QString& imagePath, qmz::fsInfo& info) {
    Close();
    m_progress.bStop = 0;
    m_progress.nOpenPercent = 0;
    qmz::Result hr = OpenEngineObjects(imagePath, kOpenScanLimit);
    if (hr >= 0) {
        hr = m_pFileSystem->GetFsInfo(&info);
    }
    if (hr >= 0) {
        m_uFileSystemKind = info.uFileSystem;
    }
    return hr;
}

qmz::Result CEngineSession::OpenEngineObjects(const QString& imagePath, int32_t nPercentLimit) {
    if (m_pEngine == nullptr) {
        return qmz::kUnexpected;
    }
    QString magicKey = imagePath;
    magicKey.replace(u'\\', u'-');
    // Two processes of the family must not work on one image at once.
    if (m_hImageMutex.Create(magicKey.toUpper()) == NamedMutex::State::AlreadyExists) {
        Close();
        return qmz::kFail;
    }
    qmz::Result hr = m_pEngine->OpenDrive(0, qmz::kAccessRead, Utf16(imagePath), &m_pDrv);
    if (hr >= 0 && m_pDrv == nullptr) {
        hr = qmz::kUnexpected;
    }
    if (hr >= 0) {
        m_progress.Notify(NOTIFY_OPEN_BEGIN, imagePath, ReaderProgress::kShortPayloadChars);
        hr = CreateEngineReader();
    }
    if (hr >= 0) {
        hr = m_pReader->Start(qmz::kScanOperation, 0, 0);
        hr = WaitForScan(hr, nPercentLimit);
    }
    if (hr < 0) {
        Close();
    }
    return hr;
}

qmz::Result CEngineSession::CreateEngineReader() {
    qmz::Result hr = m_pEngine->CreateReader(qmz::kIidQmzReader, &m_pReader);
    if (hr >= 0 && m_pReader == nullptr) {
        hr = qmz::kUnexpected;
    }
    if (hr >= 0) {
        hr = m_pReader->Attach(m_pDrv);
        m_bAttached = hr >= 0;
    }
    if (hr >= 0) {
        hr = m_pReader->Load();
        m_bLoaded = hr >= 0;
    }
    if (hr >= 0) {
        hr = m_pReader->QueryInterface(qmz::kIidQmzFileSystem,
                                       reinterpret_cast<void**>(&m_pFileSystem));
        if (hr >= 0 && m_pFileSystem == nullptr) {
            hr = qmz::kUnexpected;
        }
    }
    return hr;
}

qmz::Result CEngineSession::WaitForScan(qmz::Result hr, int32_t nPercentLimit) {
    while (m_progress.bStop == 0) {
        uint32_t oState = 0;
        float fProgress = 0.0f;
        if (m_pReader->Wait(kWaitTimeoutMs, &oState, &fProgress) != qmz::kWaitStillRunning) {
            break;
        }
        const float fPercent = static_cast<float>(nPercentLimit) * fProgress;
        // An engine's progress is not trusted to stay within 0.0 to 1.0, nor to be a number.
        m_progress.nOpenPercent =
            fPercent >= 0.0f
                ? static_cast<int32_t>(std::min(static_cast<float>(nPercentLimit), fPercent))
                : 0;
        m_progress.Pump();
    }
    if (m_progress.bStop != 0) {
        return StopScan();
    }
    return m_pReader->Finish() | hr;
}

qmz::Result CEngineSession::StopScan() {
    m_progress.Notify(NOTIFY_STOPPING, QString(), ReaderProgress::kShortPayloadChars);
    qmz::Result hr = m_pReader->Cancel();
    for (;;) {
        uint32_t oState = 0;
        float fProgress = 0.0f;
        if (m_pReader->Wait(kWaitTimeoutMs, &oState, &fProgress) != qmz::kWaitStillRunning) {
            break;
        }
        m_progress.Pump();
    }
    hr = m_pReader->Finish() | hr;
    return hr < 0 ? hr : qmz::kStopped;
}

qmz::Result CEngineSession::Reopen() {
    if (m_szImagePath.isEmpty() || !QFileInfo::exists(m_szImagePath)) {
        return qmz::kUnexpected;
    }
    m_progress.bOpening = 1;
    Close();
    const qmz::Result hr = OpenEngineObjects(m_szImagePath, kReopenScanLimit);
    if (hr < 0) {
        Close();
    }
    m_progress.bOpening = 0;
    return hr;
}

void CEngineSession::Close() {
    m_hImageMutex.Release();
    if (m_pFileSystem != nullptr) {
        m_pFileSystem->Release();
        m_pFileSystem = nullptr;
    }
    if (m_pReader != nullptr) {
        if (m_bLoaded != 0) {
            m_pReader->Unload();
            m_bLoaded = 0;
        }
        if (m_bAttached != 0) {
            m_pReader->Detach();
            m_bAttached = 0;
        }
        m_pReader->Release();
        m_pReader = nullptr;
    }
    if (m_pDrv != nullptr) {
        m_pDrv->Release();
        m_pDrv = nullptr;
    }
}
