#include "NamedMutex.h"

#include <QCryptographicHash>

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr const char* kAddressPrefix = "brindleway/";
// sun_path holds 108 bytes; longer names are hashed so that distinct names stay distinct.
constexpr qsizetype kMaxPlainNameBytes = 90;

} // namespace

NamedMutex::~NamedMutex() {
    Release();
}

QByteArray NamedMutex::AddressFor(const QString& name) {
    QByteArray bytes = name.toUtf8();
    if (bytes.size() > kMaxPlainNameBytes) {
        bytes = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    }
    return QByteArray(kAddressPrefix) + bytes;
}

NamedMutex::State NamedMutex::Create(const QString& name) {
    Release();
    const QByteArray address = AddressFor(name);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    // The leading NUL of sun_path selects the abstract namespace.
    std::memcpy(addr.sun_path + 1, address.constData(), static_cast<size_t>(address.size()));
    const auto addrLen = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 +
                                                static_cast<size_t>(address.size()));

    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return State::Failed;
    }
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&addr), addrLen) != 0) {
        const int err = errno;
        ::close(fd);
        return err == EADDRINUSE ? State::AlreadyExists : State::Failed;
    }
    m_fd = fd;
    return State::Created;
}

void NamedMutex::Release() {
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
}
