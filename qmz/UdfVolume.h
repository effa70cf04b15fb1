// A UDF volume (ECMA-167, OSTA UDF 1.02 to 2.60): its anchor, volume descriptor sequences,
// partitions and partition maps, and the mapping of each partition's logical blocks to the
// volume's blocks through the virtual allocation table, the sparing table or the metadata file.
// The volume's blocks, of 512 to 4096 bytes, are found in the image's 2048-byte sectors.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "QmzTypes.h"
#include "SectorSource.h"
#include "UdfAllocation.h"
#include "UdfFileEntry.h"
#include "VolumeIndex.h"

namespace qmz {

class UdfVolume {
public:
    explicit UdfVolume(SectorSource& source) : source_(source), allocation_(*this) {}
    UdfVolume(const UdfVolume&) = delete;
    UdfVolume& operator=(const UdfVolume&) = delete;

    // True when an anchor volume descriptor pointer stands at one of its three places, for one
    // of the block sizes.
    static bool Probe(SectorSource& source);
    // Reads the descriptors down to the file set, at the first block size whose anchor leads
    // to one. kEngineBadImage when there is no usable logical volume, partition or file set.
    Result Open();

    // The volume block of block `where`; `*run` blocks from there, at least 1 and at most
    // `maxBlocks`, follow one another. False when the block is outside its partition or the
    // image.
    bool MapBlock(UdfAddress where, uint32_t maxBlocks, uint64_t* physical, uint32_t* run) const;
    Result ViewBlock(UdfAddress where, UdfBlockBuffer& scratch, const uint8_t** data,
                     uint64_t* physical) const;
    // Where `length` bytes found `offset` bytes into volume block `physical` lie in the image.
    Extent BlockExtent(uint64_t physical, uint64_t length, uint32_t offset = 0) const;
    // The data of `entry` (in `block`, the entry's own block at `icb`), at most `limit` bytes,
    // holes as zeros. kEngineReadFailed when an extent cannot be read.
    Result ReadData(const UdfFileEntry& entry, const uint8_t* block, UdfAddress icb, uint64_t limit,
                    std::vector<uint8_t>* out);

    UdfAddress RootIcb() const { return root_; }
    uint32_t BlockSize() const { return blockSize_; }
    uint64_t BlockCount() const { return blockCount_; }
    const char16_t* VolumeId() const { return volumeId_; }
    SectorSource& Source() const { return source_; }

private:
    enum class MapKind : uint8_t { kPhysical, kVirtual, kSparable, kMetadata };

    // A piece of the metadata file: `count` blocks from `fileBlock` lie at `block` below it.
    struct MetadataRun {
        uint32_t fileBlock;
        uint32_t block;
        uint32_t count;
    };

    // One entry of the logical volume's partition map table (ECMA-167 3/10.7).
    struct Partition {
        MapKind kind = MapKind::kPhysical;
        uint16_t number = 0;
        uint64_t start = 0; // blocks of the partition descriptor with that number
        uint64_t length = 0;
        uint16_t under = 0; // the map a virtual or metadata partition lies on
        uint32_t packetLength = 0;
        std::vector<uint32_t> tableLocations; // sparing tables
        uint32_t tableBytes = 0;
        uint32_t metadataFile = 0;
        uint32_t mirrorFile = 0;
        std::vector<std::pair<uint32_t, uint32_t>> spared; // packet → block, sorted
        std::vector<uint32_t> vat;
        std::vector<MetadataRun> runs;
    };

    struct PartitionDescriptor {
        uint16_t number;
        uint32_t sequenceNumber;
        uint64_t start;
        uint64_t length;
    };

    // The prevailing descriptors of one volume descriptor sequence.
    struct Sequence {
        bool haveLogical = false;
        uint32_t logicalNumber = 0;
        UdfBlockBuffer logical;
        std::vector<PartitionDescriptor> partitions;
    };

    // ECMA-167 3/10.2: the extents of the main and reserve volume descriptor sequences.
    struct Anchor {
        uint64_t mainLba;
        uint32_t mainBytes;
        uint64_t reserveLba;
        uint32_t reserveBytes;
    };

    bool FindAnchor(uint32_t blockSize, Anchor* anchor);
    bool ReadAnchor(uint64_t lba, Anchor* anchor);
    Result ReadVolume(const Anchor& anchor);
    Result ViewPhysical(uint64_t physical, UdfBlockBuffer& scratch, const uint8_t** data) const;
    Result CopyPhysical(uint64_t physical, void* dst, size_t length) const;
    void ReadSequence(uint64_t lba, uint32_t bytes, Sequence* sequence);
    void ReadPartitionDescriptor(const uint8_t* d, Sequence* sequence);
    Result ReadLogicalVolume(const Sequence& sequence);
    bool ReadPartitionMap(const uint8_t* map, uint32_t length);
    bool ResolvePartitions(const Sequence& sequence);
    bool LoadSparingTable(Partition& p);
    bool LoadVat(Partition& p);
    bool ParseVat(const std::vector<uint8_t>& data, uint8_t fileType, Partition& p);
    bool LoadMetadata(Partition& p);
    bool LoadMetadataFile(Partition& p, uint32_t location, uint8_t fileType);
    Result ReadFileSet(UdfAddress where);
    bool MapPlain(const Partition& p, uint32_t block, uint32_t maxBlocks, uint64_t* physical,
                  uint32_t* run) const;
    bool MapIndirect(const Partition& p, uint32_t block, uint32_t maxBlocks, uint64_t* physical,
                     uint32_t* run) const;

    SectorSource& source_;
    uint32_t blockSize_ = kSectorSize;
    uint64_t blockCount_ = 0;
    UdfAllocation allocation_;
    std::vector<Partition> maps_;
    UdfAddress fileSet_{};
    UdfAddress root_{};
    char16_t volumeId_[kVolIdChars] = {};
    std::vector<UdfExtent> extents_;
};

} // namespace qmz
