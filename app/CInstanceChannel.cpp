#include "CInstanceChannel.h"
#include "AbstractSocket.h"

#include <QSocketNotifier>
#include <QStringDecoder>
#include <QTimer>
#include <QtEndian>

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

// One connected second start: it gets the state byte at once and has a short while to send
// its whole request.
class CInstanceChannel::CPeer : public QObject {
public:
    CPeer(CInstanceChannel* pChannel, int fd) : QObject(pChannel), m_pChannel(pChannel), m_fd(fd) {
        m_pNotifier = new QSocketNotifier(fd, QSocketNotifier::Read, this);
        connect(m_pNotifier, &QSocketNotifier::activated, this, [this] { OnReadable(); });
        m_deadline.setSingleShot(true);
        connect(&m_deadline, &QTimer::timeout, this, [this] { Finish(false); });
        m_deadline.start(kPeerTimeoutMs);
    }
    ~CPeer() override { ::close(m_fd); }
    CPeer(const CPeer&) = delete;
    CPeer& operator=(const CPeer&) = delete;

    void SendState(uint8_t nState) {
        if (!abstractsocket::SendAll(m_fd, QByteArray(1, static_cast<char>(nState)))) {
            Finish(false);
        }
    }

private:
    void OnReadable() {
        char buffer[kMaxPathBytes];
        const ssize_t n = ::recv(m_fd, buffer, sizeof(buffer), MSG_DONTWAIT);
        if (n < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        }
        if (n <= 0) {
            Finish(false);
            return;
        }
        m_received.append(buffer, n);
        Parse();
    }

    void Parse() {
        if (m_received.size() < kLengthBytes) {
            return;
        }
        const uint32_t nLength = qFromLittleEndian<uint32_t>(m_received.constData());
        const qsizetype nTotal = kLengthBytes + static_cast<qsizetype>(nLength);
        if (nLength > kMaxPathBytes || m_received.size() > nTotal) {
            Finish(false);
        } else if (m_received.size() == nTotal) {
            Finish(true);
        }
    }

    // A path that is not valid UTF-8 or holds a NUL names no file; it counts as malformed.
    void Finish(bool bComplete) {
        if (m_bDone) {
            return;
        }
        m_bDone = true;
        m_pNotifier->setEnabled(false);
        m_deadline.stop();
        QString path;
        if (bComplete) {
            const QByteArray bytes = m_received.mid(kLengthBytes);
            QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
            path = decoder.decode(bytes);
            bComplete = !decoder.hasError() && !bytes.contains('\0');
        }
        m_pChannel->OnPeerDone(this, bComplete, bComplete ? path : QString());
    }

    CInstanceChannel* m_pChannel;
    int m_fd;
    QSocketNotifier* m_pNotifier;
    QTimer m_deadline;
    QByteArray m_received;
    bool m_bDone = false;
};

CInstanceChannel::CInstanceChannel(StateFn fnState, RequestFn fnRequest, QObject* pParent)
    : QObject(pParent), m_fnState(std::move(fnState)), m_fnRequest(std::move(fnRequest)) {}

CInstanceChannel::~CInstanceChannel() {
    if (m_fd >= 0) {
        ::close(m_fd);
    }
}

bool CInstanceChannel::Listen(const QByteArray& address) {
    if (m_fd >= 0) {
        return false;
    }
    m_fd = abstractsocket::Listen(address);
    if (m_fd < 0) {
        return false;
    }
    m_pNotifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
    connect(m_pNotifier, &QSocketNotifier::activated, this, [this] { OnIncoming(); });
    return true;
}

QByteArray CInstanceChannel::EncodeRequest(const QString& path) {
    const QByteArray bytes = path.toUtf8();
    QByteArray request(kLengthBytes, '\0');
    qToLittleEndian(static_cast<uint32_t>(bytes.size()), request.data());
    return request + bytes;
}

// Connections beyond the limit are closed at once, so a flood cannot grow the program.
void CInstanceChannel::OnIncoming() {
    const int fd = ::accept4(m_fd, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd < 0) {
        return;
    }
    if (m_nPeers >= kMaxPeers) {
        ::close(fd);
        return;
    }
    ++m_nPeers;
    auto* pPeer = new CPeer(this, fd);
    pPeer->SendState(m_fnState ? m_fnState() : 0);
}

// The peer goes first and the request runs from the event loop afterwards: opening an image
// pumps events, and must not do so inside the peer's own handler.
void CInstanceChannel::OnPeerDone(CPeer* pPeer, bool bComplete, const QString& path) {
    pPeer->deleteLater();
    --m_nPeers;
    if (bComplete && m_fnRequest) {
        QTimer::singleShot(0, this, [this, path] { m_fnRequest(path); });
    }
}
