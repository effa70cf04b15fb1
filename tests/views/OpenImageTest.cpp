// Opening an image from the file list, against the engine double and against the real engine
// on an image that xorriso makes: what the tree, the list, the title and the settings show
// afterwards, and which failures reach the user.
#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "CImageReader.h"
#include "CTvgMessageBox.h"
#include "Locations.h"
#include "TestFiles.h"
#include "ViewsTestSupport.h"

#include <QApplication>
#include <QFile>
#include <QHBoxLayout>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidgetItem>
#include <dlfcn.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace Qt::StringLiterals;

constexpr int kBoxPollMs = 5;

const QString kTitle = u"Ovrin Viewer"_s;
constexpr const char* kFirstVolume = "volume FIRST\n"
                                     "d 0 Old\n"
                                     "d 0 Old\\Deeper\n"
                                     "f 1 0 Old\\gone.txt\n"
                                     "f 2 0 old.bin\n";
constexpr const char* kSecondVolume = "volume SECOND\n"
                                      "d 0 Docs\n"
                                      "d 0 Docs\\Sub\n"
                                      "d 0 Music\n"
                                      "f 5 0 readme.txt\n";

// The double's call log, which grows with every engine call.
std::string CallLog() {
    void* h = dlopen(FAKEQMZ_PATH, RTLD_NOW | RTLD_NOLOAD);
    if (h == nullptr) {
        return {};
    }
    auto fn = reinterpret_cast<const char* (*)()>(dlsym(h, "FakeQmzCallLog"));
    std::string log = fn != nullptr ? fn() : "";
    dlclose(h);
    return log;
}

// The user's stop, as the frame's stop button gives it while the reader pumps.
void StopAtOnce(void*) {
    g_pImageReader->SetStop(1);
}

void RecordCode(uint32_t nCode, const char16_t*, void* pContext) {
    static_cast<std::vector<uint32_t>*>(pContext)->push_back(nCode);
}

// Runs the action and answers every message box it shows; returns how many there were.
int CountBoxes(const std::function<void()>& action) {
    int nBoxes = 0;
    QTimer poll;
    poll.setInterval(kBoxPollMs);
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* pBox = qobject_cast<CTvgMessageBox*>(QApplication::activeModalWidget());
        if (pBox != nullptr && pBox->isVisible()) {
            ++nBoxes;
            pBox->reject();
        }
    });
    poll.start();
    action();
    return nBoxes;
}

// Every folder of the tree as a path of item texts, subfolders inserted by expanding.
void CollectTree(QTreeWidgetItem* pItem, const QString& parent, QStringList& paths) {
    const QString path = parent.isEmpty() ? pItem->text(0) : parent + u'/' + pItem->text(0);
    paths << path;
    pItem->setExpanded(true);
    for (int i = 0; i < pItem->childCount(); ++i) {
        CollectTree(pItem->child(i), path, paths);
    }
}

// The tree and the list in one window, as the frame holds them.
class OpenImage : public ::testing::Test {
protected:
    OpenImage() : tree(&doc), list(&doc) {
        auto* pLayout = new QHBoxLayout(&window);
        pLayout->addWidget(&tree);
        pLayout->addWidget(&list);
        list.SetTreeView(&tree);
        tree.OnInitialUpdate();
        reader.SetCallback(RecordCode, &codes);
        list.SetFrameCallback(RecordCode, &codes);
        list.SetImageChooser(
            [this](QWidget*, const QString& folder, const QString& filter, const QString& title) {
                asked = {folder, filter, title};
                return chosen;
            });
        g_pImageReader = &reader;
    }
    ~OpenImage() override { g_pImageReader = nullptr; }

    QString Image(const QString& name, const char* text) {
        const QString path = dir.filePath(name);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path;
    }
    QStringList TreePaths() {
        QStringList paths;
        CollectTree(tree.TreeCtrl().topLevelItem(0), QString(), paths);
        return paths;
    }
    QStringList ListRows() {
        QStringList names;
        COvListModel& model = list.ListCtrl().Model();
        for (int i = 0; i < model.rowCount(); ++i) {
            names << model.NodeAt(i)->m_strName;
        }
        return names;
    }
    // Through the command, as the user opens an image.
    int Choose(const QString& path) {
        chosen = path;
        codes.clear();
        return CountBoxes([this] { EXPECT_TRUE(list.OnCommand(kCmdOpenImage)); });
    }

    QTemporaryDir dir;
    TestDocument doc;
    QWidget window;
    CFolderTreeView tree;
    CFileListView list;
    CImageReader reader{QStringLiteral(FAKEQMZ_PATH)};
    std::vector<uint32_t> codes;
    QString chosen;
    QStringList asked;
};

TEST_F(OpenImage, AnImageOfEachKindFillsTreeListTitleAndImageFolder) {
    CommandState state;
    EXPECT_TRUE(list.OnUpdateCommand(kCmdOpenImage, state));
    EXPECT_TRUE(state.bEnabled);
    SetImageFolder(dir.path());
    for (const char* name : {"a.iso", "in/b.TVI", "in/deeper/c.Rdf"}) {
        SCOPED_TRACE(name);
        const QString folderBefore = GetImageFolder();
        const QString path = Image(QString::fromUtf8(name), kSecondVolume);
        EXPECT_EQ(Choose(path), 0);
        EXPECT_EQ(asked,
                  (QStringList{folderBefore, u"Disc images (*.tvi *.iso *.rdf);;All files (*)"_s,
                               u"Open Image"_s}));
        EXPECT_EQ(TreePaths(), (QStringList{u"SECOND"_s, u"SECOND/Docs"_s, u"SECOND/Docs/Sub"_s,
                                            u"SECOND/Music"_s}));
        EXPECT_EQ(ListRows(), (QStringList{u"Docs"_s, u"Music"_s, u"readme.txt"_s}));
        EXPECT_EQ(window.windowTitle(), kTitle + u" ["_s + path + u']');
        EXPECT_EQ(list.ImagePath(), path);
        EXPECT_EQ(GetImageFolder(), QFileInfo(path).absolutePath());
        EXPECT_EQ(codes, (std::vector<uint32_t>{NOTIFY_OPEN_BEGIN, NOTIFY_OPEN_END}));
    }
}

TEST_F(OpenImage, ASecondImageLeavesNothingOfTheFirst) {
    ASSERT_EQ(list.OpenImageFile(Image(u"first.iso"_s, kFirstVolume)), qmz::kOk);
    ASSERT_EQ(TreePaths(), (QStringList{u"FIRST"_s, u"FIRST/Old"_s, u"FIRST/Old/Deeper"_s}));
    // The list shows the first image's inner folder when the second one comes.
    tree.TreeCtrl().setCurrentItem(tree.TreeCtrl().topLevelItem(0)->child(0));
    ASSERT_EQ(ListRows(), (QStringList{u"Deeper"_s, u"gone.txt"_s}));

    ASSERT_EQ(list.OpenImageFile(Image(u"second.iso"_s, kSecondVolume)), qmz::kOk);
    EXPECT_EQ(TreePaths(), (QStringList{u"SECOND"_s, u"SECOND/Docs"_s, u"SECOND/Docs/Sub"_s,
                                        u"SECOND/Music"_s}));
    EXPECT_EQ(ListRows(), (QStringList{u"Docs"_s, u"Music"_s, u"readme.txt"_s}));
    EXPECT_EQ(doc.GetRootItem()->m_vecChildren.size(), 3u);
    EXPECT_EQ(doc.GetRootItem()->m_ullSize, 5u) << "no size of the first image is counted";
}

struct FailureCase {
    const char* name;
    const char* faults;
    bool bStopInPump;
    int nBoxes;
};

TEST_F(OpenImage, AFailedOpeningLeavesAnEmptyTreeAndTellsTheUserUnlessStopped) {
    const FailureCase cases[] = {
        {"OpenDrive", "fail OpenDrive 0 0x80004005\n", false, 1},
        {"Attach", "fail Attach 0 0x80004005\n", false, 1},
        {"Load", "fail Load 0 0x8007000E\n", false, 1},
        {"Start", "fail Start 0 0x80004005\n", false, 1},
        {"Finish", "fail Finish 0 0x80004005\n", false, 1},
        {"GetFsInfo", "fail GetFsInfo 0 0x80004005\n", false, 1},
        {"FindFirst of a folder", "fail FindFirst 2 0x80004005\n", false, 1},
        {"engine answers stopped", "fail Finish 0 0xA0000000\n", false, 0},
        {"user stops the scan", "wait-running 50\n", true, 0},
    };
    const QString firstPath = Image(u"good/first.iso"_s, kFirstVolume);
    const QString goodFolder = QFileInfo(firstPath).absolutePath();
    int nImage = 0;
    for (const FailureCase& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(list.OpenImageFile(firstPath), qmz::kOk);
        reader.SetPump(c.bStopInPump ? StopAtOnce : nullptr, nullptr);
        const QString path = Image(u"bad/image%1.iso"_s.arg(++nImage),
                                   (std::string(kSecondVolume) + c.faults).c_str());
        EXPECT_EQ(Choose(path), c.nBoxes);
        reader.SetPump(nullptr, nullptr);

        EXPECT_EQ(TreePaths(), QStringList{u"No image open"_s});
        EXPECT_TRUE(ListRows().isEmpty());
        EXPECT_TRUE(doc.GetRootItem()->m_vecChildren.empty());
        EXPECT_TRUE(list.ImagePath().isEmpty());
        EXPECT_EQ(window.windowTitle(), kTitle);
        EXPECT_EQ(GetImageFolder(), goodFolder);
        ASSERT_FALSE(codes.empty());
        EXPECT_EQ(codes.back(), NOTIFY_OPEN_END);
    }
}

TEST_F(OpenImage, ANameThatIsNoImageIsRefusedWithoutTheEngine) {
    const QString goodPath = Image(u"good.iso"_s, kFirstVolume);
    ASSERT_EQ(list.OpenImageFile(goodPath), qmz::kOk);
    for (const char* name : {"listing.txt", "image.iso.bak", "iso", "image.isox"}) {
        SCOPED_TRACE(name);
        const std::string logBefore = CallLog();
        EXPECT_EQ(list.OpenImageFile(Image(QString::fromUtf8(name), kSecondVolume)), qmz::kFail);
        EXPECT_EQ(Choose(dir.filePath(QString::fromUtf8(name))), 1);
        EXPECT_EQ(CallLog(), logBefore);
        EXPECT_TRUE(codes.empty());
        EXPECT_EQ(list.ImagePath(), goodPath);
        EXPECT_EQ(TreePaths(), (QStringList{u"FIRST"_s, u"FIRST/Old"_s, u"FIRST/Old/Deeper"_s}));
    }
}

TEST_F(OpenImage, ACancelledDialogAndAMissingReaderChangeNothing) {
    const QString goodPath = Image(u"good.iso"_s, kFirstVolume);
    ASSERT_EQ(list.OpenImageFile(goodPath), qmz::kOk);
    EXPECT_EQ(Choose(QString()), 0);
    g_pImageReader = nullptr;
    EXPECT_EQ(Choose(Image(u"second.iso"_s, kSecondVolume)), 0);
    EXPECT_TRUE(codes.empty());
    EXPECT_EQ(list.ImagePath(), goodPath);
    EXPECT_EQ(TreePaths(), (QStringList{u"FIRST"_s, u"FIRST/Old"_s, u"FIRST/Old/Deeper"_s}));
}

// The real engine on an image of xorriso's; the tree and the list must show what went in.
TEST(OpenRealImage, AnImageMadeByXorrisoShowsItsFolders) {
    namespace ts = testsupport;
    const ts::TempDir temp;
    std::filesystem::create_directories(temp / "src/alpha/beta");
    std::filesystem::create_directories(temp / "src/gamma");
    ts::WriteFile(temp / "src/alpha/one.txt", ts::PatternBytes(100, 1));
    ts::WriteFile(temp / "src/top.txt", ts::PatternBytes(300, 2));
    const std::filesystem::path image = temp / "made.iso";
    ASSERT_TRUE(ts::RunCommand("xorriso -as mkisofs -quiet -R -J -V MADE -o " + ts::Quote(image) +
                               " " + ts::Quote(temp / "src")));

    TestDocument doc;
    CFolderTreeView tree(&doc);
    CFileListView list(&doc);
    list.SetTreeView(&tree);
    tree.OnInitialUpdate();
    CImageReader reader{QStringLiteral(QMZ_PATH)};
    g_pImageReader = &reader;
    const QString path = QString::fromStdString(image.string());
    EXPECT_EQ(list.OpenImageFile(path), qmz::kOk);
    g_pImageReader = nullptr;

    QStringList treePaths;
    CollectTree(tree.TreeCtrl().topLevelItem(0), QString(), treePaths);
    EXPECT_EQ(treePaths,
              (QStringList{u"MADE"_s, u"MADE/alpha"_s, u"MADE/alpha/beta"_s, u"MADE/gamma"_s}));
    QStringList rows;
    for (int i = 0; i < list.ListCtrl().Model().rowCount(); ++i) {
        rows << list.ListCtrl().Model().NodeAt(i)->m_strName;
    }
    EXPECT_EQ(rows, (QStringList{u"alpha"_s, u"gamma"_s, u"top.txt"_s}));
    EXPECT_EQ(list.ImagePath(), path);
}

} // namespace
