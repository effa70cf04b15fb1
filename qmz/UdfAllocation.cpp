#include "UdfAllocation.h"
#include "ByteOrder.h"

#include <algorithm>

#include "UdfTag.h"
#include "UdfVolume.h"

namespace qmz {

namespace {

constexpr uint32_t kShortAdSize = 8;
constexpr uint32_t kLongAdSize = 16;
constexpr uint32_t kExtendedAdSize = 20;
constexpr uint32_t kLengthMask = 0x3FFFFFFF;
constexpr uint32_t kAedLengthOffset = 20;
constexpr uint32_t kAedHeader = 24;
// A file of a few hundred gibibytes in scattered 64 KiB pieces needs fewer; a chain that runs
// on longer is taken for a damaged or hostile image.
constexpr size_t kMaxContinuations = 1024;

uint32_t AdSize(UdfAdForm form) {
    switch (form) {
    case UdfAdForm::kShort:
        return kShortAdSize;
    case UdfAdForm::kLong:
        return kLongAdSize;
    default:
        return kExtendedAdSize;
    }
}

} // namespace

UdfExtent UdfAllocation::Decode(const uint8_t* p, UdfAdForm form, uint16_t partition) {
    uint32_t raw = Le32(p);
    UdfExtent e{{0, partition}, raw & kLengthMask, static_cast<uint8_t>(raw >> 30)};
    switch (form) {
    case UdfAdForm::kShort: // 4/14.14.1: the partition is the entry's own
        e.where.block = Le32(p + 4);
        break;
    case UdfAdForm::kLong: // 4/14.14.2
        e.where = {Le32(p + 4), Le16(p + 8)};
        break;
    default: // 4/14.14.3
        e.where = {Le32(p + 12), Le16(p + 16)};
        break;
    }
    return e;
}

void UdfAllocation::ParseRun(const uint8_t* p, uint32_t length, UdfAdForm form, uint16_t partition,
                             std::vector<UdfExtent>* out, UdfExtent* next) {
    uint32_t size = AdSize(form);
    for (uint32_t pos = 0; pos + size <= length; pos += size) {
        UdfExtent e = Decode(p + pos, form, partition);
        if (e.length == 0) {
            return; // 4/12: a zero length ends the descriptors
        }
        if (e.type == kUdfContinuation) {
            *next = e;
            return;
        }
        out->push_back(e);
    }
}

bool UdfAllocation::ReadContinuation(UdfExtent* next, UdfAdForm form, std::vector<UdfExtent>* out) {
    UdfAddress where = next->where;
    next->length = 0;
    const uint8_t* d = nullptr;
    uint64_t physical = 0;
    uint32_t blockSize = volume_.BlockSize();
    if (chain_.size() == kMaxContinuations ||
        volume_.ViewBlock(where, scratch_, &d, &physical) != kOk ||
        std::find(chain_.begin(), chain_.end(), physical) != chain_.end() ||
        !UdfTag::Check(d, blockSize, kTagAllocationExtent, where.block)) {
        return false;
    }
    chain_.push_back(physical);
    uint32_t length = Le32(d + kAedLengthOffset);
    if (length > blockSize - kAedHeader) {
        return false;
    }
    ParseRun(d + kAedHeader, length, form, where.partition, out, next);
    return true;
}

bool UdfAllocation::Collect(const UdfFileEntry& entry, const uint8_t* block, UdfAddress icb,
                            std::vector<UdfExtent>* out) {
    out->clear();
    chain_.clear();
    UdfExtent next{{0, 0}, 0, 0};
    ParseRun(block + entry.AdOffset(), entry.AdLength(), entry.AdForm(), icb.partition, out, &next);
    while (next.length != 0) {
        if (!ReadContinuation(&next, entry.AdForm(), out)) {
            return false;
        }
    }
    return true;
}

} // namespace qmz
