// Handing the open image to the burning program (661) and to the virtual-drive program (671).
// The programs are small scripts made here: they record their arguments, may crash, take the
// image away, or hold the family's named locks as the real programs do while they run.
#include "ImagePanes.h"
#include "NamedMutex.h"
#include "RegTypes.h"
#include "SiblingPrograms.h"
#include "StringReg.h"
#include "TestFiles.h"
#include "ToolkitTestSupport.h"

#include <QProcess>
#include <QThread>
#include <QTimer>
#include <fstream>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

constexpr const char* kListing = "volume SIBLING\nd 0 Docs\nf 5 0 readme.txt\n";

// The script's body after it has written its arguments, one a line, to <program>.args.
constexpr const char* kJustEnd = "";
constexpr const char* kCrash = "os.kill(os.getpid(), signal.SIGSEGV)\n";
constexpr const char* kTakeImage = "os.remove(sys.argv[1])\n";
// A virtual-drive program already running with its window: it holds its lock, takes the
// notice on its window's socket, notes it, and ends a moment later.
constexpr const char* kRunningDrive =
    "lock = socket.socket(socket.AF_UNIX)\n"
    "lock.bind('\\0brindleway/Global\\\\{262F6735-5040-48A3-9F11-ECC6327CC961}')\n"
    "win = socket.socket(socket.AF_UNIX)\n"
    "win.bind('\\0brindleway/Brindleway Marlowe Unit')\n"
    "win.listen(1)\n"
    "open(sys.argv[0] + '.ready', 'w').close()\n"
    "conn, _ = win.accept()\n"
    "open(sys.argv[0] + '.notice', 'w').write(conn.recv(64).decode())\n"
    "time.sleep(0.3)\n";

class Siblings : public ImagePanes {
protected:
    Siblings() : image(QString::fromStdString((dir / "image.iso").string())) {
        Open();
        Install(QString::fromStdString((dir / "programs").string()));
        fs::create_directories(dir / "programs");
    }
    ~Siblings() override { Install(QString()); }

    void Open() { OpenListing(dir / "image.iso", kListing); }
    static void Install(const QString& folder) {
        StringReg(RegRoot::LocalMachine, QString::fromUtf16(kInstallKey) + u"\\10.0"_s,
                  u"InstallPath"_s, true) = folder;
    }
    // A program of the family that records its arguments, then runs body.
    fs::path Program(const char* name, const std::string& body, bool bExecutable = true) {
        const fs::path path = dir / "programs" / name;
        std::ofstream(path) << "#!/usr/bin/python3\n"
                            << "import os, signal, socket, sys, time\n"
                            << "open(sys.argv[0] + '.args', 'w').write('\\n'.join(sys.argv[1:]))\n"
                            << body;
        fs::permissions(path, bExecutable ? fs::perms::owner_all : fs::perms::owner_read);
        return path;
    }
    static QStringList Arguments(const fs::path& program) {
        const fs::path record = program.string() + ".args";
        if (!fs::exists(record)) {
            return {};
        }
        const std::vector<uint8_t> bytes = testsupport::ReadWholeFile(record);
        return QString::fromUtf8(reinterpret_cast<const char*>(bytes.data()),
                                 static_cast<qsizetype>(bytes.size()))
            .split(u'\n');
    }
    QStringList Run(int nCommand) {
        toolkittest::BoxCatcher boxes;
        EXPECT_TRUE(list.OnCommand(nCommand));
        EXPECT_TRUE(window.isVisible() && window.isEnabled());
        return boxes.m_lstTexts;
    }

    QString image;
};

TEST_F(Siblings, TheBurningProgramGetsTheImageAndTheImageComesBack) {
    const QString missing =
        u"Ovrin cannot find Torvane, the burning program. Install it, then try again."_s;
    const QString busy =
        u"Torvane is already running. Finish your work there and close it, then try again."_s;
    const QString gone = u"The image \""_s + image +
                         u"\" is no longer there. It may have been moved, renamed or deleted."_s;
    const QString unreadable = TvnText(tvn::kOpenFailed);
    const struct {
        const char* name;
        const char* body;
        bool bExecutable = true;
        bool bHeld = false;
        bool bImageGone = false;
        QString box = {};
        bool bStarted = true;
        bool bReopened = true;
    } cases[] = {
        {.name = "it runs and ends", .body = kJustEnd},
        {.name = "it crashes at once", .body = kCrash},
        {.name = "it is missing", .body = nullptr, .box = missing, .bStarted = false},
        {.name = "it is not executable",
         .body = kJustEnd,
         .bExecutable = false,
         .box = missing,
         .bStarted = false},
        {.name = "it is already running",
         .body = kJustEnd,
         .bHeld = true,
         .box = busy,
         .bStarted = false},
        // The views keep what they show; the image is only not handed over.
        {.name = "the image is gone before",
         .body = kJustEnd,
         .bImageGone = true,
         .box = gone,
         .bStarted = false},
        {.name = "it takes the image away",
         .body = kTakeImage,
         .box = unreadable,
         .bReopened = false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(dir / "programs");
        fs::create_directories(dir / "programs");
        const fs::path program = c.body != nullptr ? Program("torvane10", c.body, c.bExecutable)
                                                   : dir / "programs" / "torvane10";
        NamedMutex running;
        if (c.bHeld) {
            ASSERT_EQ(running.Create(QString::fromUtf16(kBurningProgramLock)),
                      NamedMutex::State::Created);
        }
        if (c.bImageGone) {
            fs::remove(image.toStdString());
        }
        EXPECT_EQ(Run(kCmdBurnImage), c.box.isEmpty() ? QStringList() : QStringList{c.box});
        const QStringList handedOver{image, u"/InterOp"_s};
        EXPECT_EQ(Arguments(program), c.bStarted ? handedOver : QStringList());
        EXPECT_EQ(list.ImagePath(), c.bReopened ? image : QString());
        const QStringList rows{u"Docs"_s, u"readme.txt"_s};
        EXPECT_EQ(ListRows(list), c.bReopened ? rows : QStringList());
        EXPECT_EQ(reader.IsImageOpen(), c.bReopened);
        if (!c.bReopened || c.bImageGone) {
            Open();
        }
    }
}

TEST_F(Siblings, TheVirtualDriveProgramIsStartedOrTheRunningOneTakesOver) {
    const QString missing = u"Ovrin cannot find Marlowe10, the virtual-drive program. Install "
                            "it, then try again."_s;
    // Missing: told by name.
    EXPECT_EQ(Run(kCmdMarloweUnit), QStringList{missing});

    // Started, and the window keeps working while it runs.
    const fs::path program = Program("marlowe10", "time.sleep(0.3)\n");
    int nTicks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] { ++nTicks; });
    ticker.start(20);
    EXPECT_TRUE(Run(kCmdMarloweUnit).isEmpty());
    EXPECT_GT(nTicks, 3) << "the wait lets events through";
    EXPECT_EQ(Arguments(program), (QStringList{image, u"/INTEROPMODE"_s}));
    EXPECT_TRUE(reader.IsImageOpen()) << "the image stays open here";

    // A copy that runs with its window is told to come forward; no second copy starts.
    fs::remove(program.string() + ".args");
    const fs::path running = Program("running", kRunningDrive);
    QProcess other;
    other.start(QString::fromStdString(running.string()));
    ASSERT_TRUE(other.waitForStarted());
    while (!fs::exists(running.string() + ".ready")) {
        QThread::msleep(10);
    }
    EXPECT_TRUE(Run(kCmdMarloweUnit).isEmpty());
    EXPECT_TRUE(other.waitForFinished(2000));
    EXPECT_TRUE(fs::exists(running.string() + ".notice"));
    EXPECT_FALSE(fs::exists(program.string() + ".args"));

    // A running copy without a window: a new one is started.
    NamedMutex lock;
    ASSERT_EQ(lock.Create(QString::fromUtf16(kMountingProgramLock)), NamedMutex::State::Created);
    EXPECT_TRUE(Run(kCmdMarloweUnit).isEmpty());
    EXPECT_EQ(Arguments(program), (QStringList{image, u"/INTEROPMODE"_s}));
}

} // namespace
