#include "UdfFileEntry.h"
#include "ByteOrder.h"

#include "IsoDate.h"
#include "UdfTag.h"

namespace qmz {

namespace {

constexpr uint32_t kIcbTagOffset = 16;
constexpr uint32_t kStrategyOffset = 4;
constexpr uint32_t kFileTypeOffset = 11;
constexpr uint32_t kIcbFlagsOffset = 18;
constexpr uint16_t kAdFormMask = 7;
// ECMA-167 4/14.6.2: strategy 4 records one direct entry; 4096 (OSTA UDF 2.60 2.3.5.1) puts
// the newest entry first too, so both are read at the ICB's own address.
constexpr uint16_t kStrategyDirect = 4;
constexpr uint16_t kStrategyUdf = 4096;
constexpr uint32_t kInformationLengthOffset = 56;

// The fields that sit at different places in the two kinds of entry.
struct Layout {
    uint32_t modificationTime;
    uint32_t eaLength;
    uint32_t fixedPart;
};
constexpr Layout kFileEntry = {84, 168, 176};
constexpr Layout kExtendedFileEntry = {92, 208, 216};

constexpr int kTimezoneUnspecified = -2047;
constexpr int kMaxTimezoneMinutes = 1440;
constexpr uint16_t kTimeTypeLocal = 1;

int16_t SignExtend12(uint16_t v) {
    return static_cast<int16_t>((v & 0x0800) != 0 ? (v | 0xF000) : (v & 0x0FFF));
}

} // namespace

bool UdfFileEntry::DecodeTimestamp(const uint8_t* p, int64_t* utcSeconds) {
    uint16_t typeAndZone = Le16(p);
    int zone = SignExtend12(typeAndZone);
    // A local time with an unknown zone, or one out of range, is taken as UTC.
    bool zoned = (typeAndZone >> 12) == kTimeTypeLocal && zone != kTimezoneUnspecified &&
                 zone >= -kMaxTimezoneMinutes && zone <= kMaxTimezoneMinutes;
    auto year = static_cast<int16_t>(Le16(p + 2));
    if (year <= 0) {
        return false;
    }
    return IsoDate::CivilToUtc(year, p[4], p[5], p[6], p[7], p[8], zoned ? zone * 60 : 0,
                               utcSeconds);
}

bool UdfFileEntry::ParseIcbTag(const uint8_t* icbTag) {
    uint16_t strategy = Le16(icbTag + kStrategyOffset);
    if (strategy != kStrategyDirect && strategy != kStrategyUdf) {
        return false;
    }
    fileType_ = icbTag[kFileTypeOffset];
    adForm_ = static_cast<UdfAdForm>(Le16(icbTag + kIcbFlagsOffset) & kAdFormMask);
    return adForm_ <= UdfAdForm::kEmbedded;
}

bool UdfFileEntry::Parse(const uint8_t* block, uint32_t blockSize, uint32_t location) {
    const Layout* layout = nullptr;
    if (UdfTag::Check(block, blockSize, kTagFileEntry, location)) {
        layout = &kFileEntry;
    } else if (UdfTag::Check(block, blockSize, kTagExtendedFileEntry, location)) {
        layout = &kExtendedFileEntry;
    } else {
        return false;
    }
    if (!ParseIcbTag(block + kIcbTagOffset)) {
        return false;
    }
    uint64_t eaLength = Le32(block + layout->eaLength);
    uint64_t adLength = Le32(block + layout->eaLength + 4);
    if (layout->fixedPart + eaLength + adLength > blockSize) {
        return false;
    }
    adOffset_ = static_cast<uint32_t>(layout->fixedPart + eaLength);
    adLength_ = static_cast<uint32_t>(adLength);
    informationLength_ = Le64(block + kInformationLengthOffset);
    timeValid_ = DecodeTimestamp(block + layout->modificationTime, &mtime_);
    return true;
}

} // namespace qmz
