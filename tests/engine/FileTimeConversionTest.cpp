#include "FileTimeConversion.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <vector>

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
    const auto fields = [](uint64_t ticks) {
        const filetime::CivilTime t = filetime::ToCivil(ticks);
        return std::vector<int64_t>{t.year, t.month, t.day, t.hour, t.minute, t.second};
    };
    EXPECT_EQ(fields(Ticks(951782400 + 3661)), (std::vector<int64_t>{2000, 2, 29, 1, 1, 1}));
    EXPECT_EQ(fields(0), (std::vector<int64_t>{1601, 1, 1, 0, 0, 0}));
}

} // namespace
