#include "UdfVolume.h"
#include "ByteOrder.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <memory>

#include "EntryName.h"
#include "UdfTag.h"

namespace qmz {

namespace {

// ECMA-167 3/8.4.2.1: the anchor at 256, N-256 and N-1.
constexpr uint64_t kAnchorLba = 256;
constexpr uint32_t kAnchorMainOffset = 16;
constexpr uint32_t kAnchorReserveOffset = 24;
// A sequence holds a handful of descriptors; ones longer than this, or pointing on more often,
// are cut there.
constexpr uint32_t kMaxSequenceBlocks = 256;
constexpr uint32_t kMaxSequencePointers = 8;
constexpr size_t kMaxPartitions = 16;
constexpr uint32_t kSequenceNumberOffset = 16;
constexpr uint32_t kPointerExtentOffset = 20;

// ECMA-167 3/10.5: partition descriptor.
constexpr uint32_t kPartitionNumberOffset = 22;
constexpr uint32_t kPartitionStartOffset = 188;
constexpr uint32_t kPartitionLengthOffset = 192;

// ECMA-167 3/10.6: logical volume descriptor.
constexpr uint32_t kVolumeIdOffset = 84;
constexpr uint32_t kVolumeIdBytes = 128;
constexpr uint32_t kBlockSizeOffset = 212;
constexpr uint32_t kFileSetAdOffset = 248;
constexpr uint32_t kMapTableLengthOffset = 264;
constexpr uint32_t kMapCountOffset = 268;
constexpr uint32_t kMapsOffset = 440;
constexpr size_t kMaxPartitionMaps = 16;

// ECMA-167 3/10.7 and OSTA UDF 2.60 2.2.8 to 2.2.10: partition maps.
constexpr uint8_t kMapType1 = 1;
constexpr uint8_t kMapType2 = 2;
constexpr uint32_t kType1Length = 6;
constexpr uint32_t kType2Length = 64;
constexpr uint32_t kMapIdOffset = 5;
constexpr uint32_t kType2NumberOffset = 38;
constexpr uint32_t kPacketLengthOffset = 40;
constexpr uint32_t kTableCountOffset = 42;
constexpr uint32_t kTableSizeOffset = 44;
constexpr uint32_t kTableLocationsOffset = 48;
constexpr uint32_t kMaxSparingTables = 4;
constexpr uint32_t kMetadataFileOffset = 40;
constexpr uint32_t kMirrorFileOffset = 44;

// OSTA UDF 2.60 2.2.12: sparing table.
constexpr uint16_t kTagSparingTable = 0;
constexpr uint32_t kSparingCountOffset = 48;
constexpr uint32_t kSparingEntriesOffset = 56;
constexpr uint32_t kSparingEntryBytes = 8;
constexpr uint32_t kSparingAvailable = 0xFFFFFFF0; // this and above: no packet mapped

// OSTA UDF 2.60 2.2.11: the VAT lies in the last written blocks; 1.50 ends it with a
// 36-byte trailer, 2.00 and later begin it with a header.
constexpr uint64_t kVatSearchBlocks = 32;
constexpr uint32_t kVat150TrailerBytes = 36;
constexpr uint32_t kVatHeaderMinimum = 152;
constexpr uint32_t kVatUnused = 0xFFFFFFFF;

// ECMA-167 4/14.1: file set descriptor.
constexpr uint32_t kRootIcbOffset = 400;

constexpr uint32_t kLongAdBlockOffset = 4;
constexpr uint32_t kLongAdPartitionOffset = 8;

bool HasIdentifier(const uint8_t* regid, const char* text) {
    size_t n = std::strlen(text);
    return std::memcmp(regid, text, n) == 0 && (n == 23 || regid[n] == 0);
}

UdfAddress LongAdAddress(const uint8_t* p) {
    return {Le32(p + kLongAdBlockOffset), Le16(p + kLongAdPartitionOffset)};
}

} // namespace

bool UdfVolume::Probe(SectorSource& source) {
    UdfVolume volume(source);
    Anchor anchor{};
    return std::ranges::any_of(kUdfBlockSizes,
                               [&](uint32_t size) { return volume.FindAnchor(size, &anchor); });
}

bool UdfVolume::ReadAnchor(uint64_t lba, Anchor* anchor) {
    UdfBlockBuffer scratch;
    const uint8_t* d = nullptr;
    if (lba >= blockCount_ || lba < kAnchorLba || ViewPhysical(lba, scratch, &d) != kOk ||
        !UdfTag::Check(d, blockSize_, kTagAnchor, static_cast<uint32_t>(lba))) {
        return false;
    }
    *anchor = {Le32(d + kAnchorMainOffset + 4), Le32(d + kAnchorMainOffset),
               Le32(d + kAnchorReserveOffset + 4), Le32(d + kAnchorReserveOffset)};
    return true;
}

bool UdfVolume::FindAnchor(uint32_t blockSize, Anchor* anchor) {
    // ECMA-167 3/8.4.2: at the volume's block size an anchor stands where its tag says it
    // does; the tag's location rules out a block size that merely lands on another's anchor.
    blockSize_ = blockSize;
    blockCount_ = source_.SectorCount() * kSectorSize / blockSize;
    uint64_t n = blockCount_;
    return std::ranges::any_of(std::initializer_list<uint64_t>{kAnchorLba, n - kAnchorLba, n - 1},
                               [&](uint64_t lba) { return ReadAnchor(lba, anchor); });
}

Result UdfVolume::ViewPhysical(uint64_t physical, UdfBlockBuffer& scratch,
                               const uint8_t** data) const {
    *data = scratch.bytes;
    return CopyPhysical(physical, scratch.bytes, blockSize_);
}

Result UdfVolume::CopyPhysical(uint64_t physical, void* dst, size_t length) const {
    if (physical >= blockCount_ || length > (blockCount_ - physical) * blockSize_) {
        return kEngineReadFailed;
    }
    uint64_t byte = physical * blockSize_;
    return source_.CopyBytes(byte / kSectorSize, byte % kSectorSize, dst, length);
}

Extent UdfVolume::BlockExtent(uint64_t physical, uint64_t length, uint32_t offset) const {
    uint64_t byte = physical * blockSize_;
    return {byte / kSectorSize, length, static_cast<uint32_t>(byte % kSectorSize) + offset};
}

void UdfVolume::ReadPartitionDescriptor(const uint8_t* d, Sequence* sequence) {
    PartitionDescriptor pd{Le16(d + kPartitionNumberOffset), Le32(d + kSequenceNumberOffset),
                           Le32(d + kPartitionStartOffset), Le32(d + kPartitionLengthOffset)};
    // 3/8.4.3: of two descriptors for one partition, the higher sequence number prevails.
    for (PartitionDescriptor& known : sequence->partitions) {
        if (known.number == pd.number) {
            known = known.sequenceNumber <= pd.sequenceNumber ? pd : known;
            return;
        }
    }
    if (sequence->partitions.size() < kMaxPartitions) {
        sequence->partitions.push_back(pd);
    }
}

void UdfVolume::ReadSequence(uint64_t lba, uint32_t bytes, Sequence* sequence) {
    UdfBlockBuffer scratch;
    uint32_t pointers = 0;
    uint32_t blocks = std::min(bytes / blockSize_, kMaxSequenceBlocks);
    for (uint32_t i = 0; i < blocks; ++i) {
        const uint8_t* d = nullptr;
        uint64_t at = lba + i;
        if (at > UINT32_MAX || ViewPhysical(at, scratch, &d) != kOk) {
            return;
        }
        uint16_t id = UdfTag::Id(d);
        if (!UdfTag::Check(d, blockSize_, id, static_cast<uint32_t>(at)) || id == kTagTerminating) {
            return;
        }
        if (id == kTagPartition) {
            ReadPartitionDescriptor(d, sequence);
        } else if (id == kTagLogicalVolume &&
                   (!sequence->haveLogical ||
                    Le32(d + kSequenceNumberOffset) >= sequence->logicalNumber)) {
            sequence->haveLogical = true;
            sequence->logicalNumber = Le32(d + kSequenceNumberOffset);
            std::memcpy(sequence->logical.bytes, d, blockSize_);
        } else if (id == kTagVolumePointer && ++pointers <= kMaxSequencePointers) {
            // 3/10.3: the sequence goes on in another extent.
            blocks = std::min(Le32(d + kPointerExtentOffset) / blockSize_, kMaxSequenceBlocks);
            lba = Le32(d + kPointerExtentOffset + 4);
            i = UINT32_MAX; // the loop's increment makes it 0
        }
        // Primary and implementation-use descriptors carry nothing the reader shows: the
        // volume's name is the logical volume's.
    }
}

bool UdfVolume::ReadPartitionMap(const uint8_t* map, uint32_t length) {
    Partition p;
    if (map[0] == kMapType1 && length == kType1Length) {
        p.number = Le16(map + 4);
    } else if (map[0] == kMapType2 && length == kType2Length) {
        p.number = Le16(map + kType2NumberOffset);
        const uint8_t* id = map + kMapIdOffset;
        if (HasIdentifier(id, "*UDF Virtual Partition")) {
            p.kind = MapKind::kVirtual;
        } else if (HasIdentifier(id, "*UDF Sparable Partition")) {
            p.kind = MapKind::kSparable;
            p.packetLength = Le16(map + kPacketLengthOffset);
            p.tableBytes = Le32(map + kTableSizeOffset);
            uint32_t tables = std::min<uint32_t>(map[kTableCountOffset], kMaxSparingTables);
            for (uint32_t t = 0; t < tables; ++t) {
                p.tableLocations.push_back(Le32(map + kTableLocationsOffset + 4 * t));
            }
        } else if (HasIdentifier(id, "*UDF Metadata Partition")) {
            p.kind = MapKind::kMetadata;
            p.metadataFile = Le32(map + kMetadataFileOffset);
            p.mirrorFile = Le32(map + kMirrorFileOffset);
        } else {
            return false;
        }
    } else {
        return false;
    }
    maps_.push_back(std::move(p));
    return true;
}

Result UdfVolume::ReadLogicalVolume(const Sequence& sequence) {
    const uint8_t* d = sequence.logical.bytes;
    // A volume whose descriptors disagree with the anchor on the block size cannot be read
    // at either size.
    if (Le32(d + kBlockSizeOffset) != blockSize_) {
        return kEngineBadImage;
    }
    uint32_t tableLength = Le32(d + kMapTableLengthOffset);
    uint32_t count = Le32(d + kMapCountOffset);
    if (tableLength > blockSize_ - kMapsOffset || count > kMaxPartitionMaps) {
        return kEngineBadImage;
    }
    maps_.clear();
    for (uint32_t pos = 0, i = 0; i < count; ++i) {
        const uint8_t* map = d + kMapsOffset + pos;
        if (pos + 2 > tableLength || map[1] < 2 || pos + map[1] > tableLength ||
            !ReadPartitionMap(map, map[1])) {
            return kEngineBadImage;
        }
        pos += map[1];
    }
    uint8_t idLength =
        std::min<uint8_t>(d[kVolumeIdOffset + kVolumeIdBytes - 1], kVolumeIdBytes - 1);
    EntryName id;
    id.Clear();
    id.AppendOstaCompressed(d + kVolumeIdOffset, idLength);
    uint32_t n = std::min<uint32_t>(id.Length(), kVolIdChars - 1);
    std::memcpy(volumeId_, id.Data(), n * sizeof(char16_t));
    volumeId_[n] = 0;
    fileSet_ = LongAdAddress(d + kFileSetAdOffset);
    return maps_.empty() ? kEngineBadImage : kOk;
}

bool UdfVolume::ResolvePartitions(const Sequence& sequence) {
    for (Partition& p : maps_) {
        auto pd = std::find_if(sequence.partitions.begin(), sequence.partitions.end(),
                               [&](const PartitionDescriptor& d) { return d.number == p.number; });
        if (pd == sequence.partitions.end()) {
            return false;
        }
        p.start = pd->start;
        p.length = pd->length;
    }
    // A virtual or metadata partition lies on the physical map of the same partition number.
    for (Partition& p : maps_) {
        if (p.kind == MapKind::kVirtual || p.kind == MapKind::kMetadata) {
            auto under = std::find_if(maps_.begin(), maps_.end(), [&](const Partition& q) {
                return q.number == p.number &&
                       (q.kind == MapKind::kPhysical || q.kind == MapKind::kSparable);
            });
            if (under == maps_.end()) {
                return false;
            }
            p.under = static_cast<uint16_t>(under - maps_.begin());
        }
    }
    return true;
}

bool UdfVolume::LoadSparingTable(Partition& p) {
    if (p.packetLength == 0) {
        return false;
    }
    std::vector<uint8_t> table;
    for (uint32_t location : p.tableLocations) {
        uint32_t bytes = std::min<uint32_t>(p.tableBytes, kSparingEntriesOffset +
                                                              UINT16_MAX * kSparingEntryBytes);
        if (bytes < kSparingEntriesOffset) {
            continue;
        }
        table.resize(bytes);
        if (CopyPhysical(location, table.data(), bytes) != kOk ||
            !UdfTag::Check(table.data(), bytes, kTagSparingTable, location) ||
            !HasIdentifier(table.data() + 17, "*UDF Sparing Table")) {
            continue;
        }
        uint32_t count = std::min<uint32_t>(Le16(table.data() + kSparingCountOffset),
                                            (bytes - kSparingEntriesOffset) / kSparingEntryBytes);
        for (uint32_t i = 0; i < count; ++i) {
            const uint8_t* e = table.data() + kSparingEntriesOffset + i * kSparingEntryBytes;
            if (Le32(e) < kSparingAvailable) {
                p.spared.emplace_back(Le32(e), Le32(e + 4));
            }
        }
        std::sort(p.spared.begin(), p.spared.end());
        return true;
    }
    return false;
}

bool UdfVolume::ParseVat(const std::vector<uint8_t>& data, uint8_t fileType, Partition& p) {
    size_t first = 0;
    size_t end = data.size();
    if (fileType == kUdfTypeVat) {
        if (data.size() < kVatHeaderMinimum || Le16(data.data()) < kVatHeaderMinimum) {
            return false;
        }
        first = Le16(data.data());
    } else {
        if (data.size() < kVat150TrailerBytes ||
            !HasIdentifier(data.data() + data.size() - kVat150TrailerBytes + 1,
                           "*UDF Virtual Alloc Tbl")) {
            return false;
        }
        end = data.size() - kVat150TrailerBytes;
    }
    if (first > end) {
        return false;
    }
    p.vat.resize((end - first) / 4);
    for (size_t i = 0; i < p.vat.size(); ++i) {
        p.vat[i] = Le32(data.data() + first + 4 * i);
    }
    return true;
}

bool UdfVolume::LoadVat(Partition& p) {
    const Partition& under = maps_[p.under];
    uint64_t n = blockCount_;
    UdfBlockBuffer scratch;
    std::vector<uint8_t> data;
    for (uint64_t back = 1; back <= kVatSearchBlocks && back <= n; ++back) {
        uint64_t physical = n - back;
        const uint8_t* d = nullptr;
        UdfFileEntry entry;
        if (physical < under.start || physical - under.start > UINT32_MAX ||
            ViewPhysical(physical, scratch, &d) != kOk) {
            continue;
        }
        auto block = static_cast<uint32_t>(physical - under.start);
        if (!entry.Parse(d, blockSize_, block) ||
            (entry.FileType() != kUdfTypeVat && entry.FileType() != kUdfTypeUnspecified)) {
            continue;
        }
        if (ReadData(entry, d, {block, p.under}, n * blockSize_, &data) == kOk &&
            ParseVat(data, entry.FileType(), p)) {
            return true;
        }
    }
    return false;
}

bool UdfVolume::LoadMetadataFile(Partition& p, uint32_t location, uint8_t fileType) {
    UdfBlockBuffer scratch;
    const uint8_t* d = nullptr;
    uint64_t physical = 0;
    UdfFileEntry entry;
    UdfAddress icb{location, p.under};
    if (ViewBlock(icb, scratch, &d, &physical) != kOk || !entry.Parse(d, blockSize_, location) ||
        entry.FileType() != fileType || entry.AdForm() == UdfAdForm::kEmbedded ||
        !allocation_.Collect(entry, d, icb, &extents_)) {
        return false;
    }
    p.runs.clear();
    uint32_t fileBlock = 0;
    for (const UdfExtent& e : extents_) {
        uint32_t count = e.length / blockSize_;
        uint64_t first = 0;
        uint32_t run = 0;
        if (e.type != kUdfRecorded || e.where.partition != p.under ||
            !MapBlock(e.where, count, &first, &run) || run != count) {
            return false; // a piece outside its partition: the other copy may be whole
        }
        p.runs.push_back({fileBlock, e.where.block, count});
        fileBlock += count;
    }
    return !p.runs.empty();
}

bool UdfVolume::LoadMetadata(Partition& p) {
    // OSTA UDF 2.60 2.2.13.1: the mirror holds the same blocks, for when the main file fails.
    return LoadMetadataFile(p, p.metadataFile, kUdfTypeMetadata) ||
           LoadMetadataFile(p, p.mirrorFile, kUdfTypeMetadataMirror);
}

Result UdfVolume::ReadFileSet(UdfAddress where) {
    UdfBlockBuffer scratch;
    const uint8_t* d = nullptr;
    uint64_t physical = 0;
    if (ViewBlock(where, scratch, &d, &physical) != kOk ||
        !UdfTag::Check(d, blockSize_, kTagFileSet, where.block)) {
        return kEngineBadImage;
    }
    root_ = LongAdAddress(d + kRootIcbOffset);
    return kOk;
}

Result UdfVolume::Open() {
    Result r = kEngineBadImage;
    Anchor anchor{};
    // An anchor that checks out at a wrong block size leads nowhere; the right one still reads.
    for (uint32_t size : kUdfBlockSizes) {
        if (FindAnchor(size, &anchor) && (r = ReadVolume(anchor)) == kOk) {
            return kOk;
        }
    }
    return r;
}

Result UdfVolume::ReadVolume(const Anchor& anchor) {
    auto sequence = std::make_unique<Sequence>();
    ReadSequence(anchor.mainLba, anchor.mainBytes, sequence.get());
    if (!sequence->haveLogical || sequence->partitions.empty()) {
        sequence = std::make_unique<Sequence>();
        ReadSequence(anchor.reserveLba, anchor.reserveBytes, sequence.get());
    }
    if (!sequence->haveLogical) {
        return kEngineBadImage;
    }
    Result r = ReadLogicalVolume(*sequence);
    if (r != kOk) {
        return r;
    }
    if (!ResolvePartitions(*sequence)) {
        return kEngineBadImage;
    }
    // Physical and sparable maps first: the others are read through them.
    for (MapKind kind : {MapKind::kSparable, MapKind::kVirtual, MapKind::kMetadata}) {
        for (Partition& p : maps_) {
            bool loaded = p.kind != kind || (kind == MapKind::kSparable && LoadSparingTable(p)) ||
                          (kind == MapKind::kVirtual && LoadVat(p)) ||
                          (kind == MapKind::kMetadata && LoadMetadata(p));
            if (!loaded && kind != MapKind::kSparable) {
                return kEngineBadImage;
            }
        }
    }
    return ReadFileSet(fileSet_);
}

bool UdfVolume::MapPlain(const Partition& p, uint32_t block, uint32_t maxBlocks, uint64_t* physical,
                         uint32_t* run) const {
    if (block >= p.length || maxBlocks == 0) {
        return false;
    }
    uint64_t left = std::min<uint64_t>(maxBlocks, p.length - block);
    *physical = p.start + block;
    if (p.kind == MapKind::kSparable && p.packetLength > 0) {
        // OSTA UDF 2.60 2.2.12: a relocated packet is found by the block that starts it.
        uint32_t within = block % p.packetLength;
        left = std::min<uint64_t>(left, p.packetLength - within);
        auto hit = std::lower_bound(p.spared.begin(), p.spared.end(),
                                    std::pair<uint32_t, uint32_t>{block - within, 0});
        if (hit != p.spared.end() && hit->first == block - within) {
            *physical = uint64_t{hit->second} + within;
        }
    }
    *run = static_cast<uint32_t>(left);
    return *physical < blockCount_;
}

bool UdfVolume::MapIndirect(const Partition& p, uint32_t block, uint32_t maxBlocks,
                            uint64_t* physical, uint32_t* run) const {
    const Partition& under = maps_[p.under];
    if (p.kind == MapKind::kVirtual) {
        if (block >= p.vat.size() || p.vat[block] == kVatUnused) {
            return false;
        }
        uint32_t n = 1;
        while (n < maxBlocks && block + n < p.vat.size() && p.vat[block + n] == p.vat[block] + n) {
            ++n;
        }
        return MapPlain(under, p.vat[block], n, physical, run);
    }
    auto next = std::upper_bound(p.runs.begin(), p.runs.end(), block,
                                 [](uint32_t b, const MetadataRun& r) { return b < r.fileBlock; });
    if (next == p.runs.begin()) {
        return false;
    }
    const MetadataRun& r = *(next - 1);
    uint32_t within = block - r.fileBlock;
    if (within >= r.count) {
        return false;
    }
    return MapPlain(under, r.block + within, std::min(maxBlocks, r.count - within), physical, run);
}

bool UdfVolume::MapBlock(UdfAddress where, uint32_t maxBlocks, uint64_t* physical,
                         uint32_t* run) const {
    if (where.partition >= maps_.size()) {
        return false;
    }
    const Partition& p = maps_[where.partition];
    bool indirect = p.kind == MapKind::kVirtual || p.kind == MapKind::kMetadata;
    return indirect ? MapIndirect(p, where.block, maxBlocks, physical, run)
                    : MapPlain(p, where.block, maxBlocks, physical, run);
}

Result UdfVolume::ViewBlock(UdfAddress where, UdfBlockBuffer& scratch, const uint8_t** data,
                            uint64_t* physical) const {
    uint32_t run = 0;
    if (!MapBlock(where, 1, physical, &run)) {
        return kEngineReadFailed;
    }
    return ViewPhysical(*physical, scratch, data);
}

Result UdfVolume::ReadData(const UdfFileEntry& entry, const uint8_t* block, UdfAddress icb,
                           uint64_t limit, std::vector<uint8_t>* out) {
    uint64_t size = std::min(entry.InformationLength(), limit);
    out->clear();
    if (entry.AdForm() == UdfAdForm::kEmbedded) {
        out->assign(block + entry.AdOffset(),
                    block + entry.AdOffset() + std::min<uint64_t>(size, entry.AdLength()));
        return kOk;
    }
    if (!allocation_.Collect(entry, block, icb, &extents_)) {
        return kEngineReadFailed;
    }
    for (const UdfExtent& e : extents_) {
        uint64_t want = std::min<uint64_t>(e.length, size - out->size());
        UdfAddress at = e.where;
        while (want > 0) {
            size_t done = out->size();
            uint64_t physical = 0;
            uint32_t run = 0;
            auto blocks = static_cast<uint32_t>((want + blockSize_ - 1) / blockSize_);
            if (e.type != kUdfRecorded) {
                out->resize(done + want);
                break;
            }
            if (!MapBlock(at, blocks, &physical, &run)) {
                return kEngineReadFailed;
            }
            uint64_t piece = std::min<uint64_t>(want, uint64_t{run} * blockSize_);
            out->resize(done + piece);
            if (CopyPhysical(physical, out->data() + done, piece) != kOk) {
                return kEngineReadFailed;
            }
            want -= piece;
            at.block += run;
        }
    }
    return kOk;
}

} // namespace qmz
