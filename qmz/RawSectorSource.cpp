#include "RawSectorSource.h"

#include <algorithm>

namespace qmz {

Result RawSectorSource::ViewSector(uint64_t lba, SectorBuffer& scratch, const uint8_t** data) {
    if (lba >= layout_.count) {
        return kEngineReadFailed;
    }
    if (file_.Mapping() != nullptr) {
        *data = file_.View(DataOffset(lba), kSectorSize);
        return kOk;
    }
    Result r = file_.Read(DataOffset(lba), scratch.bytes, kSectorSize);
    if (r == kOk) {
        *data = scratch.bytes;
    }
    return r;
}

Result RawSectorSource::CopyBytes(uint64_t lba, uint64_t offset, void* dst, size_t length) {
    if (lba >= layout_.count || offset / kSectorSize >= layout_.count - lba) {
        return length == 0 ? kOk : kEngineReadFailed;
    }
    lba += offset / kSectorSize;
    uint32_t within = static_cast<uint32_t>(offset % kSectorSize);
    auto* out = static_cast<uint8_t*>(dst);
    while (length > 0) {
        if (lba >= layout_.count) {
            return kEngineReadFailed;
        }
        size_t n = std::min<size_t>(length, kSectorSize - within);
        Result r = file_.Read(DataOffset(lba) + within, out, n);
        if (r != kOk) {
            return r;
        }
        out += n;
        length -= n;
        within = 0;
        ++lba;
    }
    return kOk;
}

} // namespace qmz
