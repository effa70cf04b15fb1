#include "SiblingPrograms.h"

#include "NamedMutex.h"

#include <QWidget>
#include <chrono>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

// How often a blocked wait looks whether the other program has given up its lock.
constexpr auto kLockPollInterval = std::chrono::milliseconds(50);
constexpr char kNoticeText[] = "activate";

} // namespace

bool SendNotice(const QString& name) {
    const QByteArray address = NamedMutex::AddressFor(name);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    std::memcpy(addr.sun_path + 1, address.constData(), static_cast<size_t>(address.size()));
    const auto addrLen = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 +
                                                static_cast<size_t>(address.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return false;
    }
    const bool bSent = ::connect(fd, reinterpret_cast<const sockaddr*>(&addr), addrLen) == 0 &&
                       ::send(fd, kNoticeText, sizeof kNoticeText - 1, MSG_NOSIGNAL) > 0;
    ::close(fd);
    return bSent;
}

bool IsBurningProgramFree(bool bBroadcast) {
    const QString name = QString::fromUtf16(kBurningProgramLock);
    NamedMutex lock;
    const NamedMutex::State state = lock.Create(name);
    if (state == NamedMutex::State::AlreadyExists && bBroadcast) {
        SendNotice(name);
    }
    return state == NamedMutex::State::Created;
}

bool HandOverToRunningDrive(QWidget* pFrame) {
    const QString name = QString::fromUtf16(kMountingProgramLock);
    NamedMutex lock;
    const NamedMutex::State state = lock.Create(name);
    if (state != NamedMutex::State::AlreadyExists) {
        // Without a lock at all nothing can be started safely either: the command ends.
        return state == NamedMutex::State::Failed;
    }
    // The window's socket takes the notice and brings the window forward; a program that
    // runs without a window gets a new copy beside it.
    if (!SendNotice(QString::fromUtf16(kMountingProgramWindow))) {
        return false;
    }
    SendNotice(name);
    HideFrame(pFrame);
    // Blocks until the other program gives its lock up, as it does when it ends.
    while (lock.Create(name) == NamedMutex::State::AlreadyExists) {
        std::this_thread::sleep_for(kLockPollInterval);
    }
    RestoreFrame(pFrame);
    return true;
}

void HideFrame(QWidget* pFrame) {
    if (pFrame != nullptr) {
        pFrame->showMinimized();
        pFrame->hide();
        pFrame->setEnabled(false);
    }
}

void RestoreFrame(QWidget* pFrame) {
    if (pFrame != nullptr) {
        pFrame->setEnabled(true);
        pFrame->show();
        pFrame->showNormal();
    }
}
