// Copies of a 2048-byte-sector image in the other layouts the engine reads: raw CD sectors
// (ECMA-130) of 2352 bytes in Mode 1 or Mode 2 Form 1, 2336-byte Mode 2 sectors, 2352-byte
// sectors followed by 96 subchannel bytes, and Nero images around any of those. EDC and ECC
// are left zero, since a reader must not depend on them.
#pragma once

#include <cstdint>
#include <vector>

namespace qmz::test {

enum class SectorKind { kPlain, kMode1, kMode2Form1, kMode2, kMode1Subchannel };

enum class NeroTable { kDaoX, kDaoI, kEtn2, kEtnf };

// The image's sectors recorded as `kind`.
std::vector<uint8_t> RecordSectors(const std::vector<uint8_t>& iso, SectorKind kind);

// A Nero image: a pregap of `pregapSectors`, the track as `kind`, then a chunk chain with the
// track table as `table`, an unrelated chunk before it, "END!" and the footer ("NER5" for the
// 64-bit tables, "NERO" for the others).
std::vector<uint8_t> MakeNero(const std::vector<uint8_t>& iso, SectorKind kind, NeroTable table,
                              uint32_t pregapSectors);

} // namespace qmz::test
