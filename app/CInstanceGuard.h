// The checks that decide whether this start may run: whether a program of the family that
// excludes it is up, and whether the program itself already runs. Each family program holds a
// named lock (NamedMutex) under its identifier; a refused start sends a notice of the same name
// to that program, so it can come to the front.
#pragma once

#include "NamedMutex.h"

#include <QByteArray>
#include <QString>
#include <array>

class CInstanceGuard {
public:
    // What a standing lock of a family row means for this start.
    enum class Rule {
        // The start goes on when one of the row's programs is found running.
        AllowIfRunning,
        // The start ends without a word.
        Refuse,
        // The start ends, with message 657 when one of the row's programs is found running.
        RefuseWithMessage,
    };

    struct FamilyRow {
        const char16_t* pIdentifier;
        Rule rule;
        // Process names, as /proc shows argv[0]'s base name; null entries are unused.
        std::array<const char16_t*, 3> processNames;
    };

    // The burning program, the express program, the mounting program, the backup program and
    // this program, in the order they are checked.
    static const std::array<FamilyRow, 5> kFamily;
    // The last row: this program's own identifier, which names its instance lock too.
    static const FamilyRow& OwnRow() { return kFamily.back(); }

    // Tests and several builds on one machine keep their locks, notices and instance sockets
    // apart with this environment variable; unset, the names are the family's own.
    static constexpr const char* kScopeVariable = "BRINDLEWAY_INSTANCE_SCOPE";
    // A family name inside the scope; the lock "Global\<identifier>" and the notice
    // "<identifier>" of a row, and the instance socket, are scoped names.
    static QString ScopedName(const QString& name);
    // The socket address of a name, scoped.
    static QByteArray AddressOf(const QString& name);
    static QString LockName(const QString& identifier);
    // The window class name that a second start looks for; the running program's instance
    // socket is named after it.
    static QString InstanceSocketName();

    CInstanceGuard() = default;
    CInstanceGuard(const CInstanceGuard&) = delete;
    CInstanceGuard& operator=(const CInstanceGuard&) = delete;

    // True to stop this start: the row's lock stands and its rule refuses. A refusal first
    // sends the notice named by the identifier.
    static bool StopsStart(const FamilyRow& row);
    // Takes this program's lock and keeps it; false to stop this start. When another instance
    // holds the lock, fileToOpen (empty for none) is handed over to it.
    bool TakeOwnLock(const QString& fileToOpen);
    bool HoldsOwnLock() const { return m_ownLock.IsHeld(); }
    void ReleaseOwnLock() { m_ownLock.Release(); }

    // True when a process whose argv[0] has exactly this base name runs and may be signalled.
    static bool IsProcessRunning(const QString& name);
    // Sends the short notice to whoever listens under the name; never waits for an answer.
    static void SendNotice(const QString& name);

private:
    static bool AnyProcessRunning(const FamilyRow& row);
    static void HandOver(const QString& fileToOpen);

    NamedMutex m_ownLock;
};
