// FILETIME values (100 ns ticks since 1601-01-01) between local time and UTC, with the
// process's time zone rules at the instant in question.
#pragma once

#include "FileTimeMath.h"

#include <cstdint>

namespace filetime {

// The UTC instant whose local time is the given one; 0 stays 0.
uint64_t LocalToUtc(uint64_t localTicks);

// A UTC FILETIME as seconds and nanoseconds since 1970-01-01, as the system's file times are.
struct UnixTime {
    int64_t seconds;
    int64_t nanoseconds;
};
UnixTime ToUnix(uint64_t utcTicks);

// Breaks a UTC FILETIME into its calendar fields (proleptic Gregorian).
struct CivilTime {
    int64_t year;
    int month, day, hour, minute, second;
};
CivilTime ToCivil(uint64_t utcTicks);

} // namespace filetime
