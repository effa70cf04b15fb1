#include "NamedMutex.h"

#include "AbstractSocket.h"

#include <QCryptographicHash>

#include <cerrno>
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
    const int fd = abstractsocket::Bind(AddressFor(name));
    if (fd < 0) {
        return errno == EADDRINUSE ? State::AlreadyExists : State::Failed;
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
