#include "FileTimeConversion.h"

#include <array>
#include <ctime>

namespace filetime {
namespace {

// The offset of a time zone only changes at its transitions, which fall on quarter hours in
// every zone in use; caching per quarter hour keeps localtime_r off the per-entry path.
constexpr int64_t kOffsetBucketSeconds = 900;
constexpr size_t kOffsetCacheSlots = 256;

struct OffsetSlot {
    int64_t bucket = INT64_MIN;
    int64_t offset = 0;
};

int64_t UtcOffsetAt(int64_t unixSeconds) {
    static thread_local std::array<OffsetSlot, kOffsetCacheSlots> cache;
    const int64_t bucket = FloorDiv(unixSeconds, kOffsetBucketSeconds);
    OffsetSlot& slot = cache[static_cast<uint64_t>(bucket) % kOffsetCacheSlots];
    if (slot.bucket != bucket) {
        const time_t t = static_cast<time_t>(bucket * kOffsetBucketSeconds);
        tm parts{};
        slot.offset = localtime_r(&t, &parts) != nullptr ? parts.tm_gmtoff : 0;
        slot.bucket = bucket;
    }
    return slot.offset;
}

// Two rounds find the instant whose offset maps it onto the local time; in the hour that a
// clock skips forward there is none, and the first guess stands.
int64_t LocalSecondsToUtc(int64_t localSeconds) {
    const int64_t guess = localSeconds - UtcOffsetAt(localSeconds);
    const int64_t utc = localSeconds - UtcOffsetAt(guess);
    return utc + UtcOffsetAt(utc) == localSeconds ? utc : guess;
}

} // namespace

uint64_t LocalToUtc(uint64_t localTicks) {
    if (localTicks == 0) {
        return 0;
    }
    const int64_t localSeconds =
        static_cast<int64_t>(localTicks / kTicksPerSecond) - kSecondsFrom1601To1970;
    const uint64_t fraction = localTicks % kTicksPerSecond;
    // The entries of an image share few times: the last quarter hour's answer usually holds.
    static thread_local int64_t lastBucket = INT64_MIN;
    static thread_local int64_t lastOffset = 0;
    const int64_t bucket = FloorDiv(localSeconds, kOffsetBucketSeconds);
    if (bucket != lastBucket) {
        const int64_t bucketStart = bucket * kOffsetBucketSeconds;
        const int64_t startOffset = bucketStart - LocalSecondsToUtc(bucketStart);
        const int64_t endOffset = bucketStart + kOffsetBucketSeconds - 1 -
                                  LocalSecondsToUtc(bucketStart + kOffsetBucketSeconds - 1);
        // A quarter hour that holds a transition is not remembered.
        lastBucket = startOffset == endOffset ? bucket : INT64_MIN;
        lastOffset = startOffset;
        if (startOffset != endOffset) {
            lastOffset = localSeconds - LocalSecondsToUtc(localSeconds);
        }
    }
    const int64_t utc = localSeconds - lastOffset;
    const int64_t ticksSeconds = utc + kSecondsFrom1601To1970;
    if (ticksSeconds < 0) {
        return 0;
    }
    return static_cast<uint64_t>(ticksSeconds) * kTicksPerSecond + fraction;
}

CivilTime ToCivil(uint64_t utcTicks) {
    const int64_t seconds =
        static_cast<int64_t>(utcTicks / kTicksPerSecond) - kSecondsFrom1601To1970;
    const int64_t days = FloorDiv(seconds, kSecondsPerDay);
    const int64_t secondOfDay = seconds - days * kSecondsPerDay;
    const CivilDate date = CivilFromDays(days);
    CivilTime civil{};
    civil.year = date.year;
    civil.month = date.month;
    civil.day = date.day;
    civil.hour = static_cast<int>(secondOfDay / 3600);
    civil.minute = static_cast<int>(secondOfDay / 60 % 60);
    civil.second = static_cast<int>(secondOfDay % 60);
    return civil;
}

UnixTime ToUnix(uint64_t utcTicks) {
    const auto ticks = static_cast<int64_t>(utcTicks / kTicksPerSecond);
    const auto rest = static_cast<int64_t>(utcTicks % kTicksPerSecond);
    constexpr int64_t kNanosecondsPerTick = 100;
    return {ticks - kSecondsFrom1601To1970, rest * kNanosecondsPerTick};
}

} // namespace filetime
