// Logical 2048-byte sectors of a volume, whatever way the image lays out its physical sectors.
// File-system readers see only this; each image layout gives its own implementation.
#pragma once

#include <cstddef>
#include <cstdint>

#include "QmzTypes.h"

namespace qmz {

inline constexpr uint32_t kSectorSize = 2048;

// Room for one sector where the image cannot be viewed in place.
struct SectorBuffer {
    uint8_t bytes[kSectorSize];
};

class SectorSource {
public:
    virtual ~SectorSource() = default;

    virtual uint64_t SectorCount() const = 0;
    // Points `*data` at the 2048 bytes of sector `lba`: into the image where it is mapped, else
    // into `scratch`. A sector not wholly inside the image is kEngineReadFailed.
    virtual Result ViewSector(uint64_t lba, SectorBuffer& scratch, const uint8_t** data) = 0;
    // Copies `length` bytes found `offset` bytes after the start of sector `lba`, reading on
    // through the following sectors.
    virtual Result CopyBytes(uint64_t lba, uint64_t offset, void* dst, size_t length) = 0;
};

} // namespace qmz
