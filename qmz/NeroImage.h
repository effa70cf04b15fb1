// The track table of a Nero image: the recorded tracks come first, then a chain of chunks that
// a footer at the very end of the file leads to ("NER5" and a 64-bit offset, or in older images
// "NERO" and a 32-bit one). All numbers are big-endian.
#pragma once

#include <cstdint>

#include "ImageFile.h"

namespace qmz {

struct NeroTrack {
    uint64_t start;      // file offset of the track's first sector (index 1, after any pregap)
    uint64_t end;        // file offset just past its last sector
    uint32_t sectorSize; // bytes per recorded sector; 0 when the table does not say
};

class NeroImage {
public:
    // CD tracks are numbered 1 to 99.
    static constexpr uint32_t kMaxTracks = 99;

    // Reads the track table of the disc-at-once ("DAOX", "DAOI") or track-at-once ("ETN2",
    // "ETNF") chunk into `tracks`, each checked to lie before the chunks. False when the file
    // has no Nero footer or its chunk chain does not fit in the file.
    static bool ReadTracks(const ImageFile& file, NeroTrack (&tracks)[kMaxTracks], uint32_t* count);

private:
    struct Table {
        uint32_t headerBytes; // before the first entry
        uint32_t entryBytes;
        uint32_t sizeAt;      // sector size field, 16-bit; 0 for none
        uint32_t startAt;     // track start field
        uint32_t endAt;       // track end field, or 0 when lengthAt is used
        uint32_t lengthAt;    // track length field
        uint32_t numberBytes; // 4 or 8
    };

    static bool FindChunks(const ImageFile& file, uint64_t* first, uint64_t* end);
    static const Table* TableFor(const uint8_t* id);
    // Reads the entries of the table chunk of `length` bytes at `at`, keeping the tracks that
    // end by `limit`.
    static bool ReadTable(const ImageFile& file, uint64_t at, uint64_t length, const Table& table,
                          uint64_t limit, NeroTrack (&tracks)[kMaxTracks], uint32_t* count);
};

} // namespace qmz
