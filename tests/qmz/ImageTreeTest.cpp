// Whole trees of images made by xorriso and genisoimage, compared with bsdtar's view of the same
// image (bsdtar prefers Rock Ridge, then Joliet, then plain ISO 9660, as the engine does) and,
// for Rock Ridge, with the source folder itself; every file is read back and compared.
#include <gtest/gtest.h>

#include "TestSupport.h"

namespace qmz::test {
namespace {

constexpr int64_t kOldTime = 981173106; // 2001-02-03 04:05:06 UTC

// The source folder: sizes around the 32 KiB read size, an empty folder, non-ASCII names
// (one outside the BMP), and a chain deeper than ECMA-119's eight levels.
void MakeSource(const fs::path& root, bool rockRidgeOnlyNames) {
    WriteFile(root / "sizes/zero", {}, kOldTime);
    WriteFile(root / "sizes/one", PatternBytes(1, 1), kOldTime);
    WriteFile(root / "sizes/k32", PatternBytes(32768, 2));
    WriteFile(root / "sizes/k32plus1", PatternBytes(32769, 3));
    WriteFile(root / "sizes/big.bin", PatternBytes(300001, 4));
    // Compressible around 128 KiB of zeros, which zisofs records as blocks without data.
    std::string text;
    for (int i = 0; i < 5000; ++i) {
        text += "line " + std::to_string(i) + "\n";
    }
    std::vector<uint8_t> mixed(text.begin(), text.end());
    mixed.resize(mixed.size() + 131072);
    mixed.insert(mixed.end(), text.begin(), text.end());
    WriteFile(root / "sizes/compressible", mixed);
    fs::create_directories(root / "empty");
    WriteFile(root / "docs/Grüße aus Köln.txt", PatternBytes(100, 5));
    WriteFile(root / "docs/日本語の歌詞.txt", PatternBytes(200, 6));
    WriteFile(root / "docs/smile 😀.txt", PatternBytes(300, 7));
    WriteFile(root / "hidden.txt", PatternBytes(10, 8));
    WriteFile(root / "a/b/c/d/e/f/g/h/i/j/deep.txt", PatternBytes(50, 9), kOldTime);
    WriteFile(root / "a/b/c/d/e/f/g/h/i/j/k/deeper.txt", PatternBytes(51, 10));
    WriteFile(root / "a/b/c/d/e/f/g/h/side.txt", PatternBytes(52, 11));
    if (rockRidgeOnlyNames) {
        WriteFile(root / "names/back\\slash", PatternBytes(4, 12));
        WriteFile(root / ("names/" + std::string(150, 'L') + ".txt"), PatternBytes(5, 13));
        WriteFile(root / "names/..dots", PatternBytes(6, 14));
    }
}

struct Recipe {
    const char* name;
    const char* command; // $SRC and $ISO are replaced
    uint32_t treeKind;
    bool rockRidgeNames;
    bool sameAsSource; // the engine's tree must equal the source folder too
    // bsdtar refuses xorriso's relocation into the root, and shows the primary tree where
    // xorriso records the ISO 9660:1999 tree apart from it.
    bool bsdtarReads;
};

const Recipe kRecipes[] = {
    {"GenIsoLevel1", "genisoimage -quiet -o $ISO $SRC", 1, false, false, true},
    {"GenJoliet", "genisoimage -quiet -input-charset utf-8 -J -D -o $ISO $SRC", 2, false, false,
     true},
    {"GenRockRidgeJolietHidden",
     "genisoimage -quiet -input-charset utf-8 -R -J -joliet-long -hidden hidden.txt -o $ISO $SRC",
     3, true, true, true},
    {"XorrisoRockRidgeJoliet", "xorriso -as mkisofs -quiet -R -J -o $ISO $SRC", 3, true, true,
     true},
    {"XorrisoRelocatedToRrMoved",
     "xorriso -no_rc -report_about SORRY -outdev $ISO -compliance deep_paths_off "
     "-rr_reloc_dir rr_moved -rockridge on -joliet on -map $SRC / -commit",
     3, true, true, true},
    {"XorrisoRelocatedToRoot",
     "xorriso -no_rc -report_about SORRY -outdev $ISO -compliance deep_paths_off "
     "-rockridge on -map $SRC / -commit",
     3, true, true, false},
    {"MkzftreeZisofs32k", "mkzftree -f -q . ../z && genisoimage -quiet -R -z -o $ISO ../z", 3, true,
     true, true},
    {"XorrisoZisofs128k",
     "xorriso -no_rc -report_about SORRY -outdev $ISO -rockridge on -zisofs block_size=128k "
     "-map $SRC / -set_filter_r --zisofs / -- -commit",
     3, true, true, true},
    {"GenIsoLevel4", "genisoimage -quiet -iso-level 4 -o $ISO $SRC", 6, false, false, true},
    {"XorrisoIsoLevel4", "xorriso -as mkisofs -quiet -iso-level 4 --norock -o $ISO $SRC", 6, false,
     true, false},
    {"XorrisoJolietUtf16",
     "xorriso -no_rc -report_about SORRY -outdev $ISO -rockridge off -joliet on "
     "-compliance joliet_utf16:joliet_long_names -map $SRC / -commit",
     2, false, false, true},
};

class ImageTreeTest : public testing::TestWithParam<Recipe> {};

std::string Expand(std::string text, const fs::path& src, const fs::path& iso) {
    for (auto [key, value] : {std::pair{"$SRC", Quote(src)}, std::pair{"$ISO", Quote(iso)}}) {
        for (size_t at; (at = text.find(key)) != std::string::npos;) {
            text.replace(at, 4, value);
        }
    }
    return text;
}

TEST_P(ImageTreeTest, MatchesBsdtarAndSourceAndReadsBack) {
    const Recipe& recipe = GetParam();
    TempDir dir;
    fs::path src = dir / "src";
    fs::path iso = dir / "image.iso";
    MakeSource(src, recipe.rockRidgeNames);
    ASSERT_TRUE(RunCommand("cd " + Quote(src) + " && " + Expand(recipe.command, src, iso)));

    Session session;
    ASSERT_EQ(session.Open(iso), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    Tree tree = session.Walk();
    EXPECT_EQ(session.failures, 0);

    fsInfo info{};
    ASSERT_EQ(session.fs->GetFsInfo(&info), kOk);
    EXPECT_EQ(info.uFileSystem, recipe.treeKind);
    uint32_t folders = 0;
    for (const auto& [path, node] : tree) {
        folders += node.directory ? 1 : 0;
    }
    EXPECT_EQ(info.uCount1, folders);
    EXPECT_EQ(info.uCount2, tree.size() - folders);

    bool upper = recipe.treeKind == 1; // plain ISO 9660 names are d-characters
    std::string sized = upper ? "SIZES/K32PLUS1" : "sizes/k32plus1";
    ASSERT_TRUE(tree.count(sized));
    EXPECT_EQ(tree[sized].size, 32769u);
    EXPECT_TRUE(tree[upper ? "EMPTY" : "empty"].directory);
    if (recipe.sameAsSource) {
        EXPECT_EQ(tree, DiskTree(src));
    }
    if (!recipe.bsdtarReads) {
        return;
    }
    std::map<std::string, std::string> rawPaths;
    Tree reference = BsdtarTree(iso, &rawPaths);
    EXPECT_EQ(tree, reference);

    fs::path extracted = dir / "x";
    fs::create_directories(extracted);
    ASSERT_TRUE(RunCommand("bsdtar -xf " + Quote(iso) + " -C " + Quote(extracted)));
    for (const auto& [path, node] : reference) {
        if (node.directory) {
            continue;
        }
        std::vector<uint8_t> bytes;
        ASSERT_EQ(session.ReadAll(path, &bytes), kOk) << path;
        EXPECT_EQ(bytes, ReadWholeFile(extracted / rawPaths[path])) << path;
    }
}

INSTANTIATE_TEST_SUITE_P(Images, ImageTreeTest, testing::ValuesIn(kRecipes), kCaseName);

} // namespace
} // namespace qmz::test
