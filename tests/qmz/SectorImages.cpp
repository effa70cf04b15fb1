#include "SectorImages.h"

#include <algorithm>

namespace qmz::test {

namespace {

constexpr size_t kData = 2048;
constexpr uint32_t kLeadInFrames = 150; // ECMA-130: LBA 0 is at 00:02:00
const uint8_t kSync[12] = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0};

uint32_t StrideOf(SectorKind kind) {
    switch (kind) {
    case SectorKind::kPlain:
        return 2048;
    case SectorKind::kMode2:
        return 2336;
    case SectorKind::kMode1Subchannel:
        return 2448;
    default:
        return 2352;
    }
}

uint8_t Bcd(uint32_t v) {
    return static_cast<uint8_t>((v / 10) << 4 | v % 10);
}

// One sector of 2352 bytes: sync, header with the address and mode, the Mode 2 subheader
// (twice: file, channel, submode "data", coding), the data, zero EDC/ECC.
void RawSector(const uint8_t* data, uint32_t lba, bool mode2, uint8_t* out) {
    std::copy(kSync, kSync + 12, out);
    uint32_t frames = lba + kLeadInFrames;
    out[12] = Bcd(frames / 75 / 60);
    out[13] = Bcd(frames / 75 % 60);
    out[14] = Bcd(frames % 75);
    out[15] = mode2 ? 2 : 1;
    static constexpr uint8_t kSubheader[8] = {0, 0, 0x08, 0, 0, 0, 0x08, 0};
    if (mode2) {
        std::copy(kSubheader, kSubheader + 8, out + 16);
    }
    std::copy(data, data + kData, out + (mode2 ? 24 : 16));
}

void Append(std::vector<uint8_t>& out, uint64_t v, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) {
        out.push_back(static_cast<uint8_t>(v >> (8 * i)));
    }
}

void AppendId(std::vector<uint8_t>& out, const char* id) {
    out.insert(out.end(), id, id + 4);
}

// The track table chunk for one track of `sectorSize` bytes from `start` to `end`.
void AppendTable(std::vector<uint8_t>& out, NeroTable table, uint64_t pregap, uint64_t start,
                 uint64_t end, uint32_t sectorSize) {
    bool dao = table == NeroTable::kDaoX || table == NeroTable::kDaoI;
    int wide = table == NeroTable::kDaoX || table == NeroTable::kEtn2 ? 8 : 4;
    std::vector<uint8_t> body;
    if (dao) {
        Append(body, 0, 4); // the chunk's length again, little-endian; not read
        body.insert(body.end(), 16, uint8_t{0}); // UPC, TOC type
        body.push_back(1);                       // first and last track
        body.push_back(1);
        body.insert(body.end(), 12, uint8_t{0}); // ISRC
        Append(body, sectorSize, 2);
        Append(body, 0, 4); // mode, unknown
        Append(body, pregap, wide);
        Append(body, start, wide);
        Append(body, end, wide);
    } else {
        Append(body, start, wide);
        Append(body, end - start, wide);
        Append(body, 0, 4); // mode
        Append(body, 0, 4); // start LBA
        Append(body, 0, table == NeroTable::kEtn2 ? 8 : 4);
    }
    const char* ids[] = {"DAOX", "DAOI", "ETN2", "ETNF"};
    AppendId(out, ids[static_cast<int>(table)]);
    Append(out, body.size(), 4);
    out.insert(out.end(), body.begin(), body.end());
}

} // namespace

std::vector<uint8_t> RecordSectors(const std::vector<uint8_t>& iso, SectorKind kind) {
    if (kind == SectorKind::kPlain) {
        return iso;
    }
    uint32_t stride = StrideOf(kind);
    size_t count = iso.size() / kData;
    std::vector<uint8_t> out(count * stride);
    uint8_t raw[2352];
    for (size_t i = 0; i < count; ++i) {
        bool mode2 = kind == SectorKind::kMode2Form1 || kind == SectorKind::kMode2;
        RawSector(iso.data() + i * kData, static_cast<uint32_t>(i), mode2, raw);
        // A 2336-byte sector is the raw Mode 2 sector without its sync and header.
        size_t skip = kind == SectorKind::kMode2 ? 16 : 0;
        std::copy(raw + skip, raw + 2352, out.begin() + i * stride);
    }
    return out;
}

std::vector<uint8_t> MakeNero(const std::vector<uint8_t>& iso, SectorKind kind, NeroTable table,
                              uint32_t pregapSectors) {
    uint32_t stride = StrideOf(kind);
    std::vector<uint8_t> out(size_t{pregapSectors} * stride);
    std::vector<uint8_t> track = RecordSectors(iso, kind);
    out.insert(out.end(), track.begin(), track.end());
    uint64_t chunks = out.size();
    AppendId(out, "SINF");
    Append(out, 4, 4);
    Append(out, 1, 4);
    AppendTable(out, table, 0, size_t{pregapSectors} * stride, chunks, stride);
    AppendId(out, "END!");
    Append(out, 0, 4);
    bool wide = table == NeroTable::kDaoX || table == NeroTable::kEtn2;
    AppendId(out, wide ? "NER5" : "NERO");
    Append(out, chunks, wide ? 8 : 4);
    return out;
}

} // namespace qmz::test
