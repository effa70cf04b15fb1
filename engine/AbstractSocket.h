// Unix stream sockets in Linux's abstract namespace, which the family's locks, notices and
// instance sockets use: the kernel removes such a name when its last holder closes it or dies,
// so nothing stale is ever left on disk.
#pragma once

#include <QByteArray>

namespace abstractsocket {

// A socket bound to the address, or -1 (errno tells why: EADDRINUSE when another holds it).
int Bind(const QByteArray& address);
// A listening, non-blocking socket bound to the address, or -1 (errno tells why).
int Listen(const QByteArray& address);
// A socket connected to whoever listens on the address, or -1. The connect does not wait: a
// listener whose queue is full counts as none.
int Connect(const QByteArray& address);
// Waits up to nTimeoutMs for the socket to become readable; false on timeout or error.
bool WaitReadable(int fd, int nTimeoutMs);
// Writes all bytes without raising SIGPIPE; false if the peer went away.
bool SendAll(int fd, const QByteArray& bytes);

} // namespace abstractsocket
