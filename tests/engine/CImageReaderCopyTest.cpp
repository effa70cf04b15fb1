// Copying out of an image, against the engine test double (whose files hold FakeContentByte's
// stream, different for every path) and real target folders: what lands on the disk, and every way
// a copy can fail.
#include "CImageReader.h"
#include "COvDataItem.h"
#include "FakeListing.h"
#include "RestrictedTargets.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using testsupport::fs::path;

constexpr uint64_t kTicks2024 = 133'485'408'000'000'000ull; // 2024-01-01T00:00:00Z, in the
constexpr int64_t kUnix2024 = 1'704'067'200;                // test's zone, UTC

struct Notice {
    uint32_t code;
    std::u16string payload;
};

struct Observer {
    CImageReader* pReader = nullptr;
    std::vector<Notice> notices;
    int nPumps = 0;
    int nStopAtPump = -1;

    std::vector<uint32_t> Codes() const {
        std::vector<uint32_t> codes;
        std::ranges::transform(notices, std::back_inserter(codes), &Notice::code);
        return codes;
    }
};

void ObserveNotice(uint32_t code, const char16_t* pPayload, void* pContext) {
    static_cast<Observer*>(pContext)->notices.push_back({code, pPayload});
}

void CountPump(void* pContext) {
    auto* pObserver = static_cast<Observer*>(pContext);
    if (++pObserver->nPumps == pObserver->nStopAtPump) {
        pObserver->pReader->SetStop(1);
    }
}

QString Q(const path& p) {
    return QString::fromStdString(p.string());
}

// The bytes the double serves for the file at the image path.
std::vector<uint8_t> Expected(const std::u16string& imagePath, uint64_t size) {
    std::vector<uint8_t> bytes(size);
    const uint64_t seed = FakeContentSeed(imagePath);
    for (uint64_t i = 0; i < size; ++i) {
        bytes[i] = FakeContentByte(seed, i);
    }
    return bytes;
}

class ImageReaderCopyTest : public ::testing::Test {
protected:
    // Opens a listing with the reader; the observer sees its notices and pumps.
    void Open(const std::string& listing) {
        const path file = m_dir / ("image" + std::to_string(++m_nImages) + ".txt");
        std::ofstream(file) << listing;
        m_observer.pReader = &m_reader;
        m_reader.SetCallback(ObserveNotice, &m_observer);
        m_reader.SetPump(CountPump, &m_observer);
        ASSERT_EQ(m_reader.OpenImage(Q(file), &m_root), qmz::kOk);
        m_reader.SetTotalBytes(m_root.m_ullSize);
        m_observer.notices.clear();
    }
    qmz::Result CopyFile(const QString& source, const path& target) {
        const qmz::FileTime time{static_cast<uint32_t>(kTicks2024),
                                 static_cast<uint32_t>(kTicks2024 >> 32)};
        return m_reader.CopyFile(source, Q(target), &time);
    }
    path Target(const std::string& name) {
        const path folder = m_dir / "out";
        testsupport::fs::create_directories(folder);
        return folder / name;
    }

    testsupport::TempDir m_dir;
    int m_nImages = 0;
    CImageReader m_reader{QStringLiteral(FAKEQMZ_PATH)};
    COvDataItem m_root{QString(), COvDataItem::KindRoot, 0, 0};
    Observer m_observer;
};

TEST_F(ImageReaderCopyTest, AFolderArrivesWithItsBytesAndTimes) {
    // Sizes around the chunk size; a one-byte file is created empty, like one of none. The two
    // "pair" files have names and sizes alike, so a copy of the wrong one shows only in its bytes.
    const struct {
        std::u16string path;
        uint64_t listed, copied;
    } files[] = {{u"Top\\zero", 0, 0},
                 {u"Top\\one", 1, 0},
                 {u"Top\\chunk", 32768, 32768},
                 {u"Top\\two chunks and one", 65537, 65537},
                 {u"Top\\pair-a", 40000, 40000},
                 {u"Top\\pair-b", 40000, 40000},
                 {u"Top\\Sub\\deep.bin", 100000, 100000},
                 // The writer hands a large file to the disk in windows of 8 MiB as it goes.
                 {u"Top\\past two windows", 20'983'809, 20'983'809}};
    std::string listing = "d 0 Top\nd 0 Top\\Sub\nd 0 Top\\Sub\\Empty\n";
    for (const auto& f : files) {
        listing += "f " + std::to_string(f.listed) + " 133485408000000000 " +
                   QString::fromStdU16String(f.path).toStdString() + "\n";
    }
    Open(listing);
    const path base = m_dir / "out";
    ASSERT_EQ(m_reader.CopyFolder(QStringLiteral("Top"), Q(base) + u'/'), qmz::kOk);
    for (const auto& f : files) {
        const path file =
            base / QString::fromStdU16String(f.path).replace(u'\\', u'/').toStdString();
        EXPECT_EQ(testsupport::ReadWholeFile(file), Expected(f.path, f.copied)) << file;
        struct stat st {};
        ASSERT_EQ(stat(file.c_str(), &st), 0) << file;
        EXPECT_EQ(st.st_mtime, kUnix2024) << file;
    }
    EXPECT_TRUE(testsupport::fs::is_directory(base / "Top/Sub/Empty"));
    EXPECT_EQ(m_observer.Codes(), std::vector<uint32_t>(std::size(files), NOTIFY_COPY_BEGIN));
    EXPECT_EQ(m_observer.notices[0].payload, u"Top\\zero");
    EXPECT_LE(m_reader.GetDoneBytes(), m_root.m_ullSize);
    EXPECT_FALSE(m_reader.IsCopying());
}

TEST_F(ImageReaderCopyTest, NamesThatWouldLeaveTheTargetFolderAreNotWritten) {
    Open("d 0 Top\nf 4 0 Top\\../../escape\nf 4 0 Top\\..\nf 4 0 Top\\ok\n");
    const path base = m_dir / "out";
    ASSERT_EQ(m_reader.CopyFolder(QStringLiteral("Top"), Q(base) + u'/'), qmz::kOk);
    EXPECT_FALSE(testsupport::fs::exists(m_dir / "escape"));
    EXPECT_EQ(testsupport::DiskTree(base).size(), 2u) << "Top and Top/ok";
}

struct FailureCase {
    const char* name;
    const char* listing;
    const char* source;
    qmz::Result result;
    std::vector<uint32_t> notices;
    bool bTargetExistsBefore;
};

TEST_F(ImageReaderCopyTest, AFailedCopyReportsAndLeavesNoTarget) {
    const FailureCase cases[] = {
        {"the engine cannot open the file",
         "f 10 0 x\nfail OpenFile 0 0xE0FF0048",
         "x",
         qmz::kEngineFileNotFound,
         {},
         true},
        {"a read fails halfway",
         "f 100000 0 x\nfail ReadFile 2 0xE0FF0006",
         "x",
         qmz::kEngineReadFailed,
         {NOTIFY_COPY_BEGIN, NOTIFY_READ_FAILED},
         false},
        {"the first read fails",
         "f 10 0 x\nfail ReadFile 1 0xE0FF0006",
         "x",
         qmz::kEngineReadFailed,
         {NOTIFY_COPY_BEGIN, NOTIFY_READ_FAILED},
         true},
    };
    for (const FailureCase& c : cases) {
        Open(c.listing);
        m_observer.notices.clear();
        const path target = Target(c.name);
        if (c.bTargetExistsBefore) {
            std::ofstream(target) << "there before";
        }
        EXPECT_EQ(CopyFile(QString::fromUtf8(c.source), target), c.result) << c.name;
        EXPECT_EQ(m_observer.Codes(), c.notices) << c.name;
        EXPECT_FALSE(testsupport::fs::exists(target)) << c.name;
    }
}

TEST_F(ImageReaderCopyTest, WithoutAnImageNothingIsCopied) {
    EXPECT_EQ(CopyFile(QStringLiteral("x"), Target("x")), qmz::kUnexpected);
    EXPECT_EQ(m_reader.CopyFolder(QStringLiteral("x"), Q(m_dir.Path()) + u'/'), qmz::kFail);
    EXPECT_FALSE(testsupport::fs::exists(Target("x")));
}

TEST_F(ImageReaderCopyTest, AStopInTheMiddleLeavesNoTargetFile) {
    Open("f 1000000 0 big\n");
    m_observer.nStopAtPump = 5;
    const path target = Target("big");
    EXPECT_EQ(CopyFile(QStringLiteral("big"), target), qmz::kStopped);
    EXPECT_FALSE(testsupport::fs::exists(target));
}

// A target that takes its data slowly (a pipe read by the test) keeps the writer in its writes
// long after the reading side has queued the whole file. A stop must end the writing after the
// write under way, not after the queue is written out.
TEST_F(ImageReaderCopyTest, AStopWhileTheWriterWaitsOnASlowTargetEndsAfterTheWriteUnderWay) {
    constexpr uint64_t kFileBytes = uint64_t{24} << 20;
    // The reading side pumps once for every chunk of 32 KiB that it queues.
    constexpr int kQueuedPumps = static_cast<int>(kFileBytes / 32768);
    constexpr uint64_t kStopAfterBytes = uint64_t{2} << 20;
    // The most that one write of the writer hands over.
    constexpr uint64_t kOneWriteBytes = uint64_t{1} << 20;
    // Only guards against a writer that never comes; nothing here is timed.
    constexpr int kGuardMs = 30000;
    Open("f " + std::to_string(kFileBytes) + " 0 big\n");
    std::atomic<int> nPumps = 0;
    m_reader.SetPump([](void* pCount) { ++*static_cast<std::atomic<int>*>(pCount); }, &nPumps);
    const path target = Target("big");
    ASSERT_EQ(mkfifo(target.c_str(), 0600), 0);
    const int fd = open(target.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(fd, 0);
    uint64_t ullBefore = 0;
    uint64_t ullAfter = 0;
    std::thread slowDisk([&] {
        for (int i = 0; i < kGuardMs && nPumps < kQueuedPumps; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::vector<char> buffer(65536);
        pollfd wait{fd, POLLIN, 0};
        while (::poll(&wait, 1, kGuardMs) > 0) {
            const ssize_t n = ::read(fd, buffer.data(), buffer.size());
            if (n < 0 && errno == EAGAIN) {
                continue;
            }
            if (n <= 0) {
                break;
            }
            (ullBefore < kStopAfterBytes ? ullBefore : ullAfter) += static_cast<uint64_t>(n);
            if (ullBefore >= kStopAfterBytes && m_reader.GetStop() == 0) {
                m_reader.SetStop(1);
            }
        }
    });
    const qmz::Result hr = CopyFile(QStringLiteral("big"), target);
    slowDisk.join();
    const auto ullPipeBytes = static_cast<uint64_t>(fcntl(fd, F_GETPIPE_SZ));
    close(fd);
    EXPECT_EQ(hr, qmz::kStopped);
    EXPECT_GE(nPumps, kQueuedPumps) << "the whole file was queued before the stop";
    EXPECT_LE(ullAfter, kOneWriteBytes + ullPipeBytes);
    EXPECT_FALSE(testsupport::fs::exists(target));
}

TEST_F(ImageReaderCopyTest, ATargetThatMayNotBeWrittenIsReportedAsAccessDenied) {
    Open("f 10 0 x\n");
    const path folder = m_dir / "locked";
    testsupport::fs::create_directories(folder);
    const path existing = Target("read-only");
    std::ofstream(existing) << "old";
    chmod(existing.c_str(), 0444);
    chmod(folder.c_str(), 0555);
    const testsupport::NoAccessOverride asUser;
    for (const path& target : {folder / "x", existing}) {
        m_observer.notices.clear();
        EXPECT_EQ(CopyFile(QStringLiteral("x"), target), qmz::kFail) << target;
        const std::vector<uint32_t> want{NOTIFY_COPY_BEGIN, NOTIFY_ACCESS_DENIED};
        EXPECT_EQ(m_observer.Codes(), want) << target;
        EXPECT_EQ(m_observer.notices.back().payload, Q(target).toStdU16String());
    }
    EXPECT_FALSE(testsupport::fs::exists(folder / "x"));
    EXPECT_FALSE(testsupport::fs::exists(existing)) << "a failed copy leaves no target";
    chmod(folder.c_str(), 0755);
}

TEST_F(ImageReaderCopyTest, WriteFailuresAreReportedAndTheTargetRemoved) {
    Open("f 1000000 0 big\nf 10 0 small\n");
    const path small = m_dir / "small";
    testsupport::fs::create_directories(small);
    {
        const testsupport::SmallVolume volume(small, 64 * 1024);
        const std::vector<uint32_t> want{NOTIFY_COPY_BEGIN, NOTIFY_WRITE_FAILED};
        EXPECT_EQ(CopyFile(QStringLiteral("big"), small / "big"), qmz::kFail);
        EXPECT_EQ(m_observer.Codes(), want);
        EXPECT_FALSE(testsupport::fs::exists(small / "big"));
    }
    // A target whose folder doesn't exist cannot be created, for a reason other than access.
    m_observer.notices.clear();
    EXPECT_EQ(CopyFile(QStringLiteral("small"), m_dir / "no such folder" / "small"), qmz::kFail);
    ASSERT_FALSE(m_observer.notices.empty());
    EXPECT_EQ(m_observer.notices.back().code, NOTIFY_WRITE_FAILED);
}

// Within a folder the reading side runs ahead of the writer; a file that fails must still end
// the job there: the files before it whole, the failed one gone, the ones after it untouched.
TEST_F(ImageReaderCopyTest, AFolderJobEndsAtTheFileThatCouldNotBeWritten) {
    Open("d 0 F\nf 10 0 F\\a\nf 1000000 0 F\\big\nf 10 0 F\\c\nf 10 0 F\\d\n");
    const path base = m_dir / "small";
    testsupport::fs::create_directories(base);
    const testsupport::SmallVolume volume(base, 64 * 1024);
    testsupport::fs::create_directories(base / "F");
    std::ofstream(base / "F" / "d") << "there before";
    EXPECT_EQ(m_reader.CopyFolder(QStringLiteral("F"), Q(base) + u'/'), qmz::kFail);
    ASSERT_FALSE(m_observer.notices.empty());
    EXPECT_EQ(m_observer.notices.back().code, NOTIFY_WRITE_FAILED);
    EXPECT_EQ(m_observer.notices.back().payload, Q(base / "F" / "big").toStdU16String());
    EXPECT_EQ(testsupport::ReadWholeFile(base / "F" / "a"), Expected(u"F\\a", 10));
    EXPECT_FALSE(testsupport::fs::exists(base / "F" / "big"));
    EXPECT_FALSE(testsupport::fs::exists(base / "F" / "c"));
    const auto before = testsupport::ReadWholeFile(base / "F" / "d");
    EXPECT_EQ(std::string(before.begin(), before.end()), "there before");
}

TEST_F(ImageReaderCopyTest, AStoppedFolderJobLeavesOnlyWholeFiles) {
    std::string listing = "d 0 F\n";
    for (int i = 0; i < 40; ++i) {
        listing += "f 40000 0 F\\" + std::to_string(i) + "\n";
    }
    Open(listing);
    m_observer.nStopAtPump = 30;
    const path base = m_dir / "out";
    EXPECT_EQ(m_reader.CopyFolder(QStringLiteral("F"), Q(base) + u'/'), qmz::kStopped);
    int nWhole = 0;
    for (int i = 0; i < 40; ++i) {
        const path file = base / "F" / std::to_string(i);
        if (testsupport::fs::exists(file)) {
            const std::u16string image = u"F\\" + QString::number(i).toStdU16String();
            EXPECT_EQ(testsupport::ReadWholeFile(file), Expected(image, 40000)) << i;
            ++nWhole;
        }
    }
    EXPECT_LT(nWhole, 15) << "two chunks a file: the stop came in the fifteenth";
}

TEST_F(ImageReaderCopyTest, AFileTooLargeForTheTargetsFileSystemIsRefusedBeforeReading) {
    const path fat = m_dir / "fat";
    testsupport::fs::create_directories(fat);
    const path table = m_dir / "mountinfo";
    std::ofstream(table) << "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
                         << "2 1 8:2 / " << fat.string() << " rw - vfat /dev/sdb1 rw\n";
    m_reader.SetMountTable(Q(table));
    Open("f 5368709120 0 five\n");
    const path target = fat / "five";
    std::ofstream(target) << "there before";
    EXPECT_EQ(CopyFile(QStringLiteral("five"), target), qmz::kFail);
    ASSERT_EQ(m_observer.Codes(), std::vector<uint32_t>{NOTIFY_NO_ROOM});
    EXPECT_EQ(m_observer.notices[0].payload, Q(target).toStdU16String());
    EXPECT_FALSE(testsupport::fs::exists(target));
}

TEST_F(ImageReaderCopyTest, AJobWithoutATotalStillCopies) {
    Open("f 70000 0 x\n");
    m_reader.SetTotalBytes(0);
    ASSERT_EQ(CopyFile(QStringLiteral("x"), Target("x")), qmz::kOk);
    EXPECT_EQ(testsupport::fs::file_size(Target("x")), 70000u);
    int32_t nPercent = -1;
    m_reader.GetProgress(PROGRESS_COPY, &nPercent);
    EXPECT_EQ(nPercent, 0);
}

TEST(DiskRoomTest, OnePercentIsHeldBack) {
    struct Case {
        uint64_t bytes, freeBytes;
        bool bFits;
    };
    const Case cases[] = {{100, 100, false}, {100, 101, true}, {0, 0, true}, {1, 0, false}};
    for (const Case& c : cases) {
        EXPECT_EQ(CImageReader::FitsInFreeBytes(c.bytes, c.freeBytes), c.bFits)
            << c.bytes << " in " << c.freeBytes;
    }
    uint64_t ullFree = 0;
    EXPECT_EQ(CImageReader::GetFreeBytes(QStringLiteral("/tmp/no/such/file"), &ullFree), qmz::kOk);
    EXPECT_GT(ullFree, 0u);
    EXPECT_EQ(CImageReader::GetFreeBytes(QStringLiteral("/tmp"), nullptr), qmz::kFail);
    EXPECT_EQ(CImageReader::CheckDiskRoom(QStringLiteral("/tmp"), 0), 1);
    EXPECT_EQ(CImageReader::CheckDiskRoom(QStringLiteral("/tmp"), ~0ull), 0);
}

} // namespace

// What stands at the target is replaced, never followed: a link's own file outside the target
// folder is left as it was, and a pipe that nobody reads fails the copy instead of hanging it.
TEST_F(ImageReaderCopyTest, AReplacedLinkOrPipeNeverReachesBeyondTheTarget) {
    Open("f 10 0 x\n");
    const path outside = m_dir / "outside.txt";
    std::ofstream(outside) << "keep";
    const path link = Target("x");
    testsupport::fs::create_symlink(outside, link);
    EXPECT_EQ(CopyFile(QStringLiteral("x"), link), qmz::kOk);
    EXPECT_FALSE(testsupport::fs::is_symlink(link));
    EXPECT_EQ(testsupport::fs::file_size(link), 10u);
    std::string kept;
    std::getline(std::ifstream(outside), kept);
    EXPECT_EQ(kept, "keep");

    const path pipe = Target("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(CopyFile(QStringLiteral("x"), pipe), qmz::kFail);
}
