// The file-system operations of the contract over a finished VolumeIndex: one folder listing
// and one open file, kept apart so that a file may be read in the middle of a listing.
#pragma once

#include <cstdint>

#include "LocalTimeCache.h"
#include "QmzTypes.h"
#include "SectorSource.h"
#include "VolumeIndex.h"
#include "ZisofsReader.h"

namespace qmz {

class VolumeBrowser {
public:
    VolumeBrowser(const VolumeIndex& index, SectorSource& source)
        : index_(index), source_(source) {}

    Result FindFirst(const char16_t* folderPath, file_attr* attr);
    Result FindNext(file_attr* attr);
    Result FindClose();
    Result OpenFile(const char16_t* filePath, uint64_t* size);
    // Reads on from the current position; short only at the end of the file.
    Result ReadFile(void* buffer, uint32_t length, uint32_t* read);
    Result CloseFile();

private:
    uint32_t Resolve(const char16_t* path) const;
    void Fill(uint32_t entry, file_attr* attr);
    Result ReadExtents(uint8_t* out, uint32_t length, uint32_t* done);

    const VolumeIndex& index_;
    SectorSource& source_;
    LocalTimeCache localTime_;

    bool listing_ = false;
    uint32_t nextChild_ = 0;
    uint32_t endChild_ = 0;

    bool fileOpen_ = false;
    uint32_t file_ = 0;
    uint64_t position_ = 0;
    uint32_t extent_ = 0;       // index among the file's extents
    uint64_t extentOffset_ = 0; // bytes already read from that extent
    ZisofsReader zisofs_;       // used when the open file is zisofs-compressed
};

} // namespace qmz
