// UDF images made broken or unusual on purpose by patching what genisoimage -udf wrote: each
// patched descriptor gets a valid tag again unless the tag is the fault. Each image must end
// with a negative code or a partial tree, never a crash or a hang.
#include <functional>
#include <gtest/gtest.h>

#include "ByteOrder.h"
#include "TestSupport.h"

namespace qmz::test {
namespace {

constexpr size_t kSector = 2048;
constexpr size_t kAdsOffset = 176; // genisoimage writes file entries without extended attributes

struct UdfBytes {
    std::vector<uint8_t> bytes;

    uint32_t Le32(size_t at) const { return qmz::Le32(bytes.data() + at); }
    uint16_t Le16(size_t at) const { return qmz::Le16(bytes.data() + at); }
    void Set32(size_t at, uint32_t v) {
        for (int i = 0; i < 4; ++i) {
            bytes[at + i] = static_cast<uint8_t>(v >> (8 * i));
        }
    }
    // The file identifier descriptor named `name` (8-bit compressed Unicode).
    size_t Fid(const std::string& name) const {
        for (size_t at = 0; at + 38 + name.size() < bytes.size(); at += 4) {
            size_t id = at + 38 + Le16(at + 36);
            if (Le16(at) == 257 && bytes[at + 19] == name.size() + 1 &&
                id + name.size() < bytes.size() && bytes[id] == 8 &&
                std::equal(name.begin(), name.end(), bytes.begin() + id + 1)) {
                return at;
            }
        }
        ADD_FAILURE() << "no identifier " << name;
        return 0;
    }
    size_t PartitionStart() const {
        for (size_t s = 0; s < bytes.size() / kSector; ++s) {
            if (Le16(s * kSector) == 5) {
                return Le32(s * kSector + 188);
            }
        }
        return 0;
    }
    uint32_t IcbBlock(size_t fid) const { return Le32(fid + 24); }
    size_t Block(uint32_t block) const { return (PartitionStart() + block) * kSector; }
    size_t Entry(const std::string& name) const { return Block(IcbBlock(Fid(name))); }
    // Recomputes the CRC (ECMA-167 1/7.2.6) and the checksum of the tag at `at`.
    void Retag(size_t at) {
        uint16_t crc = 0;
        for (size_t i = 0; i < Le16(at + 10); ++i) {
            crc ^= static_cast<uint16_t>(bytes[at + 16 + i] << 8);
            for (int bit = 0; bit < 8; ++bit) {
                crc = static_cast<uint16_t>((crc & 0x8000) != 0 ? (crc << 1) ^ 0x1021 : crc << 1);
            }
        }
        bytes[at + 8] = static_cast<uint8_t>(crc);
        bytes[at + 9] = static_cast<uint8_t>(crc >> 8);
        uint8_t sum = 0;
        for (size_t i = 0; i < 16; ++i) {
            sum = static_cast<uint8_t>(sum + (i == 4 ? 0 : bytes[at + i]));
        }
        bytes[at + 4] = sum;
    }
};

struct BrokenCase {
    const char* name;
    std::function<void(UdfBytes&)> patch;
    std::function<void(Session&)> check; // after a scan that ended kOk
    uint32_t fileSystem = kFsUdfBridge;
};

// The base image: genisoimage -udf of A/X.TXT, B/Y.TXT (5000 bytes), F1.TXT, F2.TXT.
const BrokenCase kCases[] = {
    {"FolderIcbPointsToItself",
     [](UdfBytes& u) {
         size_t fid = u.Fid("X.TXT");
         u.bytes[fid + 18] |= 2; // now a folder, whose entry is A's own
         u.Set32(fid + 24, u.IcbBlock(u.Fid("A")));
         u.Retag(fid);
     },
     [](Session& s) {
         Tree tree = s.Walk();
         EXPECT_TRUE(tree["A/X.TXT"].directory);
         EXPECT_EQ(tree.count("A/X.TXT/X.TXT"), 0u);
         EXPECT_EQ(tree.count("B/Y.TXT"), 1u);
     }},
    {"AllocationChainCycles",
     [](UdfBytes& u) {
         // F2's data block becomes an allocation extent descriptor continuing into itself.
         size_t entry = u.Entry("F2.TXT");
         uint32_t block = u.Le32(entry + kAdsOffset + 4);
         u.Set32(entry + kAdsOffset, 3u << 30 | 32);
         u.Retag(entry);
         size_t aed = u.Block(block);
         std::fill_n(u.bytes.begin() + aed, kSector, 0);
         u.bytes[aed] = 2; // tag 258
         u.bytes[aed + 1] = 1;
         u.bytes[aed + 10] = 16; // CRC length
         u.Set32(aed + 12, block);
         u.Set32(aed + 20, 8);
         u.Set32(aed + 24, 3u << 30 | 32);
         u.Set32(aed + 28, block);
         u.Retag(aed);
     },
     [](Session& s) {
         Tree tree = s.Walk();
         EXPECT_EQ(tree["F2.TXT"].size, 0u);
         EXPECT_EQ(tree["F1.TXT"].size, 1u);
     }},
    {"FileEntryWithABadChecksum", [](UdfBytes& u) { u.bytes[u.Entry("F1.TXT") + 4] ^= 1; },
     [](Session& s) {
         Tree tree = s.Walk();
         EXPECT_EQ(tree.count("F1.TXT"), 0u);
         EXPECT_EQ(tree.count("F2.TXT"), 1u);
     }},
    {"AllocationLengthPastTheBlock",
     [](UdfBytes& u) {
         size_t entry = u.Entry("Y.TXT");
         u.Set32(entry + 172, 0xFFFFFF00);
         u.Retag(entry);
     },
     [](Session& s) { EXPECT_EQ(s.Walk().count("B/Y.TXT"), 0u); }},
    {"ExtentPastTheEndOfTheImage",
     [](UdfBytes& u) {
         size_t entry = u.Entry("Y.TXT");
         u.Set32(entry + kAdsOffset + 4, 0x7FFFFFF0);
         u.Retag(entry);
     },
     [](Session& s) {
         std::vector<uint8_t> bytes;
         EXPECT_EQ(s.ReadAll("B/Y.TXT", &bytes), kOk);
         EXPECT_TRUE(bytes.empty());
     }},
    {"FolderLongerThanTheImage",
     [](UdfBytes& u) {
         size_t entry = u.Entry("B");
         u.Set32(entry + 60, 0x40000000); // information length, high word
         u.Retag(entry);
     },
     [](Session& s) { EXPECT_EQ(s.Walk().count("B/Y.TXT"), 1u); }},
    {"HiddenListedDeletedNot",
     [](UdfBytes& u) {
         size_t hidden = u.Fid("F1.TXT");
         size_t deleted = u.Fid("F2.TXT");
         u.bytes[hidden + 18] |= 1;
         u.bytes[deleted + 18] |= 4;
         u.Retag(hidden);
         u.Retag(deleted);
     },
     [](Session& s) {
         file_attr attr{};
         std::map<std::string, uint32_t> attributes;
         for (Result r = s.fs->FindFirst(u"", &attr); r == kOk; r = s.fs->FindNext(&attr)) {
             attributes[ToUtf8(attr.strName)] = attr.uAttributes;
         }
         s.fs->FindClose();
         EXPECT_EQ(attributes["F1.TXT"], 0x02u);
         EXPECT_EQ(attributes.count("F2.TXT"), 0u);
     }},
    // Without a logical volume descriptor whose tag holds, the ISO 9660 side is shown.
    {"NoLogicalVolumeFallsBackToIso9660",
     [](UdfBytes& u) {
         for (size_t s = 0; s < u.bytes.size() / kSector; ++s) {
             if (u.Le16(s * kSector) == 6) {
                 u.bytes[s * kSector + 4] ^= 1;
             }
         }
     },
     [](Session& s) { EXPECT_EQ(s.Walk().count("F1.TXT"), 1u); }, kFsIso9660},
    // A copy of the anchor's first 512 bytes checks out at 512-byte blocks but leads nowhere
    // there: the volume is still read at its own block size.
    {"AnchorLiesAboutTheBlockSize",
     [](UdfBytes& u) {
         std::copy_n(u.bytes.begin() + 256 * kSector, 512, u.bytes.begin() + 256 * 512);
     },
     [](Session& s) { EXPECT_EQ(s.Walk().count("B/Y.TXT"), 1u); }},
    {"LogicalVolumeDisagreesOnTheBlockSize",
     [](UdfBytes& u) {
         for (size_t s = 0; s < u.bytes.size() / kSector; ++s) {
             if (u.Le16(s * kSector) == 6) {
                 u.Set32(s * kSector + 212, 512);
                 u.Retag(s * kSector);
             }
         }
     },
     [](Session& s) { EXPECT_EQ(s.Walk().count("F1.TXT"), 1u); }, kFsIso9660},
    // 1000 bytes are no whole number of blocks of any size; the last anchor is cut off.
    {"ImageCutWithinABlock", [](UdfBytes& u) { u.bytes.resize(u.bytes.size() - 1000); },
     [](Session& s) { EXPECT_EQ(s.Walk().count("F1.TXT"), 1u); }},
    {"ImageEndsWithAPartialBlock", [](UdfBytes& u) { u.bytes.resize(u.bytes.size() + 1000); },
     [](Session& s) {
         std::vector<uint8_t> bytes;
         EXPECT_EQ(s.ReadAll("B/Y.TXT", &bytes), kOk);
         EXPECT_EQ(bytes.size(), 5000u);
     }},
};

class UdfBrokenImageTest : public testing::TestWithParam<BrokenCase> {};

TEST_P(UdfBrokenImageTest, EndsWithAPartialTree) {
    TempDir dir;
    WriteFile(dir / "src/A/X.TXT", PatternBytes(1, 1));
    WriteFile(dir / "src/B/Y.TXT", PatternBytes(5000, 2));
    WriteFile(dir / "src/F1.TXT", PatternBytes(1, 3));
    WriteFile(dir / "src/F2.TXT", PatternBytes(2, 4));
    fs::path iso = dir / "image.iso";
    ASSERT_TRUE(RunCommand("genisoimage -quiet -udf -o " + Quote(iso) + " " + Quote(dir / "src")));
    UdfBytes image{ReadWholeFile(iso)};
    GetParam().patch(image);
    WriteFile(iso, image.bytes);

    Session session;
    ASSERT_EQ(session.Open(iso), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    fsInfo info{};
    ASSERT_EQ(session.fs->GetFsInfo(&info), kOk);
    EXPECT_EQ(info.uFileSystem, GetParam().fileSystem);
    GetParam().check(session);
}

INSTANTIATE_TEST_SUITE_P(Patches, UdfBrokenImageTest, testing::ValuesIn(kCases), kCaseName);

} // namespace
} // namespace qmz::test
