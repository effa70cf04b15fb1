// FILETIME arithmetic that the engine and the program both need: the tick constants, floor
// division for instants before an epoch, and the proleptic Gregorian calendar. A FILETIME
// counts 100-nanosecond ticks since 1601-01-01 UTC.
#pragma once

#include <cstdint>

namespace filetime {

inline constexpr uint64_t kTicksPerSecond = 10'000'000;
inline constexpr int64_t kSecondsFrom1601To1970 = 11'644'473'600;
inline constexpr int64_t kSecondsPerDay = 86'400;

// Division that rounds towards negative infinity, so that an instant before an epoch falls
// into the bucket before it rather than into bucket 0.
constexpr int64_t FloorDiv(int64_t a, int64_t b) {
    const int64_t q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

struct CivilDate {
    int64_t year;
    int month, day;
};

// Days from 1970-01-01 to a date and back, after Howard Hinnant's public-domain algorithms
// (400-year eras of 146,097 days, years counted from March).
constexpr int64_t DaysFromCivil(int64_t year, int month, int day) {
    year -= month <= 2 ? 1 : 0;
    const int64_t era = FloorDiv(year, 400);
    const int64_t yoe = year - era * 400;
    const int64_t doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

constexpr CivilDate CivilFromDays(int64_t days) {
    const int64_t z = days + 719468;
    const int64_t era = FloorDiv(z, 146097);
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    const int64_t month = mp < 10 ? mp + 3 : mp - 9;
    return {yoe + era * 400 + (month <= 2 ? 1 : 0), static_cast<int>(month),
            static_cast<int>(doy - (153 * mp + 2) / 5 + 1)};
}

static_assert(DaysFromCivil(1970, 1, 1) == 0);
static_assert(DaysFromCivil(1601, 1, 1) * kSecondsPerDay == -kSecondsFrom1601To1970);
static_assert(CivilFromDays(DaysFromCivil(2000, 2, 29)).day == 29);

} // namespace filetime
