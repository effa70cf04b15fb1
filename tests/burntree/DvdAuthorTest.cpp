// DVD-Video folders made by dvdauthor from ffmpeg's test pictures, read back with dvdunauthor:
// the title sets, VOB ids and cells that our IFO reading counts must be the ones that these
// tools wrote and read.
#include "CDvdStructure.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

namespace {

using namespace testsupport;

// Two titles of the first title set (one with two chapters) and one of the second, with menus
// for the disc and the first title set. No clip is used twice in one title set, where
// dvdauthor would share its cells and dvdunauthor list them once for each use.
constexpr const char* kAuthorXml = R"(<dvdauthor dest="dvd">
  <vmgm><menus><pgc><vob file="a.mpg"/><post>jump title 1;</post></pgc></menus></vmgm>
  <titleset>
    <menus><pgc><vob file="a.mpg"/></pgc></menus>
    <titles>
      <pgc><vob file="a.mpg" chapters="0,0:01"/><vob file="b.mpg"/></pgc>
      <pgc><vob file="c.mpg"/></pgc>
    </titles>
  </titleset>
  <titleset><titles><pgc><vob file="b.mpg"/></pgc></titles></titleset>
</dvdauthor>
)";

class DvdAuthorFolder : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        s_pDir = new TempDir;
        std::ofstream(*s_pDir / "dvd.xml") << kAuthorXml;
        const std::string cd = "cd " + Quote(s_pDir->Path()) + " && ";
        auto clip = [&cd](const std::string& source, const std::string& name) {
            return RunCommand(cd + "ffmpeg -hide_banner -loglevel error -f lavfi -i " + source +
                              "=size=720x576:rate=25 -f lavfi -i anullsrc=r=48000:cl=stereo "
                              "-t 2 -target pal-dvd -y " +
                              name);
        };
        s_bMade = clip("testsrc", "a.mpg") && clip("testsrc2", "b.mpg") &&
                  clip("smptebars", "c.mpg") &&
                  RunCommand(cd + "VIDEO_FORMAT=PAL dvdauthor -x dvd.xml") &&
                  RunCommand(cd + "mkdir un && cd un && dvdunauthor ../dvd");
    }
    static void TearDownTestSuite() {
        delete s_pDir;
        s_pDir = nullptr;
    }

    static size_t CountInUnauthored(const std::string& text) {
        std::ifstream in(*s_pDir / "un" / "dvdauthor.xml");
        const std::string xml{std::istreambuf_iterator<char>(in), {}};
        size_t n = 0;
        for (size_t at = xml.find(text); at != std::string::npos; at = xml.find(text, at + 1)) {
            ++n;
        }
        return n;
    }

    static QString VideoTs() { return QString::fromStdString((*s_pDir / "dvd/VIDEO_TS").string()); }

    static inline TempDir* s_pDir = nullptr;
    static inline bool s_bMade = false;
};

// The counts, and the layout's DVD order through ovrin-cli, against what dvdauthor wrote.
TEST_F(DvdAuthorFolder, CountsAndLayoutAgreeWithDvdauthor) {
    ASSERT_TRUE(s_bMade);
    uint32_t nMenus = 0;
    uint32_t nCells = 0;
    uint32_t nVobs = 0;
    EXPECT_EQ(CDvdStructure::CheckDvdVideoFiles(VideoTs()), qmz::kOk);
    EXPECT_EQ(CDvdStructure::CountMenuFiles(VideoTs(), nMenus), qmz::kOk);
    EXPECT_EQ(CDvdStructure::CountStructure(VideoTs(), nCells, nVobs), qmz::kOk);
    EXPECT_EQ(nMenus, 2u);
    EXPECT_EQ(nVobs, CountInUnauthored("<vob file="));

    int status = -1;
    const std::string out = CommandOutput(
        std::string(OVRIN_CLI) + " layout --dvd-first " + Quote(*s_pDir / "dvd"), &status);
    EXPECT_EQ(status, 0) << out;
    std::vector<std::string> dests;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        std::smatch m;
        if (std::regex_match(line, m, std::regex(R"([df] +\d+ +\d+ (.*))"))) {
            dests.push_back(m[1]);
        }
    }
    std::vector<std::string> expected = {"\\", "\\VIDEO_TS\\"};
    for (const char* name :
         {"VIDEO_TS.IFO", "VIDEO_TS.VOB", "VIDEO_TS.BUP", "VTS_01_0.IFO", "VTS_01_0.VOB",
          "VTS_01_1.VOB", "VTS_01_0.BUP", "VTS_02_0.IFO", "VTS_02_1.VOB", "VTS_02_0.BUP"}) {
        expected.push_back(std::string("\\VIDEO_TS\\") + name);
    }
    ASSERT_GE(dests.size(), expected.size()) << out;
    EXPECT_EQ(std::vector<std::string>(dests.begin(), dests.begin() + expected.size()), expected)
        << out;
    EXPECT_NE(out.find("Title sets: " + std::to_string(CountInUnauthored("<titleset>")) + "\n"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("Cells:      " + std::to_string(nCells) + "\n"), std::string::npos) << out;
    EXPECT_EQ(nCells, CountInUnauthored("<cell "));
}

} // namespace
