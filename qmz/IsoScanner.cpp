#include "IsoScanner.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "IsoDate.h"

namespace qmz {

namespace {

// Deeper folders are listed but not walked.
// How often the walk of a large folder looks at the cancel flag.
constexpr uint32_t kRecordsPerCancelCheck = 256;
// The path table only feeds the progress estimate; a larger count claimed is not believed.
constexpr uint32_t kMaxPathTableRecords = 1u << 20;
constexpr uint32_t kPathTableRecordHeader = 8;
// Names may take as many UTF-16 units as the image has bytes, and at least this many.
constexpr uint64_t kMinNameBudgetUnits = 1u << 20;
// Shown while the walk runs, so that 1.0 means finished.

bool IsRelocationFolderName(const EntryName& name) {
    std::u16string_view n(name.Data(), name.Length());
    return n == u"rr_moved" || n == u".rr_moved";
}

} // namespace

IsoScanner::IsoScanner(SectorSource& source, const IsoTree& tree, const std::atomic<bool>& cancel)
    : VolumeScanner(cancel), source_(source), tree_(tree),
      rockRidge_(tree.kind == TreeKind::kRockRidge), parser_(source) {
    attributes_.Reset();
    probeAttributes_.Reset();
}

bool IsoScanner::MarkVisited(uint64_t lba) {
    if (lba >= source_.SectorCount()) {
        return false;
    }
    uint64_t bit = uint64_t{1} << (lba % 64);
    uint64_t& word = visited_[lba / 64];
    if ((word & bit) != 0) {
        return false;
    }
    word |= bit;
    return true;
}

uint32_t IsoScanner::CountPathTableRecords() {
    uint32_t count = 0;
    uint64_t viewedLba = UINT64_MAX;
    const uint8_t* sector = nullptr;
    for (uint64_t pos = 0; pos + kPathTableRecordHeader <= tree_.pathTableBytes;) {
        uint64_t lba = tree_.pathTableLba + pos / kSectorSize;
        if (lba != viewedLba) {
            if (source_.ViewSector(lba, probeScratch_, &sector) != kOk) {
                break;
            }
            viewedLba = lba;
        }
        uint8_t idLength = sector[pos % kSectorSize];
        if (idLength == 0 || ++count == kMaxPathTableRecords) {
            break;
        }
        pos += kPathTableRecordHeader + idLength + (idLength & 1);
    }
    return count;
}

template <class Visit>
Result IsoScanner::ForEachRecord(const Extent& extent, SectorBuffer& scratch, Visit&& visit) {
    uint64_t sectors = (extent.length + kSectorSize - 1) / kSectorSize;
    for (uint64_t s = 0; s < sectors; ++s) {
        const uint8_t* p = nullptr;
        if (source_.ViewSector(extent.lba + s, scratch, &p) != kOk) {
            damaged_ = true;
            return s == 0 ? kEngineReadFailed : kOk;
        }
        auto limit =
            static_cast<uint32_t>(std::min<uint64_t>(kSectorSize, extent.length - s * kSectorSize));
        // A zero length byte ends the records of this sector; records never cross sectors.
        for (uint32_t pos = 0; pos < limit && p[pos] != 0;) {
            DirectoryRecord record;
            if (!record.Parse(p + pos, limit - pos)) {
                damaged_ = true;
                break;
            }
            if (!visit(record)) {
                return kOk;
            }
            pos += record.Length();
            if (++records_ % kRecordsPerCancelCheck == 0 &&
                cancel_.load(std::memory_order_relaxed)) {
                return kStopped;
            }
        }
    }
    return kOk;
}

Result IsoScanner::Run(VolumeIndex& index) {
    index.AddRoot(tree_.root, tree_.rootTime, tree_.rootTimeValid);
    visited_.assign((source_.SectorCount() + 63) / 64, 0);
    nameBudget_ = std::max(kMinNameBudgetUnits, source_.SectorCount() * kSectorSize);
    foldersKnown_.store(std::max<uint32_t>(1, CountPathTableRecords()));

    return WalkFolders(index);
}

Result IsoScanner::ScanFolder(VolumeIndex& index, uint32_t folder) {
    const bool isRoot = folder == VolumeIndex::kRoot;
    Extent extent = index.ExtentAt(index.Entry(folder).firstExtent);
    Result r = kOk;
    if (extent.length > 0 && MarkVisited(extent.lba)) {
        multi_.open = false;
        r = ForEachRecord(extent, folderScratch_, [&](const DirectoryRecord& record) {
            AddRecord(index, record, isRoot);
            return !full_;
        });
    } else if (extent.length > 0) {
        damaged_ = true; // a loop, or a folder outside the image
        r = isRoot ? kEngineReadFailed : kOk;
    }
    index.CommitChildren(folder);
    return r;
}

void IsoScanner::AddRecord(VolumeIndex& index, const DirectoryRecord& record, bool inRoot) {
    if (record.IsSelfOrParent() || (record.Flags() & kRecordAssociated) != 0) {
        return;
    }
    if (rockRidge_) {
        uint32_t skip = tree_.suspSkipBytes;
        uint32_t length = record.SystemUseLength();
        if (length > skip) {
            parser_.Parse(record.SystemUse() + skip, length - skip, &attributes_);
        } else {
            attributes_.Reset();
        }
        if (attributes_.relocated) {
            return; // shown where its CL placeholder stands
        }
    }
    if (multi_.open && ContinueMultiExtent(index, record)) {
        return;
    }
    bool childLink = rockRidge_ && attributes_.hasChildLink;
    bool isDirectory = record.IsDirectory() || childLink;
    BuildName(record, isDirectory);
    if (index.NameUnits() + name_.Length() > nameBudget_) {
        full_ = damaged_ = true;
        return;
    }

    IndexEntry entry{};
    bool timeValid = rockRidge_ && attributes_.hasTime;
    int64_t mtime = attributes_.mtime;
    if (!timeValid) {
        timeValid = IsoDate::DecodeShort(record.RecordingDate(), &mtime);
    }
    entry.flags = static_cast<uint16_t>((isDirectory ? kEntryDirectory : 0) |
                                        ((record.Flags() & kRecordHidden) != 0 ? kEntryHidden : 0) |
                                        (timeValid ? kEntryTimeValid : 0));
    if (isDirectory) {
        Extent extent =
            childLink ? RelocatedExtent(attributes_.childLinkLba) : FolderExtent(record);
        if (inRoot && rockRidge_ && IsRelocationFolderName(name_) &&
            IsEmptyRelocationFolder(extent)) {
            return; // the folder that only holds relocated folders is not part of the tree
        }
        entry.firstExtent = index.AppendExtent(extent);
        entry.extentCount = 1;
    } else if (!(rockRidge_ && attributes_.IsSymlink())) {
        entry.SetSize(record.DataLength());
        if (record.DataLength() > 0) {
            entry.firstExtent = index.AppendExtent(FolderExtent(record));
            entry.extentCount = 1;
        }
        if (rockRidge_ && attributes_.zisofs) {
            entry.SetSize(attributes_.zisofsSize);
            entry.flags |= kEntryZisofs;
        }
        multi_.open = (record.Flags() & kRecordMultiExtent) != 0;
        if (multi_.open) {
            multi_.idLength = record.IdentifierLength();
            std::memcpy(multi_.id, record.Identifier(), multi_.idLength);
        }
    }
    index.AppendName(name_.Data(), name_.Length(), &entry);
    index.AddPending(entry, mtime);
}

bool IsoScanner::ContinueMultiExtent(VolumeIndex& index, const DirectoryRecord& record) {
    // ECMA-119 6.5.1: the records of one multi-extent file follow each other with the same
    // identifier; all but the last carry the multi-extent flag.
    multi_.open = false;
    if (record.IdentifierLength() != multi_.idLength ||
        std::memcmp(record.Identifier(), multi_.id, multi_.idLength) != 0 || record.IsDirectory()) {
        damaged_ = true;
        return false;
    }
    IndexEntry& file = index.LastPending();
    if (record.DataLength() > 0) {
        uint32_t extent = index.AppendExtent(FolderExtent(record));
        if (file.extentCount == 0) {
            file.firstExtent = extent;
        }
        ++file.extentCount;
        if ((file.flags & kEntryZisofs) == 0) { // ZF's size already counts every extent
            file.SetSize(file.Size() + record.DataLength());
        }
    }
    multi_.open = (record.Flags() & kRecordMultiExtent) != 0;
    return true;
}

void IsoScanner::BuildName(const DirectoryRecord& record, bool isDirectory) {
    name_.Clear();
    if (rockRidge_ && attributes_.hasName) {
        name_.AppendUtf8OrLatin1(attributes_.name, attributes_.nameLength);
    } else {
        if (tree_.kind == TreeKind::kJoliet) {
            name_.AppendUtf16Be(record.Identifier(), record.IdentifierLength());
        } else if (tree_.kind == TreeKind::kIso9660_1999) {
            // ISO 9660:1999 names are any bytes, in practice the writer's UTF-8, and carry no
            // version: a ";1" or a trailing '.' is part of the name.
            name_.AppendUtf8OrLatin1(record.Identifier(), record.IdentifierLength());
        } else {
            name_.AppendLatin1(record.Identifier(), record.IdentifierLength());
        }
        if (!isDirectory && tree_.kind != TreeKind::kIso9660_1999) {
            name_.StripFileVersion();
        }
    }
    name_.MakePlain();
}

Extent IsoScanner::FolderExtent(const DirectoryRecord& record) {
    // Data follows the record's extended attribute sectors, if any.
    return {uint64_t{record.ExtentLba()} + record.ExtendedAttributeSectors(), record.DataLength()};
}

Extent IsoScanner::RelocatedExtent(uint32_t lba) {
    // RRIP 4.1.5.1: CL gives the sector of the moved folder; its "." record tells its size.
    const uint8_t* sector = nullptr;
    DirectoryRecord dot;
    if (source_.ViewSector(lba, probeScratch_, &sector) != kOk || !dot.Parse(sector, kSectorSize) ||
        !dot.IsSelfOrParent() || dot.Identifier()[0] != 0) {
        damaged_ = true;
        return {0, 0};
    }
    return {lba, dot.DataLength()};
}

bool IsoScanner::IsEmptyRelocationFolder(const Extent& extent) {
    bool onlyRelocated = true;
    Result r = ForEachRecord(extent, probeScratch_, [&](const DirectoryRecord& record) {
        if (record.IsSelfOrParent()) {
            return true;
        }
        uint32_t skip = tree_.suspSkipBytes;
        probeAttributes_.Reset();
        if (record.SystemUseLength() > skip) {
            parser_.Parse(record.SystemUse() + skip, record.SystemUseLength() - skip,
                          &probeAttributes_);
        }
        onlyRelocated = probeAttributes_.relocated;
        return onlyRelocated;
    });
    return r == kOk && onlyRelocated;
}

} // namespace qmz
