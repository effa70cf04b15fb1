// A reader of one drive: reads its volume descriptors on Load (UDF where the image has it, else
// ISO 9660), scans the whole volume into a VolumeIndex on a background thread, then serves the
// file-system operations from the index.
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "ComSupport.h"
#include "IQmzFileSystem.h"
#include "IQmzReader.h"
#include "IsoVolume.h"
#include "UdfVolume.h"
#include "VolumeBrowser.h"
#include "VolumeIndex.h"
#include "VolumeScanner.h"

namespace qmz {

class Drive;

class Reader final : public IQmzReader, public IQmzFileSystem {
public:
    Reader() = default;

    Result QueryInterface(const Guid& iid, void** ppv) override;
    uint32_t AddRef() override { return refs_.Add(); }
    uint32_t Release() override;

    Result Attach(IQmzDrive* pDrive) override;
    Result Load() override;
    Result Start(uint32_t operation, uint32_t arg1, uint32_t arg2) override;
    Result Cancel() override;
    Result Wait(uint32_t timeoutMs, uint32_t* pState, float* pProgress) override;
    Result Finish() override;
    Result Unload() override;
    Result Detach() override;

    Result GetFsInfo(fsInfo* pInfo) override;
    Result FindFirst(const char16_t* folderPath, file_attr* pAttr) override;
    Result FindNext(file_attr* pAttr) override;
    Result FindClose() override;
    Result OpenFile(const char16_t* filePath, uint64_t* pSize) override;
    Result ReadFile(void* pBuffer, uint32_t length, uint32_t* pRead, uint32_t reserved) override;
    Result CloseFile() override;

private:
    ~Reader();

    Result LoadUdf();
    Result LoadIso();
    void RunScan();
    // Asks a running scan to stop and waits for its thread.
    void StopScan();
    bool Ready() const { return ready_.load(std::memory_order_acquire); }

    RefCount refs_;
    Drive* drive_ = nullptr;
    // One of the two, from Load to Unload.
    std::unique_ptr<IsoTree> tree_;
    std::unique_ptr<UdfVolume> udf_;
    uint32_t fileSystem_ = kFsUnknown;
    char16_t volumeId_[kVolIdChars] = {};
    std::unique_ptr<VolumeIndex> index_;
    std::unique_ptr<VolumeScanner> scanner_;
    std::unique_ptr<VolumeBrowser> browser_;

    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool scanEnded_ = false; // guarded by mutex_
    Result scanResult_ = kUnexpected;
    std::atomic<bool> cancel_{false};
    std::atomic<bool> ready_{false};
};

} // namespace qmz
