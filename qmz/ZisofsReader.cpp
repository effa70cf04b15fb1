#include "ZisofsReader.h"
#include "ByteOrder.h"

#include <algorithm>
#include <cstring>
#include <zlib.h>

#include "DirectoryRecord.h"
#include "RockRidgeParser.h"

namespace qmz {

namespace {

// The zisofs file header: magic, uncompressed size (LE32), header size / 4, log2 block size.
constexpr uint8_t kMagic[8] = {0x37, 0xE4, 0x53, 0x96, 0xC9, 0xDB, 0xD6, 0x07};
constexpr uint32_t kHeaderBytes = 16;
constexpr uint32_t kSizeOffset = 8;
constexpr uint32_t kHeaderWordsOffset = 12;
constexpr uint32_t kBlockLogOffset = 13;
constexpr uint32_t kPointerBytes = 4;
// Compressed bytes are fed to zlib in pieces of this size, so a block's input is never held
// whole.
constexpr uint32_t kInputChunk = 4096;

} // namespace

void ZisofsReader::Open(const VolumeIndex& index, uint32_t file, SectorSource& source) {
    index_ = &index;
    source_ = &source;
    file_ = file;
    const IndexEntry& e = index.Entry(file);
    size_ = e.Size();
    recordedBytes_ = 0;
    for (uint32_t i = 0; i < e.extentCount; ++i) {
        recordedBytes_ += index.ExtentOf(e, i).length;
    }
    headerRead_ = false;
    loadedBlock_ = UINT64_MAX;
}

void ZisofsReader::Close() {
    block_ = std::vector<uint8_t>();
    loadedBlock_ = UINT64_MAX;
}

Result ZisofsReader::ReadRecorded(uint64_t offset, uint8_t* dst, uint64_t length) {
    const IndexEntry& e = index_->Entry(file_);
    for (uint32_t i = 0; i < e.extentCount && length > 0; ++i) {
        const Extent x = index_->ExtentOf(e, i);
        if (offset >= x.length) {
            offset -= x.length;
            continue;
        }
        uint64_t n = std::min(length, x.length - offset);
        if (x.zeros) {
            std::memset(dst, 0, n);
        } else if (source_->CopyBytes(x.lba, x.offset + offset, dst, n) != kOk) {
            return kEngineReadFailed;
        }
        dst += n;
        length -= n;
        offset = 0;
    }
    return length == 0 ? kOk : kEngineReadFailed;
}

Result ZisofsReader::ReadHeader() {
    // The header must agree with the ZF entry's size, and its table must fit in the data.
    uint8_t h[kHeaderBytes];
    if (ReadRecorded(0, h, kHeaderBytes) != kOk || std::memcmp(h, kMagic, sizeof kMagic) != 0 ||
        Le32(h + kSizeOffset) != size_) {
        return kEngineReadFailed;
    }
    uint32_t headerBytes = uint32_t{h[kHeaderWordsOffset]} * 4;
    blockLog_ = h[kBlockLogOffset];
    if (headerBytes < kHeaderBytes || blockLog_ < kMinZisofsBlockLog ||
        blockLog_ > kMaxZisofsBlockLog) {
        return kEngineReadFailed;
    }
    blockCount_ = (size_ + (uint64_t{1} << blockLog_) - 1) >> blockLog_;
    tableOffset_ = headerBytes;
    if (tableOffset_ + (blockCount_ + 1) * kPointerBytes > recordedBytes_) {
        return kEngineReadFailed;
    }
    block_.resize(size_t{1} << blockLog_);
    headerRead_ = true;
    return kOk;
}

Result ZisofsReader::LoadBlock(uint64_t block) {
    loadedBlock_ = UINT64_MAX;
    uint8_t pointers[2 * kPointerBytes];
    if (ReadRecorded(tableOffset_ + block * kPointerBytes, pointers, sizeof pointers) != kOk) {
        return kEngineReadFailed;
    }
    uint64_t start = Le32(pointers);
    uint64_t end = Le32(pointers + kPointerBytes);
    uint64_t tableEnd = tableOffset_ + (blockCount_ + 1) * kPointerBytes;
    if (start < tableEnd || end < start || end > recordedBytes_) {
        return kEngineReadFailed;
    }
    uint64_t first = block << blockLog_;
    auto expected = static_cast<uint32_t>(std::min<uint64_t>(block_.size(), size_ - first));
    if (start == end) {
        std::memset(block_.data(), 0, expected); // a block of zeros is not recorded
    } else if (Inflate(start, end, expected) != kOk) {
        return kEngineReadFailed;
    }
    loadedBlock_ = block;
    return kOk;
}

Result ZisofsReader::Inflate(uint64_t start, uint64_t end, uint32_t expected) {
    z_stream zs{};
    if (inflateInit(&zs) != Z_OK) {
        return kEngineReadFailed;
    }
    zs.next_out = block_.data();
    zs.avail_out = expected;
    uint8_t input[kInputChunk];
    int ret = Z_OK;
    for (uint64_t pos = start; pos < end && ret == Z_OK;) {
        auto n = static_cast<uint32_t>(std::min<uint64_t>(kInputChunk, end - pos));
        if (ReadRecorded(pos, input, n) != kOk) {
            ret = Z_DATA_ERROR;
            break;
        }
        pos += n;
        zs.next_in = input;
        zs.avail_in = n;
        // Z_OK with input left means the block is full; the next call ends the stream or
        // gives Z_BUF_ERROR when the block would inflate to more than its size.
        do {
            ret = inflate(&zs, Z_NO_FLUSH);
        } while (ret == Z_OK && zs.avail_in > 0);
    }
    bool whole = ret == Z_STREAM_END && zs.total_out == expected;
    inflateEnd(&zs);
    return whole ? kOk : kEngineReadFailed;
}

Result ZisofsReader::Read(uint64_t position, uint8_t* out, uint32_t length) {
    if (!headerRead_) {
        Result r = ReadHeader();
        if (r != kOk) {
            return r;
        }
    }
    while (length > 0) {
        uint64_t block = position >> blockLog_;
        if (block != loadedBlock_) {
            Result r = LoadBlock(block);
            if (r != kOk) {
                return r;
            }
        }
        uint64_t within = position - (block << blockLog_);
        uint64_t blockBytes = std::min<uint64_t>(block_.size(), size_ - (block << blockLog_));
        auto n = static_cast<uint32_t>(std::min<uint64_t>(length, blockBytes - within));
        std::memcpy(out, block_.data() + within, n);
        out += n;
        length -= n;
        position += n;
    }
    return kOk;
}

} // namespace qmz
