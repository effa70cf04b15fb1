// The dotted frame of the control that has the keyboard focus. It shows only once the keyboard
// is in use, as on the desktop the family comes from: a control focused by a click, or by a
// dialog that opens, shows none until a key is pressed or Tab brings the focus to it.
#pragma once

#include <QFocusEvent>
#include <QPainter>
#include <QPen>
#include <QRect>
#include <QWidget>

class CFocusCue {
public:
    void FocusIn(const QFocusEvent& event) {
        m_bShown = event.reason() == Qt::TabFocusReason || event.reason() == Qt::BacktabFocusReason;
    }
    void KeyPressed() { m_bShown = true; }
    void FocusOut() { m_bShown = false; }
    bool Shown(const QWidget& control) const { return m_bShown && control.hasFocus(); }

    // The frame nInset pixels inside rect, if the control shows it.
    void Paint(QPainter& painter, const QWidget& control, const QRect& rect, int nInset,
               const QColor& colour) const {
        if (!Shown(control)) {
            return;
        }
        painter.setPen(QPen(colour, 1, Qt::DotLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rect.adjusted(nInset, nInset, -nInset - 1, -nInset - 1));
    }

private:
    bool m_bShown = false;
};
