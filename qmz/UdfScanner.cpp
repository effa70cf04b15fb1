#include "UdfScanner.h"
#include "ByteOrder.h"

#include <algorithm>

#include "UdfTag.h"

namespace qmz {

namespace {

// Deeper folders are listed but not walked, as on ISO 9660 volumes.
constexpr uint32_t kRecordsPerCancelCheck = 256;
// The index may hold as many name units as the image has bytes, as many extents as 64 per
// sector and as many entries as the image has room for identifier descriptors, and at least
// these many of each: enough for any real disc, and a bound for a hostile one.
constexpr uint64_t kMinNameBudgetUnits = 1u << 20;
constexpr uint64_t kMinExtentBudget = 1u << 20;
constexpr uint64_t kExtentsPerSector = 64;
constexpr uint64_t kMinEntryBudget = 1u << 20;

// ECMA-167 4/14.4: file identifier descriptor.
constexpr uint32_t kFidFixedPart = 38;
constexpr uint32_t kFidCharacteristicsOffset = 18;
constexpr uint32_t kFidNameLengthOffset = 19;
constexpr uint32_t kFidIcbOffset = 20;
constexpr uint32_t kFidUseLengthOffset = 36;
constexpr uint8_t kFidHidden = 1;
constexpr uint8_t kFidDirectory = 2;
constexpr uint8_t kFidDeleted = 4;
constexpr uint8_t kFidParent = 8;
constexpr uint32_t kLengthMask = 0x3FFFFFFF;

} // namespace

UdfScanner::UdfScanner(UdfVolume& volume, const std::atomic<bool>& cancel)
    : VolumeScanner(cancel), volume_(volume), source_(volume.Source()), allocation_(volume) {}

Extent UdfScanner::FolderHandle(UdfAddress where) {
    return {uint64_t{where.partition} << 32 | where.block, 0};
}

UdfAddress UdfScanner::HandleAddress(const Extent& handle) {
    return {static_cast<uint32_t>(handle.lba), static_cast<uint16_t>(handle.lba >> 32)};
}

bool UdfScanner::MarkVisited(uint64_t physical) {
    uint64_t bit = uint64_t{1} << (physical % 64);
    uint64_t& word = visited_[physical / 64];
    if ((word & bit) != 0) {
        return false;
    }
    word |= bit;
    return true;
}

bool UdfScanner::ReadIcb(UdfAddress where, Icb* icb) {
    return volume_.ViewBlock(where, scratch_, &icb->block, &icb->physical) == kOk &&
           icb->entry.Parse(icb->block, volume_.BlockSize(), where.block);
}

Result UdfScanner::Run(VolumeIndex& index) {
    uint64_t sectors = source_.SectorCount();
    visited_.assign((volume_.BlockCount() + 63) / 64, 0);
    nameBudget_ = std::max(kMinNameBudgetUnits, sectors * kSectorSize);
    extentBudget_ = std::max(kMinExtentBudget, sectors * kExtentsPerSector);
    entryBudget_ = std::max(kMinEntryBudget, sectors * kSectorSize / kFidFixedPart);

    Icb root{};
    if (!ReadIcb(volume_.RootIcb(), &root) || root.entry.FileType() != kUdfTypeDirectory) {
        return kEngineDiscCorrupt;
    }
    MarkVisited(root.physical);
    index.AddRoot(FolderHandle(volume_.RootIcb()), root.entry.ModificationTime(),
                  root.entry.TimeValid());

    return WalkFolders(index);
}

Result UdfScanner::ScanFolder(VolumeIndex& index, uint32_t folder) {
    const IndexEntry& e = index.Entry(folder);
    Result r = kOk;
    if (e.extentCount == 1) {
        UdfAddress where = HandleAddress(index.ExtentAt(e.firstExtent));
        Icb icb{};
        uint64_t limit = source_.SectorCount() * kSectorSize;
        if (!ReadIcb(where, &icb) || icb.entry.FileType() != kUdfTypeDirectory) {
            damaged_ = true;
            r = kEngineReadFailed;
        } else {
            // What could be read of a damaged folder is still listed.
            bool read = volume_.ReadData(icb.entry, icb.block, where, limit, &directory_) == kOk;
            damaged_ = damaged_ || !read || icb.entry.InformationLength() > limit;
            r = ReadIdentifiers(index);
        }
    }
    index.CommitChildren(folder);
    return r;
}

Result UdfScanner::ReadIdentifiers(VolumeIndex& index) {
    const uint8_t* d = directory_.data();
    size_t size = directory_.size();
    for (size_t pos = 0; pos + kFidFixedPart <= size && !full_;) {
        const uint8_t* fid = d + pos;
        size_t used = kFidFixedPart + Le16(fid + kFidUseLengthOffset) + fid[kFidNameLengthOffset];
        if (used > size - pos ||
            !UdfTag::Check(fid, size - pos, kTagFileIdentifier, UdfTag::kAnyLocation)) {
            damaged_ = true;
            break;
        }
        AddChild(index, fid);
        pos += (used + 3) & ~size_t{3}; // 4/14.4.10: padded to four bytes
        if (++records_ % kRecordsPerCancelCheck == 0 && cancel_.load(std::memory_order_relaxed)) {
            return kStopped;
        }
    }
    return kOk;
}

void UdfScanner::AddChild(VolumeIndex& index, const uint8_t* fid) {
    uint8_t characteristics = fid[kFidCharacteristicsOffset];
    UdfAddress where{Le32(fid + kFidIcbOffset + 4), Le16(fid + kFidIcbOffset + 8)};
    if ((characteristics & (kFidDeleted | kFidParent)) != 0 ||
        (Le32(fid + kFidIcbOffset) & kLengthMask) == 0) {
        return;
    }
    Icb child{};
    if (!ReadIcb(where, &child)) {
        damaged_ = true;
        return;
    }
    name_.Clear();
    name_.AppendOstaCompressed(fid + kFidFixedPart + Le16(fid + kFidUseLengthOffset),
                               fid[kFidNameLengthOffset]);
    name_.MakePlain();
    if (index.NameUnits() + name_.Length() > nameBudget_ || index.EntryCount() >= entryBudget_) {
        full_ = damaged_ = true;
        return;
    }
    bool isDirectory = (characteristics & kFidDirectory) != 0;
    IndexEntry entry{};
    entry.flags = static_cast<uint16_t>((isDirectory ? kEntryDirectory : 0) |
                                        ((characteristics & kFidHidden) != 0 ? kEntryHidden : 0) |
                                        (child.entry.TimeValid() ? kEntryTimeValid : 0));
    if (!isDirectory) {
        AddFileExtents(index, child, where, &entry);
    } else if (MarkVisited(child.physical)) {
        AddExtent(index, FolderHandle(where), &entry);
    } else {
        damaged_ = true; // a loop, or a second name for a folder: listed, not walked again
    }
    index.AppendName(name_.Data(), name_.Length(), &entry);
    index.AddPending(entry, child.entry.ModificationTime());
}

void UdfScanner::AddFileExtents(VolumeIndex& index, const Icb& file, UdfAddress where,
                                IndexEntry* entry) {
    uint64_t size = file.entry.InformationLength();
    if (file.entry.AdForm() == UdfAdForm::kEmbedded) {
        entry->SetSize(std::min<uint64_t>(size, file.entry.AdLength()));
        if (entry->Size() > 0) {
            AddExtent(index,
                      volume_.BlockExtent(file.physical, entry->Size(), file.entry.AdOffset()),
                      entry);
        }
        return;
    }
    damaged_ = !allocation_.Collect(file.entry, file.block, where, &extents_) || damaged_;
    uint64_t covered = 0;
    for (const UdfExtent& e : extents_) {
        uint64_t bytes = std::min<uint64_t>(e.length, size - covered);
        if (bytes == 0 || full_) {
            break;
        }
        uint64_t added = bytes;
        if (e.type == kUdfRecorded) {
            added = AddRecorded(index, e.where, bytes, entry);
        } else {
            AddExtent(index, {0, bytes, 0, true}, entry);
        }
        covered += added;
        if (added < bytes) {
            damaged_ = true; // the size shown is what can be read
            break;
        }
    }
    entry->SetSize(covered);
}

uint64_t UdfScanner::AddRecorded(VolumeIndex& index, UdfAddress at, uint64_t bytes,
                                 IndexEntry* entry) {
    uint64_t done = 0;
    while (done < bytes && !full_) {
        uint64_t physical = 0;
        uint32_t run = 0;
        uint32_t blockSize = volume_.BlockSize();
        auto blocks = static_cast<uint32_t>((bytes - done + blockSize - 1) / blockSize);
        if (!volume_.MapBlock(at, blocks, &physical, &run)) {
            break;
        }
        uint64_t piece = std::min<uint64_t>(bytes - done, uint64_t{run} * blockSize);
        AddExtent(index, volume_.BlockExtent(physical, piece), entry);
        done += piece;
        at.block += run;
    }
    return done;
}

void UdfScanner::AddExtent(VolumeIndex& index, const Extent& extent, IndexEntry* entry) {
    if (index.ExtentCount() >= extentBudget_) {
        full_ = damaged_ = true;
        return;
    }
    uint32_t at = index.AppendExtent(extent);
    if (entry->extentCount == 0) {
        entry->firstExtent = at;
    }
    ++entry->extentCount;
}

} // namespace qmz
