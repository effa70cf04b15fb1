// Tells its owner when the session is about to end or the machine about to sleep: the desktop
// session manager's commit request, and logind's PrepareForSleep on the system bus. Without a
// session manager or a system bus nothing is ever told.
#pragma once

#include <QObject>
#include <functional>

class CSessionWatch : public QObject {
    Q_OBJECT

public:
    enum Event { EndOfSession, Suspend };
    using Handler = std::function<void(Event)>;

    explicit CSessionWatch(Handler handler, QObject* pParent = nullptr);

private slots:
    void OnPrepareForSleep(bool bBefore);

private:
    Handler m_handler;
};
