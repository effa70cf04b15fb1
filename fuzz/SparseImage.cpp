#include "SparseImage.h"

#include <algorithm>
#include <cstring>

#include "ByteOrder.h"

namespace ovrin::fuzz {

namespace {

constexpr size_t kMagicBytes = sizeof(SparseImage::kMagic);
constexpr size_t kSizeFieldBytes = 4;
constexpr size_t kChunkHeaderBytes = 8;

void AppendU32(std::vector<uint8_t>* out, uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
        out->push_back(static_cast<uint8_t>(value >> shift));
    }
}

bool IsZero(const uint8_t* p, size_t length) {
    return std::all_of(p, p + length, [](uint8_t b) { return b == 0; });
}

} // namespace

bool SparseImage::IsCompact(const uint8_t* data, size_t size) {
    return size >= kMagicBytes + kSizeFieldBytes && std::memcmp(data, kMagic, kMagicBytes) == 0;
}

SparseImage SparseImage::Parse(const uint8_t* data, size_t size) {
    SparseImage image;
    if (!IsCompact(data, size)) {
        image.size_ = static_cast<uint32_t>(std::min<size_t>(size, kMaxImageBytes));
        if (image.size_ > 0) {
            image.chunks_.push_back({0, image.size_, data});
        }
        return image;
    }
    image.size_ = std::min(qmz::Le32(data + kMagicBytes), kMaxImageBytes);
    size_t pos = kMagicBytes + kSizeFieldBytes;
    while (size - pos >= kChunkHeaderBytes) {
        const uint32_t offset = qmz::Le32(data + pos);
        const uint32_t claimed = qmz::Le32(data + pos + 4);
        pos += kChunkHeaderBytes;
        const size_t present = std::min<size_t>(claimed, size - pos);
        const uint8_t* bytes = data + pos;
        pos += present;
        if (offset >= image.size_) {
            continue;
        }
        const auto length = static_cast<uint32_t>(std::min<size_t>(present, image.size_ - offset));
        if (length > 0) {
            image.chunks_.push_back({offset, length, bytes});
        }
    }
    return image;
}

std::vector<uint8_t> SparseImage::Compact(const std::vector<uint8_t>& raw) {
    std::vector<uint8_t> out(std::begin(kMagic), std::end(kMagic));
    const auto size = static_cast<uint32_t>(std::min<size_t>(raw.size(), kMaxImageBytes));
    AppendU32(&out, size);
    uint32_t pos = 0;
    while (pos < size) {
        auto blockEnd = [&](uint32_t at) { return std::min(at + kCompactBlockBytes, size); };
        if (IsZero(raw.data() + pos, blockEnd(pos) - pos)) {
            pos = blockEnd(pos);
            continue;
        }
        uint32_t end = blockEnd(pos);
        while (end < size && !IsZero(raw.data() + end, blockEnd(end) - end)) {
            end = blockEnd(end);
        }
        AppendU32(&out, pos);
        AppendU32(&out, end - pos);
        out.insert(out.end(), raw.begin() + pos, raw.begin() + end);
        pos = end;
    }
    return out;
}

std::vector<uint8_t> SparseImage::Expand() const {
    std::vector<uint8_t> image(size_);
    for (const SparseChunk& chunk : chunks_) {
        std::memcpy(image.data() + chunk.offset, chunk.bytes, chunk.length);
    }
    return image;
}

} // namespace ovrin::fuzz
