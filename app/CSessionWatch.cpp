#include "CSessionWatch.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QSessionManager>

namespace {

constexpr char kLogindService[] = "org.freedesktop.login1";
constexpr char kLogindPath[] = "/org/freedesktop/login1";
constexpr char kLogindManager[] = "org.freedesktop.login1.Manager";
constexpr char kPrepareForSleep[] = "PrepareForSleep";

} // namespace

CSessionWatch::CSessionWatch(Handler handler, QObject* pParent)
    : QObject(pParent), m_handler(std::move(handler)) {
    if (auto* pApp = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        connect(pApp, &QGuiApplication::commitDataRequest, this,
                [this](QSessionManager&) { m_handler(EndOfSession); });
    }
    QDBusConnection bus = QDBusConnection::systemBus();
    if (bus.isConnected()) {
        bus.connect(QString::fromLatin1(kLogindService), QString::fromLatin1(kLogindPath),
                    QString::fromLatin1(kLogindManager), QString::fromLatin1(kPrepareForSleep),
                    this, SLOT(OnPrepareForSleep(bool)));
    }
}

// logind sends the signal twice: true before sleeping and false after waking.
void CSessionWatch::OnPrepareForSleep(bool bBefore) {
    if (bBefore) {
        m_handler(Suspend);
    }
}
