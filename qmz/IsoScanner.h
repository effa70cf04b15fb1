// Walks the chosen ECMA-119 tree breadth first into a VolumeIndex: plain names, Joliet names
// or Rock Ridge attributes, multi-extent files, and Rock Ridge directory relocation undone.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "DirectoryRecord.h"
#include "EntryName.h"
#include "IsoVolume.h"
#include "RockRidgeParser.h"
#include "SectorSource.h"
#include "VolumeIndex.h"
#include "VolumeScanner.h"

namespace qmz {

class IsoScanner final : public VolumeScanner {
public:
    IsoScanner(SectorSource& source, const IsoTree& tree, const std::atomic<bool>& cancel);

    Result Run(VolumeIndex& index) override;

private:
    struct MultiExtent {
        bool open;
        uint8_t idLength;
        uint8_t id[255];
    };

    template <class Visit>
    Result ForEachRecord(const Extent& extent, SectorBuffer& scratch, Visit&& visit);
    Result ScanFolder(VolumeIndex& index, uint32_t folder) override;
    void AddRecord(VolumeIndex& index, const DirectoryRecord& record, bool inRoot);
    bool ContinueMultiExtent(VolumeIndex& index, const DirectoryRecord& record);
    void BuildName(const DirectoryRecord& record, bool isDirectory);
    Extent FolderExtent(const DirectoryRecord& record);
    Extent RelocatedExtent(uint32_t lba);
    bool IsEmptyRelocationFolder(const Extent& extent);
    bool MarkVisited(uint64_t lba);
    uint32_t CountPathTableRecords();

    SectorSource& source_;
    const IsoTree& tree_;
    bool rockRidge_;
    RockRidgeParser parser_;
    RockRidgeAttributes attributes_;
    RockRidgeAttributes probeAttributes_;
    EntryName name_;
    MultiExtent multi_{};
    SectorBuffer folderScratch_;
    SectorBuffer probeScratch_;
    std::vector<uint64_t> visited_; // one bit per sector: directory extents already walked
    uint64_t nameBudget_ = 0;
    uint32_t records_ = 0;
};

} // namespace qmz
