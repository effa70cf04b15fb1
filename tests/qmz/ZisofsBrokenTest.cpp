// zisofs files written by hand (the format of zisofs-tools), some damaged on purpose, put in an
// image by genisoimage -z, which gives each its ZF entry from the file's header. A damaged file
// must fail to read with kEngineReadFailed and leave the image readable.
#include <functional>
#include <gtest/gtest.h>
#include <zlib.h>

#include "TestSupport.h"

namespace qmz::test {
namespace {

constexpr uint32_t kBlockLog = 15;
constexpr uint32_t kBlock = 1u << kBlockLog;
constexpr uint32_t kTableOffset = 16;
constexpr size_t kDataBytes = 2 * kBlock + 1000; // two whole blocks and a partial one

struct ZisofsCase {
    const char* name;
    int firstBlockDelta; // block 0 deflated from this many bytes more (or fewer) than its size
    std::function<void(std::vector<uint32_t>&)> patchPointers;
    Result expected;
};

const ZisofsCase kCases[] = {
    {"intact", 0, nullptr, kOk},
    {"short_block", -1, nullptr, kEngineReadFailed},
    {"long_block", 1, nullptr, kEngineReadFailed},
    {"pointer_past_the_data", 0, [](std::vector<uint32_t>& p) { p.back() = 0x7FFFFFF0; },
     kEngineReadFailed},
    {"pointers_decrease", 0, [](std::vector<uint32_t>& p) { std::swap(p[1], p[2]); },
     kEngineReadFailed},
    {"pointer_into_the_table", 0, [](std::vector<uint32_t>& p) { p[0] = 0; }, kEngineReadFailed},
};

void PutLe32(std::vector<uint8_t>& out, size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) {
        out[at + i] = static_cast<uint8_t>(v >> (8 * i));
    }
}

std::vector<uint8_t> Deflate(const uint8_t* data, size_t size) {
    uLongf length = compressBound(size);
    std::vector<uint8_t> out(length);
    EXPECT_EQ(compress2(out.data(), &length, data, size, 9), Z_OK);
    out.resize(length);
    return out;
}

// The zisofs file of `data`, damaged as `c` says.
std::vector<uint8_t> MakeZisofs(const std::vector<uint8_t>& data, const ZisofsCase& c) {
    static constexpr uint8_t kMagic[] = {0x37, 0xE4, 0x53, 0x96, 0xC9, 0xDB, 0xD6, 0x07};
    size_t blocks = (data.size() + kBlock - 1) / kBlock;
    std::vector<uint8_t> out(kTableOffset + 4 * (blocks + 1));
    std::copy(std::begin(kMagic), std::end(kMagic), out.begin());
    PutLe32(out, 8, static_cast<uint32_t>(data.size()));
    out[12] = kTableOffset / 4;
    out[13] = kBlockLog;
    std::vector<uint32_t> pointers{static_cast<uint32_t>(out.size())};
    for (size_t b = 0; b < blocks; ++b) {
        size_t length = std::min<size_t>(kBlock, data.size() - b * kBlock);
        length += b == 0 ? c.firstBlockDelta : 0;
        std::vector<uint8_t> stream = Deflate(data.data() + b * kBlock, length);
        out.insert(out.end(), stream.begin(), stream.end());
        pointers.push_back(static_cast<uint32_t>(out.size()));
    }
    if (c.patchPointers != nullptr) {
        c.patchPointers(pointers);
    }
    for (size_t i = 0; i < pointers.size(); ++i) {
        PutLe32(out, kTableOffset + 4 * i, pointers[i]);
    }
    return out;
}

TEST(ZisofsBrokenTest, DamagedFilesFailToRead) {
    TempDir dir;
    std::vector<uint8_t> data = PatternBytes(kDataBytes, 1);
    for (const ZisofsCase& c : kCases) {
        WriteFile(dir / "src" / c.name, MakeZisofs(data, c));
    }
    ASSERT_TRUE(RunCommand("genisoimage -quiet -R -z -o " + Quote(dir / "z.iso") + " " +
                           Quote(dir / "src")));
    Session session;
    ASSERT_EQ(session.Open(dir / "z.iso"), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    Tree tree = session.Walk();
    for (const ZisofsCase& c : kCases) {
        EXPECT_EQ(tree[c.name].size, kDataBytes) << c.name;
        std::vector<uint8_t> bytes;
        EXPECT_EQ(session.ReadAll(c.name, &bytes), c.expected) << c.name;
        if (c.expected == kOk) {
            EXPECT_EQ(bytes, data) << c.name;
        }
    }
}

} // namespace
} // namespace qmz::test
