// The logical sectors of a volume recorded inside larger physical sectors (raw CD sectors with
// their sync, header and error-correction bytes, or with subchannel data after them), possibly
// starting part-way into the file, as in Nero images.
#pragma once

#include "ImageFile.h"
#include "SectorSource.h"

namespace qmz {

// Where the 2048 user-data bytes of each sector lie in the file.
struct SectorLayout {
    uint64_t start;      // file offset of the first recorded sector
    uint32_t stride;     // bytes from one recorded sector to the next
    uint32_t dataOffset; // user data within a recorded sector
    uint64_t count;      // recorded sectors wholly inside the file
};

class RawSectorSource final : public SectorSource {
public:
    // `layout` must lie inside `file`, as SectorContainer makes it.
    RawSectorSource(const ImageFile& file, const SectorLayout& layout)
        : file_(file), layout_(layout) {}

    uint64_t SectorCount() const override { return layout_.count; }
    Result ViewSector(uint64_t lba, SectorBuffer& scratch, const uint8_t** data) override;
    Result CopyBytes(uint64_t lba, uint64_t offset, void* dst, size_t length) override;

private:
    uint64_t DataOffset(uint64_t lba) const {
        return layout_.start + lba * layout_.stride + layout_.dataOffset;
    }

    const ImageFile& file_;
    SectorLayout layout_;
};

} // namespace qmz
