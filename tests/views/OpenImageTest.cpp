// Opening an image from the file list on the engine double: which names reach the engine, and
// what the tree, the list, the title and the image folder show afterwards. The real engine and
// bad images are the app's start test's.
#include "ImagePanes.h"
#include "Locations.h"
#include "TestFiles.h"
#include "ToolkitTestSupport.h"

#include <QFileInfo>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace Qt::StringLiterals;

const QString kTitle = u"Ovrin Viewer"_s;
constexpr const char* kFirstVolume =
    "volume FIRST\nd 0 Old\nd 0 Old\\Deeper\nf 1 0 Old\\gone.txt\nf 2 0 old.bin\n";
constexpr const char* kSecondVolume =
    "volume SECOND\nd 0 Docs\nd 0 Docs\\Sub\nd 0 Music\nf 5 0 readme.txt\n";

class OpenImage : public ImagePanes {
protected:
    OpenImage() {
        list.SetImageChooser(
            [this](QWidget*, const QString& folder, const QString& filter, const QString& title) {
                asked = {folder, filter, title};
                return chosen;
            });
    }

    QString Image(const QString& name, const std::string& text) {
        const std::filesystem::path path = dir / name.toStdString();
        testsupport::WriteFile(path, {text.begin(), text.end()});
        return QString::fromStdString(path.string());
    }

    QString chosen;
    QStringList asked;
};

enum class Outcome { Opened, FirstKept, Emptied };

struct OpenCase {
    // The file chosen in the dialog; none when the dialog is cancelled.
    const char* name;
    Outcome outcome = Outcome::FirstKept;
    int nBoxes = 0;
    // What the engine double fails at.
    const char* faults = "";
    bool bNoReader = false;
};

TEST_F(OpenImage, OnlyAnImagesNameReachesTheEngineAndLeavesNothingOfTheImageBefore) {
    const OpenCase cases[] = {
        {.name = "a.iso", .outcome = Outcome::Opened},
        {.name = "in/b.TVI", .outcome = Outcome::Opened},
        {.name = "in/deeper/c.Rdf", .outcome = Outcome::Opened},
        {.name = "listing.txt", .nBoxes = 1},
        {.name = "image.iso.bak", .nBoxes = 1},
        {.name = "iso", .nBoxes = 1},
        {.name = "image.isox", .nBoxes = 1},
        {.name = nullptr},
        {.name = "no-reader.iso", .bNoReader = true},
        {.name = "failing.iso",
         .outcome = Outcome::Emptied,
         .nBoxes = 1,
         .faults = "fail GetFsInfo 0 0x80004005\n"},
    };
    const QString firstPath = Image(u"first/first.iso"_s, kFirstVolume);
    for (const OpenCase& c : cases) {
        SCOPED_TRACE(c.name != nullptr ? c.name : "cancelled");
        ASSERT_EQ(list.OpenImageFile(firstPath), qmz::kOk);
        // The list shows the first image's inner folder when the next one comes.
        tree.TreeCtrl().setCurrentItem(tree.TreeCtrl().topLevelItem(0)->child(0));
        ASSERT_EQ(ListRows(list), (QStringList{u"Deeper"_s, u"gone.txt"_s}));
        const QString path = c.name != nullptr ? Image(QString::fromUtf8(c.name),
                                                       std::string(kSecondVolume) + c.faults)
                                               : QString();
        chosen = path;
        codes.clear();
        asked.clear();
        g_pImageReader = c.bNoReader ? nullptr : &reader;
        toolkittest::BoxCatcher boxes;
        EXPECT_TRUE(list.OnCommand(kCmdOpenImage));
        EXPECT_EQ(boxes.m_lstTexts.size(), c.nBoxes);
        g_pImageReader = &reader;

        const QString shown = c.outcome == Outcome::Opened ? path : firstPath;
        if (c.outcome == Outcome::Emptied) {
            EXPECT_EQ(TreePaths(tree), QStringList{u"No image open"_s});
            EXPECT_TRUE(ListRows(list).isEmpty());
            EXPECT_TRUE(list.ImagePath().isEmpty());
            EXPECT_EQ(window.windowTitle(), kTitle);
        } else if (c.outcome == Outcome::Opened) {
            EXPECT_EQ(TreePaths(tree), (QStringList{u"SECOND"_s, u"SECOND/Docs"_s,
                                                    u"SECOND/Docs/Sub"_s, u"SECOND/Music"_s}));
            EXPECT_EQ(ListRows(list), (QStringList{u"Docs"_s, u"Music"_s, u"readme.txt"_s}));
            EXPECT_EQ(doc.GetRootItem()->m_ullSize, 5u) << "no size of the first image is counted";
            EXPECT_EQ(asked, (QStringList{QFileInfo(firstPath).absolutePath(),
                                          u"Disc images (*.tvi *.iso *.rdf);;All files (*)"_s,
                                          u"Open Image"_s}));
        } else {
            EXPECT_EQ(TreePaths(tree),
                      (QStringList{u"FIRST"_s, u"FIRST/Old"_s, u"FIRST/Old/Deeper"_s}));
            EXPECT_TRUE(codes.empty());
        }
        if (c.outcome != Outcome::FirstKept) {
            ASSERT_GE(codes.size(), 2u);
            EXPECT_EQ(codes.front(), NOTIFY_OPEN_BEGIN);
            EXPECT_EQ(codes.back(), NOTIFY_OPEN_END);
        }
        if (c.outcome != Outcome::Emptied) {
            EXPECT_EQ(list.ImagePath(), shown);
            EXPECT_EQ(window.windowTitle(), kTitle + u" ["_s + shown + u']');
        }
        EXPECT_EQ(GetImageFolder(), QFileInfo(shown).absolutePath());
    }
}

} // namespace
