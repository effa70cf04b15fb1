// The program's start and end as a person meets them: with and without a file on the command
// line; with bad input there (no image, unreadable, gone while open, or an opening that the
// person stops), after which the window still opens a good image and walks into it with the
// mouse; and without a language table.
#include "AppTestSupport.h"
#include "CAlphaButton.h"
#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "CImageReader.h"
#include "CMainFrame.h"
#include "COvDataItem.h"
#include "COvListCtrl.h"
#include "COvrinApp.h"
#include "CProgressDlg.h"
#include "RestrictedTargets.h"
#include "TestFiles.h"
#include "ToolkitTestSupport.h"
#include "ViewsTestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidgetItem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>

namespace {

using namespace Qt::StringLiterals;
using apptest::BoxCatcher;
namespace ts = testsupport;

const QString kOpenFailed = u"The image could not be opened. It may be damaged, or it is not a "
                            u"disc image that Ovrin can read."_s;

// The source tree holds Language/ and Image/ as the program's folder does.
COvrinApp::Setup SourceSetup() {
    return {QDir::cleanPath(QStringLiteral(OVRIN_LANGUAGE_DIR "/..")), QStringLiteral(QMZ_PATH)};
}

CFolderTreeView& TreeOf(const COvrinApp& app) {
    return *static_cast<CFolderTreeView*>(app.MainFrame()->LeftPane());
}

CFileListView& ListOf(const COvrinApp& app) {
    return *static_cast<CFileListView*>(app.MainFrame()->RightPane());
}

void ExpectWorkingWindow(const COvrinApp& app) {
    CMainFrame* pFrame = app.MainFrame();
    ASSERT_NE(pFrame, nullptr);
    CommandState state;
    const bool bKnown = pFrame->OnUpdateCommand(CMainFrame::kCommandOpen, state);
    // Shown and taking input, no progress and no timer, a reader, and Open enabled.
    EXPECT_EQ((std::vector<bool>{pFrame->isVisible(), pFrame->isEnabled(),
                                 pFrame->ProgressDialog()->isVisible(),
                                 pFrame->IsTimerRunning(CMainFrame::kTimerOpen),
                                 pFrame->IsTimerRunning(CMainFrame::kTimerCopy),
                                 g_pImageReader != nullptr, bKnown && state.bEnabled}),
              (std::vector<bool>{true, true, false, false, false, true, true}));
}

constexpr auto kNoAccess = std::filesystem::perms::none;
// The engine double's scan reports "running" this often, so a stop always comes mid-scan.
constexpr const char* kLongListing = "volume LONG\nwait-running 100000000\nd 0 Docs\n";
constexpr const char* kGoodListing = "volume GOOD\nd 0 Docs\nf 5 0 readme.txt\n";

// The images of one run: a good one that genisoimage makes of A/X.TXT, B/Y.TXT and F1.TXT, and
// the engine double's good listing.
class Images {
public:
    Images() {
        ts::WriteFile(m_temp / "src/A/X.TXT", {'x'});
        ts::WriteFile(m_temp / "src/B/Y.TXT", {'y'});
        ts::WriteFile(m_temp / "src/F1.TXT", {'1'});
        EXPECT_TRUE(ts::RunCommand("genisoimage -quiet -R -V GOOD -o " + ts::Quote(Good()) + " " +
                                   ts::Quote(m_temp / "src")));
        ts::WriteFile(GoodListing(), Bytes(kGoodListing));
    }
    std::filesystem::path Good() const { return m_temp / "good.iso"; }
    std::filesystem::path GoodListing() const { return m_temp / "good-listing.iso"; }
    QString Write(const std::string& name, const std::vector<uint8_t>& bytes) const {
        ts::WriteFile(m_temp / name, bytes);
        return Path(name);
    }
    QString Path(const std::string& name) const {
        return QString::fromStdString((m_temp / name).string());
    }
    static std::vector<uint8_t> Bytes(std::string_view text) { return {text.begin(), text.end()}; }

private:
    ts::TempDir m_temp;
};

enum class Engine { Real, Double };

const QStringList kNoImageTree{u"No image open"_s};
const QStringList kGoodTree{u"GOOD"_s, u"A"_s, u"B"_s};

struct StartCase {
    const char* name;
    Engine engine = Engine::Real;
    // The file named on the command line; none for an empty name.
    std::function<QString(const Images&)> make = {};
    // What the person does once while the opening runs; true once it was done.
    std::function<bool(CMainFrame&)> whileOpening = {};
    std::function<void(COvrinApp&, const QString&)> afterwards = {};
    bool bReported = false;
    // The tree's root and the folders below it.
    QStringList tree = kNoImageTree;
};

QStringList TreeFolders(const COvrinApp& app) {
    QTreeWidgetItem* pRoot = TreeOf(app).TreeCtrl().topLevelItem(0);
    QStringList names{pRoot->text(0)};
    pRoot->setExpanded(true);
    for (int i = 0; i < pRoot->childCount(); ++i) {
        names << pRoot->child(i)->text(0);
    }
    return names;
}

bool ClickStop(CMainFrame& frame) {
    if (frame.ProgressDialog() == nullptr || !frame.ProgressDialog()->isVisible()) {
        return false;
    }
    toolkittest::Click(*frame.ProgressDialog()->CancelButton());
    return true;
}

// The image goes away under the open window; the folders already read still show.
void Vanish(COvrinApp& app, const QString& path) {
    std::filesystem::remove(path.toStdString());
    QTreeWidget& tree = TreeOf(app).TreeCtrl();
    QTreeWidgetItem* pRoot = tree.topLevelItem(0);
    for (int i = 0; i <= pRoot->childCount(); ++i) {
        tree.setCurrentItem(i < pRoot->childCount() ? pRoot->child(i) : pRoot);
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(ListRows(ListOf(app)), (QStringList{u"A"_s, u"B"_s, u"F1.TXT"_s}));
}

// The good image opens by the Open command: the title names it, types come from the desktop's
// file types (a folder is one, a .txt file is text), and a double click walks into a folder.
void ExpectGoodOpenAfter(COvrinApp& app, const QString& good, const QStringList& goodTree) {
    CFileListView& list = ListOf(app);
    list.SetImageChooser(
        [&](QWidget*, const QString&, const QString&, const QString&) { return good; });
    BoxCatcher boxes;
    EXPECT_TRUE(app.MainFrame()->OnCommand(CMainFrame::kCommandOpen));
    EXPECT_TRUE(boxes.m_lstTexts.isEmpty());
    EXPECT_EQ(TreeFolders(app), goodTree);
    EXPECT_EQ(app.MainFrame()->windowTitle(), u"Ovrin Viewer ["_s + good + u']');
    ExpectWorkingWindow(app);

    QTreeView* pReport = list.ListCtrl().ReportView();
    const QAbstractItemModel* pModel = pReport->model();
    EXPECT_FALSE(pModel->index(0, 2).data().toString().isEmpty());
    EXPECT_TRUE(pModel->index(pModel->rowCount() - 1, 2)
                    .data()
                    .toString()
                    .contains(u"text"_s, Qt::CaseInsensitive));
    const QPoint at = pReport->visualRect(pModel->index(0, 0)).center();
    QTest::mouseClick(pReport->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(pReport->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QCoreApplication::processEvents();
    ASSERT_NE(TreeOf(app).TreeCtrl().currentItem(), nullptr);
    EXPECT_EQ(TreeOf(app).TreeCtrl().currentItem()->text(0), goodTree[1]);
}

TEST(AppStart, BadInputIsReportedOnceAndLeavesAWorkingWindow) {
    const Images images;
    const auto deny = [](const Images& i) {
        const QString path = i.Write("locked.iso", ts::ReadWholeFile(i.Good()));
        std::filesystem::permissions(path.toStdString(), kNoAccess);
        return path;
    };
    const StartCase cases[] = {
        {.name = "no file named"},
        {.name = "a file that does not exist",
         .make = [](const Images& i) { return i.Path("missing.iso"); }},
        {.name = "random bytes",
         .make =
             [](const Images& i) { return i.Write("noise.iso", ts::PatternBytes(64 * 1024, 1)); },
         .bReported = true},
        {.name = "an empty image",
         .make = [](const Images& i) { return i.Write("empty.iso", {}); },
         .bReported = true},
        {.name = "a name that is no image's",
         .make = [](const Images& i) { return i.Write("notes.txt", Images::Bytes("plain text")); },
         .bReported = true},
        {.name = "no read permission", .make = deny, .bReported = true},
        {.name = "deleted while open",
         .make = [](const Images& i) { return i.Write("gone.iso", ts::ReadWholeFile(i.Good())); },
         .afterwards = Vanish,
         .tree = kGoodTree},
        {.name = "stopped with the button",
         .engine = Engine::Double,
         .make = [](const Images& i) { return i.Write("long.iso", Images::Bytes(kLongListing)); },
         .whileOpening = ClickStop},
    };
    for (const StartCase& c : cases) {
        SCOPED_TRACE(c.name);
        const QString file = c.make ? c.make(images) : QString();
        const bool bDouble = c.engine == Engine::Double;
        // Root reads whatever the permission bits say unless it gives up its override.
        std::optional<ts::NoAccessOverride> noOverride;
        std::error_code noFile;
        if (std::filesystem::status(file.toStdString(), noFile).permissions() == kNoAccess) {
            noOverride.emplace();
        }
        BoxCatcher boxes;
        COvrinApp app(QStringList{u"ovrin"_s}
                          << (file.isEmpty() ? QStringList() : QStringList{file}),
                      {SourceSetup().programFolder,
                       bDouble ? QStringLiteral(FAKEQMZ_PATH) : QStringLiteral(QMZ_PATH)});
        QTimer during;
        QObject::connect(&during, &QTimer::timeout, [&] {
            if (app.MainFrame() != nullptr && c.whileOpening(*app.MainFrame())) {
                during.stop();
            }
        });
        if (c.whileOpening) {
            during.start(0);
        }
        ASSERT_TRUE(app.InitInstance());
        during.stop();
        EXPECT_EQ(TreeFolders(app), c.tree);
        if (c.tree == kNoImageTree) {
            EXPECT_TRUE(ListRows(ListOf(app)).isEmpty());
        }
        if (c.afterwards) {
            c.afterwards(app, file);
        }
        EXPECT_EQ(boxes.m_lstTexts, c.bReported ? QStringList{kOpenFailed} : QStringList());
        ExpectWorkingWindow(app);
        noOverride.reset();
        const std::filesystem::path good = bDouble ? images.GoodListing() : images.Good();
        ExpectGoodOpenAfter(app, QString::fromStdString(good.string()),
                            bDouble ? QStringList{u"GOOD"_s, u"Docs"_s} : kGoodTree);
        EXPECT_EQ(app.ExitInstance(), 0);
        EXPECT_EQ(g_pImageReader, nullptr);
    }
}

TEST(AppStart, WithoutALanguageTableTheSystemsBoxTellsAndTheStartEnds) {
    QTemporaryDir emptyProgramFolder;
    BoxCatcher boxes;
    COvrinApp app({u"ovrin"_s}, {emptyProgramFolder.path(), QStringLiteral(QMZ_PATH)});
    EXPECT_FALSE(app.InitInstance());
    ASSERT_EQ(boxes.m_lstTexts.size(), 1);
    EXPECT_TRUE(boxes.m_lstTexts[0].startsWith(u"The file ["_s));
    EXPECT_TRUE(boxes.m_lstTexts[0].endsWith(u"] is missing.\nPlease reinstall application."_s));
    EXPECT_EQ(app.MainFrame(), nullptr);
    EXPECT_EQ(g_pImageReader, nullptr);
    EXPECT_EQ(app.ExitInstance(), 0);
}

class TreePaintCounter : public QObject {
public:
    int m_nPaints = 0;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override {
        if (pEvent->type() == QEvent::Paint && pWatched->isWidgetType()) {
            for (QObject* p = pWatched; p != nullptr; p = p->parent()) {
                m_nPaints += qobject_cast<CFolderTreeView*>(p) != nullptr ? 1 : 0;
            }
        }
        return false;
    }
};

// The window benchmark times whole starts with this variable; a run that never ended by itself
// would hang the benchmark.
TEST(AppStart, TheFirstPaintOptionEndsTheRunOnceTheImagesTreeIsPainted) {
    constexpr int kGiveUpMs = 20'000;
    constexpr int kGaveUp = 99;
    const Images images;
    const QString path = QString::fromStdString(images.Good().string());

    qputenv("OVRIN_QUIT_AFTER_FIRST_PAINT", "1");
    TreePaintCounter counter;
    qApp->installEventFilter(&counter);
    // Its own timer, so that no give-up outlives the test into another one's loop.
    QTimer giveUp;
    giveUp.setSingleShot(true);
    QObject::connect(&giveUp, &QTimer::timeout, [] { QCoreApplication::exit(kGaveUp); });
    giveUp.start(kGiveUpMs);
    COvrinApp app({u"ovrin"_s, path}, SourceSetup());
    const int nResult = app.Run();
    qApp->removeEventFilter(&counter);
    qunsetenv("OVRIN_QUIT_AFTER_FIRST_PAINT");
    EXPECT_EQ(nResult, 0);
    EXPECT_GT(counter.m_nPaints, 0);
    EXPECT_EQ(app.MainFrame(), nullptr);
}

} // namespace
