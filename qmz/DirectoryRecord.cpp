#include "DirectoryRecord.h"

namespace qmz {

bool DirectoryRecord::Parse(const uint8_t* p, size_t available) {
    if (available < kFixedLength + 1) {
        return false;
    }
    uint32_t length = p[0];
    uint32_t idLength = p[32];
    if (length < kFixedLength + 1 || length > available || kFixedLength + idLength > length) {
        return false;
    }
    p_ = p;
    // An even identifier length is followed by a padding byte (9.1.12).
    uint32_t suOffset = kFixedLength + idLength + ((idLength & 1) == 0 ? 1 : 0);
    systemUseOffset_ = suOffset <= length ? suOffset : length;
    return true;
}

} // namespace qmz
