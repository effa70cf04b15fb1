// The frame's answers to the reader's notices: the progress dialog, the frame's input, the
// timers that poll the reader and the reports; and the stop button reaching the reader.
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
        m_pFrame->SetPanes(new CFolderTreeView(&m_doc), new CFileListView(&m_doc));
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

    toolkittest::CommittedSkin m_skin;
    QTemporaryDir m_dir;
    CImageReader m_reader{QStringLiteral(FAKEQMZ_PATH)};
    COvrinDoc m_doc;
    std::unique_ptr<CMainFrame> m_pFrame;
};

struct NoticeCase {
    const char* name;
    uint32_t nCode;
    QString payload = {};
    uint32_t nBefore = kNoCode;
    bool bViewing = false;
    QString dialogText = {};
    bool bCopyTimer = false;
    bool bOpenTimer = false;
    QString report = {};
};

TEST_F(ReaderCallback, EachNoticeHasItsReaction) {
    const QString missingTarget = m_dir.filePath(u"not/yet/out.bin"_s);
    const QString mount = QStorageInfo(m_dir.path()).rootPath();
    const QString noRoom = u"There is not enough free space on %1 "_s.arg(mount);
    const QString deniedPath = u"/out/d.bin"_s;
    const NoticeCase cases[] = {
        {.name = "open begin",
         .nCode = NOTIFY_OPEN_BEGIN,
         .payload = u"/images/a.iso"_s,
         .dialogText = u"Opening \"/images/a.iso\"..."_s,
         .bOpenTimer = true},
        {.name = "open end", .nCode = NOTIFY_OPEN_END, .nBefore = NOTIFY_OPEN_BEGIN},
        {.name = "copy begin",
         .nCode = NOTIFY_COPY_BEGIN,
         .payload = u"b.txt"_s,
         .dialogText = u"Extracting \"b.txt\"..."_s,
         .bCopyTimer = true},
        {.name = "copy end", .nCode = NOTIFY_COPY_END, .nBefore = NOTIFY_COPY_BEGIN},
        {.name = "stopping",
         .nCode = NOTIFY_STOPPING,
         .nBefore = NOTIFY_OPEN_BEGIN,
         .dialogText = u"Stopping..."_s,
         .bOpenTimer = true},
        {.name = "no room",
         .nCode = NOTIFY_NO_ROOM,
         .payload = missingTarget,
         .report = noRoom + u"to extract \"out.bin\". Free some space there, then try again."_s},
        {.name = "no room, viewing",
         .nCode = NOTIFY_NO_ROOM,
         .payload = missingTarget,
         .bViewing = true,
         .report = noRoom + u"for the extracted files. Free some space there, then try again."_s},
        {.name = "write failed",
         .nCode = NOTIFY_WRITE_FAILED,
         .payload = u"/out/c.bin"_s,
         .report = u"\"/out/c.bin\" could not be written. Check that the disk is not full or "
                   u"read-only, then try again."_s},
        {.name = "read failed",
         .nCode = NOTIFY_READ_FAILED,
         .nBefore = NOTIFY_COPY_BEGIN,
         .bCopyTimer = true,
         .report = u"Part of the image could not be read, so the extraction stopped. The image "
                   u"may be damaged."_s},
        {.name = "read failed, viewing",
         .nCode = NOTIFY_READ_FAILED,
         .bViewing = true,
         .report = u"The file could not be read from the image, so it cannot be opened. The "
                   u"image may be damaged."_s},
        {.name = "access denied",
         .nCode = NOTIFY_ACCESS_DENIED,
         .payload = deniedPath,
         .report = u"You do not have permission to write \"/out/d.bin\". Choose a folder you are "
                   u"allowed to write to, then try again."_s},
        {.name = "access denied, viewing",
         .nCode = NOTIFY_ACCESS_DENIED,
         .payload = deniedPath,
         .bViewing = true,
         .report = u"Ovrin could not make a copy of the file to open at \"/out/d.bin\" because "
                   u"permission was denied."_s},
        {.name = "unused code", .nCode = 0x8003},
        {.name = "outside the range", .nCode = 0x800B},
    };
    for (const NoticeCase& c : cases) {
        SCOPED_TRACE(c.name);
        m_pFrame->SetExtractionMode(c.bViewing);
        BoxCatcher boxes;
        if (c.nBefore != kNoCode) {
            Notify(c.nBefore, u"before"_s);
        }
        Notify(c.nCode, c.payload);
        // The dialog shows exactly while a timer polls the reader.
        const bool bShown = c.bCopyTimer || c.bOpenTimer;
        EXPECT_EQ(Dialog().isVisible(), bShown);
        EXPECT_EQ(m_pFrame->isEnabled(), !bShown);
        EXPECT_TRUE(Dialog().isEnabled());
        if (!c.dialogText.isEmpty()) {
            EXPECT_EQ(Dialog().GetText(), c.dialogText);
        }
        if (bShown) {
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
    // The next files of the job are named at the next tick, not one by one as they come.
    Notify(NOTIFY_COPY_BEGIN, u"next.bin"_s);
    Notify(NOTIFY_COPY_BEGIN, u"last.bin"_s);
    EXPECT_EQ(Dialog().GetText(), u"Extracting \"big.bin\"..."_s);
    m_pFrame->OnTimer(CMainFrame::kTimerCopy);
    EXPECT_EQ(Dialog().GetText(), u"Extracting \"last.bin\"..."_s);
    Notify(NOTIFY_COPY_END);
    m_reader.SetCopyPercent(7);
    m_pFrame->OnTimer(CMainFrame::kTimerCopy);
    EXPECT_EQ(Dialog().Percent(), 7);
}

TEST_F(ReaderCallback, TheStopButtonReachesTheReader) {
    for (const uintptr_t wParam : {uintptr_t{1}, uintptr_t{0}, uintptr_t{1}}) {
        CWindowMessage message(wmProgressCancel, wParam, 0);
        QCoreApplication::sendEvent(m_pFrame.get(), &message);
        EXPECT_EQ(m_reader.GetStop(), static_cast<int32_t>(wParam));
    }
}

} // namespace

// Before the session ends or the machine sleeps, a running extraction stops and leaves no cut
// file behind; at any other time the reader is left alone.
TEST_F(ReaderCallback, TheEndOfTheSessionAndSleepStopAnExtraction) {
    const QString listing = m_dir.filePath(u"image.txt"_s);
    QFile file(listing);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("f 50000000 0 big\n");
    file.close();
    COvDataItem root(QString(), COvDataItem::KindRoot, 0, 0);
    ASSERT_EQ(m_reader.OpenImage(listing, &root), qmz::kOk);
    for (const auto event : {CSessionWatch::EndOfSession, CSessionWatch::Suspend}) {
        m_reader.SetStop(0);
        m_pFrame->OnSessionEvent(event);
        EXPECT_EQ(m_reader.GetStop(), 0);

        // The notice of the copy's start arrives while the reader copies.
        struct Relay {
            CMainFrame* pFrame;
            CSessionWatch::Event event;
        } relay{m_pFrame.get(), event};
        m_reader.SetCallback(
            [](uint32_t nCode, const char16_t* pPayload, void* pContext) {
                auto* pRelay = static_cast<Relay*>(pContext);
                CMainFrame::ImageReaderCallback(nCode, pPayload, pRelay->pFrame);
                if (nCode == NOTIFY_COPY_BEGIN) {
                    pRelay->pFrame->OnSessionEvent(pRelay->event);
                }
            },
            &relay);
        const QString target = m_dir.filePath(u"big"_s);
        m_reader.SetTotalBytes(root.m_ullSize);
        EXPECT_EQ(m_reader.CopyFile(u"big"_s, target, nullptr), qmz::kStopped);
        EXPECT_FALSE(QFile::exists(target));
        Notify(NOTIFY_COPY_END);
    }
}
