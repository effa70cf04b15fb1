#include "FileTimeConversion.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace {

uint64_t Ticks(int64_t unixSeconds) {
    return static_cast<uint64_t>(unixSeconds + filetime::kSecondsFrom1601To1970) *
           filetime::kTicksPerSecond;
}

struct ZoneCase {
    const char* name;
    int64_t localAsIfUtc;
    int64_t utc;
};

TEST(FileTimeConversion, LocalTimesBecomeUtcWithTheRulesOfTheirDate) {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    const ZoneCase cases[] = {
        {"winter", 1704114000, 1704114000 - 3600}, // 2024-01-01 13:00 local
        {"summer", 1719842400, 1719842400 - 7200}, // 2024-07-01 14:00 local
        {"epoch", 0, -3600},
        {"before clocks go back", 1729989000, 1729989000 - 7200}, // 2024-10-27 00:30
        {"the repeated hour takes the later instant", 1729996200, 1729996200 - 3600}, // 02:30
        {"its next quarter hour", 1729997100, 1729997100 - 3600},
        {"summer again, after the cache held winter", 1719842400, 1719842400 - 7200},
    };
    for (const ZoneCase& c : cases) {
        EXPECT_EQ(filetime::LocalToUtc(Ticks(c.localAsIfUtc)), Ticks(c.utc)) << c.name;
    }
    EXPECT_EQ(filetime::LocalToUtc(0), 0u);
    EXPECT_EQ(filetime::LocalToUtc(Ticks(0) + 1234567), Ticks(-3600) + 1234567);
}

TEST(FileTimeConversion, BreaksTicksIntoCalendarFields) {
    const filetime::CivilTime t = filetime::ToCivil(Ticks(951782400 + 3661)); // 2000-02-29
    EXPECT_EQ(t.year, 2000);
    EXPECT_EQ(t.month, 2);
    EXPECT_EQ(t.day, 29);
    EXPECT_EQ(t.hour, 1);
    EXPECT_EQ(t.minute, 1);
    EXPECT_EQ(t.second, 1);
    const filetime::CivilTime origin = filetime::ToCivil(0);
    EXPECT_EQ(origin.year, 1601);
    EXPECT_EQ(origin.month, 1);
    EXPECT_EQ(origin.day, 1);
}

} // namespace
