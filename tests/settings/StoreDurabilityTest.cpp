// The store must lose nothing: a writer killed at any moment leaves a sound store holding
// every value whose write returned success, and two processes may write the same key at once.
// The writers are real child processes, so that locks and crashes are the kernel's own.
#include "CRegistryStore.h"
#include "QtPrinters.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <set>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace Qt::StringLiterals;
using testsupport::TempDir;

// What the writer child reports through its pipe after each write.
struct Ack {
    uint32_t nIndex;
    uint32_t bOk;
};

// Values of many sizes, so that writes span one page or several.
QByteArray Payload(uint32_t writer, uint32_t index) {
    QByteArray data(static_cast<qsizetype>(1 + (index * 37) % 3000), '\0');
    for (qsizetype i = 0; i < data.size(); ++i) {
        data[i] = static_cast<char>((writer * 131 + index * 7 + static_cast<uint32_t>(i)) & 0xFF);
    }
    return data;
}

QString KeyOf(uint32_t index) {
    return u"Software\\Test\\K%1"_s.arg(index % 5);
}
QString NameOf(uint32_t writer, uint32_t index) {
    return u"w%1-v%2"_s.arg(writer).arg(index);
}

// Starts a child that writes values without end, or nCount of them, acknowledging each.
pid_t StartWriter(const QString& path, uint32_t writer, uint32_t nFirst, uint32_t nCount, int ackFd,
                  int startFd) {
    if (const pid_t pid = fork(); pid != 0) {
        return pid;
    }
    char go = 0;
    if (startFd >= 0 && read(startFd, &go, 1) != 1) {
        _exit(3);
    }
    CRegistryStore store(path);
    for (uint32_t i = nFirst; nCount == 0 || i < nFirst + nCount; ++i) {
        const RegStatus status =
            store.SetValue(KeyOf(i), NameOf(writer, i), kRegBinary, Payload(writer, i));
        // Two writers also fight over one shared value.
        store.SetValue(u"Software\\Test\\K0"_s, u"shared"_s, kRegBinary, Payload(writer, i));
        const Ack ack{i, status == RegStatus::Ok ? 1u : 0u};
        if (write(ackFd, &ack, sizeof ack) != sizeof ack) {
            _exit(2);
        }
    }
    _exit(0);
}

// Reads acknowledgements until nStop successes or the end of the pipe.
void ReadAcks(int fd, size_t nStop, std::vector<uint32_t>& acked, size_t& nFailed) {
    Ack ack{};
    while (acked.size() < nStop && read(fd, &ack, sizeof ack) == sizeof ack) {
        if (ack.bOk != 0) {
            acked.push_back(ack.nIndex);
        } else {
            ++nFailed;
        }
    }
}

void ExpectHolds(CRegistryStore& store, uint32_t writer, const std::vector<uint32_t>& acked) {
    for (uint32_t index : acked) {
        uint32_t type = 0;
        QByteArray data;
        ASSERT_EQ(store.QueryValue(KeyOf(index), NameOf(writer, index), type, data), RegStatus::Ok)
            << "value " << index << " of writer " << writer << " was lost";
        ASSERT_EQ(data, Payload(writer, index)) << "value " << index << " of writer " << writer;
    }
}

TEST(StoreDurability, AWriterKilledAtAnyMomentLosesNoAcknowledgedValue) {
    TempDir dir;
    const QString path = QString::fromStdString((dir / "user.db").string());
    std::vector<uint32_t> acked;
    // Each round kills the writer after another number of writes, and the next writer
    // starts on the store that the killed one left.
    for (const size_t nKillAfter : {1u, 17u, 60u, 133u}) {
        int fds[2];
        ASSERT_EQ(pipe(fds), 0);
        const uint32_t nFirst = acked.empty() ? 0 : acked.back() + 1;
        const pid_t pid = StartWriter(path, 0, nFirst, 0, fds[1], -1);
        ASSERT_GT(pid, 0);
        close(fds[1]);
        size_t nFailed = 0;
        ReadAcks(fds[0], acked.size() + nKillAfter, acked, nFailed);
        kill(pid, SIGKILL);
        // Writes acknowledged before the kill are still in the pipe.
        ReadAcks(fds[0], SIZE_MAX, acked, nFailed);
        close(fds[0]);
        int status = 0;
        waitpid(pid, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer must die in the middle of its work";
        EXPECT_EQ(nFailed, 0u);

        CRegistryStore store(path);
        EXPECT_TRUE(store.CheckIntegrity()) << "after a kill at " << nKillAfter;
        ExpectHolds(store, 0, acked);
    }
}

TEST(StoreDurability, TwoWritersOfTheSameKeyBothSucceedAndTheFileStaysSound) {
    TempDir dir;
    const QString path = QString::fromStdString((dir / "user.db").string());
    constexpr uint32_t kWrites = 150;
    int start[2];
    ASSERT_EQ(pipe(start), 0);
    int acks[2][2];
    pid_t pids[2];
    for (uint32_t writer = 0; writer < 2; ++writer) {
        ASSERT_EQ(pipe(acks[writer]), 0);
        pids[writer] = StartWriter(path, writer, 0, kWrites, acks[writer][1], start[0]);
        ASSERT_GT(pids[writer], 0);
        close(acks[writer][1]);
    }
    // Both start at once, on a store that neither has made yet.
    ASSERT_EQ(write(start[1], "gg", 2), 2);
    close(start[0]);
    close(start[1]);
    std::vector<uint32_t> acked[2];
    size_t nFailed = 0;
    for (uint32_t writer = 0; writer < 2; ++writer) {
        ReadAcks(acks[writer][0], SIZE_MAX, acked[writer], nFailed);
        close(acks[writer][0]);
        int status = 0;
        waitpid(pids[writer], &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "writer " << writer;
    }
    EXPECT_EQ(nFailed, 0u) << "a busy store must make a writer wait, not fail";
    CRegistryStore store(path);
    EXPECT_TRUE(store.CheckIntegrity());
    for (uint32_t writer = 0; writer < 2; ++writer) {
        EXPECT_EQ(acked[writer].size(), kWrites);
        ExpectHolds(store, writer, acked[writer]);
    }
    uint32_t type = 0;
    QByteArray shared;
    ASSERT_EQ(store.QueryValue(u"software\\test\\k0"_s, u"SHARED"_s, type, shared), RegStatus::Ok);
    EXPECT_TRUE(shared == Payload(0, kWrites - 1) || shared == Payload(1, kWrites - 1))
        << "the shared value must be the last write of one writer, whole";
}

} // namespace
