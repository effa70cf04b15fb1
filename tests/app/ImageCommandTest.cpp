// The image commands in the whole window: the frame's route to the active pane, and the words
// of its reports for a file that is viewed rather than extracted.
#include "AppTestSupport.h"
#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "CImageReader.h"
#include "CMainFrame.h"
#include "COvrinDoc.h"
#include "CProgressDlg.h"
#include "TestFiles.h"
#include "ToolkitTestSupport.h"
#include "ViewsTestSupport.h"

#include <QDesktopServices>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using apptest::BoxCatcher;
namespace fs = std::filesystem;

constexpr const char* kListing = "volume WINDOW\n"
                                 "d 0 Docs\n"
                                 "f 100 0 Docs\\a.txt\n"
                                 "f 90000 0 unreadable.bin\n";

class ImageCommands : public ::testing::Test {
protected:
    ImageCommands() : m_savedCache(qgetenv("XDG_CACHE_HOME")) {
        // Files copied for viewing go to a temp folder of the test's own.
        qputenv("XDG_CACHE_HOME", (m_dir.Path() / "cache").c_str());
        g_pImageReader = &m_reader;
        m_reader.SetPump([](void*) { QCoreApplication::processEvents(); }, nullptr);
        m_pFrame = std::make_unique<CMainFrame>();
        m_pFrame->SetPanes(new CFolderTreeView(&m_doc), new CFileListView(&m_doc));
        m_pFrame->resize(CMainFrame::kDefaultSize);
        m_pFrame->show();
        QCoreApplication::processEvents();
        List().SetFolderChooser(
            [this](QWidget*, const QString&, const QString&) { return Target(); });
        Tree().SetFolderChooser(
            [this](QWidget*, const QString&, const QString&) { return Target(); });
        fs::create_directories(m_dir.Path() / "out");
    }
    ~ImageCommands() override {
        m_pFrame.reset();
        g_pImageReader = nullptr;
        qputenv("XDG_CACHE_HOME", m_savedCache);
    }

    CFileListView& List() { return *static_cast<CFileListView*>(m_pFrame->RightPane()); }
    CFolderTreeView& Tree() { return *static_cast<CFolderTreeView*>(m_pFrame->LeftPane()); }
    QString Target() const { return QString::fromStdString((m_dir.Path() / "out").string()); }

    // Opens the listing (the engine double's fault counts start again), then clicks the row in
    // the list, which makes the list the pane that the commands go to.
    void OpenAndClick(const QString& row, const std::string& faults = {}) {
        const fs::path image = m_dir.Path() / "window.iso";
        const std::string listing = kListing + faults;
        testsupport::WriteFile(image, {listing.begin(), listing.end()});
        ASSERT_EQ(m_pFrame->OpenFile(QString::fromStdString(image.string())), qmz::kOk);
        QTreeView* pReport = List().ListCtrl().ReportView();
        const int nRow = static_cast<int>(ListRows(List()).indexOf(row));
        ASSERT_GE(nRow, 0);
        QTest::mouseClick(pReport->viewport(), Qt::LeftButton, Qt::NoModifier,
                          pReport->visualRect(pReport->model()->index(nRow, 0)).center());
        QCoreApplication::processEvents();
    }
    void ExpectWorkingWindow() {
        EXPECT_TRUE(m_pFrame->isEnabled());
        EXPECT_FALSE(m_pFrame->ProgressDialog()->isVisible());
        EXPECT_FALSE(m_pFrame->IsTimerRunning(CMainFrame::kTimerCopy));
        EXPECT_FALSE(m_pFrame->ExtractionMode());
    }

    toolkittest::CommittedSkin m_skin;
    testsupport::TempDir m_dir;
    QByteArray m_savedCache;
    CImageReader m_reader{QStringLiteral(FAKEQMZ_PATH)};
    COvrinDoc m_doc;
    std::unique_ptr<CMainFrame> m_pFrame;
};

TEST_F(ImageCommands, AFileThatCannotBeReadIsReportedInTheWordsOfItsCommand) {
    QDesktopServices::setUrlHandler(u"file"_s, m_pFrame.get(), "close");
    const struct {
        const char* name;
        int nCommand;
        uint32_t nText;
    } cases[] = {
        {"viewed", CMainFrame::kCommandView, tvn::kReadFailedView},
        {"extracted", CMainFrame::kCommandExtract, tvn::kReadFailed},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        // Its second chunk cannot be read.
        OpenAndClick(u"unreadable.bin"_s, "fail ReadFile 2 0x80004005\n");
        BoxCatcher boxes;
        EXPECT_TRUE(m_pFrame->OnCommand(c.nCommand));
        EXPECT_EQ(boxes.m_lstTexts, QStringList{TvnText(c.nText)});
        ExpectWorkingWindow();
    }
    QDesktopServices::unsetUrlHandler(u"file"_s);
}

TEST_F(ImageCommands, TheTreeExtractsWhenItIsThePaneInUse) {
    OpenAndClick(u"Docs"_s);
    QTreeWidget& tree = Tree().TreeCtrl();
    QTreeWidgetItem* pDocs = tree.topLevelItem(0)->child(0);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, Qt::NoModifier,
                      tree.visualItemRect(pDocs).center());
    QCoreApplication::processEvents();
    BoxCatcher boxes;
    EXPECT_TRUE(m_pFrame->OnCommand(CMainFrame::kCommandExtract));
    EXPECT_TRUE(boxes.m_lstTexts.isEmpty());
    EXPECT_EQ(fs::file_size(m_dir.Path() / "out" / "Docs" / "a.txt"), 100u);
    // The list has no such command when the tree is in use.
    CommandState state;
    EXPECT_FALSE(m_pFrame->OnUpdateCommand(CMainFrame::kCommandView, state));
    ExpectWorkingWindow();
}

} // namespace
