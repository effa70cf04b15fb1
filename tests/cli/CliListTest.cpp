// ovrin-cli against bsdtar, and against 7-Zip for UDF: what it lists of images made by xorriso
// and genisoimage, and of trees it has never seen, must match the peers' reading of them.
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <ctime>
#include <sstream>

namespace {

using namespace testsupport;

// "d|- SIZE TIME path" into a tree; folders' summed sizes are the tree's own and are not
// compared.
Tree ParseList(const std::string& text) {
    Tree tree;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
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

Tree OvrinTree(const fs::path& image) {
    int status = -1;
    const std::string out =
        CommandOutput(std::string(OVRIN_CLI) + " list " + Quote(image), &status);
    EXPECT_EQ(status, 0) << image;
    return ParseList(out);
}

struct Recipe {
    const char* name;
    std::string command;
};

TEST(CliList, ListsWhatBsdtarListsOfImagesOldAndNew) {
    TempDir dir;
    WriteFile(dir / "src/zero.bin", {});
    WriteFile(dir / "src/sector/over.bin", PatternBytes(32769, 1));
    WriteFile(dir / "src/Grüße/日本語 \xF0\x9F\x93\x80.txt", PatternBytes(12, 2));
    WriteFile(dir / "src/a/b/c/d/e/f/g/h/i/j/deep.txt", PatternBytes(5, 3));
    fs::create_directories(dir / "src/empty/inner");
    const std::string src = Quote(dir / "src");
    const Recipe recipes[] = {
        {"Rock Ridge and Joliet", "xorriso -as mkisofs -quiet -R -J -o $ISO " + src},
        {"Joliet", "genisoimage -quiet -input-charset utf-8 -J -D -o $ISO " + src},
        {"plain ISO 9660", "genisoimage -quiet -o $ISO " + src},
        {"unseen: time zones", "xorriso -as mkisofs -quiet -R -J -o $ISO /usr/share/zoneinfo"},
        {"unseen: C++ headers", "xorriso -as mkisofs -quiet -R -J -o $ISO /usr/include/c++"},
    };
    for (const Recipe& recipe : recipes) {
        const fs::path image = dir / "image.iso";
        std::string command = recipe.command;
        command.replace(command.find("$ISO"), 4, Quote(image));
        ASSERT_TRUE(RunCommand(command)) << recipe.name;
        // bsdtar gives symbolic links no size, and our list shows them as empty files.
        const Tree expected = BsdtarTree(image);
        ASSERT_GT(expected.size(), 4u) << recipe.name;
        EXPECT_EQ(OvrinTree(image), expected) << recipe.name;
        fs::remove(image);
    }
    // bsdtar reads only the ISO 9660 side of a UDF bridge image; 7-Zip reads its UDF tree.
    const fs::path image = dir / "udf.iso";
    ASSERT_TRUE(
        RunCommand("genisoimage -quiet -input-charset utf-8 -udf -o " + Quote(image) + " " + src));
    EXPECT_EQ(OvrinTree(image), SevenZipTree(image)) << "UDF bridge";
}

struct ExitCase {
    const char* name;
    std::string arguments;
    int status;
    const char* message;
};

TEST(CliList, FailsWithASentenceAndAnExitCode) {
    TempDir dir;
    WriteFile(dir / "not-an-image.iso", PatternBytes(100000, 4));
    const ExitCase cases[] = {
        {"no arguments", "", 2, "Usage:"},
        {"unknown command", "frobnicate x", 2, "Usage:"},
        {"missing file", "list " + Quote(dir / "missing.iso"), 1, "does not exist"},
        {"not an image", "list " + Quote(dir / "not-an-image.iso"), 1,
         "is not a disc image that Ovrin can read. (code 0xE0FF0004)\n(1) The image file is "
         "not a valid image (i.e. its format is not correct).\n"},
        {"a folder", "info " + Quote(dir.Path()), 1, "is not a file"},
    };
    for (const ExitCase& c : cases) {
        int status = -1;
        const std::string err =
            CommandOutput(std::string(OVRIN_CLI) + " " + c.arguments + " 2>&1", &status);
        EXPECT_EQ(status, c.status) << c.name;
        EXPECT_NE(err.find(c.message), std::string::npos) << c.name << ": " << err;
    }
}

TEST(CliList, DescribesAndListsTheBundledSample) {
    int status = -1;
    const std::string info =
        CommandOutput(std::string(OVRIN_CLI) + " info " + OVRIN_SAMPLE, &status);
    EXPECT_EQ(status, 0);
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
