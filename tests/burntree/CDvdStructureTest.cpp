#include "CDvdStructure.h"
#include "TestFiles.h"
#include "tagTvnDataTreeImpl.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace {

using namespace testsupport;

constexpr size_t kVmgIfoBytes = 4096;
constexpr size_t kVtsIfoBytes = 6144;

void Put(std::vector<uint8_t>& bytes, size_t offset, uint32_t value, int nBytes) {
    for (int i = 0; i < nBytes; ++i) {
        bytes[offset + i] = static_cast<uint8_t>(value >> (8 * (nBytes - 1 - i)));
    }
}

// A cell address table at sector nSector: nVobs VOB ids and nCells cells.
void PutCellTable(std::vector<uint8_t>& ifo, size_t pointerOffset, uint32_t nSector, uint32_t nVobs,
                  uint32_t nCells) {
    Put(ifo, pointerOffset, nSector, 4);
    Put(ifo, nSector * 2048, nVobs, 2);
    Put(ifo, nSector * 2048 + 4, 7 + 12 * nCells, 4);
}

// VIDEO_TS.IFO with its title set count and a menu table of one VOB id and one cell.
std::vector<uint8_t> VmgIfo(uint32_t nTitleSets) {
    std::vector<uint8_t> ifo(kVmgIfoBytes);
    Put(ifo, 0x3E, nTitleSets, 2);
    PutCellTable(ifo, 0xD8, 1, 1, 1);
    return ifo;
}

// VTS_nn_0.IFO with a menu of one cell and titles of two VOB ids and three cells.
std::vector<uint8_t> VtsIfo() {
    std::vector<uint8_t> ifo(kVtsIfoBytes);
    PutCellTable(ifo, 0xD8, 1, 1, 1);
    PutCellTable(ifo, 0xE0, 2, 2, 3);
    return ifo;
}

// Files of a DVD-Video folder by name; "IFO:n" is VIDEO_TS.IFO with n title sets, "VTS" a
// title set IFO, any other text a file of that many bytes.
void WriteFolder(const fs::path& folder, const std::map<std::string, std::string>& files) {
    fs::create_directories(folder);
    for (const auto& [name, content] : files) {
        if (content.rfind("IFO:", 0) == 0) {
            WriteFile(folder / name, VmgIfo(std::stoul(content.substr(4))));
        } else if (content == "VTS") {
            WriteFile(folder / name, VtsIfo());
        } else {
            WriteFile(folder / name, PatternBytes(std::stoul(content), 1));
        }
    }
}

std::string Dests(const ITvnDataTree& tree, const ITvnTreeNode* pNode) {
    std::string out;
    for (const ITvnTreeNode* pChild = tree.NextChild(pNode, nullptr); pChild != nullptr;
         pChild = tree.NextChild(pNode, pChild)) {
        out += (out.empty() ? "" : " ") + pChild->GetDest().toStdString();
        const std::string inner = Dests(tree, pChild);
        out += inner.empty() ? "" : " " + inner;
    }
    return out;
}

// The destinations of VIDEO_TS and of the named files in it, as Dests gives them.
std::string InVideoTs(const std::string& names) {
    std::string out = "\\VIDEO_TS\\";
    std::istringstream in(names);
    for (std::string name; in >> name;) {
        out += " \\VIDEO_TS\\" + name;
    }
    return out;
}

QString Path(const fs::path& path) {
    return QString::fromStdString(path.string());
}

const std::map<std::string, std::string> kOneTitleSet = {
    {"VIDEO_TS.IFO", "IFO:1"}, {"VIDEO_TS.VOB", "10"},  {"VIDEO_TS.BUP", "IFO:1"},
    {"VTS_01_0.IFO", "VTS"},   {"VTS_01_0.VOB", "10"},  {"VTS_01_1.VOB", "5000"},
    {"VTS_01_2.VOB", "10"},    {"VTS_01_0.BUP", "VTS"}, {"NOTES.TXT", "1"},
};

struct DvdFolderCase {
    const char* name;
    const char* folderName;
    std::map<std::string, std::string> files;
    qmz::Result expected;
    std::string dests;
};

TEST(DvdStructure, VideoTsFilesGoOnTheDiscInTheDvdsOrder) {
    auto without = [](std::map<std::string, std::string> files, const char* name) {
        files.erase(name);
        return files;
    };
    auto with = [](std::map<std::string, std::string> files, const char* name, const char* c) {
        files[name] = c;
        return files;
    };
    std::map<std::string, std::string> lowerCase;
    for (const auto& [name, content] : kOneTitleSet) {
        lowerCase[QString::fromStdString(name).toLower().toStdString()] = content;
    }
    const std::string kComplete = InVideoTs("VIDEO_TS.IFO VIDEO_TS.VOB VIDEO_TS.BUP VTS_01_0.IFO "
                                            "VTS_01_0.VOB VTS_01_1.VOB VTS_01_2.VOB VTS_01_0.BUP");
    const DvdFolderCase cases[] = {
        {"complete", "VIDEO_TS", kOneTitleSet, qmz::kOk, kComplete},
        {"names in any case", "video_ts", lowerCase, qmz::kOk, kComplete},
        {"VOB run with a gap", "VIDEO_TS",
         with(without(kOneTitleSet, "VTS_01_2.VOB"), "VTS_01_3.VOB", "10"), qmz::kOk,
         InVideoTs("VIDEO_TS.IFO VIDEO_TS.VOB VIDEO_TS.BUP VTS_01_0.IFO VTS_01_0.VOB "
                   "VTS_01_1.VOB VTS_01_0.BUP")},
        {"no title sets, no menu",
         "VIDEO_TS",
         {{"VIDEO_TS.IFO", "IFO:0"}, {"VIDEO_TS.BUP", "IFO:0"}},
         qmz::kOk,
         InVideoTs("VIDEO_TS.IFO VIDEO_TS.BUP")},
        {"missing BUP", "VIDEO_TS", without(kOneTitleSet, "VIDEO_TS.BUP"), qmz::kEngineFileNotFound,
         InVideoTs("")},
        {"missing title set BUP", "VIDEO_TS", without(kOneTitleSet, "VTS_01_0.BUP"),
         qmz::kEngineFileNotFound, InVideoTs("")},
        {"title set missing", "VIDEO_TS", with(kOneTitleSet, "VIDEO_TS.IFO", "IFO:2"),
         qmz::kEngineFileNotFound, InVideoTs("")},
        {"short VIDEO_TS.IFO", "VIDEO_TS", with(kOneTitleSet, "VIDEO_TS.IFO", "60"),
         kTvnBadDvdFolder, InVideoTs("")},
    };
    for (const DvdFolderCase& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        WriteFolder(dir / c.folderName, c.files);
        EXPECT_EQ(CDvdStructure::CheckDvdVideoFiles(Path(dir / c.folderName)), c.expected);
        tagTvnDataTreeImpl tree;
        EXPECT_EQ(tree.AddFolder(Path(dir.Path()), false), c.expected);
        EXPECT_EQ(Dests(tree, tree.GetRoot()), c.dests);
    }
}

struct IfoCase {
    const char* name;
    size_t offset; // patched in VIDEO_TS.IFO of a disc with a menu and no title sets
    uint32_t value;
    int nBytes;
    size_t nFileBytes;
    qmz::Result expected;
    uint32_t nCells;
};

TEST(DvdStructure, CountsCellsAndRefusesIfoFilesThatLie) {
    const IfoCase cases[] = {
        {"menu table of one cell", 0, 0, 0, kVmgIfoBytes, qmz::kOk, 1},
        {"no menu table", 0xD8, 0, 4, kVmgIfoBytes, qmz::kOk, 0},
        {"last byte 30: still one cell", 2048 + 4, 30, 4, kVmgIfoBytes, qmz::kOk, 1},
        {"last byte below the header", 2048 + 4, 6, 4, kVmgIfoBytes, kTvnBadDvdFolder, 0},
        {"table ends past the file", 2048 + 4, 2048, 4, kVmgIfoBytes, kTvnBadDvdFolder, 0},
        {"table pointer past the file", 0xD8, 2, 4, kVmgIfoBytes, kTvnBadDvdFolder, 0},
        {"table pointer beyond 32 bits", 0xD8, 0xFFFFFFFF, 4, kVmgIfoBytes, kTvnBadDvdFolder, 0},
        {"file cut in the table", 0, 0, 0, 2050, kTvnBadDvdFolder, 0},
        {"file cut before the pointer", 0, 0, 0, 0xDA, kTvnBadDvdFolder, 0},
        {"title set count beyond 99", 0x3E, 100, 2, kVmgIfoBytes, kTvnBadDvdFolder, 0},
    };
    for (const IfoCase& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        std::vector<uint8_t> ifo = VmgIfo(0);
        if (c.nBytes != 0) {
            Put(ifo, c.offset, c.value, c.nBytes);
        }
        ifo.resize(c.nFileBytes);
        WriteFile(dir / "VIDEO_TS.IFO", ifo);
        WriteFile(dir / "VIDEO_TS.VOB", {1});
        uint32_t nCells = 99;
        uint32_t nVobs = 99;
        EXPECT_EQ(CDvdStructure::CountStructure(Path(dir.Path()), nCells, nVobs), c.expected);
        if (c.expected >= 0) {
            EXPECT_EQ(nCells, c.nCells);
            EXPECT_EQ(nVobs, c.nCells);
        }
    }
    uint32_t nTitleSets = 0;
    EXPECT_EQ(CDvdStructure::CountTitleSets(QStringLiteral("/nonexistent"), nTitleSets),
              qmz::kEngineFindFailed);
}

struct WalkCase {
    const char* name;
    bool bPlain;
    bool bDiscFoldersFirst;
    const char* dests;
};

TEST(DiscFolderWalk, TakesInFoldersAndMovesDiscFoldersToTheFront) {
    const WalkCase cases[] = {
        {"listing order", false, false,
         "\\a.txt \\b.txt \\Sub\\ \\Sub\\c.txt \\VIDEO_TS\\ \\VIDEO_TS\\VIDEO_TS.IFO "
         "\\VIDEO_TS\\VIDEO_TS.BUP \\z.txt"},
        // The walk goes on behind the folder it moved, so z.txt follows VIDEO_TS.
        {"disc folders first", false, true,
         "\\VIDEO_TS\\ \\VIDEO_TS\\VIDEO_TS.IFO \\VIDEO_TS\\VIDEO_TS.BUP \\z.txt \\b.txt "
         "\\Sub\\ \\Sub\\c.txt \\a.txt"},
        {"plain top level", true, true,
         "\\a.txt \\b.txt \\Sub\\ \\Sub\\c.txt \\video_ts\\ \\video_ts\\VIDEO_TS.BUP "
         "\\video_ts\\VIDEO_TS.IFO \\z.txt"},
    };
    for (const WalkCase& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        WriteFile(dir / "a.txt", PatternBytes(1, 1));
        WriteFile(dir / "b.txt", PatternBytes(4097, 1));
        WriteFile(dir / "Sub" / "c.txt", PatternBytes(2048, 1));
        WriteFile(dir / "z.txt", {});
        WriteFolder(dir / "video_ts", {{"VIDEO_TS.IFO", "IFO:0"}, {"VIDEO_TS.BUP", "IFO:0"}});
        fs::create_symlink(dir.Path(), dir / "Sub" / "loop");
        tagTvnDataTreeImpl tree;
        tree.SetNextSector(10);
        const QString folder = Path(dir.Path());
        EXPECT_EQ(c.bPlain ? tree.AddFolderPlain(folder, c.bDiscFoldersFirst)
                           : tree.AddFolder(folder, c.bDiscFoldersFirst),
                  qmz::kOk);
        EXPECT_EQ(Dests(tree, tree.GetRoot()), c.dests);
        // 1 + 3 + 1 + 2 + 2 sectors of files, counted as they went in.
        EXPECT_EQ(tree.GetNextSector(), 19u);
    }
}

TEST(DiscFolderWalk, TakesDvdVrFilesUnderTheirFixedNames) {
    TempDir dir;
    WriteFile(dir / "dvd_rtav" / "vr_mangr.ifo", PatternBytes(3000, 1));
    WriteFile(dir / "dvd_rtav" / "OTHER.DAT", PatternBytes(1, 1));
    tagTvnDataTreeImpl tree;
    EXPECT_EQ(tree.AddFolder(Path(dir.Path()), true), qmz::kOk);
    EXPECT_EQ(Dests(tree, tree.GetRoot()), "\\dvd_rtav\\ \\DVD_RTAV\\VR_MANGR.IFO");
    EXPECT_EQ(tree.GetNextSector(), 2u);
    tagTvnDataTreeImpl missing;
    EXPECT_EQ(missing.AddFolder(Path(dir / "missing"), false), qmz::kEngineFindFailed);
}

} // namespace
