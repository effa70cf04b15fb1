// An image that holds the volume's 2048-byte sectors one after the other, as .iso files do.
#pragma once

#include "ImageFile.h"
#include "SectorSource.h"

namespace qmz {

class PlainSectorSource final : public SectorSource {
public:
    explicit PlainSectorSource(const ImageFile& file) : file_(file) {}

    uint64_t SectorCount() const override { return file_.Size() / kSectorSize; }
    Result ViewSector(uint64_t lba, SectorBuffer& scratch, const uint8_t** data) override;
    Result CopyBytes(uint64_t lba, uint64_t offset, void* dst, size_t length) override;

private:
    const ImageFile& file_;
};

} // namespace qmz
