// Starts beside the family's programs and beside a running copy of Ovrin, with real processes:
// stand-ins that hold the family's named locks under the programs' names, and the program
// itself on the offscreen platform. The second start runs in this process, so that its boxes
// can be read and answered.
#include "AbstractSocket.h"
#include "CAlphaButton.h"
#include "CFileListView.h"
#include "CInstanceChannel.h"
#include "CInstanceGuard.h"
#include "CMainFrame.h"
#include "COvrinApp.h"
#include "CProgressDlg.h"
#include "TestFiles.h"
#include "ToolkitTestSupport.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace Qt::StringLiterals;
using toolkittest::BoxCatcher;
namespace ts = testsupport;

// The program's start under a loaded machine, and how long a notice may take.
constexpr int kStartMs = 30'000;
constexpr int kNoticeMs = 5'000;
constexpr int kBurner = 0, kExpress = 1, kMounter = 2, kBackup = 3, kOwn = 4;

const QString kAlreadyRunning =
    u"Ovrin or another program of its family is already running. Close it, then try again."_s;

QString Id(int nRow) {
    return QString::fromUtf16(CInstanceGuard::kFamily[static_cast<size_t>(nRow)].pIdentifier);
}

QString NoticeOf(int nRow) {
    return CInstanceGuard::ScopedName(Id(nRow));
}

// One line a notice, for readable failures.
std::string NoticesOf(const std::vector<int>& rows) {
    QStringList notices;
    for (const int nRow : rows) {
        notices << NoticeOf(nRow);
    }
    return notices.join(u'\n').toStdString();
}

COvrinApp::Setup SourceSetup(const char* pEngine = QMZ_PATH) {
    return {QDir::cleanPath(QStringLiteral(OVRIN_LANGUAGE_DIR "/..")), QString::fromUtf8(pEngine)};
}

// A family program: the stand-in under the program's name, holding the locks of the given rows
// and listening for the notices of every row.
class StandIn {
public:
    StandIn(const ts::TempDir& temp, const std::string& program, const std::vector<int>& held) {
        static int s_nCount = 0;
        const std::filesystem::path folder = temp / ("standin" + std::to_string(++s_nCount));
        std::filesystem::create_directories(folder);
        std::filesystem::create_symlink(STANDIN_PATH, folder / program);
        QStringList args;
        for (const int nRow : held) {
            args << u"--hold"_s << CInstanceGuard::LockName(Id(nRow));
        }
        for (int nRow = kBurner; nRow <= kOwn; ++nRow) {
            args << u"--listen"_s << NoticeOf(nRow);
        }
        args << u"--listen"_s << Sentinel();
        m_process.start(QString::fromStdString((folder / program).string()), args);
        EXPECT_TRUE(m_process.waitForReadyRead(kStartMs));
        EXPECT_EQ(m_process.readLine().trimmed(), "ready");
    }
    ~StandIn() {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(kNoticeMs)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    // The notices received so far, one a line: a notice of its own to the last listener marks
    // the end.
    std::string Notices() {
        CInstanceGuard::SendNotice(u"sentinel"_s);
        QStringList notices;
        const QDeadlineTimer deadline(kNoticeMs);
        while (!deadline.hasExpired()) {
            while (m_process.canReadLine()) {
                const QString line = QString::fromUtf8(m_process.readLine().trimmed());
                if (line == u"notice "_s + Sentinel()) {
                    return notices.join(u'\n').toStdString();
                }
                notices << line.mid(7);
            }
            m_process.waitForReadyRead(100);
        }
        ADD_FAILURE() << "the stand-in printed no sentinel";
        return notices.join(u'\n').toStdString();
    }

private:
    static QString Sentinel() { return CInstanceGuard::ScopedName(u"sentinel"_s); }
    QProcess m_process;
};

// One state byte from the running program's instance socket, or -1 when nobody answers.
int InstanceState() {
    const int fd =
        abstractsocket::Connect(CInstanceGuard::AddressOf(CInstanceGuard::InstanceSocketName()));
    if (fd < 0) {
        return -1;
    }
    char nState = 0;
    const bool bRead =
        abstractsocket::WaitReadable(fd, kNoticeMs) && ::recv(fd, &nState, 1, 0) == 1;
    ::close(fd);
    return bRead ? static_cast<uint8_t>(nState) : -1;
}

bool WaitFor(const std::function<bool()>& fnDone, int nMs = kStartMs) {
    const QDeadlineTimer deadline(nMs);
    while (!fnDone()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QTest::qWait(20);
    }
    return true;
}

// The built program on the offscreen platform, with this process's settings and scope.
class Program {
public:
    explicit Program(const QStringList& args = {}) : Program(QStringLiteral(OVRIN_PATH), args) {}
    // Through the shell, for an argument that is no valid text.
    static std::unique_ptr<Program> WithRawArgument(const std::string& argument) {
        return std::make_unique<Program>(
            u"/bin/sh"_s, QStringList{u"-c"_s, QString::fromStdString("exec \"$0\" " + argument),
                                      QStringLiteral(OVRIN_PATH)});
    }
    Program(const QString& program, const QStringList& args) { m_process.start(program, args); }
    ~Program() { Kill(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    static bool WaitUp() {
        return WaitFor([] { return InstanceState() >= 0; });
    }
    bool Ended() { return m_process.waitForFinished(kStartMs) && m_process.exitCode() == 0; }
    void Kill() {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

struct Outcome {
    bool bStarted = false;
    QStringList boxes;
    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& o, std::ostream* pOut) {
    *pOut << (o.bStarted ? "started" : "refused") << " boxes "
          << o.boxes.join(u" | "_s).toStdString();
}

Outcome SecondStart(const QStringList& args = {u"ovrin"_s}) {
    BoxCatcher boxes;
    COvrinApp app(args, SourceSetup());
    const bool bStarted = app.InitInstance();
    app.ExitInstance();
    return {bStarted, boxes.m_lstTexts};
}

// Whether some process holds the per-image lock that an open image takes.
bool ImageIsOpenElsewhere(const QString& path) {
    NamedMutex probe;
    return probe.Create(path.toUpper()) == NamedMutex::State::AlreadyExists;
}

QString MadeImage(const ts::TempDir& temp, const std::string& name) {
    ts::WriteFile(temp / "src/F1.TXT", {'1'});
    const std::filesystem::path image = temp / name;
    EXPECT_TRUE(ts::RunCommand("genisoimage -quiet -R -V GOOD -o " + ts::Quote(image) + " " +
                               ts::Quote(temp / "src")));
    return QString::fromStdString(image.string());
}

TEST(InstanceGuard, EachFamilyRowAllowsOrRefusesByItsProgramsAndNotifiesOnRefusal) {
    struct Case {
        const char* name;
        std::string program;
        std::vector<int> held;
        Outcome outcome;
        std::vector<int> notices;
    };
    const Outcome started{true, {}};
    const Outcome refused{false, {}};
    const Case cases[] = {
        {"nobody up", "torvane", {}, started, {}},
        {"burning program up", "torvane", {kBurner}, started, {}},
        {"an older burning program up", "torvane9", {kBurner}, started, {}},
        {"burning lock, name differs in case", "Torvane", {kBurner}, refused, {kBurner}},
        {"burning lock, another program", "torvaneexpress", {kBurner}, refused, {kBurner}},
        {"express program up", "torvaneexpress8", {kExpress}, started, {}},
        {"mounting program up", "torvane", {kMounter}, refused, {kMounter}},
        {"backup program up", "sysvault", {kBackup}, refused, {kBackup}},
        {"burning allowed, then mounting refuses",
         "torvane",
         {kBurner, kMounter},
         refused,
         {kMounter}},
        {"own lock and an older Ovrin up", "ovrin8", {kOwn}, {false, {kAlreadyRunning}}, {kOwn}},
        {"own lock, no Ovrin up", "viewer", {kOwn}, refused, {kOwn}},
    };
    // A real Ovrin open on the machine counts for row 5 whatever the test's stand-in is named.
    const bool bOvrinElsewhere = CInstanceGuard::IsProcessRunning(u"ovrin"_s) ||
                                 CInstanceGuard::IsProcessRunning(u"ovrin8"_s) ||
                                 CInstanceGuard::IsProcessRunning(u"ovrin9"_s);
    const ts::TempDir temp;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StandIn family(temp, c.program, c.held);
        Outcome expected = c.outcome;
        if (bOvrinElsewhere && c.held == std::vector<int>{kOwn}) {
            expected.boxes = {kAlreadyRunning};
        }
        EXPECT_EQ(SecondStart(), expected);
        EXPECT_EQ(family.Notices(), NoticesOf(c.notices));
    }
}

TEST(InstanceGuard, TheProgramItselfStartsOrEndsQuietlyBesideTheFamily) {
    struct Case {
        const char* name;
        std::string program;
        int nHeld;
        bool bStarts;
    };
    const Case cases[] = {
        {"mounting program up", "marlowe", kMounter, false},
        {"express lock without its program", "helper", kExpress, false},
        {"burning program up", "torvane", kBurner, true},
    };
    const ts::TempDir temp;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StandIn family(temp, c.program, {c.nHeld});
        Program ovrin;
        if (c.bStarts) {
            EXPECT_TRUE(ovrin.WaitUp());
            EXPECT_EQ(family.Notices(), "");
        } else {
            EXPECT_TRUE(ovrin.Ended());
            EXPECT_EQ(InstanceState(), -1);
            EXPECT_EQ(family.Notices(), NoticesOf({c.nHeld}));
        }
    }
}

// The ordinary second start meets the running program's lock in the family check: it tells,
// notifies and ends, and the file it was given stays closed.
TEST(InstanceGuard, ASecondStartBesideTheRunningProgramTellsAndEnds) {
    const ts::TempDir temp;
    const QString image = MadeImage(temp, "second.iso");
    StandIn listener(temp, "listener", {});
    Program first;
    ASSERT_TRUE(first.WaitUp());
    const QString missing = QString::fromStdString((temp / "missing.iso").string());
    for (const QString& file : {image, missing, QString()}) {
        SCOPED_TRACE(file.toStdString());
        EXPECT_EQ(SecondStart({u"ovrin"_s, file}), (Outcome{false, {kAlreadyRunning}}));
        EXPECT_EQ(listener.Notices(), NoticesOf({kOwn}));
    }
    EXPECT_FALSE(ImageIsOpenElsewhere(image));
    EXPECT_EQ(InstanceState(), 0);
}

// A start that came up in the gap after the family check finds the lock taken and hands its
// file to the running program, whatever other local programs sent that socket before.
TEST(InstanceGuard, TheRunningProgramOpensAHandedOverFileAndIgnoresMalformedRequests) {
    const ts::TempDir temp;
    const QString image = MadeImage(temp, "handed.iso");
    Program first;
    ASSERT_TRUE(first.WaitUp());

    QByteArray oversized(CInstanceChannel::kLengthBytes, '\xff');
    oversized += QByteArray(100, 'x');
    const QByteArray requests[] = {
        oversized,
        CInstanceChannel::EncodeRequest(image) + "trailing",
        QByteArray("\x03\x00\x00\x00\xff\xfe\xfd", 7),
        QByteArray("\x05\x00\x00\x00/a\0bc", 9),
        QByteArray("\x05\x00", 2),
        CInstanceChannel::EncodeRequest(QString(5000, u'a')),
    };
    for (const QByteArray& request : requests) {
        const int fd = abstractsocket::Connect(
            CInstanceGuard::AddressOf(CInstanceGuard::InstanceSocketName()));
        ASSERT_GE(fd, 0);
        abstractsocket::SendAll(fd, request);
        ::close(fd);
    }
    std::vector<int> flood;
    for (int i = 0; i < CInstanceChannel::kMaxPeers * 2; ++i) {
        flood.push_back(abstractsocket::Connect(
            CInstanceGuard::AddressOf(CInstanceGuard::InstanceSocketName())));
    }
    for (const int fd : flood) {
        ::close(fd);
    }
    ASSERT_TRUE(WaitFor([] { return InstanceState() == 0; }));
    EXPECT_FALSE(ImageIsOpenElsewhere(image));

    // A peer that never speaks does not hold up the one that does.
    const int silent =
        abstractsocket::Connect(CInstanceGuard::AddressOf(CInstanceGuard::InstanceSocketName()));
    BoxCatcher boxes;
    CInstanceGuard guard;
    EXPECT_FALSE(guard.TakeOwnLock(image));
    EXPECT_FALSE(guard.HoldsOwnLock());
    EXPECT_TRUE(WaitFor([&] { return ImageIsOpenElsewhere(image); }));
    EXPECT_TRUE(boxes.m_lstTexts.isEmpty());
    ::close(silent);
}

// A running program in the middle of a long opening takes no input: the second start tells
// the person and keeps its file.
TEST(InstanceGuard, ABusyRunningProgramIsHandedNothing) {
    const ts::TempDir temp;
    // The program's folder with the engine double in place of the engine; the program is a
    // copy, as it finds its folder through the file it runs from.
    const std::filesystem::path folder = temp / "program";
    const std::filesystem::path built = std::filesystem::path(OVRIN_PATH).parent_path();
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(OVRIN_PATH, folder / "ovrin");
    std::filesystem::create_symlink(FAKEQMZ_PATH, folder / "Qmz.so");
    for (const char* pData : {"Image", "Language"}) {
        std::filesystem::create_directory_symlink(built / pData, folder / pData);
    }
    const std::string listing = "volume LONG\nwait-running 100000000\nd 0 Docs\n";
    ts::WriteFile(temp / "long.iso", std::vector<uint8_t>(listing.begin(), listing.end()));
    const QString image = MadeImage(temp, "other.iso");

    Program busy(QString::fromStdString((folder / "ovrin").string()),
                 {QString::fromStdString((temp / "long.iso").string())});
    // The progress dialog stands in front of the disabled window.
    ASSERT_TRUE(WaitFor([] {
        return InstanceState() ==
               (CInstanceChannel::kStateDisabled | CInstanceChannel::kStatePopup);
    }));
    const toolkittest::CommittedSkin texts;
    BoxCatcher boxes;
    CInstanceGuard guard;
    EXPECT_FALSE(guard.TakeOwnLock(image));
    EXPECT_EQ(boxes.m_lstTexts, QStringList{kAlreadyRunning});
    EXPECT_FALSE(ImageIsOpenElsewhere(image));
}

TEST(InstanceGuard, AKilledInstanceOrABadCommandLineNeverBlocksAStart) {
    const ts::TempDir temp;
    {
        Program killed;
        ASSERT_TRUE(killed.WaitUp());
        killed.Kill();
    }
    EXPECT_EQ(SecondStart(), (Outcome{true, {}}));

    // A name that is no valid UTF-8 names no file: the window comes up empty.
    ts::WriteFile(temp / "\xff.iso", ts::ReadWholeFile(MadeImage(temp, "good.iso").toStdString()));
    const auto pOdd = Program::WithRawArgument(ts::Quote(temp / "\xff.iso"));
    EXPECT_TRUE(pOdd->WaitUp());
}

// The receiving window, in this process: a hand-over while an image opens is dropped; a
// minimised window comes back and opens the file; a file it cannot open is reported.
TEST(InstanceGuard, TheWindowOpensAHandOverUnlessBusy) {
    const ts::TempDir temp;
    const auto write = [&](const std::string& name, std::string_view text) {
        ts::WriteFile(temp / name, std::vector<uint8_t>(text.begin(), text.end()));
    };
    write("good.iso", "volume GOOD\nd 0 Docs\nf 5 0 readme.txt\n");
    write("long.iso", "volume LONG\nwait-running 100000000\nd 0 Docs\n");
    const QString good = QString::fromStdString((temp / "good.iso").string());
    const QString longImage = QString::fromStdString((temp / "long.iso").string());

    BoxCatcher boxes;
    COvrinApp app({u"ovrin"_s, longImage}, SourceSetup(FAKEQMZ_PATH));
    bool bHandedOver = false;
    QTimer during;
    QObject::connect(&during, &QTimer::timeout, [&] {
        CMainFrame* pFrame = app.MainFrame();
        if (pFrame != nullptr && pFrame->ProgressDialog()->isVisible()) {
            pFrame->OnCopyData(good);
            bHandedOver = true;
            toolkittest::Click(*pFrame->ProgressDialog()->CancelButton());
            during.stop();
        }
    });
    during.start(0);
    ASSERT_TRUE(app.InitInstance());
    EXPECT_TRUE(bHandedOver);
    CMainFrame& frame = *app.MainFrame();
    EXPECT_EQ(frame.windowTitle(), u"Ovrin Viewer"_s);

    frame.showMinimized();
    frame.OnCopyData(good);
    EXPECT_FALSE(frame.isMinimized());
    EXPECT_EQ(frame.windowTitle(), u"Ovrin Viewer ["_s + good + u']');
    EXPECT_TRUE(boxes.m_lstTexts.isEmpty());

    frame.OnCopyData(QString::fromStdString((temp / "notes.txt").string()));
    EXPECT_EQ(boxes.m_lstTexts.size(), 1);
    app.ExitInstance();
}

} // namespace
