#include "LocalTimeCache.h"

#include "FileTimeMath.h"
#include "IsoDate.h"

namespace qmz {

namespace {

// No instant falls in this quarter: marks an empty slot.
constexpr int64_t kNoQuarter = INT64_MIN;

} // namespace

void LocalTimeCache::Clear() {
    slots_.fill({kNoQuarter, 0});
}

int64_t LocalTimeCache::OffsetAt(int64_t utcSeconds) {
    int64_t quarter = filetime::FloorDiv(utcSeconds, kQuarterSeconds);
    Slot& slot = slots_[static_cast<uint64_t>(quarter) % kSlots];
    if (slot.quarter == quarter) {
        return slot.offset;
    }
    // Zone changes fall on quarter hours of UTC nearly always; a quarter whose two ends
    // disagree holds one (old local mean times do that) and is not remembered.
    int64_t start = quarter * kQuarterSeconds;
    int64_t offset = IsoDate::LocalOffset(start);
    if (offset != IsoDate::LocalOffset(start + kQuarterSeconds - 1)) {
        return IsoDate::LocalOffset(utcSeconds);
    }
    slot = {quarter, offset};
    return offset;
}

FileTime LocalTimeCache::ToLocalFileTime(int64_t utcSeconds) {
    return IsoDate::ToFileTime(utcSeconds + OffsetAt(utcSeconds));
}

} // namespace qmz
