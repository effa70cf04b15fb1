#include "CInstanceGuard.h"
#include "AbstractSocket.h"
#include "CInstanceChannel.h"

#include "CTvgMessageBox.h"
#include "TvnStringIds.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// Linux names of the family's programs drop ".exe" and are lower case.
constexpr const char16_t* kBurnerNames[] = {u"torvane", u"torvane8", u"torvane9"};
constexpr const char16_t* kExpressNames[] = {u"torvaneexpress", u"torvaneexpress8",
                                             u"torvaneexpress9"};
constexpr const char16_t* kOwnNames[] = {u"ovrin", u"ovrin8", u"ovrin9"};

constexpr const char16_t* kLockPrefix = u"Global\\";
constexpr const char16_t* kWindowClassName = u"Brindleway Ovrin Viewer";
// The running program answers from its event loop at once; a program that cannot answer in
// this time counts as not there.
constexpr int kReplyTimeoutMs = 2000;
// argv[0] past this length is not a name of the family.
constexpr qint64 kMaxCommandLineBytes = 4096;

void ShowAlreadyRunning() {
    ShowMessageBox(tvn::kAlreadyRunning, mb::kOk, tvn::kBoxTitle, nullptr,
                   QString::fromUtf16(kDefaultMessageIcon), false);
}

// The base name of argv[0]: cmdline holds the whole of it, where comm cuts at 15 bytes.
QString ProgramNameOf(const QString& pidFolder) {
    QFile cmdline(pidFolder + QStringLiteral("/cmdline"));
    if (!cmdline.open(QIODevice::ReadOnly)) {
        return {};
    }
    QByteArray argv0 = cmdline.read(kMaxCommandLineBytes);
    argv0.truncate(argv0.indexOf('\0') < 0 ? argv0.size() : argv0.indexOf('\0'));
    return QFileInfo(QFile::decodeName(argv0)).fileName();
}

} // namespace

const std::array<CInstanceGuard::FamilyRow, 5> CInstanceGuard::kFamily = {{
    {u"{4F0D5A18-1D1B-4e60-BDF9-0F62C79FB3FA}",
     Rule::AllowIfRunning,
     {kBurnerNames[0], kBurnerNames[1], kBurnerNames[2]}},
    {u"{BC4A6143-8C22-4560-BE58-5E330FD2E527}",
     Rule::AllowIfRunning,
     {kExpressNames[0], kExpressNames[1], kExpressNames[2]}},
    {u"{262F6735-5040-48A3-9F11-ECC6327CC961}", Rule::Refuse, {}},
    {u"{64DF6A32-9832-4b3d-8DCF-4A34FE0FC7EE}", Rule::Refuse, {}},
    {u"{10E05858-2783-483D-BDBE-A8F6E101F805}",
     Rule::RefuseWithMessage,
     {kOwnNames[0], kOwnNames[1], kOwnNames[2]}},
}};

QString CInstanceGuard::ScopedName(const QString& name) {
    const QString scope = qEnvironmentVariable(kScopeVariable);
    return scope.isEmpty() ? name : scope + u'/' + name;
}

QByteArray CInstanceGuard::AddressOf(const QString& name) {
    return NamedMutex::AddressFor(ScopedName(name));
}

QString CInstanceGuard::LockName(const QString& identifier) {
    return ScopedName(QString::fromUtf16(kLockPrefix) + identifier);
}

QString CInstanceGuard::InstanceSocketName() {
    return QString::fromUtf16(kWindowClassName);
}

// Taking the lock and letting it go at once leaves no trace when nobody held it.
bool CInstanceGuard::StopsStart(const FamilyRow& row) {
    const QString identifier = QString::fromUtf16(row.pIdentifier);
    NamedMutex probe;
    const NamedMutex::State state = probe.Create(LockName(identifier));
    probe.Release();
    if (state != NamedMutex::State::AlreadyExists) {
        return false;
    }
    switch (row.rule) {
    case Rule::AllowIfRunning:
        if (AnyProcessRunning(row)) {
            return false;
        }
        break;
    case Rule::RefuseWithMessage:
        if (AnyProcessRunning(row)) {
            ShowAlreadyRunning();
        }
        break;
    case Rule::Refuse:
        break;
    }
    SendNotice(identifier);
    return true;
}

// The lock stands only when another instance came up after this start's family check; it then
// gets the file, and this start ends.
bool CInstanceGuard::TakeOwnLock(const QString& fileToOpen) {
    const QString name = LockName(QString::fromUtf16(OwnRow().pIdentifier));
    switch (m_ownLock.Create(name)) {
    case NamedMutex::State::Created:
        return true;
    case NamedMutex::State::Failed:
        ShowMessageBox(tvn::kInstanceGuardFailed, mb::kOk, tvn::kBoxTitle, nullptr,
                       QString::fromUtf16(kDefaultMessageIcon), false);
        return false;
    case NamedMutex::State::AlreadyExists:
        HandOver(fileToOpen);
        return false;
    }
    return false;
}

// The request goes before any box of this start, so that the running program does not give up
// on it while the user reads.
void CInstanceGuard::HandOver(const QString& fileToOpen) {
    const int fd = abstractsocket::Connect(AddressOf(InstanceSocketName()));
    if (fd < 0) {
        return;
    }
    char nState = 0;
    const bool bAnswered = abstractsocket::WaitReadable(fd, kReplyTimeoutMs) &&
                           ::recv(fd, &nState, 1, MSG_DONTWAIT) == 1;
    const auto nFlags = static_cast<uint8_t>(nState);
    if (bAnswered && !(nFlags & CInstanceChannel::kStateDisabled)) {
        const QString path = QFileInfo::exists(fileToOpen) ? fileToOpen : QString();
        abstractsocket::SendAll(fd, CInstanceChannel::EncodeRequest(path));
    }
    ::close(fd);
    if (bAnswered && ((nFlags & CInstanceChannel::kStateDisabled) ||
                      ((nFlags & CInstanceChannel::kStatePopup) && fileToOpen.isEmpty()))) {
        ShowAlreadyRunning();
    }
}

bool CInstanceGuard::AnyProcessRunning(const FamilyRow& row) {
    for (const char16_t* pName : row.processNames) {
        if (pName != nullptr && IsProcessRunning(QString::fromUtf16(pName))) {
            return true;
        }
    }
    return false;
}

// Names compare exactly, case included. A process that may not be signalled counts as not
// found, as one that cannot be opened does on Windows.
bool CInstanceGuard::IsProcessRunning(const QString& name) {
    const QDir proc(QStringLiteral("/proc"));
    const QStringList entries = proc.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool bNumber = false;
        const int nPid = entry.toInt(&bNumber);
        if (bNumber && nPid > 0 && ProgramNameOf(proc.filePath(entry)) == name &&
            ::kill(nPid, 0) == 0) {
            return true;
        }
    }
    return false;
}

void CInstanceGuard::SendNotice(const QString& name) {
    const int fd = abstractsocket::Connect(AddressOf(name));
    if (fd >= 0) {
        abstractsocket::SendAll(fd, ScopedName(name).toUtf8());
        ::close(fd);
    }
}
