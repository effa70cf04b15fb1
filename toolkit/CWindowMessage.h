// A numbered window message between controls and their parents: the control's command, the
// notice of a skinned button's click, a right click. Sent or posted as a Qt event whose type
// is QEvent::User plus the message number.
#pragma once

#include <QEvent>
#include <QPoint>
#include <cstdint>

inline constexpr uint32_t kWmNotify = 0x004E;
inline constexpr uint32_t kWmCommand = 0x0111;
// Posted by a skinned button after its command, with the button in lParam.
inline constexpr uint32_t kWmButtonClicked = 1434;

inline constexpr uint32_t kBnDoubleClicked = 5;
inline constexpr int32_t kNmRightClick = -5;

class CWindowMessage : public QEvent {
public:
    CWindowMessage(uint32_t nMessage, uintptr_t wParam, intptr_t lParam, QPoint pt = {})
        : QEvent(TypeOf(nMessage)), m_nMessage(nMessage), m_wParam(wParam), m_lParam(lParam),
          m_pt(pt) {}

    static QEvent::Type TypeOf(uint32_t nMessage) {
        return static_cast<QEvent::Type>(QEvent::User + static_cast<int>(nMessage));
    }
    // wParam of a command: the control id in the low word, the notice code in the high word.
    static uintptr_t CommandParam(int nId, uint32_t nCode = 0) {
        return (static_cast<uintptr_t>(nCode) << 16) | (static_cast<uintptr_t>(nId) & 0xFFFF);
    }

    uint32_t Message() const { return m_nMessage; }
    uintptr_t WParam() const { return m_wParam; }
    intptr_t LParam() const { return m_lParam; }
    // Where the mouse was, in screen coordinates, for messages that carry a point.
    QPoint Point() const { return m_pt; }

private:
    uint32_t m_nMessage;
    uintptr_t m_wParam;
    intptr_t m_lParam;
    QPoint m_pt;
};
