// A fuzz input that describes an image by its non-zero parts. A UDF volume's anchor sits at
// sector 256, so a raw image reaches past half a megabyte that is almost all zeros; written as
// chunks, the same image is a few kilobytes, which libFuzzer mutates and copies far faster.
//
//   "OvSp" u32 image size, then chunks until the input ends: u32 offset, u32 length, bytes
//
// Numbers are little-endian; whatever no chunk covers reads as zeros, and a later chunk wins
// where chunks overlap. An input without the magic is the raw image itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ovrin::fuzz {

struct SparseChunk {
    uint32_t offset = 0;
    uint32_t length = 0;
    const uint8_t* bytes = nullptr;
};

class SparseImage {
public:
    static constexpr uint8_t kMagic[4] = {'O', 'v', 'S', 'p'};
    // Bounds the memory file and every chunk; past the largest seed's UDF anchor (sector 256
    // of 4096-byte blocks, at one megabyte).
    static constexpr uint32_t kMaxImageBytes = 2u << 20;

    // Whether `data` starts with the magic and the image size.
    static bool IsCompact(const uint8_t* data, size_t size);
    // Reads `data` without trusting it: sizes are cut to kMaxImageBytes, chunks to the image and
    // to the input's end, and a truncated chunk header ends the list. The chunks point into
    // `data`, which must outlive the result.
    static SparseImage Parse(const uint8_t* data, size_t size);

    // Zero runs are dropped in blocks of the smallest sector the engine reads, so that they are
    // dropped whatever the image's sector size.
    static constexpr uint32_t kCompactBlockBytes = 512;

    // The compact input for `raw` (at most kMaxImageBytes): runs of non-zero blocks become
    // chunks.
    static std::vector<uint8_t> Compact(const std::vector<uint8_t>& raw);

    uint32_t Size() const { return size_; }
    const std::vector<SparseChunk>& Chunks() const { return chunks_; }
    // The whole image, zeros and all.
    std::vector<uint8_t> Expand() const;

private:
    uint32_t size_ = 0;
    std::vector<SparseChunk> chunks_;
};

} // namespace ovrin::fuzz
