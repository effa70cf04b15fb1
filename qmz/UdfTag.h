// ECMA-167 3/7.2: the sixteen-byte tag that begins every UDF descriptor, and the little-endian
// fields of the descriptors behind it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ByteOrder.h"

namespace qmz {

// ECMA-167 3/7.2.1 and 4/7.2.1: tag identifiers.
enum UdfTagId : uint16_t {
    kTagPrimaryVolume = 1,
    kTagAnchor = 2,
    kTagVolumePointer = 3,
    kTagImplementationUse = 4,
    kTagPartition = 5,
    kTagLogicalVolume = 6,
    kTagTerminating = 8,
    kTagFileSet = 256,
    kTagFileIdentifier = 257,
    kTagAllocationExtent = 258,
    kTagFileEntry = 261,
    kTagExtendedFileEntry = 266,
};

class UdfTag {
public:
    static constexpr uint32_t kSize = 16;
    // Descriptors whose recorded location is not known to the reader (file identifiers, which
    // may straddle blocks).
    static constexpr uint32_t kAnyLocation = UINT32_MAX;

    static uint16_t Id(const uint8_t* d) { return Le16(d); }

    // True when `d`, of which `available` bytes may be read, starts with a tag of identifier
    // `id` recorded at `location`, whose checksum holds, and whose CRC holds when the CRC's
    // length lies within `available`.
    static bool Check(const uint8_t* d, size_t available, uint16_t id, uint32_t location);

private:
    // ECMA-167 1/7.2.6: CRC-ITU-T, polynomial x^16 + x^12 + x^5 + 1, initial value 0.
    static uint16_t Crc(const uint8_t* p, size_t length);
};

} // namespace qmz
