// The program's start and end as a person meets them: with and without a file on the command
// line, with a file that is no image, without a language table, and an image that xorriso
// makes, opened by the real engine and walked into with the mouse.
#include "AppTestSupport.h"
#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "CImageReader.h"
#include "CMainFrame.h"
#include "COvDataItem.h"
#include "COvListCtrl.h"
#include "COvrinApp.h"
#include "CProgressDlg.h"
#include "TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidgetItem>
#include <gtest/gtest.h>

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

QStringList Rows(CFileListView& list) {
    QStringList names;
    for (int i = 0; i < list.ListCtrl().Model().rowCount(); ++i) {
        names << list.ListCtrl().Model().NodeAt(i)->m_strName;
    }
    return names;
}

CFolderTreeView& TreeOf(const COvrinApp& app) {
    return *static_cast<CFolderTreeView*>(app.MainFrame()->LeftPane());
}

CFileListView& ListOf(const COvrinApp& app) {
    return *static_cast<CFileListView*>(app.MainFrame()->RightPane());
}

// The window is there and takes input, with no job left running.
void ExpectWorkingWindow(const COvrinApp& app) {
    CMainFrame* pFrame = app.MainFrame();
    ASSERT_NE(pFrame, nullptr);
    EXPECT_TRUE(pFrame->isVisible());
    EXPECT_TRUE(pFrame->isEnabled());
    EXPECT_FALSE(pFrame->ProgressDialog()->isVisible());
    EXPECT_NE(g_pImageReader, nullptr);
    CommandState state;
    EXPECT_TRUE(pFrame->OnUpdateCommand(CMainFrame::kCommandOpen, state));
    EXPECT_TRUE(state.bEnabled);
}

struct StartCase {
    const char* name;
    const char* file;
    const char* bytes;
    bool bReported;
};

TEST(AppStart, AFileThatCannotBeOpenedIsReportedOnceAndTheWindowStays) {
    QTemporaryDir dir;
    const StartCase cases[] = {
        {"no file named", nullptr, nullptr, false},
        {"a file that does not exist", "missing.iso", nullptr, false},
        {"an image name over other bytes", "broken.iso", "not a disc image", true},
        {"a name that is no image's", "notes.txt", "plain text", true},
    };
    for (const StartCase& c : cases) {
        SCOPED_TRACE(c.name);
        QStringList arguments{u"ovrin"_s};
        if (c.file != nullptr) {
            arguments << dir.filePath(QString::fromUtf8(c.file));
        }
        if (c.bytes != nullptr) {
            ts::WriteFile(arguments.last().toStdString(),
                          std::vector<uint8_t>(c.bytes, c.bytes + strlen(c.bytes)));
        }
        BoxCatcher boxes;
        COvrinApp app(arguments, SourceSetup());
        ASSERT_TRUE(app.InitInstance());
        EXPECT_EQ(boxes.m_lstTexts, c.bReported ? QStringList{kOpenFailed} : QStringList());
        ExpectWorkingWindow(app);
        EXPECT_EQ(TreeOf(app).TreeCtrl().topLevelItem(0)->text(0), u"No image open"_s);
        EXPECT_TRUE(Rows(ListOf(app)).isEmpty());
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

// A person starts the program on an image and double-clicks a folder in the list.
TEST(AppStart, AnImageOnTheCommandLineIsShownAndWalkedInto) {
    const ts::TempDir temp;
    std::filesystem::create_directories(temp / "src/docs/inner");
    ts::WriteFile(temp / "src/docs/a.txt", ts::PatternBytes(100, 1));
    ts::WriteFile(temp / "src/docs/inner/b.txt", ts::PatternBytes(50, 2));
    ts::WriteFile(temp / "src/top.txt", ts::PatternBytes(300, 3));
    const std::filesystem::path image = temp / "made.iso";
    ASSERT_TRUE(ts::RunCommand("xorriso -as mkisofs -quiet -R -J -V MADE -o " + ts::Quote(image) +
                               " " + ts::Quote(temp / "src")));
    const QString path = QString::fromStdString(image.string());

    BoxCatcher boxes;
    COvrinApp app({u"ovrin"_s, path}, SourceSetup());
    ASSERT_TRUE(app.InitInstance());
    EXPECT_TRUE(boxes.m_lstTexts.isEmpty());
    ExpectWorkingWindow(app);
    EXPECT_EQ(app.MainFrame()->windowTitle(), u"Ovrin Viewer ["_s + path + u']');
    CFolderTreeView& tree = TreeOf(app);
    CFileListView& list = ListOf(app);
    EXPECT_EQ(tree.TreeCtrl().topLevelItem(0)->text(0), u"MADE"_s);
    ASSERT_EQ(Rows(list), (QStringList{u"docs"_s, u"top.txt"_s}));
    // Types come from the desktop's file types: a folder is one, a .txt file is text.
    const QAbstractItemModel* pModel = list.ListCtrl().ReportView()->model();
    EXPECT_FALSE(pModel->index(0, 2).data().toString().isEmpty());
    EXPECT_TRUE(pModel->index(1, 2).data().toString().contains(u"text"_s, Qt::CaseInsensitive));

    QTreeView* pReport = list.ListCtrl().ReportView();
    const QPoint at = pReport->visualRect(pReport->model()->index(0, 0)).center();
    QTest::mouseClick(pReport->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(pReport->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QCoreApplication::processEvents();
    ASSERT_NE(tree.TreeCtrl().currentItem(), nullptr);
    EXPECT_EQ(tree.TreeCtrl().currentItem()->text(0), u"docs"_s);
    EXPECT_EQ(Rows(list), (QStringList{u"inner"_s, u"a.txt"_s}));
    EXPECT_EQ(app.ExitInstance(), 0);
}

// Paints that reach the folder tree, counted as the screen would show them.
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
    const ts::TempDir temp;
    std::filesystem::create_directories(temp / "src/docs");
    ts::WriteFile(temp / "src/docs/a.txt", ts::PatternBytes(100, 1));
    const std::filesystem::path image = temp / "made.iso";
    ASSERT_TRUE(ts::RunCommand("xorriso -as mkisofs -quiet -R -J -V MADE -o " + ts::Quote(image) +
                               " " + ts::Quote(temp / "src")));

    qputenv("OVRIN_QUIT_AFTER_FIRST_PAINT", "1");
    TreePaintCounter counter;
    qApp->installEventFilter(&counter);
    // Its own timer, so that no give-up outlives the test into another one's loop.
    QTimer giveUp;
    giveUp.setSingleShot(true);
    QObject::connect(&giveUp, &QTimer::timeout, [] { QCoreApplication::exit(kGaveUp); });
    giveUp.start(kGiveUpMs);
    COvrinApp app({u"ovrin"_s, QString::fromStdString(image.string())}, SourceSetup());
    const int nResult = app.Run();
    qApp->removeEventFilter(&counter);
    qunsetenv("OVRIN_QUIT_AFTER_FIRST_PAINT");
    EXPECT_EQ(nResult, 0);
    EXPECT_GT(counter.m_nPaints, 0);
    EXPECT_EQ(app.MainFrame(), nullptr);
}

} // namespace
