// The same volume recorded in every sector layout the engine reads, under names that do not
// tell the layout: each copy must list and read back exactly as the 2048-byte original does.
// 7-Zip reads none of the raw layouts, so it checks the one copy it does open.
#include <gtest/gtest.h>

#include "SectorImages.h"
#include "TestSupport.h"

namespace qmz::test {
namespace {

struct ContainerCase {
    const char* name;
    SectorKind kind;
    bool nero;
    NeroTable table;
    uint32_t pregap;
    const char* fileName;
};

const ContainerCase kCases[] = {
    {"RawMode1", SectorKind::kMode1, false, {}, 0, "disc.iso"},
    {"RawMode2Form1", SectorKind::kMode2Form1, false, {}, 0, "disc.bin"},
    {"Mode2Sectors2336", SectorKind::kMode2, false, {}, 0, "disc.tvi"},
    {"RawWithSubchannel", SectorKind::kMode1Subchannel, false, {}, 0, "disc.rdf"},
    {"NeroDaoXRawMode1", SectorKind::kMode1, true, NeroTable::kDaoX, 150, "disc.nrg"},
    {"NeroDaoIMode2", SectorKind::kMode2, true, NeroTable::kDaoI, 2, "disc.iso"},
    {"NeroDaoXSubchannel", SectorKind::kMode1Subchannel, true, NeroTable::kDaoX, 150, "d.nrg"},
    {"NeroEtn2Plain", SectorKind::kPlain, true, NeroTable::kEtn2, 150, "disc.nrg"},
    {"NeroEtnfRawMode2Form1", SectorKind::kMode2Form1, true, NeroTable::kEtnf, 3, "disc"},
};

struct Reference {
    Tree tree;
    std::map<std::string, std::vector<uint8_t>> files;
};

Reference ReadVolume(const fs::path& image) {
    Reference ref;
    Session session;
    EXPECT_EQ(session.Open(image), kOk) << image;
    if (session.fs == nullptr) {
        return ref;
    }
    EXPECT_EQ(session.Scan(), kOk);
    ref.tree = session.Walk();
    EXPECT_EQ(session.failures, 0);
    for (const auto& [path, node] : ref.tree) {
        if (!node.directory) {
            EXPECT_EQ(session.ReadAll(path, &ref.files[path]), kOk) << path;
        }
    }
    return ref;
}

// The Rock Ridge and Joliet image that every copy is made from, and what the engine reads in it.
class ContainerFixture : public testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = new TempDir;
        fs::path src = *dir_ / "src";
        WriteFile(src / "sizes/zero", {});
        WriteFile(src / "sizes/k32plus1", PatternBytes(32769, 1));
        WriteFile(src / "sizes/big.bin", PatternBytes(300001, 2));
        WriteFile(src / "docs/Readme.txt", PatternBytes(100, 3));
        fs::create_directories(src / "empty");
        ASSERT_TRUE(RunCommand("xorriso -as mkisofs -quiet -R -J -o " + Quote(*dir_ / "plain.iso") +
                               " " + Quote(src)));
        iso_ = new std::vector<uint8_t>(ReadWholeFile(*dir_ / "plain.iso"));
        reference_ = new Reference(ReadVolume(*dir_ / "plain.iso"));
        ASSERT_EQ(reference_->tree.size(), 7u);
    }
    static void TearDownTestSuite() {
        delete reference_;
        delete iso_;
        delete dir_;
    }

    static std::vector<uint8_t> Make(const ContainerCase& c) {
        return c.nero ? MakeNero(*iso_, c.kind, c.table, c.pregap) : RecordSectors(*iso_, c.kind);
    }

    static inline TempDir* dir_ = nullptr;
    static inline std::vector<uint8_t>* iso_ = nullptr;
    static inline Reference* reference_ = nullptr;
};

class ContainerTest : public ContainerFixture, public testing::WithParamInterface<ContainerCase> {};

TEST_P(ContainerTest, ListsAndReadsAsTheOriginal) {
    TempDir dir;
    fs::path image = dir / GetParam().fileName;
    WriteFile(image, Make(GetParam()));
    Reference copy = ReadVolume(image);
    EXPECT_EQ(copy.tree, reference_->tree);
    EXPECT_TRUE(copy.files == reference_->files);
}

INSTANTIATE_TEST_SUITE_P(Layouts, ContainerTest, testing::ValuesIn(kCases), kCaseName);

TEST_F(ContainerFixture, NeroImageAgreesWithSevenZip) {
    TempDir dir;
    fs::path image = dir / "disc.nrg";
    WriteFile(image, MakeNero(*iso_, SectorKind::kPlain, NeroTable::kDaoX, 0));
    Tree ours = ReadVolume(image).tree;
    Tree theirs = SevenZipTree(image);
    for (Tree* tree : {&ours, &theirs}) {
        for (auto& [path, node] : *tree) {
            node.mtime = 0;
        }
    }
    EXPECT_EQ(ours, theirs);
}

// Damaged containers: a negative code or the readable part, never a read outside the file.
struct DamageCase {
    const char* name;
    std::function<std::vector<uint8_t>(const std::vector<uint8_t>&)> make;
    Result open;
};

// Offset of the first track table entry in MakeNero's DAOX image: chunks, SINF (12 bytes),
// DAOX header (8) and its 22-byte header.
size_t DaoEntry(const std::vector<uint8_t>& nero) {
    uint64_t chunks = 0;
    for (size_t i = nero.size() - 8; i < nero.size(); ++i) {
        chunks = chunks << 8 | nero[i];
    }
    return chunks + 12 + 8 + 22;
}

const DamageCase kDamage[] = {
    {"NeroTrackEndsInTheChunks",
     [](const std::vector<uint8_t>& iso) {
         auto nero = MakeNero(iso, SectorKind::kMode1, NeroTable::kDaoX, 150);
         nero[DaoEntry(nero) + 34] = 0x7F; // the end offset's top byte
         return nero;
     },
     kEngineBadImage},
    {"NeroChunkLongerThanTheFile",
     [](const std::vector<uint8_t>& iso) {
         auto nero = MakeNero(iso, SectorKind::kMode1, NeroTable::kDaoX, 150);
         nero[DaoEntry(nero) - 22 - 4] = 0xFF; // DAOX length
         return nero;
     },
     kEngineBadImage},
    {"NeroFooterPointsPastTheEnd",
     [](const std::vector<uint8_t>& iso) {
         auto nero = MakeNero(iso, SectorKind::kMode1, NeroTable::kDaoX, 150);
         nero[nero.size() - 8] = 0x40;
         return nero;
     },
     kEngineBadImage},
    {"RawDescriptorSectorInForm2",
     [](const std::vector<uint8_t>& iso) {
         auto raw = RecordSectors(iso, SectorKind::kMode2Form1);
         raw[16 * 2352 + 18] = raw[16 * 2352 + 22] = 0x28;
         return raw;
     },
     kEngineBadImage},
};

class ContainerDamageTest : public ContainerFixture,
                            public testing::WithParamInterface<DamageCase> {};

TEST_P(ContainerDamageTest, RefusedOrPartial) {
    TempDir dir;
    fs::path image = dir / "broken.iso";
    WriteFile(image, GetParam().make(*iso_));
    Session session;
    EXPECT_EQ(session.Open(image), GetParam().open);
}

INSTANTIATE_TEST_SUITE_P(Damage, ContainerDamageTest, testing::ValuesIn(kDamage), kCaseName);

TEST_F(ContainerFixture, TruncatedRawImageReadsWhatItHolds) {
    TempDir dir;
    fs::path image = dir / "cut.bin";
    auto raw = RecordSectors(*iso_, SectorKind::kMode1);
    // xorriso puts the files in path order from sector 33, so big.bin covers sectors 34 to 180.
    raw.resize(2352 * 100 + 100);
    WriteFile(image, raw);
    Session session;
    ASSERT_EQ(session.Open(image), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    EXPECT_EQ(session.Walk(), reference_->tree);
    std::vector<uint8_t> bytes;
    EXPECT_EQ(session.ReadAll("sizes/big.bin", &bytes), kEngineReadFailed);
    EXPECT_EQ(session.ReadAll("docs/Readme.txt", &bytes), kOk);
}

} // namespace
} // namespace qmz::test
