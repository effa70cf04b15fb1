// What the jobs of one CImageReader share: the stop request, the figures that the front end
// polls, and the ways back to the front end.
#pragma once

#include <QString>
#include <atomic>
#include <cstddef>
#include <cstdint>

// Notification codes sent to the callback.
enum : uint32_t {
    NOTIFY_COPY_BEGIN = 0x8001,
    NOTIFY_COPY_END = 0x8002,
    NOTIFY_NO_ROOM = 0x8004,
    NOTIFY_OPEN_BEGIN = 0x8005,
    NOTIFY_OPEN_END = 0x8006,
    NOTIFY_WRITE_FAILED = 0x8007,
    NOTIFY_READ_FAILED = 0x8008,
    NOTIFY_ACCESS_DENIED = 0x8009,
    NOTIFY_STOPPING = 0x800A,
};

// Payloads are null-terminated paths that live only during the call.
using ImageReaderCallback = void (*)(uint32_t code, const char16_t* pPayload, void* pContext);
// Lets the front end's events run during long work: a window processes its messages, a
// terminal program notices Ctrl+C. A stop request arrives through SetStop.
using ImageReaderPump = void (*)(void* pContext);

struct ReaderProgress {
    // Payload sizes in characters, as the receivers of the notifications expect them.
    static constexpr size_t kShortPayloadChars = 260;
    static constexpr size_t kLongPayloadChars = 520;

    void Notify(uint32_t code, const QString& payload, size_t payloadChars) const;
    void Pump() const;

    // Written on one thread and polled on the other while a file is copied.
    std::atomic<int32_t> bStop = 0;
    std::atomic<int32_t> nCopyPercent = 0;
    std::atomic<uint64_t> ullDoneBytes = 0;
    std::atomic<uint64_t> ullTotalBytes = 0;
    int32_t bOpening = 0;
    int32_t bCopying = 0;
    int32_t nOpenPercent = 0;
    ImageReaderCallback pfnCallback = nullptr;
    void* pCallbackContext = nullptr;
    ImageReaderPump pfnPump = nullptr;
    void* pPumpContext = nullptr;
};
