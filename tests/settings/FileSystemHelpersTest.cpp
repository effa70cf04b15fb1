// Folder helpers on temporary folders, with a temporary desktop trash.
#include "FileSystemHelpers.h"
#include "QtPrinters.h"
#include "RestrictedTargets.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

class FileSystemHelpers : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("HOME", m_dir.Path().c_str());
        qputenv("XDG_DATA_HOME", (m_dir / "data").c_str());
        fs::create_directories(m_dir / "data");
    }
    QString Path(const char* rest) const { return QString::fromStdString((m_dir / rest).string()); }
    void Fill(const char* folder) {
        testsupport::WriteFile(m_dir / folder / "a.txt", {'a'});
        testsupport::WriteFile(m_dir / folder / ".hidden", {'h'});
        testsupport::WriteFile(m_dir / folder / "sub/deep.bin", {'d'});
    }
    size_t TrashedCount() const {
        const fs::path files = m_dir / "data/Trash/files";
        if (!fs::exists(files)) {
            return 0;
        }
        return static_cast<size_t>(std::distance(fs::directory_iterator(files), {}));
    }

    testsupport::TempDir m_dir;
};

TEST_F(FileSystemHelpers, EmptyingMovesEveryEntryToTheTrashAndKeepsOrRemovesTheFolder) {
    Fill("keep");
    EXPECT_FALSE(FolderHasNoEntries(Path("keep")));
    EXPECT_TRUE(EmptyFolder(Path("keep/"), false));
    EXPECT_TRUE(FolderHasNoEntries(Path("keep")));
    EXPECT_EQ(TrashedCount(), 3u) << "the hidden file and the subfolder go too";

    Fill("gone");
    // The result is that of listing a folder that no longer exists.
    EXPECT_FALSE(EmptyFolder(Path("gone"), true));
    EXPECT_FALSE(fs::exists(m_dir / "gone"));
    EXPECT_FALSE(EmptyFolder(Path("gone"), false));
    EXPECT_FALSE(EmptyFolder(QString(), false));
}

TEST_F(FileSystemHelpers, WriteTestsLookAtTheFolderOfThePathAndLeaveNothingBehind) {
    fs::create_directories(m_dir / "w");
    struct Case {
        const char* path;
        bool bWritable;
    };
    const Case cases[] = {
        {"w/", true},
        {"w/file-to-be.txt", true},
        {"w/missing/", false},
        {"missing/file.txt", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(CanWriteToFolder(Path(c.path)), c.bWritable) << c.path;
    }
    EXPECT_TRUE(FolderHasNoEntries(Path("w")));
    EXPECT_FALSE(FolderHasNoEntries(Path("missing")));
}

QStringList g_notices;

void RecordNotice(const QString& text) {
    g_notices.append(text);
}

TEST_F(FileSystemHelpers, EachEntryThatStaysIsReportedAndTheOthersAreStillTried) {
    Fill("stuck");
    const fs::path stuck = m_dir / "stuck";
    fs::permissions(stuck, fs::perms::owner_read | fs::perms::owner_exec);
    g_notices.clear();
    {
        testsupport::NoAccessOverride asUser;
        EXPECT_TRUE(EmptyFolder(Path("stuck"), false)) << "no handler: nothing is said";
        SetNoticeHandler(RecordNotice);
        EXPECT_FALSE(EmptyFolder(Path("stuck"), true));
        SetNoticeHandler(nullptr);
    }
    fs::permissions(stuck, fs::perms::owner_all);
    EXPECT_EQ(g_notices, QStringList(3, u"Cancel the operation!!"_s)) << "one for each entry";
    EXPECT_EQ(TrashedCount(), 0u);
}

} // namespace
