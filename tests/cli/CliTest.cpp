// ovrin-cli against bsdtar: what it lists and extracts of an image that xorriso made, and what
// it lists of trees it has never seen, must be what bsdtar lists and extracts, byte for byte and
// with the same modification times.
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <ctime>
#include <sstream>

namespace {

using namespace testsupport;

constexpr int64_t kTime = 1'700'000'000; // 2023-11-14T22:13:20Z

// Sizes around the reader's 32768-byte chunks, names outside ASCII and the BMP, and a chain
// deeper than ECMA-119's eight levels. A file of one byte is left out: the extraction creates it
// empty, which the engine's own tests check.
void MakeSourceTree(const fs::path& src) {
    WriteFile(src / "zero.bin", {}, kTime);
    WriteFile(src / "two.bin", PatternBytes(2, 1), kTime + 1);
    WriteFile(src / "chunks/exact.bin", PatternBytes(32768, 2), kTime + 2);
    WriteFile(src / "chunks/over.bin", PatternBytes(65541, 3), kTime + 3);
    WriteFile(src / "Grüße/日本語 \xF0\x9F\x93\x80.txt", PatternBytes(100000, 4), kTime + 4);
    WriteFile(src / "a/b/c/d/e/f/g/h/i/j/deep.txt", PatternBytes(7, 5), kTime + 5);
    fs::create_directories(src / "empty/inner");
}

// Runs ovrin-cli; its standard output and errors go to pOutput.
int Ovrin(const std::string& arguments, std::string* pOutput = nullptr) {
    int status = -1;
    const std::string out =
        CommandOutput(std::string(OVRIN_CLI) + " " + arguments + " 2>&1", &status);
    if (pOutput != nullptr) {
        *pOutput = out;
    }
    return status;
}

// "d|- SIZE TIME path" lines into a tree; folders' summed sizes are the tree's own and are not
// compared.
Tree OvrinTree(const fs::path& image) {
    std::string text;
    EXPECT_EQ(Ovrin("list " + Quote(image), &text), 0) << image << ": " << text;
    Tree tree;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        std::string kind;
        std::string time;
        std::string path;
        Node node;
        fields >> kind >> node.size >> time;
        std::getline(fields >> std::ws, path);
        tm parts{};
        strptime(time.c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts);
        node.mtime = timegm(&parts);
        node.directory = kind == "d";
        node.size = node.directory ? 0 : node.size;
        tree[path] = node;
    }
    return tree;
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

TEST(Cli, ListsAndExtractsWhatThePeersDo) {
    TempDir dir;
    MakeSourceTree(dir / "src");
    // Reading each file system is the engine's to check; the CLI's walk and copy are the same
    // for all, so one image of our own and two trees it has never seen.
    const std::pair<std::string, bool> sources[] = {
        {Quote(dir / "src"), true}, {"/usr/share/zoneinfo", false}, {"/usr/include/c++", false}};
    for (const auto& [source, bExtract] : sources) {
        SCOPED_TRACE(source);
        const fs::path image = dir / "image.iso";
        const fs::path ours = dir / "ours";
        const fs::path theirs = dir / "theirs";
        ASSERT_TRUE(
            RunCommand("xorriso -as mkisofs -quiet -R -J -o " + Quote(image) + " " + source));
        // bsdtar gives symbolic links no size, and our list shows them as empty files.
        const Tree listed = BsdtarTree(image);
        ASSERT_GT(listed.size(), 4u);
        EXPECT_EQ(OvrinTree(image), listed);
        if (bExtract) {
            fs::create_directories(theirs);
            ASSERT_TRUE(RunCommand("bsdtar -xf " + Quote(image) + " -C " + Quote(theirs)));
            std::string out;
            ASSERT_EQ(Ovrin("extract " + Quote(image) + " -C " + Quote(ours), &out), 0) << out;
            const Tree tree = FileTimesOnly(DiskTree(ours));
            ASSERT_EQ(tree, FileTimesOnly(DiskTree(theirs)));
            for (const auto& [path, node] : tree) {
                if (!node.directory) {
                    EXPECT_EQ(ReadWholeFile(ours / path), ReadWholeFile(theirs / path)) << path;
                }
            }
        }
        fs::remove_all(ours);
        fs::remove_all(theirs);
        fs::remove(image);
    }
}

// The source tree as a Rock Ridge image in dir; empty if xorriso failed.
fs::path MakeRockRidgeImage(const TempDir& dir) {
    MakeSourceTree(dir / "src");
    const fs::path image = dir / "image.iso";
    const bool bMade = RunCommand("xorriso -as mkisofs -quiet -R -J -o " + Quote(image) + " " +
                                  Quote(dir / "src"));
    return bMade ? image : fs::path();
}

struct ExitCase {
    const char* name;
    std::string arguments;
    int status;
    const char* message;
};

TEST(Cli, FailsWithASentenceAndAnExitCode) {
    TempDir dir;
    const fs::path image = MakeRockRidgeImage(dir);
    ASSERT_FALSE(image.empty());
    WriteFile(dir / "not-an-image.iso", PatternBytes(100000, 4));
    const ExitCase cases[] = {
        {"no arguments", "", 2, "Usage:"},
        {"unknown command", "frobnicate x", 2, "Usage:"},
        {"missing file", "list " + Quote(dir / "missing.iso"), 1, "does not exist"},
        {"not an image", "list " + Quote(dir / "not-an-image.iso"), 1,
         "is not a disc image that Ovrin can read. (code 0xE0FF0004)\n(1) The image file is "
         "not a valid image (i.e. its format is not correct).\n"},
        {"a folder", "info " + Quote(dir.Path()), 1, "is not a file"},
        {"no such item", "extract " + Quote(image) + " no/such -C " + Quote(dir / "out"), 1,
         "\"no/such\" is not a file or folder of the image"},
        {"cat of a folder", "cat " + Quote(image) + " chunks", 1, "is not a file of the image"},
    };
    for (const ExitCase& c : cases) {
        std::string text;
        EXPECT_EQ(Ovrin(c.arguments, &text), c.status) << c.name;
        EXPECT_NE(text.find(c.message), std::string::npos) << c.name << ": " << text;
    }
}

struct ExistingCase {
    const char* name;
    const char* flag;
    int status;
    const char* message;
    bool bLocalKept; // two.bin still holds the local bytes afterwards
};

TEST(Cli, AnExistingTargetIsReplacedSkippedOrStopsTheJob) {
    TempDir dir;
    const fs::path image = MakeRockRidgeImage(dir);
    ASSERT_FALSE(image.empty());
    const ExistingCase cases[] = {
        {"neither flag", "", 1, "already exists. Nothing was extracted", true},
        {"skip", " --skip-existing", 0, "", true},
        {"overwrite", " --overwrite", 0, "", false},
    };
    for (const ExistingCase& c : cases) {
        const fs::path out = dir / "out";
        WriteFile(out / "two.bin", {'l', 'o', 'c', 'a', 'l'});
        std::string text;
        EXPECT_EQ(Ovrin("extract " + Quote(image) + " -C " + Quote(out) + c.flag, &text), c.status)
            << c.name << ": " << text;
        EXPECT_NE(text.find(c.message), std::string::npos) << c.name << ": " << text;
        const std::vector<uint8_t> local{'l', 'o', 'c', 'a', 'l'};
        EXPECT_EQ(ReadWholeFile(out / "two.bin"), c.bLocalKept ? local : PatternBytes(2, 1))
            << c.name;
        EXPECT_EQ(fs::exists(out / "chunks/over.bin"), c.status == 0) << c.name;
        fs::remove_all(out);
    }
}

TEST(Cli, NamedItemsLandInTheTargetFolderAndCatWritesOneFile) {
    TempDir dir;
    const fs::path image = MakeRockRidgeImage(dir);
    ASSERT_FALSE(image.empty());
    const fs::path out = dir / "out";
    const std::string named = "'Grüße/日本語 \xF0\x9F\x93\x80.txt'";
    std::string text;
    ASSERT_EQ(Ovrin("extract " + Quote(image) + " a/b/c " + named + " -C " + Quote(out), &text), 0)
        << text;
    EXPECT_EQ(ReadWholeFile(out / "c/d/e/f/g/h/i/j/deep.txt"), PatternBytes(7, 5));
    EXPECT_EQ(ReadWholeFile(out / "日本語 \xF0\x9F\x93\x80.txt"), PatternBytes(100000, 4));
    EXPECT_EQ(DiskTree(out).size(), 10u) << "c to j, deep.txt and the named file";

    const std::string bytes =
        CommandOutput(std::string(OVRIN_CLI) + " cat " + Quote(image) + " chunks/over.bin");
    const std::vector<uint8_t> want = PatternBytes(65541, 3);
    EXPECT_TRUE(bytes == std::string(want.begin(), want.end()));
}

TEST(Cli, DescribesAndListsTheBundledSample) {
    std::string info;
    EXPECT_EQ(Ovrin(std::string("info ") + OVRIN_SAMPLE, &info), 0);
    EXPECT_NE(info.find("Volume:       OVRIN_SAMPLE"), std::string::npos) << info;
    EXPECT_NE(info.find("File system:  ISO 9660 with Rock Ridge"), std::string::npos) << info;
    // A relative path names a file in the caller's folder, not in the program's.
    const fs::path sample(OVRIN_SAMPLE);
    const std::string list =
        CommandOutput("cd " + Quote(sample.parent_path()) + " && " + OVRIN_CLI + " list --long " +
                      sample.filename().string());
    for (const char* line : {"\"folder\" Empty folder\n", "\"PNG image\" Pictures/gradient.png\n",
                             "\"plain text document\" README.txt\n", " Music/日本語の歌詞.txt\n"}) {
        EXPECT_NE(list.find(line), std::string::npos) << line << " in\n" << list;
    }
}

} // namespace
