#include "SiblingPrograms.h"

#include "AbstractSocket.h"
#include "NamedMutex.h"

#include <QWidget>
#include <chrono>
#include <thread>
#include <unistd.h>

namespace {

// How often a blocked wait looks whether the other program has given up its lock.
constexpr auto kLockPollInterval = std::chrono::milliseconds(50);
constexpr char kNoticeText[] = "activate";

} // namespace

bool SendNotice(const QString& name) {
    const int fd = abstractsocket::Connect(NamedMutex::AddressFor(name));
    if (fd < 0) {
        return false;
    }
    const bool bSent = abstractsocket::SendAll(fd, QByteArray(kNoticeText));
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
