#include "Reader.h"

#include <chrono>
#include <cstring>

#include "Drive.h"
#include "IsoScanner.h"
#include "UdfScanner.h"

namespace qmz {

namespace {

// Wait's state: the scan runs, or it has ended.
constexpr uint32_t kStateRunning = 1;
constexpr uint32_t kStateEnded = 0;

} // namespace

Reader::~Reader() {
    StopScan();
    if (drive_ != nullptr) {
        drive_->Release();
    }
}

Result Reader::QueryInterface(const Guid& iid, void** ppv) {
    if (ppv == nullptr) {
        return kEngineBadParameter;
    }
    *ppv = nullptr;
    if (iid == kIidUnknown || iid == kIidQmzReader) {
        *ppv = static_cast<IQmzReader*>(this);
    } else if (iid == kIidQmzFileSystem) {
        *ppv = static_cast<IQmzFileSystem*>(this);
    } else {
        return kNoInterface;
    }
    AddRef();
    return kOk;
}

uint32_t Reader::Release() {
    uint32_t left = refs_.Drop();
    if (left == 0) {
        delete this;
    }
    return left;
}

Result Reader::Attach(IQmzDrive* pDrive) {
    if (pDrive == nullptr) {
        return kEngineBadParameter;
    }
    if (drive_ != nullptr) {
        return kUnexpected;
    }
    void* object = nullptr;
    if (pDrive->QueryInterface(kIidQmzDriveObject, &object) != kOk) {
        return kEngineBadParameter;
    }
    drive_ = static_cast<Drive*>(object);
    return kOk;
}

Result Reader::LoadUdf() {
    auto udf = std::make_unique<UdfVolume>(drive_->Sectors());
    Result r = udf->Open();
    if (r == kOk) {
        // A bridge disc's ISO 9660 tree often holds little or nothing; its UDF tree is whole.
        fileSystem_ = IsoVolume::Probe(drive_->Sectors()) ? kFsUdfBridge : kFsUdf;
        std::memcpy(volumeId_, udf->VolumeId(), sizeof(volumeId_));
        udf_ = std::move(udf);
    }
    return r;
}

Result Reader::LoadIso() {
    auto tree = std::make_unique<IsoTree>();
    Result r = IsoVolume::Open(drive_->Sectors(), tree.get());
    if (r == kOk) {
        fileSystem_ = static_cast<uint32_t>(tree->kind);
        std::memcpy(volumeId_, tree->volumeId, sizeof(volumeId_));
        tree_ = std::move(tree);
    }
    return r;
}

Result Reader::Load() {
    if (drive_ == nullptr || tree_ != nullptr || udf_ != nullptr) {
        return kUnexpected;
    }
    return ComSupport::Guarded([&] { return LoadUdf() == kOk ? kOk : LoadIso(); });
}

Result Reader::Start(uint32_t operation, uint32_t, uint32_t) {
    if (operation != kScanOperation) {
        return kEngineBadParameter;
    }
    if ((tree_ == nullptr && udf_ == nullptr) || index_ != nullptr) {
        return kUnexpected;
    }
    Result r = ComSupport::Guarded([&] {
        index_ = std::make_unique<VolumeIndex>();
        if (udf_ != nullptr) {
            scanner_ = std::make_unique<UdfScanner>(*udf_, cancel_);
        } else {
            scanner_ = std::make_unique<IsoScanner>(drive_->Sectors(), *tree_, cancel_);
        }
        browser_ = std::make_unique<VolumeBrowser>(*index_, drive_->Sectors());
        cancel_ = false;
        scanEnded_ = false;
        thread_ = std::thread(&Reader::RunScan, this);
        return kOk;
    });
    if (r != kOk) {
        browser_.reset();
        scanner_.reset();
        index_.reset();
    }
    return r;
}

void Reader::RunScan() {
    Result r = ComSupport::Guarded([&] {
        Result scanned = scanner_->Run(*index_);
        if (scanned == kOk) {
            index_->CompactExtents();
        }
        drive_->DropViews();
        return scanned;
    });
    std::lock_guard<std::mutex> lock(mutex_);
    scanResult_ = r;
    scanEnded_ = true;
    ready_.store(r == kOk, std::memory_order_release);
    ended_.notify_all();
}

Result Reader::Cancel() {
    cancel_ = true;
    return kOk;
}

Result Reader::Wait(uint32_t timeoutMs, uint32_t* pState, float* pProgress) {
    if (scanner_ == nullptr) {
        return kUnexpected;
    }
    std::unique_lock<std::mutex> lock(mutex_);
    bool ended =
        ended_.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return scanEnded_; });
    if (pState != nullptr) {
        *pState = ended ? kStateEnded : kStateRunning;
    }
    if (pProgress != nullptr) {
        *pProgress = ended ? 1.0f : scanner_->Progress();
    }
    return ended ? kOk : kWaitStillRunning;
}

Result Reader::Finish() {
    if (scanner_ == nullptr) {
        return kUnexpected;
    }
    if (thread_.joinable()) {
        thread_.join();
    }
    // A cancelled scan counts as stopped even when it ended before it saw the request: its
    // caller has given up on it, and the answer must not depend on who won the race.
    if (cancel_ && scanResult_ == kOk) {
        scanResult_ = kStopped;
        ready_.store(false, std::memory_order_release);
    }
    return scanResult_;
}

void Reader::StopScan() {
    if (thread_.joinable()) {
        cancel_ = true;
        thread_.join();
    }
}

Result Reader::Unload() {
    StopScan();
    ready_ = false;
    browser_.reset();
    scanner_.reset();
    index_.reset();
    tree_.reset();
    udf_.reset();
    fileSystem_ = kFsUnknown;
    return kOk;
}

Result Reader::Detach() {
    Unload();
    if (drive_ == nullptr) {
        return kUnexpected;
    }
    drive_->Release();
    drive_ = nullptr;
    return kOk;
}

Result Reader::GetFsInfo(fsInfo* pInfo) {
    if (!Ready()) {
        return kUnexpected;
    }
    if (pInfo == nullptr) {
        return kEngineBadParameter;
    }
    std::memset(pInfo, 0, sizeof(*pInfo));
    // The first field tells which tree was read: a FileSystemKind.
    pInfo->uFileSystem = fileSystem_;
    pInfo->uCount1 = index_->FolderCount();
    pInfo->uCount2 = index_->FileCount();
    std::memcpy(pInfo->strVolID, volumeId_, sizeof(pInfo->strVolID));
    return kOk;
}

Result Reader::FindFirst(const char16_t* folderPath, file_attr* pAttr) {
    return Ready() ? browser_->FindFirst(folderPath, pAttr) : kUnexpected;
}

Result Reader::FindNext(file_attr* pAttr) {
    return Ready() ? browser_->FindNext(pAttr) : kUnexpected;
}

Result Reader::FindClose() {
    return Ready() ? browser_->FindClose() : kUnexpected;
}

Result Reader::OpenFile(const char16_t* filePath, uint64_t* pSize) {
    return Ready() ? browser_->OpenFile(filePath, pSize) : kUnexpected;
}

Result Reader::ReadFile(void* pBuffer, uint32_t length, uint32_t* pRead, uint32_t) {
    return Ready() ? browser_->ReadFile(pBuffer, length, pRead) : kUnexpected;
}

Result Reader::CloseFile() {
    return Ready() ? browser_->CloseFile() : kUnexpected;
}

} // namespace qmz
