#include "NeroImage.h"
#include "ByteOrder.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qmz {

namespace {

constexpr uint32_t kChunkHeaderBytes = 8; // identifier and big-endian length
// A real chain has a dozen chunks or so; this bounds the walk of a hostile one.
constexpr uint32_t kMaxChunks = 256;
// The disc-at-once table's header, and its 64-bit entries, the widest of all tables.
constexpr uint32_t kDaoHeaderBytes = 22;
constexpr uint32_t kDaoXEntryBytes = 42;

struct Footer {
    char id[4];
    uint32_t bytes;       // the footer's own length
    uint32_t offsetBytes; // the width of the offset after the identifier
};
constexpr Footer kFooters[] = {{{'N', 'E', 'R', '5'}, 12, 8}, {{'N', 'E', 'R', 'O'}, 8, 4}};

} // namespace

bool NeroImage::FindChunks(const ImageFile& file, uint64_t* first, uint64_t* end) {
    for (const Footer& footer : kFooters) {
        uint8_t bytes[12];
        if (file.Size() < footer.bytes ||
            file.Read(file.Size() - footer.bytes, bytes, footer.bytes) != kOk ||
            std::memcmp(bytes, footer.id, 4) != 0) {
            continue;
        }
        *end = file.Size() - footer.bytes;
        *first = BigEndian(bytes + 4, footer.offsetBytes);
        return *first <= *end;
    }
    return false;
}

const NeroImage::Table* NeroImage::TableFor(const uint8_t* id) {
    // Disc-at-once entries: ISRC, sector size, mode, two unknown bytes, then the offsets of
    // index 0, index 1 and the track's end. Track-at-once entries: offset, length, mode, LBA.
    static constexpr Table kDaoX = {kDaoHeaderBytes, kDaoXEntryBytes, 12, 26, 34, 0, 8};
    static constexpr Table kDaoI = {kDaoHeaderBytes, 30, 12, 22, 26, 0, 4};
    static constexpr Table kEtn2 = {0, 32, 0, 0, 0, 8, 8};
    static constexpr Table kEtnf = {0, 20, 0, 0, 0, 4, 4};
    static constexpr std::pair<const char*, const Table*> kTables[] = {
        {"DAOX", &kDaoX}, {"DAOI", &kDaoI}, {"ETN2", &kEtn2}, {"ETNF", &kEtnf}};
    for (const auto& [name, table] : kTables) {
        if (std::memcmp(id, name, 4) == 0) {
            return table;
        }
    }
    return nullptr;
}

bool NeroImage::ReadTable(const ImageFile& file, uint64_t at, uint64_t length, const Table& table,
                          uint64_t limit, NeroTrack (&tracks)[kMaxTracks], uint32_t* count) {
    uint8_t body[kDaoHeaderBytes + kMaxTracks * kDaoXEntryBytes];
    if (length < table.headerBytes) {
        return false;
    }
    uint64_t entries =
        std::min<uint64_t>((length - table.headerBytes) / table.entryBytes, kMaxTracks);
    if (file.Read(at, body, table.headerBytes + entries * table.entryBytes) != kOk) {
        return false;
    }
    for (uint64_t i = 0; i < entries; ++i) {
        const uint8_t* e = body + table.headerBytes + i * table.entryBytes;
        NeroTrack track{};
        track.start = BigEndian(e + table.startAt, table.numberBytes);
        if (table.endAt != 0) {
            track.end = BigEndian(e + table.endAt, table.numberBytes);
        } else {
            uint64_t span = BigEndian(e + table.lengthAt, table.numberBytes);
            track.end = span <= limit ? track.start + span : 0;
        }
        track.sectorSize =
            table.sizeAt != 0 ? static_cast<uint32_t>(BigEndian(e + table.sizeAt, 2)) : 0;
        if (track.start < track.end && track.end <= limit) {
            tracks[(*count)++] = track;
        }
    }
    return true;
}

bool NeroImage::ReadTracks(const ImageFile& file, NeroTrack (&tracks)[kMaxTracks],
                           uint32_t* count) {
    *count = 0;
    uint64_t pos = 0;
    uint64_t end = 0;
    if (!FindChunks(file, &pos, &end)) {
        return false;
    }
    uint64_t tracksEnd = pos;
    for (uint32_t n = 0; n < kMaxChunks && end - pos >= kChunkHeaderBytes; ++n) {
        uint8_t header[kChunkHeaderBytes];
        if (file.Read(pos, header, sizeof(header)) != kOk) {
            return false;
        }
        uint64_t length = BigEndian(header + 4, 4);
        pos += kChunkHeaderBytes;
        if (length > end - pos) {
            return false;
        }
        if (std::memcmp(header, "END!", 4) == 0) {
            break;
        }
        const Table* table = TableFor(header);
        if (table != nullptr && *count == 0) {
            if (!ReadTable(file, pos, length, *table, tracksEnd, tracks, count)) {
                return false;
            }
        }
        pos += length;
    }
    return true;
}

} // namespace qmz
