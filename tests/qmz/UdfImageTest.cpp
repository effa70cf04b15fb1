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

} // namespace
} // namespace qmz::test
