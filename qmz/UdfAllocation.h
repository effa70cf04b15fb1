// ECMA-167 4/14.14: the allocation descriptors of a file entry, in short, long or extended
// form, with their continuation in allocation extent descriptors (4/14.5).
#pragma once

#include <cstdint>
#include <vector>

#include "UdfFileEntry.h"

namespace qmz {

class UdfVolume;

// ECMA-167 4/14.14.1.1: what an extent holds.
enum UdfExtentType : uint8_t {
    kUdfRecorded = 0,
    kUdfAllocatedOnly = 1, // read as zeros
    kUdfUnallocated = 2,   // a hole, read as zeros
    kUdfContinuation = 3,
};

struct UdfExtent {
    UdfAddress where;
    uint32_t length; // bytes
    uint8_t type;
};

class UdfAllocation {
public:
    explicit UdfAllocation(UdfVolume& volume) : volume_(volume) {}

    // The data extents of the non-embedded `entry`, found in `block`, the entry's own block at
    // `icb`. False when a continuation is unreadable, cycles or runs on past the limit; what
    // was gathered before stays in `out`.
    bool Collect(const UdfFileEntry& entry, const uint8_t* block, UdfAddress icb,
                 std::vector<UdfExtent>* out);

private:
    // Appends the descriptors found in `length` bytes at `p`; `*next` gets the continuation
    // that ends them, if any.
    static void ParseRun(const uint8_t* p, uint32_t length, UdfAdForm form, uint16_t partition,
                         std::vector<UdfExtent>* out, UdfExtent* next);
    static UdfExtent Decode(const uint8_t* p, UdfAdForm form, uint16_t partition);
    bool ReadContinuation(UdfExtent* next, UdfAdForm form, std::vector<UdfExtent>* out);

    UdfVolume& volume_;
    UdfBlockBuffer scratch_;
    std::vector<uint64_t> chain_; // blocks of the continuations read for the current entry
};

} // namespace qmz
