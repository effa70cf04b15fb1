// One ECMA-119 directory record (9.1), viewed in place after its lengths were checked.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ByteOrder.h"

namespace qmz {

// ECMA-119 9.1.6 file flags.
enum RecordFlags : uint8_t {
    kRecordHidden = 0x01,
    kRecordDirectory = 0x02,
    kRecordAssociated = 0x04,
    kRecordMultiExtent = 0x80,
};

class DirectoryRecord {
public:
    // The fixed part before the file identifier.
    static constexpr uint32_t kFixedLength = 33;

    // Views the record at `p` with `available` bytes up to the end of its sector. False when
    // its length or its identifier length do not fit.
    bool Parse(const uint8_t* p, size_t available);

    uint32_t Length() const { return p_[0]; }
    uint8_t ExtendedAttributeSectors() const { return p_[1]; }
    uint32_t ExtentLba() const { return Le32(p_ + 2); }
    uint32_t DataLength() const { return Le32(p_ + 10); }
    const uint8_t* RecordingDate() const { return p_ + 18; }
    uint8_t Flags() const { return p_[25]; }
    bool IsDirectory() const { return (Flags() & kRecordDirectory) != 0; }
    const uint8_t* Identifier() const { return p_ + kFixedLength; }
    uint8_t IdentifierLength() const { return p_[32]; }
    // "." and ".." are recorded as the single bytes 0x00 and 0x01.
    bool IsSelfOrParent() const {
        return IdentifierLength() == 1 && (Identifier()[0] == 0 || Identifier()[0] == 1);
    }
    const uint8_t* SystemUse() const { return p_ + systemUseOffset_; }
    uint32_t SystemUseLength() const { return Length() - systemUseOffset_; }

private:
    const uint8_t* p_ = nullptr;
    uint32_t systemUseOffset_ = 0;
};

} // namespace qmz
