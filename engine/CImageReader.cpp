#include "CImageReader.h"

#include "CEngineModule.h"
#include "COvDataItem.h"
#include "FileTimeConversion.h"
#include "contract/IBwRegPath.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <deque>
#include <new>
#include <unistd.h>

namespace {

constexpr const char16_t* kEngineFileName = u"Qmz.so";
constexpr const char16_t* kSettingsKey = u"Software\\Brindleway\\Torvane10\\10.0";
constexpr uint32_t kWaitTimeoutMs = 100;
constexpr int32_t kOpenScanLimit = 50;
constexpr int32_t kReopenScanLimit = 100;
constexpr float kWalkPercentStart = 50.0f;
constexpr float kWalkPercentSpan = 50.0f;
constexpr int32_t kPercentMax = 100;
// Payload sizes in characters, as the receivers of the notifications expect them.
constexpr size_t kShortPayloadChars = 260;
// Letting a window process its messages after every entry would cost more than the walk
// itself on large images; between pumps the stop flag is still polled after every entry.
constexpr auto kPumpInterval = std::chrono::milliseconds(15);
constexpr uint32_t kPumpClockStride = 64;

QString ExecutableFolder() {
    const QFileInfo exe(QStringLiteral("/proc/self/exe"));
    return QFileInfo(exe.canonicalFilePath()).absolutePath();
}

QStringView NameOf(const qmz::file_attr& attr) {
    const char16_t* pName = attr.strName;
    const char16_t* pEnd = std::find(pName, pName + qmz::kNameChars, u'\0');
    return QStringView(pName, pEnd - pName);
}

uint64_t TicksOf(const qmz::FileTime& ft) {
    return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

qmz::FileTime FileTimeOf(uint64_t ticks) {
    return {static_cast<uint32_t>(ticks), static_cast<uint32_t>(ticks >> 32)};
}

const char16_t* Utf16(const QString& text) {
    return reinterpret_cast<const char16_t*>(text.utf16());
}

} // namespace

// The walk's queues and its one entry record, reused for every entry.
struct WalkState {
    std::deque<COvDataItem*> nodes;
    std::deque<QString> paths;
    qmz::file_attr attr;
    int32_t nDone = 0;
    uint32_t nPumpTick = 0;
    // The first stride of entries already pumps, so a stop or a repaint never waits long.
    std::chrono::steady_clock::time_point lastPump =
        std::chrono::steady_clock::now() - kPumpInterval;
};

CImageReader::CImageReader(const QString& enginePath) {
    m_pModule = new (std::nothrow) CEngineModule();
    if (m_pModule == nullptr) {
        return;
    }
    const QString folder = ExecutableFolder();
    // The engine and the skin are found relative to the program's own folder.
    if (!QDir::setCurrent(folder)) {
        return;
    }
    const QString path =
        enginePath.isEmpty() ? folder + u'/' + QString::fromUtf16(kEngineFileName) : enginePath;
    if (m_pModule->Load(path) >= 0) {
        ConnectEngine();
    }
}

CImageReader::~CImageReader() {
    DisconnectEngine();
    delete m_pModule;
}

int CImageReader::SetCallback(ImageReaderCallback pfnCallback, void* pContext) {
    m_pfnCallback = pfnCallback;
    m_pCallbackContext = pContext;
    return 1;
}

void CImageReader::SetPump(ImageReaderPump pfnPump, void* pContext) {
    m_pfnPump = pfnPump;
    m_pPumpContext = pContext;
}

int32_t CImageReader::GetProgress(int32_t query, int32_t* pPercent) const {
    if (pPercent == nullptr) {
        return 0;
    }
    if (query == PROGRESS_OPEN) {
        *pPercent = m_nOpenPercent;
    } else if (query == PROGRESS_COPY) {
        *pPercent = m_nCopyPercent;
    }
    return 0;
}

qmz::Result CImageReader::ConnectEngine() {
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

void CImageReader::DisconnectEngine() {
    CloseImage();
    if (m_pEngine != nullptr) {
        m_pEngine->Release();
        m_pEngine = nullptr;
    }
}

qmz::Result CImageReader::CanOpen(const QString& imagePath) {
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

void CImageReader::Notify(uint32_t code, const QString& payload, size_t payloadChars) {
    if (m_pfnCallback == nullptr) {
        return;
    }
    std::array<char16_t, 2 * kShortPayloadChars> buffer{};
    const size_t nChars =
        std::min(static_cast<size_t>(payload.size()), std::min(payloadChars, buffer.size()) - 1);
    std::memcpy(buffer.data(), payload.utf16(), nChars * sizeof(char16_t));
    m_pfnCallback(code, buffer.data(), m_pCallbackContext);
}

void CImageReader::Pump() {
    if (m_pfnPump != nullptr) {
        m_pfnPump(m_pPumpContext);
    }
}

void CImageReader::PumpPaced(WalkState& state) {
    if (++state.nPumpTick % kPumpClockStride != 0) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now - state.lastPump >= kPumpInterval) {
        state.lastPump = now;
        Pump();
    }
}

qmz::Result CImageReader::OpenEngineObjects(const QString& imagePath, int32_t nPercentLimit) {
    if (m_pEngine == nullptr) {
        return qmz::kUnexpected;
    }
    QString magicKey = imagePath;
    magicKey.replace(u'\\', u'-');
    // Two processes of the family must not work on one image at once.
    if (m_hImageMutex.Create(magicKey.toUpper()) == NamedMutex::State::AlreadyExists) {
        CloseImage();
        return qmz::kFail;
    }
    qmz::Result hr = m_pEngine->OpenDrive(0, qmz::kAccessRead, Utf16(imagePath), &m_pDrv);
    if (hr >= 0 && m_pDrv == nullptr) {
        hr = qmz::kUnexpected;
    }
    if (hr >= 0) {
        Notify(NOTIFY_OPEN_BEGIN, imagePath, kShortPayloadChars);
        hr = CreateEngineReader();
    }
    if (hr >= 0) {
        hr = m_pReader->Start(qmz::kScanOperation, 0, 0);
        hr = WaitForScan(hr, nPercentLimit);
    }
    if (hr < 0) {
        CloseImage();
    }
    return hr;
}

qmz::Result CImageReader::CreateEngineReader() {
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

qmz::Result CImageReader::WaitForScan(qmz::Result hr, int32_t nPercentLimit) {
    while (m_bStop == 0) {
        uint32_t oState = 0;
        float fProgress = 0.0f;
        if (m_pReader->Wait(kWaitTimeoutMs, &oState, &fProgress) != qmz::kWaitStillRunning) {
            break;
        }
        const float fPercent = static_cast<float>(nPercentLimit) * fProgress;
        // An engine's progress is not trusted to stay within 0.0 to 1.0, nor to be a number.
        m_nOpenPercent =
            fPercent >= 0.0f
                ? static_cast<int32_t>(std::min(static_cast<float>(nPercentLimit), fPercent))
                : 0;
        Pump();
    }
    if (m_bStop != 0) {
        return StopScan();
    }
    return m_pReader->Finish() | hr;
}

qmz::Result CImageReader::StopScan() {
    Notify(NOTIFY_STOPPING, QString(), kShortPayloadChars);
    qmz::Result hr = m_pReader->Cancel();
    for (;;) {
        uint32_t oState = 0;
        float fProgress = 0.0f;
        if (m_pReader->Wait(kWaitTimeoutMs, &oState, &fProgress) != qmz::kWaitStillRunning) {
            break;
        }
        Pump();
    }
    hr = m_pReader->Finish() | hr;
    return hr < 0 ? hr : qmz::kStopped;
}

qmz::Result CImageReader::OpenImage(const QString& imagePath, COvDataItem* pRoot) {
    if (m_pEngine == nullptr) {
        return qmz::kUnexpected;
    }
    m_bOpening = 1;
    CloseImage();
    m_bStop = 0;
    m_nOpenPercent = 0;

    qmz::Result hr = OpenEngineObjects(imagePath, kOpenScanLimit);
    qmz::fsInfo info;
    if (hr >= 0) {
        hr = m_pFileSystem->GetFsInfo(&info);
    }
    if (hr >= 0) {
        const char16_t* pEnd = std::find(info.strVolID, info.strVolID + qmz::kVolIdChars, u'\0');
        pRoot->m_strName = QString::fromUtf16(info.strVolID, pEnd - info.strVolID).trimmed();
        m_nEntryCount = static_cast<int32_t>(info.uCount1 + info.uCount2);
        m_uFileSystemKind = info.uFileSystem;
        hr = WalkTree(pRoot);
    }
    if (hr < 0) {
        CloseImage();
    } else {
        m_szImagePath = imagePath;
    }
    m_bOpening = 0;
    return hr;
}

qmz::Result CImageReader::WalkTree(COvDataItem* pRoot) {
    WalkState state;
    state.nodes.push_back(pRoot);
    state.paths.emplace_back();
    qmz::Result hr = qmz::kOk;
    while (!state.nodes.empty() && m_bStop == 0) {
        COvDataItem* pNode = state.nodes.front();
        state.nodes.pop_front();
        const QString folderPath = std::move(state.paths.front());
        state.paths.pop_front();
        hr = m_pFileSystem->FindFirst(Utf16(folderPath), &state.attr);
        if (hr == qmz::kFindFolderEmpty) {
            pNode->m_anSortState[COvDataItem::SortName] = 0;
            continue;
        }
        if (hr < 0) {
            break;
        }
        pNode->m_anSortState[COvDataItem::SortName] = 1;
        hr = ListEntries(pNode, folderPath, state);
        pNode->SortChildrenByName();
        // A failing FindClose ends the walk, but the walk's result stays what it was.
        if (m_pFileSystem->FindClose() < 0) {
            break;
        }
    }
    if (m_bStop != 0) {
        hr = qmz::kStopped;
    }
    if (hr == qmz::kFindFolderEmpty || hr == qmz::kFindNoMoreEntries) {
        hr = qmz::kOk;
    }
    return hr;
}

// Adds the entries of a listing that FindFirst has begun. A failure or a stop only ends this
// folder; the code that ended it is returned, kFindNoMoreEntries when all went well.
qmz::Result CImageReader::ListEntries(COvDataItem* pNode, const QString& folderPath,
                                      WalkState& state) {
    // One buffer for every child's path text: "\" + folder path + "\" + name.
    QString text = u'\\' + folderPath;
    if (!folderPath.isEmpty()) {
        text += u'\\';
    }
    const qsizetype nPrefix = text.size();
    qmz::Result hr = qmz::kOk;
    while (hr >= 0) {
        if (m_bStop != 0) {
            return qmz::kStopped;
        }
        text.truncate(nPrefix);
        text.append(NameOf(state.attr));
        const bool bFolder = (state.attr.uAttributes & qmz::kAttrDirectory) != 0;
        COvDataItem* pChild =
            pNode->AddChild(text, bFolder ? COvDataItem::KindFolder : COvDataItem::KindFile,
                            static_cast<uint32_t>(state.attr.ullSize),
                            static_cast<uint32_t>(state.attr.ullSize >> 32));
        if (pChild == nullptr) {
            return qmz::kUnexpected;
        }
        pChild->m_ftTime = FileTimeOf(filetime::LocalToUtc(TicksOf(state.attr.ftLocalTime)));
        if (bFolder) {
            state.nodes.push_back(pChild);
            state.paths.push_back(text.mid(1));
        }
        ++state.nDone;
        const float fPercent = kWalkPercentStart + static_cast<float>(state.nDone) *
                                                       kWalkPercentSpan /
                                                       static_cast<float>(m_nEntryCount);
        m_nOpenPercent = static_cast<int32_t>(std::min(static_cast<float>(kPercentMax), fPercent));
        hr = m_pFileSystem->FindNext(&state.attr);
        PumpPaced(state);
    }
    return hr;
}

qmz::Result CImageReader::ReopenImage() {
    if (m_szImagePath.isEmpty() || !QFileInfo::exists(m_szImagePath)) {
        return qmz::kUnexpected;
    }
    m_bOpening = 1;
    CloseImage();
    const qmz::Result hr = OpenEngineObjects(m_szImagePath, kReopenScanLimit);
    if (hr < 0) {
        CloseImage();
    }
    m_bOpening = 0;
    return hr;
}

void CImageReader::CloseImage() {
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
