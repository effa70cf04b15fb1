// Extraction from the file list and the tree on the engine double, driven as a person would: a
// selection, the command, the folder answered in the browser, and each overwrite question
// answered with a click on the dialog's buttons.
#include "CAlphaStatic.h"
#include "CConfirmFile.h"
#include "CGButton.h"
#include "ImagePanes.h"
#include "Locations.h"
#include "RestrictedTargets.h"
#include "TestFiles.h"
#include "ToolkitTestSupport.h"

#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/statvfs.h>

namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

// A local FILETIME in 2023.
constexpr const char* kListing = "volume EXTRACT\n"
                                 "d 133200000000000000 Docs\n"
                                 "f 100 133200000000000000 Docs\\a.txt\n"
                                 "d 133200000000000000 Docs\\Deep\n"
                                 "f 70000 133200000000000000 Docs\\Deep\\b.bin\n"
                                 "f 5000 133200000000000000 top.txt\n"
                                 "f 10 133200000000000000 zz.txt\n";
constexpr int kEscape = -1;
const std::string kOld = "old";

// Answers each overwrite question that comes up with the next answer of its list, by a click
// on that button (or Escape), and keeps the questions' headings.
class ConfirmAnswerer {
public:
    explicit ConfirmAnswerer(std::vector<int> answers) : m_answers(std::move(answers)) {
        QObject::connect(&m_poll, &QTimer::timeout, [this] { Answer(); });
        m_poll.start(5);
    }
    QStringList m_lstHeadings;
    QStringList m_lstEntries;

private:
    void Answer() {
        auto* pDialog = qobject_cast<CConfirmFile*>(QApplication::activeModalWidget());
        if (pDialog == nullptr || !pDialog->isVisible() || pDialog == m_pAnswered) {
            return;
        }
        m_pAnswered = pDialog;
        m_lstHeadings << pDialog->Text(CConfirmFile::kIdHeading)->Text();
        m_lstEntries << pDialog->Text(CConfirmFile::kIdNewText)->Text();
        const int nAnswer = m_next < m_answers.size() ? m_answers[m_next++] : CConfirmFile::kIdStop;
        if (nAnswer == kEscape) {
            toolkittest::Key(*pDialog, QEvent::KeyPress, Qt::Key_Escape);
        } else {
            toolkittest::Click(*pDialog->Button(nAnswer));
        }
    }

    std::vector<int> m_answers;
    size_t m_next = 0;
    QPointer<CConfirmFile> m_pAnswered;
    QTimer m_poll;
};

class Extract : public ImagePanes {
protected:
    Extract() {
        const auto choose = [this](QWidget*, const QString& start, const QString&) {
            startFolders << start;
            return chosen;
        };
        list.SetFolderChooser(choose);
        tree.SetFolderChooser(choose);
        target = dir.Path() / "out";
        fs::create_directories(target);
        chosen = QString::fromStdString(target.string());
    }
    ~Extract() override { SetExtractMountTable(QString()); }

    void Open(const std::string& listing) { OpenListing(dir / "image.iso", listing); }

    // Ctrl and a click on each row of those names, as a person picks several.
    void Select(const QStringList& names) {
        QTreeView* pReport = list.ListCtrl().ReportView();
        pReport->clearSelection();
        const QStringList rows = ListRows(list);
        for (const QString& name : names) {
            const QModelIndex index = pReport->model()->index(rows.indexOf(name), 0);
            pReport->scrollTo(index);
            // Near the name's start: a long name's cell reaches far beyond the view.
            pReport->horizontalScrollBar()->setValue(0);
            const QRect cell = pReport->visualRect(index);
            QTest::mouseClick(pReport->viewport(), Qt::LeftButton, Qt::ControlModifier,
                              QPoint(cell.left() + 8, cell.center().y()));
        }
    }

    // Runs the command with the boxes caught; their texts.
    QStringList Run(int nCommand, ICommandTarget& view) {
        codes.clear();
        toolkittest::BoxCatcher boxes;
        EXPECT_TRUE(view.OnCommand(nCommand));
        return boxes.m_lstTexts;
    }

    static std::string Text(const fs::path& path) {
        const std::vector<uint8_t> bytes = testsupport::ReadWholeFile(path);
        return {bytes.begin(), bytes.end()};
    }
    static void Put(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }

    fs::path target;
    QString chosen;
    QStringList startFolders;
};

struct AnswerCase {
    const char* name;
    std::vector<int> answers;
    int nQuestions;
    // Whether each target holds the image's file afterwards: Docs/a.txt, top.txt, zz.txt.
    bool bDocsWritten;
    bool bTopWritten;
    bool bLastWritten;
    bool bStored;
};

TEST_F(Extract, EachExistingTargetIsAskedAboutAndTheAnswersHoldForOneJob) {
    using C = CConfirmFile;
    const AnswerCase cases[] = {
        {"replace all at once", {C::kIdReplaceAll}, 1, true, true, true, true},
        {"skip all at once", {C::kIdSkipAll}, 1, false, false, true, true},
        {"skip, then replace", {C::kIdSkip, C::kIdReplace}, 2, false, true, true, true},
        {"replace, then stop", {C::kIdReplace, C::kIdStop}, 2, true, false, false, false},
        {"stop at once", {C::kIdStop}, 1, false, false, false, false},
        {"escape stops", {kEscape}, 1, false, false, false, false},
    };
    Open(kListing);
    for (const AnswerCase& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(target);
        Put(target / "Docs" / "a.txt", kOld);
        Put(target / "top.txt", kOld);
        SetExtractFolder(u"/elsewhere"_s);
        startFolders.clear();
        Select({u"Docs"_s, u"top.txt"_s, u"zz.txt"_s});
        ConfirmAnswerer answerer(c.answers);
        EXPECT_TRUE(Run(kCmdExtract, list).isEmpty());

        EXPECT_EQ(startFolders, QStringList{u"/elsewhere/"_s});
        const QStringList headings{u"A folder named \"Docs\" already exists in this folder."_s,
                                   u"A file named \"top.txt\" already exists in this folder."_s};
        EXPECT_EQ(answerer.m_lstHeadings, headings.mid(0, c.nQuestions));
        EXPECT_EQ(Text(target / "Docs" / "a.txt").size() == 100, c.bDocsWritten);
        EXPECT_EQ(fs::exists(target / "Docs" / "Deep" / "b.bin"), c.bDocsWritten);
        EXPECT_EQ(Text(target / "top.txt").size() == 5000, c.bTopWritten);
        EXPECT_EQ(fs::exists(target / "zz.txt"), c.bLastWritten);
        EXPECT_EQ(GetExtractFolder() == chosen + u'/', c.bStored);
        ASSERT_FALSE(codes.empty());
        EXPECT_EQ(codes.back(), NOTIFY_COPY_END);
        EXPECT_EQ(reader.GetTotalBytes(), 0u);
        EXPECT_EQ(reader.GetDoneBytes(), 0u);
    }
}

TEST_F(Extract, TheTreeWritesTheCaretFolderAndASkipEndsItsJob) {
    Open(kListing);
    QTreeWidget& treeCtrl = tree.TreeCtrl();
    treeCtrl.setCurrentItem(treeCtrl.topLevelItem(0)->child(0));
    const struct {
        const char* name;
        std::vector<int> answers;
        bool bWritten;
    } cases[] = {
        {"nothing there yet", {}, true},
        {"skip", {CConfirmFile::kIdSkip}, false},
        {"replace", {CConfirmFile::kIdReplace}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(target);
        fs::create_directories(target);
        if (!c.answers.empty()) {
            Put(target / "Docs" / "a.txt", kOld);
        }
        ConfirmAnswerer answerer(c.answers);
        EXPECT_TRUE(Run(kCmdTreeExtract, tree).isEmpty());
        EXPECT_EQ(answerer.m_lstHeadings.size(), static_cast<qsizetype>(c.answers.size()));
        EXPECT_EQ(Text(target / "Docs" / "a.txt").size() == 100, c.bWritten);
        EXPECT_EQ(fs::exists(target / "Docs" / "Deep" / "b.bin"), c.bWritten);
    }
    // The root stands for the volume: nothing is written, the folder is still remembered.
    fs::remove_all(target);
    fs::create_directories(target);
    SetExtractFolder(u"/elsewhere"_s);
    treeCtrl.setCurrentItem(treeCtrl.topLevelItem(0));
    EXPECT_TRUE(Run(kCmdTreeExtract, tree).isEmpty());
    EXPECT_TRUE(fs::is_empty(target));
    EXPECT_EQ(GetExtractFolder(), chosen + u'/');
}

// Targets that are refused before anything is written, each with its message.
TEST_F(Extract, UnfitTargetsAreRefusedBeforeAnythingIsWritten) {
    Open(kListing);
    const fs::path table = dir.Path() / "mountinfo";
    const auto mountedAs = [&](const std::string& type, const std::string& source) {
        std::ofstream(table) << "22 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                             << "40 22 11:0 / " << target.string() << " ro - " << type << ' '
                             << source << " ro\n";
        SetExtractMountTable(QString::fromStdString(table.string()));
    };
    const QString notWritable = u"You cannot save files in \""_s + chosen +
                                u"/\". Choose a folder you are allowed to write to."_s;
    const QString discText = TvnText(tvn::kTargetNotWritableDrive);
    const struct {
        const char* name;
        std::function<void()> prepare;
        QString box;
    } cases[] = {
        {"an optical disc", [&] { mountedAs("iso9660", "/dev/sr0"); }, discText},
        {"a UDF volume", [&] { mountedAs("udf", "/dev/loop3"); }, discText},
        {"a drive on /dev/sr", [&] { mountedAs("ext4", "/dev/sr1"); }, discText},
        {"no volume at all",
         [&] {
             std::ofstream(table) << "";
             SetExtractMountTable(QString::fromStdString(table.string()));
         },
         discText},
        {"a read-only folder", [&] { fs::permissions(target, fs::perms::owner_read); },
         notWritable},
        {"cancelled in the browser", [&] { chosen.clear(); }, QString()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        c.prepare();
        SetExtractFolder(u"/elsewhere"_s);
        Select({u"Docs"_s, u"top.txt"_s});
        std::optional<testsupport::NoAccessOverride> asUser;
        asUser.emplace();
        const QStringList boxes = Run(kCmdExtract, list);
        asUser.reset();
        EXPECT_EQ(boxes, c.box.isEmpty() ? QStringList() : QStringList{c.box});
        EXPECT_TRUE(codes.empty()) << "no copy started";
        fs::permissions(target, fs::perms::owner_all);
        EXPECT_TRUE(fs::is_empty(target));
        EXPECT_EQ(GetExtractFolder(), u"/elsewhere"_s);
        SetExtractMountTable(QString());
        chosen = QString::fromStdString(target.string());
    }
}

// A small volume made for the test: full for a job a little larger than its free room,
// written for one a little smaller.
TEST_F(Extract, TheSizeOfTheWholeSelectionIsCheckedAgainstTheFreeRoom) {
    Open("volume ROOM\nd 0 F\nf 40000 0 F\\one\nf 40000 0 F\\two\nf 20000 0 three\n");
    const testsupport::SmallVolume volume(target, 200 * 1024);
    struct statvfs info {};
    ASSERT_EQ(statvfs(target.c_str(), &info), 0);
    const uint64_t ullFree = uint64_t{info.f_bavail} * info.f_frsize;
    if (ullFree > 1024 * 1024) {
        GTEST_SKIP() << "no small volume can be mounted here";
    }
    // Fill it so that 100,000 bytes fit, and 100,000 with one percent held back do not.
    Put(target / "filler", std::string(ullFree - 100'500, 'x'));
    Select({u"F"_s, u"three"_s});
    const QStringList boxes = Run(kCmdExtract, list);
    EXPECT_EQ(boxes, QStringList{u"There is not enough free space on "_s + chosen +
                                 u" for the selected files. Free some space there, or "
                                 "choose another folder."_s});
    EXPECT_FALSE(fs::exists(target / "F"));
    Select({u"F"_s});
    EXPECT_TRUE(Run(kCmdExtract, list).isEmpty());
    EXPECT_EQ(fs::file_size(target / "F" / "two"), 40000u);
}

// Faults while writing: the reader reports them to the frame, the job ends, and nothing that
// was there before and nothing half written is left in the target.
TEST_F(Extract, AFailedWriteEndsTheJobWithNothingHalfWritten) {
    const std::string longName(270, 'n');
    Open(std::string(kListing) + "f 10 0 " + longName + "\nf 900000 0 big.bin\n" +
         "fail ReadFile 3 0x80004005\nd 0 clash\nf 10 0 clash\\inner\nf 10 0 clashfile\n");
    const QString longRow = QString::fromStdString(longName);
    const struct {
        const char* name;
        QStringList rows;
        std::function<void()> prepare;
        uint32_t nNotice;
        fs::path gone;
    } cases[] = {
        {"a name too long for the disk",
         {longRow},
         [] {},
         NOTIFY_WRITE_FAILED,
         target / longRow.toStdString()},
        {"the image can't be read any more",
         {u"big.bin"_s},
         [] {},
         NOTIFY_READ_FAILED,
         target / "big.bin"},
        {"a folder where the image has a file",
         {u"clashfile"_s},
         [&] { Put(target / "clashfile" / "keep", kOld); },
         NOTIFY_WRITE_FAILED,
         {}},
        {"a file where the image has a folder",
         {u"clash"_s},
         [&] { Put(target / "clash", kOld); },
         NOTIFY_WRITE_FAILED,
         target / "clash" / "inner"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(target);
        fs::create_directories(target);
        c.prepare();
        SetExtractFolder(u"/elsewhere"_s);
        Select(c.rows);
        ConfirmAnswerer answerer({CConfirmFile::kIdReplace});
        EXPECT_TRUE(Run(kCmdExtract, list).isEmpty());
        EXPECT_NE(std::ranges::find(codes, c.nNotice), codes.end());
        EXPECT_EQ(codes.back(), NOTIFY_COPY_END);
        std::error_code noName;
        if (!c.gone.empty()) {
            EXPECT_FALSE(fs::exists(c.gone, noName));
        }
        EXPECT_EQ(GetExtractFolder(), u"/elsewhere"_s) << "a failed job is not remembered";
    }
    EXPECT_EQ(Text(target / "clash"), kOld);
    fs::remove_all(target);
    Put(target / "clashfile" / "keep", kOld);
    Select({u"clashfile"_s});
    ConfirmAnswerer answerer({CConfirmFile::kIdReplace});
    Run(kCmdExtract, list);
    EXPECT_EQ(Text(target / "clashfile" / "keep"), kOld) << "a folder is never removed for a file";
}

// The stop button of the progress dialog, pressed while a large file or many small ones are
// written: the job ends within a moment and leaves no partial file.
TEST_F(Extract, AStopInTheMiddleLeavesOnlyWholeFiles) {
    std::string listing = "volume STOP\nd 0 many\nf 300000000 0 large.bin\n";
    for (int i = 0; i < 300; ++i) {
        listing += "f 20000 0 many\\" + std::to_string(i) + "\n";
    }
    Open(listing);
    const struct {
        QString row;
        // The stop comes during this file of the job, once this much is written.
        long nFile;
        uint64_t ullDone;
    } cases[] = {{u"large.bin"_s, 1, 2'000'000}, {u"many"_s, 100, 0}};
    for (const auto& [row, nFile, ullDone] : cases) {
        SCOPED_TRACE(row.toStdString());
        fs::remove_all(target);
        fs::create_directories(target);
        SetExtractFolder(u"/elsewhere"_s);
        Select({row});
        // The button sets the reader's stop flag; it is pressed once the job is well under way.
        QTimer stop;
        QObject::connect(&stop, &QTimer::timeout, [&] {
            if (std::ranges::count(codes, NOTIFY_COPY_BEGIN) >= nFile &&
                reader.GetDoneBytes() >= ullDone) {
                reader.SetStop(1);
                stop.stop();
            }
        });
        stop.start(1);
        EXPECT_TRUE(Run(kCmdExtract, list).isEmpty());
        EXPECT_FALSE(fs::exists(target / "large.bin"));
        for (const auto& entry : fs::recursive_directory_iterator(target)) {
            if (entry.is_regular_file()) {
                EXPECT_EQ(entry.file_size(), 20000u) << entry.path();
            }
        }
        EXPECT_EQ(GetExtractFolder(), u"/elsewhere"_s);
    }
}

} // namespace
