#include "CGStatic.h"

#include "CAlphaStatic.h"
#include "DevicePixels.h"
#include "SkinFonts.h"
#include "SkinText.h"
#include "SkinWindows.h"

#include <QPainter>

CGStatic::CGStatic(QWidget* pParent, int nId)
    : QWidget(pParent), m_font(MakeLabelFont()), m_nStyle(ss::kNotify), m_nId(nId) {}

void CGStatic::SetImage(const QImage& image, int nWidth, int nHeight) {
    m_image = image;
    m_size = QSize(nWidth, nHeight);
    resize(ToLogical(m_size, DevicePixelRatioOf(this)));
    update();
}

void CGStatic::ScaleImage(double scale) {
    if (m_image.isNull()) {
        return;
    }
    const QSize size = ScaleSize(m_size, scale);
    SetImage(ScalePicture(m_image, scale), size.width(), size.height());
}

void CGStatic::SetBackdrop(const QImage& backdrop) {
    m_backdrop = backdrop;
    update();
}

void CGStatic::SetText(const QString& text) {
    m_text = text;
    UpdateAccessibleName();
    update();
}

void CGStatic::SetFont(const QFont& font) {
    m_font = font;
    update();
}

void CGStatic::SetTipText(const QString& text) {
    setToolTip(text);
    UpdateAccessibleName();
}

void CGStatic::UpdateAccessibleName() {
    setAccessibleName(m_text.isEmpty() ? toolTip() : m_text);
}

void CGStatic::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintInDevicePixels(painter, this);
    if (!m_backdrop.isNull()) {
        // At the parent's own origin, which a fractional scale may put between device pixels,
        // so that the piece lines up with what the parent painted around it.
        painter.drawImage(-QPointF(pos()) * DevicePixelRatioOf(this), m_backdrop);
    }
    if (!m_image.isNull()) {
        painter.drawImage(QPoint(0, 0), m_image, QRect(QPoint(0, 0), m_size));
    }
    if (!m_text.isEmpty()) {
        painter.setPen(ColorFromRef(m_crText[isEnabled() ? 0 : kTextColours - 1]));
        DrawSkinText(&painter, m_font, QRect(QPoint(0, 0), DeviceSize(this)),
                     dt::kCenter | dt::kVCenter | dt::kSingleLine, m_text);
    }
}
