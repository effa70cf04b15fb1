// The running program's instance socket, where a second start finds it and hands over the file
// it was given. On a connection the running side answers with one state byte; the second start
// then sends one request, a 32-bit little-endian byte count and that many bytes of UTF-8 path
// (0 for none). Any local program can connect, so every request is checked and anything
// malformed, oversized or too slow is dropped without an answer.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>

class QSocketNotifier;

class CInstanceChannel : public QObject {
    Q_OBJECT
public:
    // The state byte: the window takes no input (a job runs or a modal box is up), or another
    // window of the program stands in front of it.
    static constexpr uint8_t kStateDisabled = 0x01;
    static constexpr uint8_t kStatePopup = 0x02;

    // A path longer than Linux's PATH_MAX cannot name a file.
    static constexpr uint32_t kMaxPathBytes = 4096;
    static constexpr int kLengthBytes = 4;
    // How long a peer may take to send its request, and how many may be connected at once.
    static constexpr int kPeerTimeoutMs = 2000;
    static constexpr int kMaxPeers = 8;

    using StateFn = std::function<uint8_t()>;
    // Called from the event loop once a request is complete; the path is empty for none.
    using RequestFn = std::function<void(const QString& path)>;

    CInstanceChannel(StateFn fnState, RequestFn fnRequest, QObject* pParent = nullptr);
    ~CInstanceChannel() override;
    CInstanceChannel(const CInstanceChannel&) = delete;
    CInstanceChannel& operator=(const CInstanceChannel&) = delete;

    // Listens on the abstract socket address; false if it is taken or cannot be made.
    bool Listen(const QByteArray& address);

    // The request bytes for a path; what a second start sends.
    static QByteArray EncodeRequest(const QString& path);

private:
    class CPeer;
    void OnIncoming();
    void OnPeerDone(CPeer* pPeer, bool bComplete, const QString& path);

    StateFn m_fnState;
    RequestFn m_fnRequest;
    int m_fd = -1;
    QSocketNotifier* m_pNotifier = nullptr;
    int m_nPeers = 0;
};
