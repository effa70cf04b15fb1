// Reads a zisofs file (the format of zisofs-tools and libisofs, marked by a Rock Ridge ZF
// entry): a header, a table of block pointers, then each block deflated on its own by zlib.
// Only one uncompressed block is held at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "QmzTypes.h"
#include "SectorSource.h"
#include "VolumeIndex.h"

namespace qmz {

class ZisofsReader {
public:
    // Starts on entry `file` of `index`, whose extents hold the compressed data.
    void Open(const VolumeIndex& index, uint32_t file, SectorSource& source);
    // Frees the block buffer.
    void Close();
    // Copies `length` uncompressed bytes from `position`, which the caller keeps within the
    // file's size. kEngineReadFailed when the compressed data is damaged.
    Result Read(uint64_t position, uint8_t* out, uint32_t length);

private:
    Result ReadHeader();
    Result LoadBlock(uint64_t block);
    Result Inflate(uint64_t start, uint64_t end, uint32_t expected);
    // Bytes of the compressed data, which may span several extents.
    Result ReadRecorded(uint64_t offset, uint8_t* dst, uint64_t length);

    const VolumeIndex* index_ = nullptr;
    SectorSource* source_ = nullptr;
    uint32_t file_ = 0;
    uint64_t size_ = 0;          // uncompressed, as listed
    uint64_t recordedBytes_ = 0; // compressed, as stored
    bool headerRead_ = false;
    uint32_t blockLog_ = 0;
    uint64_t tableOffset_ = 0;
    uint64_t blockCount_ = 0;
    uint64_t loadedBlock_ = UINT64_MAX;
    std::vector<uint8_t> block_;
};

} // namespace qmz
