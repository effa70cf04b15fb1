// UDF images made by genisoimage, dvdauthor and mkudffs, compared with 7-Zip's view of the same
// image, every file read back against 7-Zip's extraction.
#include <gtest/gtest.h>

#include "TestSupport.h"

namespace qmz::test {
namespace {

constexpr int64_t kOldTime = 981173106; // 2001-02-03 04:05:06 UTC

void MakeSource(const fs::path& root) {
    WriteFile(root / "sizes/zero", {}, kOldTime);
    WriteFile(root / "sizes/k32plus1", PatternBytes(32769, 3));
    WriteFile(root / "sizes/big.bin", PatternBytes(300001, 4));
    fs::create_directories(root / "empty");
    WriteFile(root / "docs/Grüße aus Köln.txt", PatternBytes(100, 5), kOldTime);
    WriteFile(root / "docs/日本語の歌詞.txt", PatternBytes(200, 6));
    WriteFile(root / ("docs/" + std::string(200, 'L') + ".txt"), PatternBytes(5, 13));
    WriteFile(root / "a/b/c/d/e/f/g/h/i/j/deep.txt", PatternBytes(50, 9), kOldTime);
}

struct Recipe {
    const char* name;
    const char* command; // run in the source folder; $ISO is replaced
    uint32_t fileSystem;
    const char* volumeId;
    bool sevenZipReads; // 7-Zip refuses mkudffs' write-once layouts
};

// mkudffs makes empty file systems: on write-once media with a VAT, on rewritable media with a
// sparing table, and at 2.50 and 2.60 with a metadata partition.
#define MKUDFFS(media) "mkudffs -b 2048 --label=Empty --new-file " media " $ISO 20000 >/dev/null"
const Recipe kRecipes[] = {
    {"GenisoimageBridge", "genisoimage -quiet -input-charset utf-8 -udf -V UDFVOL -o $ISO .",
     kFsUdfBridge, "UDFVOL", true},
    {"DvdVideo",
     "ffmpeg -loglevel error -f lavfi -i color=s=720x480:d=1 -target ntsc-dvd clip.mpg && "
     "VIDEO_FORMAT=NTSC dvdauthor -o dvd -t clip.mpg 2>/dev/null && "
     "VIDEO_FORMAT=NTSC dvdauthor -o dvd -T 2>/dev/null && "
     "genisoimage -quiet -dvd-video -V MOVIE -o $ISO dvd",
     kFsUdfBridge, "MOVIE", true},
    {"Mkudffs201", MKUDFFS("-m hd -r 2.01"), kFsUdf, "Empty", true},
    {"Mkudffs150Vat", MKUDFFS("-m cdr -r 1.50"), kFsUdf, "Empty", false},
    {"Mkudffs201Sparable", MKUDFFS("-m cdrw -r 2.01"), kFsUdf, "Empty", false},
    {"Mkudffs250Metadata", MKUDFFS("-m bdr -r 2.50"), kFsUdf, "Empty", false},
    {"Mkudffs260Metadata", MKUDFFS("-m bdr -r 2.60"), kFsUdf, "Empty", false},
};

class UdfImageTest : public testing::TestWithParam<Recipe> {};

TEST_P(UdfImageTest, MatchesSevenZipAndReadsBack) {
    const Recipe& recipe = GetParam();
    TempDir dir;
    fs::path src = dir / "src";
    fs::path iso = dir / "image.iso";
    MakeSource(src);
    std::string command = recipe.command;
    command.replace(command.find("$ISO"), 4, Quote(iso));
    ASSERT_TRUE(RunCommand("cd " + Quote(src) + " && " + command));

    Session session;
    ASSERT_EQ(session.Open(iso), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    Tree tree = session.Walk();
    EXPECT_EQ(session.failures, 0);
    fsInfo info{};
    ASSERT_EQ(session.fs->GetFsInfo(&info), kOk);
    EXPECT_EQ(info.uFileSystem, recipe.fileSystem);
    EXPECT_EQ(ToUtf8(info.strVolID), recipe.volumeId);
    EXPECT_EQ(info.uCount1 + info.uCount2, tree.size());
    if (!recipe.sevenZipReads) {
        EXPECT_TRUE(tree.empty());
        return;
    }
    ASSERT_EQ(tree, SevenZipTree(iso));
    fs::path extracted = dir / "x";
    ASSERT_TRUE(RunCommand("7z x -y -o" + Quote(extracted) + " " + Quote(iso) + " >/dev/null"));
    for (const auto& [path, node] : tree) {
        std::vector<uint8_t> bytes;
        if (!node.directory) {
            ASSERT_EQ(session.ReadAll(path, &bytes), kOk) << path;
            EXPECT_EQ(bytes, ReadWholeFile(extracted / path)) << path;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Images, UdfImageTest, testing::ValuesIn(kRecipes), kCaseName);

// Hard-disk layouts at each block size, populated by udfclient, which writes through the
// volume's own block size. 7-Zip reads only the 512- and 2048-byte ones.
struct BlockRecipe {
    const char* name;
    uint32_t blockSize;
    bool sevenZipReads;
};

const BlockRecipe kBlockRecipes[] = {
    {"Blocks512", 512, true},
    {"Blocks1024", 1024, false},
    {"Blocks2048", 2048, true},
    {"Blocks4096", 4096, false},
};

// mkudffs names the volume set after the uuid; udfclient shows the volume as a folder named
// after the set, the volume, the logical volume and the file set.
constexpr const char* kVolumeFolder = "0123456789abcdefLinuxUDF:Blocks:Blocks:LinuxUDF";

void MakeBlockImage(const fs::path& src, const fs::path& image, uint32_t blockSize) {
    std::string size = std::to_string(blockSize);
    ASSERT_TRUE(RunCommand("truncate -s 64M " + Quote(image) +
                           " && mkudffs --media-type=hd "
                           "--blocksize=" +
                           size + " --label=Blocks --uuid=0123456789abcdef " + Quote(image) +
                           " >/dev/null"));
    std::string commands = std::string("cd ") + kVolumeFolder + "\nlcd " + src.string() + "\n";
    for (const auto& entry : fs::directory_iterator(src)) {
        commands += "put " + entry.path().filename().string() + "\n";
    }
    fs::path script = image.parent_path() / "commands";
    std::string text = commands + "quit\n";
    WriteFile(script, std::vector<uint8_t>(text.begin(), text.end()));
    ASSERT_TRUE(RunCommand("udfclient -W -b " + size + " " + Quote(image) + " < " + Quote(script) +
                           " >/dev/null 2>&1"));
}

Tree WithoutTimes(Tree tree) {
    for (auto& [path, node] : tree) {
        node.mtime = 0;
    }
    return tree;
}

class UdfBlockSizeTest : public testing::TestWithParam<BlockRecipe> {};

TEST_P(UdfBlockSizeTest, MatchesTheSourceFolder) {
    const BlockRecipe& recipe = GetParam();
    TempDir dir;
    fs::path src = dir / "src";
    fs::path image = dir / "image.img";
    WriteFile(src / "zero", {});
    WriteFile(src / "one", PatternBytes(1, 1));
    WriteFile(src / "sizes/odd.bin", PatternBytes(5001, 2));
    WriteFile(src / "sizes/big.bin", PatternBytes(300001, 3));
    WriteFile(src / "a/b/c/deep.txt", PatternBytes(4097, 4));
    fs::create_directories(src / "empty");
    MakeBlockImage(src, image, recipe.blockSize);

    Session session;
    ASSERT_EQ(session.Open(image), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    Tree tree = session.Walk();
    EXPECT_EQ(session.failures, 0);
    fsInfo info{};
    ASSERT_EQ(session.fs->GetFsInfo(&info), kOk);
    EXPECT_EQ(info.uFileSystem, kFsUdf);
    EXPECT_EQ(ToUtf8(info.strVolID), "Blocks");
    ASSERT_EQ(WithoutTimes(tree), WithoutTimes(DiskTree(src)));
    if (recipe.sevenZipReads) {
        EXPECT_EQ(WithoutTimes(tree), WithoutTimes(SevenZipTree(image)));
    }
    for (const auto& [path, node] : tree) {
        std::vector<uint8_t> bytes;
        if (!node.directory) {
            ASSERT_EQ(session.ReadAll(path, &bytes, 1000), kOk) << path;
            EXPECT_EQ(bytes, ReadWholeFile(src / path)) << path;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Images, UdfBlockSizeTest, testing::ValuesIn(kBlockRecipes), kCaseName);

} // namespace
} // namespace qmz::test
