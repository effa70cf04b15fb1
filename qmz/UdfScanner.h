// Walks the directory tree of a UdfVolume breadth first into a VolumeIndex: file identifier
// descriptors, their file entries, and each file's extents resolved to the image's sectors so
// that the browser reads them like any other file's.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "EntryName.h"
#include "SectorSource.h"
#include "UdfAllocation.h"
#include "UdfFileEntry.h"
#include "UdfVolume.h"
#include "VolumeIndex.h"
#include "VolumeScanner.h"

namespace qmz {

class UdfScanner final : public VolumeScanner {
public:
    UdfScanner(UdfVolume& volume, const std::atomic<bool>& cancel);

    Result Run(VolumeIndex& index) override;

private:
    // A file entry read from the image; `block` views its block until the next read.
    struct Icb {
        UdfFileEntry entry;
        const uint8_t* block;
        uint64_t physical;
    };

    bool ReadIcb(UdfAddress where, Icb* icb);
    Result ScanFolder(VolumeIndex& index, uint32_t folder) override;
    Result ReadIdentifiers(VolumeIndex& index);
    void AddChild(VolumeIndex& index, const uint8_t* fid);
    void AddFileExtents(VolumeIndex& index, const Icb& file, UdfAddress where, IndexEntry* entry);
    uint64_t AddRecorded(VolumeIndex& index, UdfAddress at, uint64_t bytes, IndexEntry* entry);
    void AddExtent(VolumeIndex& index, const Extent& extent, IndexEntry* entry);
    bool MarkVisited(uint64_t physical);
    // A folder's one extent in the index names its ICB, which ScanFolder reads again.
    static Extent FolderHandle(UdfAddress where);
    static UdfAddress HandleAddress(const Extent& handle);

    UdfVolume& volume_;
    SectorSource& source_;
    UdfAllocation allocation_;
    EntryName name_;
    UdfBlockBuffer scratch_;
    std::vector<uint8_t> directory_;
    std::vector<UdfExtent> extents_;
    std::vector<uint64_t> visited_; // one bit per block: folder ICBs already taken
    uint64_t nameBudget_ = 0;
    uint64_t extentBudget_ = 0;
    uint64_t entryBudget_ = 0;
    uint32_t records_ = 0;
};

} // namespace qmz
