// ovrin-cli extract and cat against the peers: what lands on the disk from images that xorriso
// and genisoimage made must be what bsdtar (or 7-Zip, for UDF) extracts from them, byte for byte
// and with the same modification times.
#include "TestFiles.h"

#include <gtest/gtest.h>

namespace {

using namespace testsupport;

constexpr int64_t kTime = 1'700'000'000; // 2023-11-14T22:13:20Z

// Sizes around the reader's 32768-byte chunks. A file of one byte is left out: the extraction
// creates it empty, which the engine's own tests check.
void MakeSourceTree(const fs::path& src) {
    WriteFile(src / "zero.bin", {}, kTime);
    WriteFile(src / "two.bin", PatternBytes(2, 1), kTime + 1);
    WriteFile(src / "chunks/exact.bin", PatternBytes(32768, 2), kTime + 2);
    WriteFile(src / "chunks/over.bin", PatternBytes(65541, 3), kTime + 3);
    WriteFile(src / "Grüße/日本語.txt", PatternBytes(100000, 4), kTime + 4);
    WriteFile(src / "a/b/c/deep.txt", PatternBytes(7, 5), kTime + 5);
    fs::create_directories(src / "empty/inner");
}

int Ovrin(const std::string& arguments, std::string* pOutput = nullptr) {
    int status = -1;
    const std::string out =
        CommandOutput(std::string(OVRIN_CLI) + " " + arguments + " 2>&1", &status);
    if (pOutput != nullptr) {
        *pOutput = out;
    }
    return status;
}

// Folder times are not carried over by design, so only files' times are compared.
Tree FileTimesOnly(Tree tree) {
    for (auto& [path, node] : tree) {
        if (node.directory) {
            node.mtime = 0;
        }
    }
    return tree;
}

void ExpectSameExtraction(const fs::path& ours, const fs::path& theirs, const char* what) {
    const Tree tree = FileTimesOnly(DiskTree(ours));
    ASSERT_EQ(tree, FileTimesOnly(DiskTree(theirs))) << what;
    for (const auto& [path, node] : tree) {
        if (!node.directory) {
            EXPECT_EQ(ReadWholeFile(ours / path), ReadWholeFile(theirs / path))
                << what << ": " << path;
        }
    }
}

struct Recipe {
    const char* name;
    const char* make; // $SRC, $ISO
    const char* peer; // $ISO, $OUT
};

TEST(CliExtract, ExtractsWhatThePeersExtract) {
    TempDir dir;
    MakeSourceTree(dir / "src");
    const Recipe recipes[] = {
        {"Rock Ridge and Joliet", "xorriso -as mkisofs -quiet -R -J -o $ISO $SRC",
         "bsdtar -xf $ISO -C $OUT"},
        {"Joliet", "genisoimage -quiet -input-charset utf-8 -J -D -o $ISO $SRC",
         "bsdtar -xf $ISO -C $OUT"},
        {"plain ISO 9660", "genisoimage -quiet -o $ISO $SRC", "bsdtar -xf $ISO -C $OUT"},
        {"UDF bridge", "genisoimage -quiet -input-charset utf-8 -udf -o $ISO $SRC",
         "7z x -y -bd -o$OUT $ISO >/dev/null"},
    };
    for (const Recipe& recipe : recipes) {
        const fs::path image = dir / "image.iso";
        const fs::path ours = dir / "ours";
        const fs::path theirs = dir / "theirs";
        fs::create_directories(theirs);
        auto fill = [&](std::string text) {
            for (const auto& [key, value] : {std::pair{"$SRC", Quote(dir / "src")},
                                             {"$ISO", Quote(image)},
                                             {"$OUT", Quote(theirs)}}) {
                for (size_t at = text.find(key); at != std::string::npos; at = text.find(key)) {
                    text.replace(at, 4, value);
                }
            }
            return text;
        };
        ASSERT_TRUE(RunCommand(fill(recipe.make))) << recipe.name;
        ASSERT_TRUE(RunCommand(fill(recipe.peer))) << recipe.name;
        std::string out;
        ASSERT_EQ(Ovrin("extract " + Quote(image) + " -C " + Quote(ours), &out), 0) << out;
        ExpectSameExtraction(ours, theirs, recipe.name);
        fs::remove_all(ours);
        fs::remove_all(theirs);
    }
}

struct ExistingCase {
    const char* name;
    const char* flag;
    int status;
    const char* message;
    const char* twoBinAfter; // what two.bin holds afterwards: "local" or "image"
};

TEST(CliExtract, AnExistingTargetIsReplacedSkippedOrStopsTheJob) {
    TempDir dir;
    MakeSourceTree(dir / "src");
    const fs::path image = dir / "image.iso";
    ASSERT_TRUE(RunCommand("xorriso -as mkisofs -quiet -R -J -o " + Quote(image) + " " +
                           Quote(dir / "src")));
    const ExistingCase cases[] = {
        {"neither flag", "", 1, "already exists. Nothing was extracted", "local"},
        {"skip", " --skip-existing", 0, "", "local"},
        {"overwrite", " --overwrite", 0, "", "image"},
    };
    for (const ExistingCase& c : cases) {
        const fs::path out = dir / "out";
        WriteFile(out / "two.bin", {'l', 'o', 'c', 'a', 'l'});
        std::string text;
        EXPECT_EQ(Ovrin("extract " + Quote(image) + " -C " + Quote(out) + c.flag, &text), c.status)
            << c.name << ": " << text;
        EXPECT_NE(text.find(c.message), std::string::npos) << c.name << ": " << text;
        const bool bLocal = std::string(c.twoBinAfter) == "local";
        EXPECT_EQ(ReadWholeFile(out / "two.bin").size(), bLocal ? 5u : 2u) << c.name;
        EXPECT_EQ(fs::exists(out / "chunks/over.bin"), c.status == 0) << c.name;
        fs::remove_all(out);
    }
}

TEST(CliExtract, NamedItemsLandInTheTargetFolderAndCatWritesOneFile) {
    TempDir dir;
    MakeSourceTree(dir / "src");
    const fs::path image = dir / "image.iso";
    ASSERT_TRUE(RunCommand("xorriso -as mkisofs -quiet -R -J -o " + Quote(image) + " " +
                           Quote(dir / "src")));
    const fs::path out = dir / "out";
    std::string text;
    ASSERT_EQ(Ovrin("extract " + Quote(image) + " a/b 'Grüße/日本語.txt' -C " + Quote(out), &text),
              0)
        << text;
    EXPECT_EQ(ReadWholeFile(out / "b/c/deep.txt"), PatternBytes(7, 5));
    EXPECT_EQ(ReadWholeFile(out / "日本語.txt"), PatternBytes(100000, 4));
    EXPECT_EQ(DiskTree(out).size(), 4u) << "b, b/c, b/c/deep.txt and 日本語.txt";

    EXPECT_EQ(Ovrin("extract " + Quote(image) + " no/such -C " + Quote(out), &text), 1);
    EXPECT_NE(text.find("\"no/such\" is not a file or folder of the image"), std::string::npos);

    const std::string bytes =
        CommandOutput(std::string(OVRIN_CLI) + " cat " + Quote(image) + " chunks/over.bin");
    const std::vector<uint8_t> want = PatternBytes(65541, 3);
    EXPECT_TRUE(bytes == std::string(want.begin(), want.end()));
    EXPECT_EQ(Ovrin("cat " + Quote(image) + " chunks", &text), 1);
    EXPECT_NE(text.find("is not a file of the image"), std::string::npos) << text;
}

} // namespace
