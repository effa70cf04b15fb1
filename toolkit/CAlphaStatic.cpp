#include "CAlphaStatic.h"

#include "DevicePixels.h"
#include "SkinFonts.h"
#include "SkinText.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>

CAlphaStatic::CAlphaStatic(const QString& text, uint32_t nStyle, QWidget* pParent, int nId)
    : QWidget(pParent),
      m_crText(RefFromRgb(QApplication::palette().color(QPalette::WindowText).rgb())),
      m_font(MakeLabelFont()), m_nStyle(nStyle), m_nId(nId), m_text(text) {
    UpdateAccessibleName();
}

void CAlphaStatic::SetTextColour(COLORREF colour) {
    m_crText = colour;
    update();
}

void CAlphaStatic::SetBackgroundColour(COLORREF colour) {
    m_crBackground = colour;
    update();
}

void CAlphaStatic::SetBorder(bool bBorder) {
    m_bBorder = bBorder;
    update();
}

void CAlphaStatic::SetTransparent(bool bTransparent) {
    m_bTransparent = bTransparent;
    update();
}

void CAlphaStatic::SetFont(const QFont& font) {
    m_font = font;
    update();
}

void CAlphaStatic::SetText(const QString& text) {
    if (text == m_text) {
        return;
    }
    m_text = text;
    UpdateAccessibleName();
    update();
}

void CAlphaStatic::SetMargin(int nMargin) {
    m_nMargin = nMargin;
    update();
}

void CAlphaStatic::SetWordEllipsis(bool bOn) {
    m_bWordEllipsis = bOn;
    update();
}

void CAlphaStatic::SetEditControlWrap(bool bOn) {
    m_bEditWrap = bOn;
    update();
}

void CAlphaStatic::SetTipText(const QString& text) {
    setToolTip(text);
    UpdateAccessibleName();
}

void CAlphaStatic::UpdateAccessibleName() {
    setAccessibleName(m_text.isEmpty() ? toolTip() : m_text);
}

uint32_t CAlphaStatic::DrawFlags() const {
    const uint32_t nType = m_nStyle & ss::kTypeMask;
    uint32_t nFlags = nType == ss::kCenter           ? dt::kCenter | dt::kWordBreak
                      : nType == ss::kRight          ? dt::kRight | dt::kWordBreak
                      : nType == ss::kLeftNoWordWrap ? dt::kLeft
                                                     : dt::kWordBreak;
    if (m_bWordEllipsis) {
        nFlags |= dt::kWordEllipsis;
    }
    if (m_bEditWrap && nType != ss::kLeftNoWordWrap) {
        nFlags |= dt::kEditControl;
    }
    return nFlags;
}

void CAlphaStatic::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintInDevicePixels(painter, this);
    const QRect client(QPoint(0, 0), DeviceSize(this));
    if (!m_bTransparent) {
        painter.fillRect(client, ColorFromRef(m_crBackground));
    }
    if (m_bBorder) {
        painter.setPen(palette().color(QPalette::Dark));
        painter.drawRect(client.adjusted(0, 0, -1, -1));
    }
    QRect area = client.adjusted(m_nMargin, m_nMargin, -m_nMargin, -m_nMargin);
    const uint32_t nFlags = DrawFlags();
    if ((m_nStyle & ss::kCenterImage) != 0) {
        const QRect block = DrawSkinText(nullptr, m_font, area, nFlags | dt::kCalcRect, m_text);
        area.moveTop(area.top() + (area.height() - block.height()) / 2);
        area.setHeight(block.height());
    }
    painter.setPen(ColorFromRef(m_crText));
    DrawSkinText(&painter, m_font, area, nFlags, m_text);
}
