#include "IsoDate.h"

#include "FileTimeMath.h"

#include <ctime>

namespace qmz {

namespace {

// ECMA-119 allows offsets from -12 h to +13 h.
constexpr int kMinGmtOffset = -48;
constexpr int kMaxGmtOffset = 52;

int Digits(const uint8_t* p, int count) {
    int value = 0;
    for (int i = 0; i < count; ++i) {
        if (p[i] < '0' || p[i] > '9') {
            return -1;
        }
        value = value * 10 + (p[i] - '0');
    }
    return value;
}

} // namespace

bool IsoDate::CivilToUtc(int64_t year, int month, int day, int hour, int minute, int second,
                         int64_t offsetSeconds, int64_t* utcSeconds) {
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 59 ||
        hour < 0 || minute < 0 || second < 0) {
        return false;
    }
    *utcSeconds = filetime::DaysFromCivil(year, month, day) * filetime::kSecondsPerDay +
                  hour * 3600 + minute * 60 + second - offsetSeconds;
    return true;
}

bool IsoDate::Combine(int64_t year, int month, int day, int hour, int minute, int second,
                      int8_t gmtOffset, int64_t* utcSeconds) {
    int offset = gmtOffset >= kMinGmtOffset && gmtOffset <= kMaxGmtOffset ? gmtOffset : 0;
    return CivilToUtc(year, month, day, hour, minute, second, int64_t{offset} * 15 * 60,
                      utcSeconds);
}

bool IsoDate::DecodeShort(const uint8_t* p, int64_t* utcSeconds) {
    return Combine(1900 + int64_t{p[0]}, p[1], p[2], p[3], p[4], p[5], static_cast<int8_t>(p[6]),
                   utcSeconds);
}

bool IsoDate::DecodeLong(const uint8_t* p, int64_t* utcSeconds) {
    int year = Digits(p, 4);
    if (year <= 0) {
        return false; // also the all-zero form that records no date
    }
    return Combine(year, Digits(p + 4, 2), Digits(p + 6, 2), Digits(p + 8, 2), Digits(p + 10, 2),
                   Digits(p + 12, 2), static_cast<int8_t>(p[16]), utcSeconds);
}

int64_t IsoDate::LocalOffset(int64_t utcSeconds) {
    auto t = static_cast<time_t>(utcSeconds);
    struct tm local {};
    return localtime_r(&t, &local) != nullptr ? local.tm_gmtoff : 0;
}

FileTime IsoDate::ToFileTime(int64_t seconds) {
    if (seconds < -filetime::kSecondsFrom1601To1970) {
        return {0, 0};
    }
    auto ticks = static_cast<uint64_t>(seconds + filetime::kSecondsFrom1601To1970) *
                 filetime::kTicksPerSecond;
    return {static_cast<uint32_t>(ticks), static_cast<uint32_t>(ticks >> 32)};
}

} // namespace qmz
