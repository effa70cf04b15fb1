// Images made broken on purpose by patching a genisoimage image. Each must end with a negative
// code or a partial tree: never a crash, a hang or a huge allocation (the sanitizer build
// watches for those).
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>

#include "ByteOrder.h"
#include "ImageFile.h"
#include "IsoScanner.h"
#include "IsoVolume.h"
#include "PlainSectorSource.h"
#include "TestSupport.h"

namespace qmz::test {
namespace {

constexpr size_t kSector = 2048;

// An image's bytes with the ECMA-119 fields the patches need.
struct IsoBytes {
    std::vector<uint8_t> bytes;

    uint32_t Le32(size_t at) const { return qmz::Le32(bytes.data() + at); }
    // Both-byte-order 32-bit field (ECMA-119 7.3.3).
    void SetBoth32(size_t at, uint32_t v) {
        for (int i = 0; i < 4; ++i) {
            bytes[at + i] = static_cast<uint8_t>(v >> (8 * i));
            bytes[at + 7 - i] = static_cast<uint8_t>(v >> (8 * i));
        }
    }
    size_t RootDirectory() const { return size_t{Le32(16 * kSector + 156 + 2)} * kSector; }
    // The record named `id` among the records of the directory sector at byte `dir`.
    size_t Record(size_t dir, const std::string& id) const {
        for (size_t pos = dir; bytes[pos] != 0; pos += bytes[pos]) {
            if (std::string(bytes.begin() + pos + 33, bytes.begin() + pos + 33 + bytes[pos + 32]) ==
                id) {
                return pos;
            }
        }
        ADD_FAILURE() << "no record " << id;
        return dir;
    }
    size_t Extent(size_t record) const { return size_t{Le32(record + 2)} * kSector; }
    size_t SystemUse(size_t record) const {
        uint8_t idLength = bytes[record + 32];
        return record + 33 + idLength + (idLength % 2 == 0 ? 1 : 0);
    }
    void Put(size_t at, std::initializer_list<uint8_t> values) {
        std::copy(values.begin(), values.end(), bytes.begin() + static_cast<long>(at));
    }
    // Appends one zero sector and gives its number.
    uint32_t AppendSector() {
        bytes.resize(bytes.size() + kSector);
        return static_cast<uint32_t>(bytes.size() / kSector - 1);
    }
    // Writes a SUSP CE entry leading to `length` bytes at sector `lba`, offset `offset`.
    void WriteCe(size_t at, uint32_t lba, uint32_t offset, uint32_t length) {
        Put(at, {'C', 'E', 28, 1});
        SetBoth32(at + 4, lba);
        SetBoth32(at + 12, offset);
        SetBoth32(at + 20, length);
    }
};

struct BrokenCase {
    const char* name;
    std::function<void(IsoBytes&)> patch;
    Result open;                         // what OpenDrive and Load give
    std::function<void(Session&)> check; // after a scan that did not crash
};

// The base image: genisoimage -R of A/X.TXT, B/Y.TXT, F1.TXT, F2.TXT.
const BrokenCase kCases[] = {
    {"TruncatedInTheDescriptors", [](IsoBytes& iso) { iso.bytes.resize(16 * kSector + 100); },
     kEngineBadImage, nullptr},
    {"TruncatedBeforeTheRoot", [](IsoBytes& iso) { iso.bytes.resize(iso.RootDirectory()); }, kOk,
     [](Session& s) { EXPECT_EQ(s.reader->Finish(), kEngineDiscCorrupt); }},
    {"TruncatedInTheFileData",
     [](IsoBytes& iso) {
         iso.bytes.resize(iso.Extent(iso.Record(iso.RootDirectory(), "F2.TXT;1")));
     },
     kOk,
     [](Session& s) {
         std::vector<uint8_t> bytes;
         EXPECT_EQ(s.ReadAll("F2.TXT", &bytes), kEngineReadFailed);
         EXPECT_EQ(s.ReadAll("F1.TXT", &bytes), kOk);
     }},
    {"DirectoryExtentBeyondTheEnd",
     [](IsoBytes& iso) { iso.SetBoth32(iso.Record(iso.RootDirectory(), "A") + 2, 0x7FFFFFF0); },
     kOk,
     [](Session& s) {
         Tree tree = s.Walk();
         EXPECT_TRUE(tree["A"].directory);
         EXPECT_EQ(tree.count("A/X.TXT"), 0u);
         EXPECT_EQ(tree.count("B/Y.TXT"), 1u);
     }},
    {"RecordShorterThanItsFixedPart",
     [](IsoBytes& iso) { iso.bytes[iso.Record(iso.RootDirectory(), "F1.TXT;1")] = 20; }, kOk,
     [](Session& s) {
         Tree tree = s.Walk();
         EXPECT_EQ(tree.count("B/Y.TXT"), 1u);
         EXPECT_EQ(tree.count("F1.TXT"), 0u);
     }},
    {"RecordsOverrunTheDirectorySize",
     [](IsoBytes& iso) { iso.SetBoth32(iso.Record(iso.RootDirectory(), "A") + 10, 120); }, kOk,
     [](Session& s) { EXPECT_EQ(s.Walk().count("A/X.TXT"), 0u); }},
    {"RecordLengthSwallowsTheNext",
     [](IsoBytes& iso) { iso.bytes[iso.Record(iso.RootDirectory(), "F1.TXT;1")] = 255; }, kOk,
     nullptr},
    {"NameLengthOverrunsTheRecord",
     [](IsoBytes& iso) { iso.bytes[iso.Record(iso.RootDirectory(), "F2.TXT;1") + 32] = 200; }, kOk,
     [](Session& s) { EXPECT_EQ(s.Walk().count("F1.TXT"), 1u); }},
    {"FolderPointsBackToTheRoot",
     [](IsoBytes& iso) {
         iso.SetBoth32(iso.Record(iso.RootDirectory(), "A") + 2,
                       static_cast<uint32_t>(iso.RootDirectory() / kSector));
     },
     kOk,
     [](Session& s) {
         file_attr attr{};
         EXPECT_EQ(s.fs->FindFirst(u"A", &attr), kFindFolderEmpty);
     }},
    {"HugeDirectorySize",
     [](IsoBytes& iso) { iso.SetBoth32(iso.Record(iso.RootDirectory(), "B") + 10, 0xFFFFF800); },
     kOk, nullptr},
    {"PathTableClaimsABillionEntries",
     [](IsoBytes& iso) { iso.SetBoth32(16 * kSector + 132, 1000000000u * 10); }, kOk,
     [](Session& s) { EXPECT_EQ(s.Walk().size(), 6u); }},
    {"NameContinuesForever",
     [](IsoBytes& iso) {
         // A new sector holds an NM with CONTINUE and 200 'n', then a CE back to itself: the
         // continuation loop must be cut and the name's growth bounded.
         uint32_t lba = iso.AppendSector();
         size_t at = size_t{lba} * kSector;
         iso.Put(at, {'N', 'M', 205, 1, 1}); // flags: CONTINUE
         std::fill_n(iso.bytes.begin() + static_cast<long>(at) + 5, 200, 'n');
         iso.WriteCe(at + 205, lba, 0, 233);
         iso.WriteCe(iso.SystemUse(iso.Record(iso.RootDirectory(), "F1.TXT;1")), lba, 0, 233);
     },
     kOk,
     [](Session& s) {
         Tree tree = s.Walk();
         EXPECT_EQ(tree.size(), 6u);
         EXPECT_EQ(tree.count(std::string(281, 'n')), 1u);
     }},
    {"ChildLinkToTheRoot",
     [](IsoBytes& iso) {
         // F1's system use starts with an RRIP CL naming the root folder.
         size_t at = iso.SystemUse(iso.Record(iso.RootDirectory(), "F1.TXT;1"));
         iso.Put(at, {'C', 'L', 12, 1});
         iso.SetBoth32(at + 4, static_cast<uint32_t>(iso.RootDirectory() / kSector));
     },
     kOk,
     [](Session& s) {
         // The CL hides F1's NM, so its ECMA-119 name shows; a folder has no version to drop.
         file_attr attr{};
         EXPECT_EQ(s.fs->FindFirst(u"F1.TXT;1", &attr), kFindFolderEmpty);
     }},
};

class BrokenImageTest : public testing::TestWithParam<BrokenCase> {
protected:
    static void SetUpTestSuite() {
        dir_ = new TempDir();
        fs::path src = *dir_ / "src";
        WriteFile(src / "A/X.TXT", {'x'});
        WriteFile(src / "B/Y.TXT", {'y'});
        WriteFile(src / "F1.TXT", {'1'});
        WriteFile(src / "F2.TXT", {'2'});
        ASSERT_TRUE(
            RunCommand("genisoimage -quiet -R -o " + Quote(*dir_ / "base.iso") + " " + Quote(src)));
    }
    static void TearDownTestSuite() { delete dir_; }
    static inline TempDir* dir_ = nullptr;
};

TEST_P(BrokenImageTest, EndsWithAnErrorOrAPartialTree) {
    const BrokenCase& c = GetParam();
    IsoBytes iso{ReadWholeFile(*dir_ / "base.iso")};
    c.patch(iso);
    fs::path image = *dir_ / (std::string(c.name) + ".iso");
    WriteFile(image, iso.bytes);

    Session session;
    ASSERT_EQ(session.Open(image), c.open);
    if (c.open != kOk) {
        return;
    }
    ASSERT_EQ(session.reader->Start(kScanOperation, 0, 0), kOk);
    uint32_t state = 0;
    float progress = 0;
    ASSERT_EQ(session.reader->Wait(30000, &state, &progress), kOk);
    Result scan = session.reader->Finish();
    if (c.check != nullptr) {
        c.check(session);
    } else {
        EXPECT_EQ(scan, kOk);
        EXPECT_FALSE(session.Walk().empty());
    }
}

INSTANTIATE_TEST_SUITE_P(Patched, BrokenImageTest, testing::ValuesIn(kCases), kCaseName);

// ECMA-119 6.5.1: one file in two extents, made by patching a level-3 image of the files A
// (4096 bytes) and B (2048 bytes): A's record gets the multi-extent flag and B's record A's
// name, so the two consecutive records form one file.
TEST(MultiExtentTest, JoinsConsecutiveRecords) {
    TempDir dir;
    std::vector<uint8_t> a = PatternBytes(4096, 1);
    std::vector<uint8_t> b = PatternBytes(2048, 2);
    WriteFile(dir / "src/A", a);
    WriteFile(dir / "src/B", b);
    ASSERT_TRUE(RunCommand("genisoimage -quiet -iso-level 3 -o " + Quote(dir / "base.iso") + " " +
                           Quote(dir / "src")));
    IsoBytes iso{ReadWholeFile(dir / "base.iso")};
    size_t recordA = iso.Record(iso.RootDirectory(), "A.;1");
    size_t recordB = iso.Record(iso.RootDirectory(), "B.;1");
    ASSERT_EQ(recordB, recordA + iso.bytes[recordA]);
    iso.bytes[recordA + 25] |= 0x80;
    iso.bytes[recordB + 33] = 'A';
    WriteFile(dir / "multi.iso", iso.bytes);

    Session session;
    ASSERT_EQ(session.Open(dir / "multi.iso"), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    Tree tree = session.Walk();
    ASSERT_EQ(tree.size(), 1u);
    EXPECT_EQ(tree["A"].size, 6144u);
    std::vector<uint8_t> joined = a;
    joined.insert(joined.end(), b.begin(), b.end());
    for (uint32_t chunk : {32768u, 1000u, 4096u}) {
        std::vector<uint8_t> bytes;
        ASSERT_EQ(session.ReadAll("A", &bytes, chunk), kOk);
        EXPECT_EQ(bytes, joined) << chunk;
    }
}

// The pread path, taken where the image cannot be mapped, gives the same tree and bytes.
TEST(PreadTest, SameTreeWithoutMapping) {
    TempDir dir;
    WriteFile(dir / "src/a/b.txt", PatternBytes(10, 1));
    WriteFile(dir / "src/c.txt", PatternBytes(5000, 2));
    ASSERT_TRUE(RunCommand("xorriso -as mkisofs -quiet -R -J -o " + Quote(dir / "x.iso") + " " +
                           Quote(dir / "src")));
    auto scan = [&](bool allowMapping) {
        ImageFile file;
        EXPECT_EQ(file.Open((dir / "x.iso").c_str(), allowMapping), kOk);
        EXPECT_EQ(file.Mapping() != nullptr, allowMapping);
        PlainSectorSource source(file);
        IsoTree tree{};
        EXPECT_EQ(IsoVolume::Open(source, &tree), kOk);
        std::atomic<bool> cancel{false};
        VolumeIndex index;
        EXPECT_EQ(IsoScanner(source, tree, cancel).Run(index), kOk);
        std::u16string names;
        for (uint32_t i = 0; i < index.EntryCount(); ++i) {
            names += index.Name(index.Entry(i)).ToU16String() + u"/";
        }
        const IndexEntry& c = index.Entry(index.Resolve(u"c.txt"));
        std::vector<uint8_t> data(c.Size());
        EXPECT_EQ(source.CopyBytes(index.ExtentAt(c.firstExtent).lba, 0, data.data(), c.Size()),
                  kOk);
        EXPECT_EQ(data, PatternBytes(5000, 2));
        return names;
    };
    EXPECT_EQ(scan(true), scan(false));
}

} // namespace
} // namespace qmz::test
