// Numbers as disc formats record them: ECMA-119 and ECMA-167 little-endian fields, and the
// big-endian fields of Nero's chunks. Callers check that the bytes lie inside their buffer.
#pragma once

#include <cstdint>

namespace qmz {

inline uint16_t Le16(const uint8_t* p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}

inline uint32_t Le32(const uint8_t* p) {
    return uint32_t{p[0]} | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
}

inline uint64_t Le64(const uint8_t* p) {
    return Le32(p) | uint64_t{Le32(p + 4)} << 32;
}

// A big-endian number of `bytes` bytes (at most 8).
inline uint64_t BigEndian(const uint8_t* p, uint32_t bytes) {
    uint64_t v = 0;
    for (uint32_t i = 0; i < bytes; ++i) {
        v = v << 8 | p[i];
    }
    return v;
}

} // namespace qmz
