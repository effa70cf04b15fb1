// A system-wide named lock: an abstract-namespace Unix socket bound to the name. The kernel
// releases it when the holder closes it or dies, so a crash never leaves a stale lock.
#pragma once

#include <QString>

class NamedMutex {
public:
    enum class State { Created, AlreadyExists, Failed };

    NamedMutex() = default;
    ~NamedMutex();
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;

    // Takes the name; Created when this object now holds it.
    State Create(const QString& name);
    void Release();
    bool IsHeld() const { return m_fd >= 0; }

    // The socket address used for a name, without the leading NUL.
    static QByteArray AddressFor(const QString& name);

private:
    int m_fd = -1;
};
