#include "UdfTag.h"
#include "ByteOrder.h"

#include <array>

namespace qmz {

namespace {

constexpr uint32_t kChecksumOffset = 4;
constexpr uint32_t kCrcOffset = 8;
constexpr uint32_t kCrcLengthOffset = 10;
constexpr uint32_t kLocationOffset = 12;
constexpr uint16_t kCrcPolynomial = 0x1021;

constexpr std::array<uint16_t, 256> MakeCrcTable() {
    std::array<uint16_t, 256> table{};
    for (uint32_t i = 0; i < table.size(); ++i) {
        uint32_t crc = i << 8;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 0x8000) != 0 ? (crc << 1) ^ kCrcPolynomial : crc << 1;
        }
        table[i] = static_cast<uint16_t>(crc);
    }
    return table;
}

constexpr std::array<uint16_t, 256> kCrcTable = MakeCrcTable();

} // namespace

uint16_t UdfTag::Crc(const uint8_t* p, size_t length) {
    uint16_t crc = 0;
    for (size_t i = 0; i < length; ++i) {
        crc = static_cast<uint16_t>((crc << 8) ^ kCrcTable[((crc >> 8) ^ p[i]) & 0xFF]);
    }
    return crc;
}

bool UdfTag::Check(const uint8_t* d, size_t available, uint16_t id, uint32_t location) {
    if (available < kSize || Id(d) != id) {
        return false;
    }
    uint8_t sum = 0;
    for (uint32_t i = 0; i < kSize; ++i) {
        sum = static_cast<uint8_t>(sum + (i == kChecksumOffset ? 0 : d[i]));
    }
    if (sum != d[kChecksumOffset]) {
        return false;
    }
    if (location != kAnyLocation && Le32(d + kLocationOffset) != location) {
        return false;
    }
    uint16_t crcLength = Le16(d + kCrcLengthOffset);
    return crcLength > available - kSize || Crc(d + kSize, crcLength) == Le16(d + kCrcOffset);
}

} // namespace qmz
