#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "SparseImage.h"
#include "TestFiles.h"

using ovrin::fuzz::SparseImage;
using Bytes = std::vector<uint8_t>;

namespace {

void Append(Bytes* out, uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
        out->push_back(static_cast<uint8_t>(value >> shift));
    }
}

Bytes Header(uint32_t size) {
    Bytes out{'O', 'v', 'S', 'p'};
    Append(&out, size);
    return out;
}

Bytes Chunk(Bytes input, uint32_t offset, uint32_t claimed, const std::string& bytes) {
    Append(&input, offset);
    Append(&input, claimed);
    input.insert(input.end(), bytes.begin(), bytes.end());
    return input;
}

Bytes Text(const std::string& text) {
    return {text.begin(), text.end()};
}

struct ParseCase {
    const char* name;
    Bytes input;
    Bytes image;
};

TEST(SparseImageTest, ParsesUntrustedInputs) {
    const Bytes kHeader6 = Header(6);
    const ParseCase kCases[] = {
        {"empty input", {}, {}},
        {"raw image", Text("abc"), Text("abc")},
        {"magic without a size is raw", Text("OvSp\1\2"), Text("OvSp\1\2")},
        {"header alone is zeros", Header(4), Bytes(4)},
        {"one chunk", Chunk(kHeader6, 2, 2, "xy"), Text(std::string("\0\0xy\0\0", 6))},
        {"truncated chunk header ignored",
         [&] {
             Bytes in = Chunk(kHeader6, 0, 1, "a");
             in.insert(in.end(), {1, 0, 0, 0, 1});
             return in;
         }(),
         Text(std::string("a\0\0\0\0\0", 6))},
        {"chunk cut at the input's end", Chunk(kHeader6, 1, 10, "xyz"),
         Text(std::string("\0xyz\0\0", 6))},
        {"chunk cut at the image's end", Chunk(kHeader6, 4, 4, "wxyz"),
         Text(std::string("\0\0\0\0wx", 6))},
        {"chunk past the end skipped, next kept", Chunk(Chunk(kHeader6, 6, 1, "a"), 0, 1, "b"),
         Text(std::string("b\0\0\0\0\0", 6))},
        {"chunk at the largest offset", Chunk(kHeader6, 0xFFFFFFFF, 0xFFFFFFFF, "a"), Bytes(6)},
        {"later chunk wins", Chunk(Chunk(kHeader6, 0, 4, "aaaa"), 2, 3, "bbb"),
         Text(std::string("aabbb\0", 6))},
    };
    for (const ParseCase& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(SparseImage::Parse(c.input.data(), c.input.size()).Expand(), c.image);
    }
}

TEST(SparseImageTest, CutsSizesToTheLargestImage) {
    const Bytes header = Header(0xFFFFFFFF);
    EXPECT_EQ(SparseImage::Parse(header.data(), header.size()).Size(), SparseImage::kMaxImageBytes);
    const Bytes raw(SparseImage::kMaxImageBytes + 1, 'r');
    EXPECT_EQ(SparseImage::Parse(raw.data(), raw.size()).Size(), SparseImage::kMaxImageBytes);
}

Bytes WithBytesAt(Bytes image, size_t offset, const Bytes& bytes) {
    std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<ptrdiff_t>(offset));
    return image;
}

TEST(SparseImageTest, CompactFormExpandsToTheOriginal) {
    constexpr size_t kAnchor = 256 * 2048;
    const Bytes kPattern = testsupport::PatternBytes(700, 7);
    struct Case {
        const char* name;
        Bytes raw;
        size_t maxCompactBytes;
    };
    const Case kCases[] = {
        {"empty", {}, 8},
        {"all zeros", Bytes(8192), 8},
        {"dense", testsupport::PatternBytes(5000, 3), 5000 + 16},
        {"unaligned bytes and a partial last block", WithBytesAt(Bytes(3000), 2999, {1}),
         8 + 8 + 440},
        {"volume with an anchor far out",
         WithBytesAt(WithBytesAt(Bytes(kAnchor + 4096), 32768, kPattern), kAnchor, kPattern),
         8 + 2 * (8 + 1024)},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const Bytes compact = SparseImage::Compact(c.raw);
        EXPECT_TRUE(SparseImage::IsCompact(compact.data(), compact.size()));
        EXPECT_LE(compact.size(), c.maxCompactBytes);
        EXPECT_EQ(SparseImage::Parse(compact.data(), compact.size()).Expand(), c.raw);
    }
}

} // namespace
