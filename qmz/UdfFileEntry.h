// ECMA-167 4/14.9 and 4/14.17: a file entry or extended file entry, the ICB that describes one
// file, folder or system file of a UDF volume.
#pragma once

#include <cstdint>

namespace qmz {

// ECMA-167 3/8.4.2 leaves the logical block size to the medium: 2048 bytes on optical discs,
// the device's sector size (512, 1024 or 4096 bytes) on hard disks and memory cards.
inline constexpr uint32_t kUdfBlockSizes[] = {512, 1024, 2048, 4096};
inline constexpr uint32_t kUdfMaxBlockSize = 4096;

// Room for one logical block where it cannot be viewed in place in the image.
struct UdfBlockBuffer {
    uint8_t bytes[kUdfMaxBlockSize];
};

// ECMA-167 4/7.1 lb_addr: a block within a partition, named by its partition map's index.
struct UdfAddress {
    uint32_t block;
    uint16_t partition;
};

// ECMA-167 4/14.6.8: how the entry's allocation descriptors are recorded.
enum class UdfAdForm : uint8_t { kShort = 0, kLong = 1, kExtended = 2, kEmbedded = 3 };

// ECMA-167 4/14.6.6 and OSTA UDF 2.60 2.3.5.2: the file types the reader tells apart.
enum UdfFileType : uint8_t {
    kUdfTypeUnspecified = 0,
    kUdfTypeDirectory = 4,
    kUdfTypeVat = 248,
    kUdfTypeMetadata = 250,
    kUdfTypeMetadataMirror = 251,
};

class UdfFileEntry {
public:
    // Parses the entry in `block` (a logical block of `blockSize` bytes) recorded at `location`
    // within its partition; false when it is neither kind of entry, its tag fails, or its
    // fields overrun the block.
    bool Parse(const uint8_t* block, uint32_t blockSize, uint32_t location);

    uint8_t FileType() const { return fileType_; }
    uint64_t InformationLength() const { return informationLength_; }
    bool TimeValid() const { return timeValid_; }
    int64_t ModificationTime() const { return mtime_; }
    UdfAdForm AdForm() const { return adForm_; }
    // Where the allocation descriptors (or the embedded data) lie within the block.
    uint32_t AdOffset() const { return adOffset_; }
    uint32_t AdLength() const { return adLength_; }

    // ECMA-167 1/7.3: a timestamp with its time zone, as seconds since 1970 UTC.
    static bool DecodeTimestamp(const uint8_t* p, int64_t* utcSeconds);

private:
    bool ParseIcbTag(const uint8_t* icbTag);

    uint8_t fileType_ = 0;
    UdfAdForm adForm_ = UdfAdForm::kShort;
    bool timeValid_ = false;
    int64_t mtime_ = 0;
    uint64_t informationLength_ = 0;
    uint32_t adOffset_ = 0;
    uint32_t adLength_ = 0;
};

} // namespace qmz
