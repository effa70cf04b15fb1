#include "AbstractSocket.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace abstractsocket {

namespace {

constexpr int kListenBacklog = 8;

// The leading NUL of sun_path selects the abstract namespace; the length, not a terminator,
// ends the name.
socklen_t FillAddress(const QByteArray& address, sockaddr_un& addr) {
    addr = {};
    addr.sun_family = AF_UNIX;
    const size_t nBytes = std::min(static_cast<size_t>(address.size()), sizeof(addr.sun_path) - 1);
    std::memcpy(addr.sun_path + 1, address.constData(), nBytes);
    return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + nBytes);
}

} // namespace

int Bind(const QByteArray& address) {
    sockaddr_un addr;
    const socklen_t nLength = FillAddress(address, addr);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return -1;
    }
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&addr), nLength) != 0) {
        const int nError = errno;
        ::close(fd);
        errno = nError;
        return -1;
    }
    return fd;
}

int Listen(const QByteArray& address) {
    const int fd = Bind(address);
    if (fd < 0) {
        return -1;
    }
    if (::listen(fd, kListenBacklog) != 0) {
        const int nError = errno;
        ::close(fd);
        errno = nError;
        return -1;
    }
    return fd;
}

int Connect(const QByteArray& address) {
    sockaddr_un addr;
    const socklen_t nLength = FillAddress(address, addr);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return -1;
    }
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&addr), nLength) != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

bool WaitReadable(int fd, int nTimeoutMs) {
    pollfd entry{fd, POLLIN, 0};
    int nReady = 0;
    do {
        nReady = ::poll(&entry, 1, nTimeoutMs);
    } while (nReady < 0 && errno == EINTR);
    return nReady > 0;
}

bool SendAll(int fd, const QByteArray& bytes) {
    qsizetype nSent = 0;
    while (nSent < bytes.size()) {
        const ssize_t n = ::send(fd, bytes.constData() + nSent,
                                 static_cast<size_t>(bytes.size() - nSent), MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        nSent += n;
    }
    return true;
}

} // namespace abstractsocket
