// The image reader against the engine test double, which serves a listing file and fails
// whatever the listing tells it to.
#include "CImageReader.h"
#include "COvDataItem.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdlib>
#include <dlfcn.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr uint64_t kTicks2024 = 133'485'408'000'000'000ull; // 2024-01-01T00:00:00Z

// The double's call log; each test reads what was added since its mark.
std::string CallLog(const char* library = FAKEQMZ_PATH) {
    void* h = dlopen(library, RTLD_NOW | RTLD_NOLOAD);
    if (h == nullptr) {
        return {};
    }
    auto fn = reinterpret_cast<const char* (*)()>(dlsym(h, "FakeQmzCallLog"));
    std::string log = fn != nullptr ? fn() : "";
    dlclose(h);
    return log;
}

bool IsLoaded(const char* library) {
    void* h = dlopen(library, RTLD_NOW | RTLD_NOLOAD);
    if (h != nullptr) {
        dlclose(h);
    }
    return h != nullptr;
}

// The order in which the given calls appear in the log, as one text.
std::string Sequence(const std::string& log, std::initializer_list<std::string_view> calls) {
    std::string out;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        if (std::ranges::find(calls, line) != calls.end()) {
            out += line + ' ';
        }
    }
    return out;
}

class ImageReaderTest : public ::testing::Test {
protected:
    QString Listing(const char* text) {
        const QString path = m_dir.filePath(QStringLiteral("image%1.txt").arg(++m_nListings));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path;
    }
    void TearDown() override { unsetenv("FAKEQMZ_MODE"); }

    QTemporaryDir m_dir;
    int m_nListings = 0;
    COvDataItem m_root{QStringLiteral("Image"), COvDataItem::KindRoot, 0, 0};
};

constexpr const char* kSmallVolume = "volume   SPACED NAME  \n"
                                     "d 0 Docs\n"
                                     "f 10 133485408000000000 zeta.txt\n"
                                     "f 5 0 Alpha.txt\n"
                                     "f 100 0 Docs\\b.bin\n"
                                     "d 0 Docs\\Empty\n";

TEST_F(ImageReaderTest, WalksTheVolumeIntoASortedTreeWithSummedSizes) {
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
    ASSERT_EQ(reader.OpenImage(Listing(kSmallVolume), &m_root), qmz::kOk);

    EXPECT_EQ(m_root.m_strName, QStringLiteral("SPACED NAME"));
    ASSERT_EQ(m_root.m_vecChildren.size(), 3u);
    EXPECT_EQ(m_root.m_vecChildren[0]->m_strName, QStringLiteral("Docs"));
    EXPECT_EQ(m_root.m_vecChildren[1]->m_strName, QStringLiteral("Alpha.txt"));
    EXPECT_EQ(m_root.m_ullSize, 115u);
    EXPECT_EQ(m_root.m_anSortState[0], 1);
    const COvDataItem* docs = m_root.m_vecChildren[0];
    EXPECT_EQ(docs->m_ullSize, 100u);
    ASSERT_EQ(docs->m_vecChildren.size(), 2u);
    EXPECT_EQ(docs->m_vecChildren[0]->m_strPath, QStringLiteral("\\Docs\\"));
    EXPECT_EQ(docs->m_vecChildren[0]->m_anSortState[0], 0) << "an empty folder stays unsorted";
    const COvDataItem* zeta = m_root.m_vecChildren[2];
    EXPECT_EQ((uint64_t(zeta->m_ftTime.dwHighDateTime) << 32) | zeta->m_ftTime.dwLowDateTime,
              kTicks2024);

    int32_t nPercent = -1;
    EXPECT_EQ(reader.GetProgress(PROGRESS_OPEN, &nPercent), 0);
    EXPECT_EQ(nPercent, 100);
    EXPECT_EQ(reader.GetProgress(PROGRESS_OPEN, nullptr), 0);
    EXPECT_TRUE(reader.IsImageOpen());
    EXPECT_FALSE(reader.IsOpening());
    EXPECT_NE(CallLog().find("SetRegPath 2147483650 Software\\Brindleway\\Torvane10\\10.0"),
              std::string::npos);
}

struct LibraryCase {
    const char* name;
    const char* library;
    const char* mode;
    qmz::Result openResult;
};

TEST_F(ImageReaderTest, AnEngineThatCannotBeReachedFailsEveryOpening) {
    const LibraryCase cases[] = {
        {"no library", "/nonexistent/Qmz.so", "", qmz::kUnexpected},
        {"missing export", FAKEQMZ_NO_UNLOAD_PATH, "", qmz::kUnexpected},
        {"no class factory", FAKEQMZ_PATH, "no-factory", qmz::kUnexpected},
        {"CreateInstance fails", FAKEQMZ_PATH, "create-fails", qmz::kUnexpected},
        {"no IBwRegPath", FAKEQMZ_PATH, "no-regpath", qmz::kOk},
    };
    const QString image = Listing(kSmallVolume);
    for (const LibraryCase& c : cases) {
        setenv("FAKEQMZ_MODE", c.mode, 1);
        CImageReader reader{QString::fromUtf8(c.library)};
        COvDataItem root(QString(), COvDataItem::KindRoot, 0, 0);
        EXPECT_EQ(reader.OpenImage(image, &root), c.openResult) << c.name;
        const bool bEngine = c.openResult == qmz::kOk;
        EXPECT_EQ(reader.HasEngine(), bEngine) << c.name;
        EXPECT_EQ(reader.CanOpen(image), bEngine ? qmz::kOk : qmz::kFail) << c.name;
        EXPECT_EQ(reader.CanOpen(m_dir.filePath(QStringLiteral("missing"))), qmz::kUnexpected);
        EXPECT_EQ(reader.ConnectEngine(), bEngine ? qmz::kOk : qmz::kUnexpected) << c.name;
    }
}

TEST_F(ImageReaderTest, TheLibraryIsUnloadedOnlyWhenItAgrees) {
    for (const bool bRefuse : {false, true}) {
        setenv("FAKEQMZ_MODE", bRefuse ? "refuse-unload" : "", 1);
        {
            CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
            ASSERT_TRUE(reader.HasEngine());
        }
        EXPECT_EQ(IsLoaded(FAKEQMZ_PATH), bRefuse);
    }
}

struct WalkCase {
    const char* name;
    const char* listing;
    qmz::Result result;
    size_t nRootChildren;
    int32_t nRootSortState;
    bool bOpen;
};

TEST_F(ImageReaderTest, FailuresInsideTheWalkCountOnlyInTheLastFolder) {
    // Calls: FindFirst("") gives a, FindNext b, FindNext end; FindFirst("a") x, FindNext end;
    // FindFirst("b") y, FindNext end.
#define TWO_FOLDERS "d 0 a\nd 0 b\nf 1 0 a\\x\nf 2 0 b\\y\n"
    const WalkCase cases[] = {
        {"all well", TWO_FOLDERS, qmz::kOk, 2, 1, true},
        {"an empty volume", "volume EMPTY\n", qmz::kOk, 0, 0, true},
        {"FindNext fails in the first folder", TWO_FOLDERS "fail FindNext 1 0x80004005", qmz::kOk,
         1, 1, true},
        {"FindNext fails in the last folder", TWO_FOLDERS "fail FindNext 4 0xE0FF0006",
         qmz::kEngineReadFailed, 2, 1, false},
        {"FindFirst fails", TWO_FOLDERS "fail FindFirst 2 0xE0FF0049", qmz::kEngineFindFailed, 2, 1,
         false},
        {"FindClose fails", TWO_FOLDERS "fail FindClose 1 0x80004005", qmz::kOk, 2, 1, true},
        {"GetFsInfo fails", TWO_FOLDERS "fail GetFsInfo 0 0xE0FF0053", qmz::MakeResult(0xE0FF0053),
         0, 0, false},
        {"Attach fails", TWO_FOLDERS "fail Attach 0 0xE0FF001B", qmz::MakeResult(0xE0FF001B), 0, 0,
         false},
        {"Finish fails", TWO_FOLDERS "fail Finish 0 0xE0FF001C", qmz::MakeResult(0xE0FF001C), 0, 0,
         false},
    };
#undef TWO_FOLDERS
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
    for (const WalkCase& c : cases) {
        COvDataItem root(QString(), COvDataItem::KindRoot, 0, 0);
        const QString image = Listing(c.listing);
        EXPECT_EQ(reader.OpenImage(image, &root), c.result) << c.name;
        EXPECT_EQ(root.m_vecChildren.size(), c.nRootChildren) << c.name;
        EXPECT_EQ(root.m_anSortState[0], c.nRootSortState) << c.name;
        EXPECT_EQ(reader.IsImageOpen(), c.bOpen) << c.name;
        EXPECT_EQ(reader.GetImagePath() == image, c.bOpen) << c.name;
    }
}

struct Observer {
    CImageReader* pReader = nullptr;
    std::vector<uint32_t> notices{};
    std::u16string openPayload{};
    std::vector<int32_t> percents{};
    bool bStopOnOpenBegin = false;
    int nStopAtPercent = 1000;
};

void ObserveNotice(uint32_t code, const char16_t* pPayload, void* pContext) {
    auto* o = static_cast<Observer*>(pContext);
    o->notices.push_back(code);
    if (code == NOTIFY_OPEN_BEGIN) {
        o->openPayload = pPayload;
        if (o->bStopOnOpenBegin) {
            o->pReader->SetStop(1);
        }
    }
}

void ObservePump(void* pContext) {
    auto* o = static_cast<Observer*>(pContext);
    int32_t nPercent = 0;
    o->pReader->GetProgress(PROGRESS_OPEN, &nPercent);
    o->percents.push_back(nPercent);
    if (nPercent >= o->nStopAtPercent) {
        o->pReader->SetStop(1);
    }
}

void Observe(CImageReader& reader, Observer& o) {
    o.pReader = &reader;
    reader.SetCallback(ObserveNotice, &o);
    reader.SetPump(ObservePump, &o);
}

TEST_F(ImageReaderTest, ReportsProgressWithinItsRangesAndNotifiesTheOpening) {
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
    Observer o;
    Observe(reader, o);
    // Counters far below the real count must not push the walk's percent past 100.
    std::string volume = "wait-running 4\ncounts 1 0\n";
    for (int i = 0; i < 200; ++i) {
        volume += "f 1 0 f" + std::to_string(i) + "\n";
    }
    const QString image = Listing(volume.c_str());
    ASSERT_EQ(reader.OpenImage(image, &m_root), qmz::kOk);
    ASSERT_GT(o.percents.size(), 4u);
    EXPECT_EQ(std::vector<int32_t>(o.percents.begin(), o.percents.begin() + 4),
              (std::vector<int32_t>{0, 12, 25, 37}));
    EXPECT_EQ(*std::max_element(o.percents.begin(), o.percents.end()), 100);
    EXPECT_EQ(o.notices, (std::vector<uint32_t>{NOTIFY_OPEN_BEGIN}));
    EXPECT_EQ(o.openPayload, image.toStdU16String());
}

TEST_F(ImageReaderTest, AStopBeforeTheFirstWaitStillCancelsAndDrainsTheScan) {
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
    Observer o{.bStopOnOpenBegin = true};
    Observe(reader, o);
    const size_t nMark = CallLog().size();
    EXPECT_EQ(reader.OpenImage(Listing("wait-running 3\nf 1 0 a\n"), &m_root), qmz::kStopped);
    EXPECT_EQ(Sequence(CallLog().substr(nMark), {"Start", "Cancel", "Wait", "Finish"}),
              "Start Cancel Wait Wait Finish ");
    EXPECT_EQ(o.notices, (std::vector<uint32_t>{NOTIFY_OPEN_BEGIN, NOTIFY_STOPPING}));
    EXPECT_FALSE(reader.IsImageOpen());
    EXPECT_TRUE(m_root.m_vecChildren.empty());
}

TEST_F(ImageReaderTest, AStopDuringTheWalkLeavesAPartialTreeAndNoImage) {
    std::string volume;
    for (int i = 0; i < 300; ++i) {
        volume += "f 1 0 file" + std::to_string(i) + "\n";
    }
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
    Observer o{.nStopAtPercent = 50};
    Observe(reader, o);
    EXPECT_EQ(reader.OpenImage(Listing(volume.c_str()), &m_root), qmz::kStopped);
    EXPECT_FALSE(reader.IsImageOpen());
    EXPECT_GT(m_root.m_vecChildren.size(), 0u);
    EXPECT_LT(m_root.m_vecChildren.size(), 300u);
}

TEST_F(ImageReaderTest, AnImageHeldByAnotherProcessIsRefusedButReopensInThisOne) {
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
    const QString image = Listing(kSmallVolume);
    ASSERT_EQ(reader.OpenImage(image, &m_root), qmz::kOk);
    COvDataItem again(QString(), COvDataItem::KindRoot, 0, 0);
    EXPECT_EQ(reader.OpenImage(image, &again), qmz::kOk) << "the reader releases its own lock";

    reader.CloseImage();
    NamedMutex other;
    ASSERT_EQ(other.Create(image.toUpper()), NamedMutex::State::Created);
    COvDataItem third(QString(), COvDataItem::KindRoot, 0, 0);
    EXPECT_EQ(reader.OpenImage(image, &third), qmz::kFail);
    EXPECT_FALSE(reader.IsImageOpen());
}

TEST_F(ImageReaderTest, ClosesInReverseOrderAndReopensWithoutTouchingTheTree) {
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
    EXPECT_EQ(reader.ReopenImage(), qmz::kUnexpected) << "nothing was opened yet";
    ASSERT_EQ(reader.OpenImage(Listing(kSmallVolume), &m_root), qmz::kOk);
    const size_t nMark = CallLog().size();
    reader.CloseImage();
    EXPECT_EQ(Sequence(CallLog().substr(nMark), {"FileSystem::Release", "Unload", "Detach",
                                                 "Reader::Release", "Drive::Release"}),
              "FileSystem::Release Unload Detach Reader::Release Drive::Release ");
    EXPECT_FALSE(reader.IsImageOpen());

    const size_t nChildren = m_root.m_vecChildren.size();
    EXPECT_EQ(reader.ReopenImage(), qmz::kOk);
    EXPECT_TRUE(reader.IsImageOpen());
    EXPECT_EQ(m_root.m_vecChildren.size(), nChildren);
}

TEST_F(ImageReaderTest, CanOpenReleasesADriveThatCameWithAFailure) {
    CImageReader reader(QStringLiteral(FAKEQMZ_PATH));
    const QString image = Listing("drive-on-failure\nfail OpenDrive 0 0xE0FF0004\n");
    const size_t nMark = CallLog().size();
    EXPECT_EQ(reader.CanOpen(image), qmz::kEngineBadImage);
    EXPECT_EQ(Sequence(CallLog().substr(nMark), {"Drive::Release"}), "Drive::Release ");
}

} // namespace
