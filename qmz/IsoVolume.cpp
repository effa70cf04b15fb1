#include "IsoVolume.h"
#include "ByteOrder.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "DirectoryRecord.h"
#include "EntryName.h"
#include "IsoDate.h"
#include "RockRidgeParser.h"

namespace qmz {

namespace {

constexpr uint64_t kFirstDescriptorLba = 16;
// The set ends with a terminator; a set without one is cut after this many descriptors.
constexpr uint64_t kMaxDescriptors = 64;
constexpr uint8_t kTypePrimary = 1;
constexpr uint8_t kTypeSupplementary = 2;
constexpr uint8_t kTypeTerminator = 255;
constexpr uint32_t kVolumeIdOffset = 40;
constexpr uint32_t kVolumeIdBytes = 32;
constexpr uint32_t kPathTableSizeOffset = 132;
constexpr uint32_t kPathTableLOffset = 140;
constexpr uint32_t kRootRecordOffset = 156;
constexpr uint32_t kRootRecordBytes = 34;
constexpr uint32_t kEscapeOffset = 88;
constexpr uint32_t kVersionOffset = 6;
constexpr uint32_t kFileStructureVersionOffset = 881;
// ISO 9660:1999: the enhanced volume descriptor is a supplementary descriptor of version 2
// whose file structure version is 2.
constexpr uint8_t kEnhancedVersion = 2;

bool HasStandardId(const uint8_t* d) {
    return std::memcmp(d + 1, "CD001", 5) == 0;
}

} // namespace

bool IsoVolume::Probe(SectorSource& source) {
    SectorBuffer scratch;
    const uint8_t* d = nullptr;
    return source.ViewSector(kFirstDescriptorLba, scratch, &d) == kOk && HasStandardId(d);
}

bool IsoVolume::IsJoliet(const uint8_t* d) {
    // Joliet: escape sequences %/@, %/C or %/E (UCS-2 levels 1 to 3), flag bit 0 clear.
    const uint8_t* esc = d + kEscapeOffset;
    return (d[7] & 1) == 0 && esc[0] == '%' && esc[1] == '/' &&
           (esc[2] == '@' || esc[2] == 'C' || esc[2] == 'E');
}

bool IsoVolume::IsEnhanced(const uint8_t* d) {
    return d[kVersionOffset] == kEnhancedVersion &&
           d[kFileStructureVersionOffset] == kEnhancedVersion;
}

Result IsoVolume::ReadDescriptors(SectorSource& source, SectorBuffer (&buffers)[3],
                                  Descriptors* found) {
    *found = {};
    SectorBuffer scratch;
    for (uint64_t i = 0; i < kMaxDescriptors; ++i) {
        const uint8_t* d = nullptr;
        if (source.ViewSector(kFirstDescriptorLba + i, scratch, &d) != kOk || !HasStandardId(d)) {
            break;
        }
        if (d[0] == kTypeTerminator) {
            break;
        }
        const uint8_t** slot = nullptr;
        SectorBuffer* keep = nullptr;
        if (d[0] == kTypePrimary && found->primary == nullptr) {
            slot = &found->primary;
            keep = &buffers[0];
        } else if (d[0] == kTypeSupplementary && found->enhanced == nullptr && IsEnhanced(d)) {
            slot = &found->enhanced;
            keep = &buffers[2];
        } else if (d[0] == kTypeSupplementary && found->joliet == nullptr && IsJoliet(d)) {
            slot = &found->joliet;
            keep = &buffers[1];
        }
        if (slot != nullptr) {
            std::memcpy(keep->bytes, d, kSectorSize);
            *slot = keep->bytes;
        }
    }
    bool any = found->primary != nullptr || found->joliet != nullptr || found->enhanced != nullptr;
    return any ? kOk : kEngineBadImage;
}

Result IsoVolume::DescribeTree(const uint8_t* d, TreeKind kind, IsoTree* tree) {
    DirectoryRecord root;
    if (!root.Parse(d + kRootRecordOffset, kRootRecordBytes) || !root.IsDirectory()) {
        return kEngineBadImage;
    }
    tree->kind = kind;
    tree->root = {uint64_t{root.ExtentLba()} + root.ExtendedAttributeSectors(), root.DataLength()};
    tree->rootTimeValid = IsoDate::DecodeShort(root.RecordingDate(), &tree->rootTime);
    tree->pathTableBytes = Le32(d + kPathTableSizeOffset);
    tree->pathTableLba = Le32(d + kPathTableLOffset);
    tree->suspSkipBytes = 0;

    EntryName id;
    id.Clear();
    if (kind == TreeKind::kJoliet) {
        id.AppendUtf16Be(d + kVolumeIdOffset, kVolumeIdBytes);
    } else {
        id.AppendLatin1(d + kVolumeIdOffset, kVolumeIdBytes);
    }
    uint32_t n = std::min<uint32_t>(id.Length(), kVolIdChars - 1);
    std::memcpy(tree->volumeId, id.Data(), n * sizeof(char16_t));
    tree->volumeId[n] = 0;
    return kOk;
}

void IsoVolume::DetectRockRidge(SectorSource& source, IsoTree* tree) {
    // RRIP marks the primary tree by an SP entry at the start of the root's "." record, and by
    // an ER entry naming RRIP or by RRIP entries there.
    SectorBuffer scratch;
    const uint8_t* sector = nullptr;
    DirectoryRecord dot;
    if (source.ViewSector(tree->root.lba, scratch, &sector) != kOk ||
        !dot.Parse(sector, kSectorSize) || !dot.IsSelfOrParent()) {
        return;
    }
    auto attributes = std::make_unique<RockRidgeAttributes>();
    auto parser = std::make_unique<RockRidgeParser>(source);
    parser->Parse(dot.SystemUse(), dot.SystemUseLength(), attributes.get());
    if (attributes->hasSharingProtocol && attributes->rockRidge) {
        tree->kind = TreeKind::kRockRidge;
        tree->suspSkipBytes = attributes->skipBytes;
    }
}

Result IsoVolume::Open(SectorSource& source, IsoTree* tree) {
    SectorBuffer buffers[3];
    Descriptors found{};
    Result r = ReadDescriptors(source, buffers, &found);
    if (r != kOk) {
        return r;
    }
    if (found.primary != nullptr && DescribeTree(found.primary, TreeKind::kIso9660, tree) == kOk) {
        DetectRockRidge(source, tree);
        if (tree->kind == TreeKind::kRockRidge) {
            return kOk;
        }
    }
    if (found.joliet != nullptr && DescribeTree(found.joliet, TreeKind::kJoliet, tree) == kOk) {
        return kOk;
    }
    if (found.enhanced != nullptr &&
        DescribeTree(found.enhanced, TreeKind::kIso9660_1999, tree) == kOk) {
        return kOk;
    }
    return found.primary != nullptr ? DescribeTree(found.primary, TreeKind::kIso9660, tree)
                                    : kEngineBadImage;
}

} // namespace qmz
