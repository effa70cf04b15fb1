#include "CGXTButton.h"

#include "DevicePixels.h"
#include "SkinImages.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kFocusInset = 2;
// Strips without a disabled picture show the normal one this faded.
constexpr qreal kDisabledOpacity = 0.4;

} // namespace

CGXTButton::CGXTButton(QWidget* pParent) : QAbstractButton(pParent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

bool CGXTButton::Setup(const QString& relativePath, int nPieces, COLORREF maskColour) {
    return Setup(LoadInstallImage(relativePath, false), nPieces, maskColour);
}

bool CGXTButton::Setup(const QImage& strip, int nPieces, COLORREF maskColour) {
    m_icons.clear();
    if (strip.isNull() || nPieces <= 0) {
        m_nIconWidth = m_nIconHeight = 0;
        return false;
    }
    m_nIconWidth = strip.width() / nPieces;
    m_nIconHeight = strip.height();
    for (int i = 0; i < nPieces; ++i) {
        QImage icon = strip.copy(i * m_nIconWidth, 0, m_nIconWidth, m_nIconHeight)
                          .convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < icon.height(); ++y) {
            auto* pRow = reinterpret_cast<QRgb*>(icon.scanLine(y));
            for (int x = 0; x < icon.width(); ++x) {
                if (RefFromRgb(pRow[x]) == maskColour) {
                    pRow[x] = 0;
                }
            }
        }
        m_icons.append(icon.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    }
    SetIconIndex(kIconNormal);
    updateGeometry();
    return true;
}

QSize CGXTButton::sizeHint() const {
    return ToLogical(QSize(m_nIconWidth, m_nIconHeight), DevicePixelRatioOf(this));
}

void CGXTButton::SetIconIndex(int nIndex) {
    m_nIcon = nIndex;
    update();
}

// A caption button has no text: its tool tip names it for screen readers.
bool CGXTButton::event(QEvent* pEvent) {
    switch (pEvent->type()) {
    case QEvent::ToolTipChange:
        if (text().isEmpty()) {
            setAccessibleName(toolTip());
        }
        break;
    case QEvent::FocusIn:
        m_focusCue.FocusIn(*static_cast<QFocusEvent*>(pEvent));
        break;
    case QEvent::FocusOut:
        m_focusCue.FocusOut();
        break;
    case QEvent::KeyPress:
        m_focusCue.KeyPressed();
        break;
    default:
        break;
    }
    return QAbstractButton::event(pEvent);
}

void CGXTButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintInDevicePixels(painter, this);
    const QSize size = DeviceSize(this);
    const int nIcon = isEnabled() ? m_nIcon : kIconNormal;
    if (!isEnabled()) {
        painter.setOpacity(kDisabledOpacity);
    }
    if (nIcon < m_icons.size()) {
        const QImage& icon = m_icons[nIcon];
        painter.drawImage((size.width() - icon.width()) / 2, (size.height() - icon.height()) / 2,
                          icon);
    }
    m_focusCue.Paint(painter, *this, QRect(QPoint(0, 0), size), kFocusInset, Qt::white);
}

void CGXTButton::mouseMoveEvent(QMouseEvent* pEvent) {
    if (!m_bPressed && m_nIcon != kIconHover) {
        SetIconIndex(kIconHover);
    }
    QAbstractButton::mouseMoveEvent(pEvent);
}

void CGXTButton::mousePressEvent(QMouseEvent* pEvent) {
    SetIconIndex(kIconPressed);
    m_bPressed = true;
    QAbstractButton::mousePressEvent(pEvent);
}

void CGXTButton::mouseReleaseEvent(QMouseEvent* pEvent) {
    m_bPressed = false;
    QAbstractButton::mouseReleaseEvent(pEvent);
}

void CGXTButton::leaveEvent(QEvent* pEvent) {
    SetIconIndex(kIconNormal);
    QAbstractButton::leaveEvent(pEvent);
}
