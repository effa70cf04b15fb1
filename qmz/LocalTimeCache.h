// Converts the UTC times of a listing to the program's local FILETIME, remembering the zone's
// offset per quarter hour: a folder's times lie close together, and each localtime_r call
// costs hundreds of instructions.
#pragma once

#include <array>
#include <cstdint>

#include "QmzTypes.h"

namespace qmz {

class LocalTimeCache {
public:
    LocalTimeCache() { Clear(); }
    // Forgets the offsets, so that a change of the process's zone shows from then on.
    void Clear();
    // As IsoDate::ToFileTime of the local time at that instant.
    FileTime ToLocalFileTime(int64_t utcSeconds);

private:
    static constexpr int64_t kQuarterSeconds = 15 * 60;
    static constexpr size_t kSlots = 64; // a power of two

    struct Slot {
        int64_t quarter;
        int64_t offset;
    };

    int64_t OffsetAt(int64_t utcSeconds);

    std::array<Slot, kSlots> slots_;
};

} // namespace qmz
