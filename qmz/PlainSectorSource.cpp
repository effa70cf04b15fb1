#include "PlainSectorSource.h"

namespace qmz {

Result PlainSectorSource::ViewSector(uint64_t lba, SectorBuffer& scratch, const uint8_t** data) {
    if (lba >= SectorCount()) {
        return kEngineReadFailed;
    }
    uint64_t offset = lba * kSectorSize;
    if (file_.Mapping() != nullptr) {
        *data = file_.View(offset, kSectorSize);
        return kOk;
    }
    Result r = file_.Read(offset, scratch.bytes, kSectorSize);
    if (r == kOk) {
        *data = scratch.bytes;
    }
    return r;
}

Result PlainSectorSource::CopyBytes(uint64_t lba, uint64_t offset, void* dst, size_t length) {
    constexpr uint64_t kMaxLba = UINT64_MAX / kSectorSize;
    if (lba > kMaxLba || offset > UINT64_MAX - lba * kSectorSize) {
        return kEngineReadFailed;
    }
    return file_.Read(lba * kSectorSize + offset, dst, length);
}

} // namespace qmz
