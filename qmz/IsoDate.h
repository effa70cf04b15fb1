// Times recorded by ECMA-119 and Rock Ridge, and their conversion to the program's local
// Windows FILETIME.
#pragma once

#include <cstdint>

#include "QmzTypes.h"

namespace qmz {

class IsoDate {
public:
    // ECMA-119 9.1.5: seven bytes, years since 1900 to seconds, then the offset from GMT in
    // 15-minute units. Gives seconds since 1970 UTC, or false for an invalid date.
    static bool DecodeShort(const uint8_t* p, int64_t* utcSeconds);
    // ECMA-119 8.4.26.1: sixteen ASCII digits YYYYMMDDhhmmsscc and the GMT offset byte.
    static bool DecodeLong(const uint8_t* p, int64_t* utcSeconds);
    // The offset of the process's local time from UTC in force at that instant, in seconds.
    static int64_t LocalOffset(int64_t utcSeconds);
    // A civil date and time `offsetSeconds` ahead of UTC as seconds since 1970 UTC, or false
    // for fields out of range. UDF time stamps use it too.
    static bool CivilToUtc(int64_t year, int month, int day, int hour, int minute, int second,
                           int64_t offsetSeconds, int64_t* utcSeconds);
    // Seconds since 1970 as a FILETIME; an instant before 1601 gives 0.
    static FileTime ToFileTime(int64_t seconds);

private:
    static bool Combine(int64_t year, int month, int day, int hour, int minute, int second,
                        int8_t gmtOffset, int64_t* utcSeconds);
};

} // namespace qmz
