// The frame's answers to the reader's notices: the progress dialog, the frame's input, the
// timers that poll the reader and the reports; the stop button reaching the reader; and images
// opened one after the other through the frame, on the engine double.
#include "AppTestSupport.h"
#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "CImageReader.h"
#include "CMainFrame.h"
#include "COvDataItem.h"
#include "COvrinDoc.h"
#include "CProgressDlg.h"
#include "CWindowMessage.h"
#include "ToolkitTestSupport.h"

#include <QFile>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidgetItem>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using apptest::BoxCatcher;

constexpr int kWaitMs = 5000;
constexpr uint32_t kNoCode = 0;

class ReaderCallback : public ::testing::Test {
protected:
    ReaderCallback() {
        g_pImageReader = &m_reader;
        m_pFrame = std::make_unique<CMainFrame>();
        m_pTree = new CFolderTreeView(&m_doc);
        m_pList = new CFileListView(&m_doc);
        m_pFrame->SetPanes(m_pTree, m_pList);
        m_pFrame->resize(CMainFrame::kDefaultSize);
        m_pFrame->show();
        QCoreApplication::processEvents();
    }
    ~ReaderCallback() override {
        m_pFrame.reset();
        g_pImageReader = nullptr;
    }

    void Notify(uint32_t nCode, const QString& payload = QString()) {
        CMainFrame::ImageReaderCallback(
            nCode, payload.isNull() ? nullptr : reinterpret_cast<const char16_t*>(payload.utf16()),
            m_pFrame.get());
    }
    CProgressDlg& Dialog() { return *m_pFrame->ProgressDialog(); }
    QString Image(const QString& name, const char* listing) {
        const QString path = m_dir.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(listing);
        return path;
    }
    QStringList TreeFolders() {
        QStringList names;
        QTreeWidgetItem* pRoot = m_pTree->TreeCtrl().topLevelItem(0);
        names << pRoot->text(0);
        pRoot->setExpanded(true);
        for (int i = 0; i < pRoot->childCount(); ++i) {
            names << pRoot->child(i)->text(0);
        }
        return names;
    }
    QStringList ListRows() {
        QStringList names;
        COvListModel& model = m_pList->ListCtrl().Model();
        for (int i = 0; i < model.rowCount(); ++i) {
            names << model.NodeAt(i)->m_strName;
        }
        return names;
    }

    toolkittest::CommittedSkin m_skin;
    QTemporaryDir m_dir;
    CImageReader m_reader{QStringLiteral(FAKEQMZ_PATH)};
    COvrinDoc m_doc;
    std::unique_ptr<CMainFrame> m_pFrame;
    CFolderTreeView* m_pTree = nullptr;
    CFileListView* m_pList = nullptr;
};

struct NoticeCase {
    const char* name;
    uint32_t nBefore;
    uint32_t nCode;
    QString payload;
    bool bViewing;
    bool bDialogShown;
    QString dialogText;
    bool bCopyTimer;
    bool bOpenTimer;
    QString report;
};

TEST_F(ReaderCallback, EachNoticeHasItsReaction) {
    const QString missingTarget = m_dir.filePath(u"not/yet/out.bin"_s);
    const QString mount = QStorageInfo(m_dir.path()).rootPath();
    const NoticeCase cases[] = {
        {"open begin",
         kNoCode,
         NOTIFY_OPEN_BEGIN,
         u"/images/a.iso"_s,
         false,
         true,
         u"Opening \"/images/a.iso\"..."_s,
         false,
         true,
         {}},
        {"open end", NOTIFY_OPEN_BEGIN, NOTIFY_OPEN_END, {}, false, false, {}, false, false, {}},
        {"copy begin",
         kNoCode,
         NOTIFY_COPY_BEGIN,
         u"b.txt"_s,
         false,
         true,
         u"Extracting \"b.txt\"..."_s,
         true,
         false,
         {}},
        {"copy end", NOTIFY_COPY_BEGIN, NOTIFY_COPY_END, {}, false, false, {}, false, false, {}},
        {"stopping",
         NOTIFY_OPEN_BEGIN,
         NOTIFY_STOPPING,
         {},
         false,
         true,
         u"Stopping..."_s,
         false,
         true,
         {}},
        {"no room",
         kNoCode,
         NOTIFY_NO_ROOM,
         missingTarget,
         false,
         false,
         {},
         false,
         false,
         u"There is not enough free space on %1 to extract \"out.bin\". Free some space there, "
         u"then try again."_s.arg(mount)},
        {"no room, viewing",
         kNoCode,
         NOTIFY_NO_ROOM,
         missingTarget,
         true,
         false,
         {},
         false,
         false,
         u"There is not enough free space on %1 for the extracted files. Free some space there, "
         u"then try again."_s.arg(mount)},
        {"write failed",
         kNoCode,
         NOTIFY_WRITE_FAILED,
         u"/out/c.bin"_s,
         false,
         false,
         {},
         false,
         false,
         u"\"/out/c.bin\" could not be written. Check that the disk is not full or read-only, "
         u"then try again."_s},
        {"read failed",
         NOTIFY_COPY_BEGIN,
         NOTIFY_READ_FAILED,
         {},
         false,
         true,
         {},
         true,
         false,
         u"Part of the image could not be read, so the extraction stopped. The image may be "
         u"damaged."_s},
        {"read failed, viewing",
         kNoCode,
         NOTIFY_READ_FAILED,
         {},
         true,
         false,
         {},
         false,
         false,
         u"The file could not be read from the image, so it cannot be opened. The image may be "
         u"damaged."_s},
        {"access denied",
         kNoCode,
         NOTIFY_ACCESS_DENIED,
         u"/out/d.bin"_s,
         false,
         false,
         {},
         false,
         false,
         u"You do not have permission to write \"/out/d.bin\". Choose a folder you are allowed "
         u"to write to, then try again."_s},
        {"access denied, viewing",
         kNoCode,
         NOTIFY_ACCESS_DENIED,
         u"/out/d.bin"_s,
         true,
         false,
         {},
         false,
         false,
         u"Ovrin could not make a copy of the file to open at \"/out/d.bin\" because permission "
         u"was denied."_s},
        {"unused code", kNoCode, 0x8003, {}, false, false, {}, false, false, {}},
        {"outside the range", kNoCode, 0x800B, {}, false, false, {}, false, false, {}},
    };
    for (const NoticeCase& c : cases) {
        SCOPED_TRACE(c.name);
        m_pFrame->SetExtractionMode(c.bViewing);
        BoxCatcher boxes;
        if (c.nBefore != kNoCode) {
            Notify(c.nBefore, u"before"_s);
        }
        Notify(c.nCode, c.payload);
        EXPECT_EQ(Dialog().isVisible(), c.bDialogShown);
        EXPECT_EQ(m_pFrame->isEnabled(), !c.bDialogShown);
        EXPECT_TRUE(Dialog().isEnabled());
        if (!c.dialogText.isEmpty()) {
            EXPECT_EQ(Dialog().GetText(), c.dialogText);
        }
        if (c.bDialogShown) {
            EXPECT_LE(
                (Dialog().geometry().center() - m_pFrame->geometry().center()).manhattanLength(),
                2);
        }
        EXPECT_EQ(m_pFrame->IsTimerRunning(CMainFrame::kTimerCopy), c.bCopyTimer);
        EXPECT_EQ(m_pFrame->IsTimerRunning(CMainFrame::kTimerOpen), c.bOpenTimer);
        EXPECT_EQ(boxes.m_lstTexts, c.report.isEmpty() ? QStringList() : QStringList{c.report});
        EXPECT_EQ(boxes.m_nDisabled, 0);
        Notify(NOTIFY_OPEN_END);
        Notify(NOTIFY_COPY_END);
    }
}

TEST_F(ReaderCallback, TheTimersShowTheReadersProgress) {
    m_reader.SetCopyPercent(42);
    Notify(NOTIFY_COPY_BEGIN, u"big.bin"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Dialog().Percent() == 42; }, kWaitMs));
    Notify(NOTIFY_COPY_END);
    m_reader.SetCopyPercent(7);
    m_pFrame->OnTimer(CMainFrame::kTimerCopy);
    EXPECT_EQ(Dialog().Percent(), 7);
}

TEST_F(ReaderCallback, TheStopButtonReachesTheReader) {
    const uintptr_t requests[] = {1, 0, 1};
    for (const uintptr_t wParam : requests) {
        CWindowMessage message(wmProgressCancel, wParam, 0);
        QCoreApplication::sendEvent(m_pFrame.get(), &message);
        EXPECT_EQ(m_reader.GetStop(), static_cast<int32_t>(wParam));
    }
}

TEST_F(ReaderCallback, ASecondImageLeavesNothingOfTheFirst) {
    const QString first = Image(u"first.iso"_s, "volume FIRST\n"
                                                "d 0 Old\n"
                                                "d 0 Old\\Deeper\n"
                                                "f 1 0 Old\\gone.txt\n"
                                                "f 2 0 old.bin\n");
    const QString second = Image(u"second.iso"_s, "volume SECOND\n"
                                                  "d 0 Docs\n"
                                                  "f 5 0 readme.txt\n");
    ASSERT_EQ(m_pFrame->OpenFile(first), qmz::kOk);
    ASSERT_EQ(TreeFolders(), (QStringList{u"FIRST"_s, u"Old"_s}));
    m_pTree->TreeCtrl().setCurrentItem(m_pTree->TreeCtrl().topLevelItem(0)->child(0));
    ASSERT_EQ(ListRows(), (QStringList{u"Deeper"_s, u"gone.txt"_s}));

    // The second comes through the open command, as the user picks it.
    m_pList->SetImageChooser(
        [&](QWidget*, const QString&, const QString&, const QString&) { return second; });
    BoxCatcher boxes;
    EXPECT_TRUE(m_pFrame->OnCommand(CMainFrame::kCommandOpen));
    EXPECT_TRUE(boxes.m_lstTexts.isEmpty());
    EXPECT_EQ(TreeFolders(), (QStringList{u"SECOND"_s, u"Docs"_s}));
    EXPECT_EQ(ListRows(), (QStringList{u"Docs"_s, u"readme.txt"_s}));
    EXPECT_EQ(m_doc.GetRootItem()->m_ullSize, 5u);
    EXPECT_EQ(m_doc.GetRootItem()->m_vecChildren.size(), 2u);
    EXPECT_TRUE(m_pFrame->isEnabled());
    EXPECT_FALSE(Dialog().isVisible());
    EXPECT_FALSE(m_pFrame->IsTimerRunning(CMainFrame::kTimerOpen));
}

TEST(FrameWithoutFileList, OpensNothing) {
    toolkittest::CommittedSkin skin;
    CMainFrame frame;
    EXPECT_EQ(frame.OpenFile(u"/images/a.iso"_s), qmz::kOk);
}

} // namespace
