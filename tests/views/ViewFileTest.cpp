// Viewing a file of the image (640) on the engine double: the temporary copy, its reuse while
// its time stamp is the image's, the desktop's program asked to open it, and the copies removed
// with the list.
#include "ImagePanes.h"
#include "Locations.h"
#include "RestrictedTargets.h"
#include "TestFiles.h"
#include "ToolkitTestSupport.h"
#include "ViewsTestSupport.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>
#include <memory>
#include <sys/statvfs.h>

namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

constexpr const char* kListing = "volume VIEW\n"
                                 "d 133200000000000000 Docs\n"
                                 "f 5000 133300000000000000 Docs\\b.txt\n"
                                 "f 300 133200000000000000 b.txt\n"
                                 "f 90000 133200000000000000 fails.bin\n";

// Stands in for the desktop's program: keeps the files it was asked to open.
class DesktopOpener : public QObject {
    Q_OBJECT
public:
    DesktopOpener() { QDesktopServices::setUrlHandler(u"file"_s, this, "Open"); }
    ~DesktopOpener() override { QDesktopServices::unsetUrlHandler(u"file"_s); }
    QStringList m_lstOpened;

public slots:
    void Open(const QUrl& url) { m_lstOpened << url.toLocalFile(); }
};

class ViewFile : public ::testing::Test {
protected:
    ViewFile()
        : savedCache(qgetenv("XDG_CACHE_HOME")), tree(&doc),
          list(std::make_unique<CFileListView>(&doc)) {
        qputenv("XDG_CACHE_HOME", (dir.Path() / "cache").c_str());
        auto* pLayout = new QHBoxLayout(&window);
        pLayout->addWidget(&tree);
        pLayout->addWidget(list.get());
        window.resize(800, 400);
        window.show();
        list->SetTreeView(&tree);
        tree.OnInitialUpdate();
        reader.SetCallback(RecordCode, &codes);
        reader.SetPump([](void*) { QCoreApplication::processEvents(); }, nullptr);
        list->SetFrameCallback(RecordCode, &codes);
        list->SetViewingHandler([this](bool bViewing) { viewing.push_back(bViewing); });
        g_pImageReader = &reader;
        Open(kListing);
        GetTempFolder(kMaxPathChars, tempFolder);
    }
    ~ViewFile() override {
        g_pImageReader = nullptr;
        qputenv("XDG_CACHE_HOME", savedCache);
    }

    void Open(const std::string& listing) {
        const fs::path image = dir.Path() / "image.iso";
        testsupport::WriteFile(image, {listing.begin(), listing.end()});
        EXPECT_EQ(list->OpenImageFile(QString::fromStdString(image.string())), qmz::kOk);
    }
    QPoint RowPoint(const QString& name) const {
        QTreeView* pReport = list->ListCtrl().ReportView();
        const int nRow = static_cast<int>(ListRows(*list).indexOf(name));
        return pReport->visualRect(pReport->model()->index(nRow, 0)).center();
    }
    void DoubleClick(const QString& name) {
        QWidget* pViewport = list->ListCtrl().ReportView()->viewport();
        QTest::mouseClick(pViewport, Qt::LeftButton, Qt::NoModifier, RowPoint(name));
        QTest::mouseDClick(pViewport, Qt::LeftButton, Qt::NoModifier, RowPoint(name));
    }
    // A click on the row, then the command, as the command bar's button gives it.
    void ClickAndView(const QString& name) {
        QTest::mouseClick(list->ListCtrl().ReportView()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          RowPoint(name));
        EXPECT_TRUE(list->OnCommand(kCmdViewFile));
    }

    testsupport::TempDir dir;
    QByteArray savedCache;
    TestDocument doc;
    QWidget window;
    CFolderTreeView tree;
    std::unique_ptr<CFileListView> list;
    CImageReader reader{QStringLiteral(FAKEQMZ_PATH)};
    std::vector<uint32_t> codes;
    std::vector<bool> viewing;
    QString tempFolder;
};

TEST_F(ViewFile, ACopyIsMadeOnceAndReusedWhileItsTimeIsTheImages) {
    DesktopOpener opener;
    const QString copy = tempFolder + u"b.txt"_s;
    const struct {
        const char* name;
        std::function<void()> act;
        bool bCopied;
    } steps[] = {
        {"a double click copies", [&] { DoubleClick(u"b.txt"_s); }, true},
        {"the button reuses the copy", [&] { ClickAndView(u"b.txt"_s); }, false},
        {"a copy of another time is replaced",
         [&] {
             fs::last_write_time(copy.toStdString(), fs::file_time_type::clock::now());
             ClickAndView(u"b.txt"_s);
         },
         true},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        codes.clear();
        viewing.clear();
        opener.m_lstOpened.clear();
        step.act();
        EXPECT_EQ(opener.m_lstOpened, QStringList{copy});
        EXPECT_EQ(fs::file_size(copy.toStdString()), 300u);
        const std::vector<uint32_t> copied{NOTIFY_COPY_BEGIN, NOTIFY_COPY_END};
        EXPECT_EQ(codes, step.bCopied ? copied : std::vector<uint32_t>{});
        const std::vector<bool> flagged{true, false};
        EXPECT_EQ(viewing, step.bCopied ? flagged : std::vector<bool>());
    }
    // A folder's row opens the folder in the tree instead.
    opener.m_lstOpened.clear();
    ClickAndView(u"Docs"_s);
    EXPECT_EQ(ListRows(*list), QStringList{u"b.txt"_s});
    EXPECT_TRUE(opener.m_lstOpened.isEmpty());
    // Files of one name share the temporary path; the other folder's b.txt, of another time,
    // takes its place.
    ClickAndView(u"b.txt"_s);
    EXPECT_EQ(fs::file_size(copy.toStdString()), 5000u);
}

TEST_F(ViewFile, AFailedCopyOpensNothingAndLeavesNothing) {
    DesktopOpener opener;
    // The second chunk of the file cannot be read.
    Open(std::string(kListing) + "fail ReadFile 2 0x80004005\n");
    ClickAndView(u"fails.bin"_s);
    EXPECT_TRUE(opener.m_lstOpened.isEmpty());
    EXPECT_NE(std::ranges::find(codes, NOTIFY_READ_FAILED), codes.end());
    EXPECT_EQ(codes.back(), NOTIFY_COPY_END);
    EXPECT_FALSE(QFileInfo::exists(tempFolder + u"fails.bin"_s));
    EXPECT_EQ(reader.GetTotalBytes(), 0u);

    // A temp folder without room is told before anything is read.
    const testsupport::SmallVolume volume(tempFolder.toStdString(), 64 * 1024);
    struct statvfs info {};
    ASSERT_EQ(statvfs(tempFolder.toUtf8().constData(), &info), 0);
    if (uint64_t{info.f_bavail} * info.f_frsize > 1024 * 1024) {
        GTEST_SKIP() << "no small volume can be mounted here";
    }
    testsupport::WriteFile(tempFolder.toStdString() + "filler", std::vector<uint8_t>(50000));
    codes.clear();
    toolkittest::BoxCatcher boxes;
    ClickAndView(u"fails.bin"_s);
    const QString mountPoint = QDir::cleanPath(tempFolder);
    EXPECT_EQ(boxes.m_lstTexts, QStringList{u"There is not enough free space on "_s + mountPoint +
                                            u" to open this file. Free some space there, then "
                                            "try again."_s});
    EXPECT_TRUE(codes.empty());
}

TEST_F(ViewFile, TheCopiesOfThisRunGoWithTheList) {
    DesktopOpener opener;
    const QString earlier = tempFolder + u"earlier-run.txt"_s;
    testsupport::WriteFile(earlier.toStdString(), {'x'});
    ClickAndView(u"b.txt"_s);
    ASSERT_TRUE(QFileInfo::exists(tempFolder + u"b.txt"_s));
    list.reset();
    EXPECT_FALSE(QFileInfo::exists(tempFolder + u"b.txt"_s));
    EXPECT_TRUE(QFileInfo::exists(earlier));
}

} // namespace

#include "ViewFileTest.moc"
