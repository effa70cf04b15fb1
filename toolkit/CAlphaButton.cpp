#include "CAlphaButton.h"

#include "CDisplayScale.h"
#include "CWindowMessage.h"
#include "DevicePixels.h"
#include "SkinFonts.h"
#include "SkinImages.h"
#include "SkinText.h"
#include "TvnText.h"

#include <QApplication>
#include <QCoreApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kCheckPictures = 8;
constexpr int kCheckedOffset = 4;
constexpr int kFirstTextTop = 7;
constexpr int kPressedTextDrop = 2;
constexpr int kWrapSlack = 3; // a wrapped caption this much taller than the button still fits
constexpr int kIconSize = 16;
constexpr int kIconLeft = 4;
constexpr int kFocusInset = 3;

COLORREF SystemColour(QPalette::ColorRole role) {
    return RefFromRgb(QApplication::palette().color(role).rgb());
}

int ScaledSide(int nSide, double scale) {
    return static_cast<int>(nSide * scale);
}

} // namespace

CAlphaButton::CAlphaButton(QWidget* pParent)
    : QWidget(pParent), m_crText{SystemColour(QPalette::ButtonText),
                                 SystemColour(QPalette::ButtonText),
                                 SystemColour(QPalette::ButtonText), kTextDisabledAlphaButton},
      m_font(MakeLabelFont()) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

bool CAlphaButton::Create(const QString& caption, uint32_t nStyle, const QRect& rect,
                          QWidget* pParent, int nId) {
    const double scale = GetDpiScale(false);
    const QRect device(QPoint(ScaledSide(rect.left(), scale), ScaledSide(rect.top(), scale)),
                       QPoint(ScaledSide(rect.left() + rect.width(), scale) - 1,
                              ScaledSide(rect.top() + rect.height(), scale) - 1));
    m_nId = nId;
    setParent(pParent);
    setGeometry(ToLogical(device, DevicePixelRatioOf(pParent)));
    m_caption = caption;
    m_bTextPlaced = false;
    UpdateAccessibleName();
    if ((nStyle & kWsDisabled) != 0) {
        Enable(false);
    }
    setVisible((nStyle & kWsVisible) != 0);
    return true;
}

bool CAlphaButton::LoadStrip(const QString& path, bool bRelative, bool bCheckType,
                             bool bKeepPressed) {
    m_bCheckType = bCheckType;
    m_bKeepPressed = bKeepPressed;
    const QImage image = bRelative ? LoadInstallImage(path, false) : LoadImageFile(path, false);
    m_image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (m_image.isNull()) {
        m_nPieceWidth = m_nPieceHeight = 0;
        return false;
    }
    m_nPieceWidth = m_image.width() / (bCheckType ? kCheckPictures : kStateCount);
    m_nPieceHeight = m_image.height();
    update();
    return true;
}

void CAlphaButton::SetTextPosition(int x, int y, bool bCentreX, bool bCentreY) {
    m_nTextLeft = static_cast<int>(x * GetUiScale());
    m_nTextTop = static_cast<int>(y * GetUiScale());
    m_bCentreX = bCentreX;
    m_bCentreY = bCentreY;
    m_bTextPlaced = false;
    update();
}

void CAlphaButton::SetCaption(const QString& caption) {
    if (caption == m_caption) {
        return;
    }
    m_caption = caption;
    UpdateAccessibleName();
    SetTextPosition(0, 0, true, true);
}

void CAlphaButton::SetTipText(const QString& text, bool bActivate) {
    m_tipText = text;
    setToolTip(bActivate ? text : QString());
    UpdateAccessibleName();
}

void CAlphaButton::SetTipById(uint32_t nTextId, bool bActivate) {
    SetTipText(TvnText(nTextId).section(u'\n', 0, 0), bActivate);
}

void CAlphaButton::SetTextColour(COLORREF colour) {
    m_crText[kNormal] = m_crText[kHover] = m_crText[kPressed] = colour;
    update();
}

void CAlphaButton::SetLatch(bool bLatch) {
    m_bLatch = bLatch;
    update();
}

void CAlphaButton::SetLatchedDown(bool bDown) {
    m_bLatchedDown = bDown;
    if (!bDown) {
        m_nState = kNormal;
    }
    update();
}

void CAlphaButton::Enable(bool bEnable) {
    if ((m_nState == kDisabled) != bEnable) {
        return;
    }
    m_nState = bEnable ? kNormal : kDisabled;
    setEnabled(bEnable);
    update();
}

void CAlphaButton::SetState(int nState) {
    m_nState = nState;
    update();
}

void CAlphaButton::SetFont(const QFont& font) {
    m_font = font;
    m_bTextPlaced = false;
    update();
}

void CAlphaButton::SetTextRight(int nRight) {
    m_nTextRight = qMin(nRight, DeviceSize(this).width());
    m_bTextPlaced = false;
    update();
}

void CAlphaButton::SetMargins(int nLeftMargin, bool bCentreX, bool bCentreY) {
    m_nLeftMargin = nLeftMargin;
    m_bCentreX = bCentreX;
    m_bCentreY = bCentreY;
    m_bTextPlaced = false;
    update();
}

void CAlphaButton::SetCheck(bool bChecked) {
    m_bChecked = bChecked;
    update();
}

void CAlphaButton::SetIcon(const QIcon& icon) {
    m_icon = icon;
    update();
}

QRect CAlphaButton::TextRect() const {
    return QRect(QPoint(m_nTextLeft, m_nTextTop), QPoint(m_nTextRight - 1, m_nHeight - 1));
}

void CAlphaButton::UpdateAccessibleName() {
    setAccessibleName(m_caption.isEmpty() ? m_tipText : m_caption);
}

// Centres the caption where asked; runs again only after the caption or its place changed.
void CAlphaButton::PlaceText() {
    const QFontMetrics metrics(m_font);
    const int nTextWidth = metrics.horizontalAdvance(m_caption);
    const int nTextHeight = metrics.height();
    int x = 0;
    int y = kFirstTextTop;
    if (m_bCentreX && nTextWidth < m_nWidth) {
        x = (m_nWidth - nTextWidth - m_nLeftMargin) / 2 + m_nLeftMargin;
    }
    if (m_bCentreY) {
        if (!m_caption.contains(u'\n') && nTextWidth <= m_nTextRight - m_nTextLeft) {
            y = nTextHeight < m_nHeight ? (m_nHeight - nTextHeight) / 2 : 0;
        } else {
            const QRect wrapped = DrawSkinText(
                nullptr, m_font, QRect(0, 0, m_nTextRight - m_nTextLeft, m_nHeight - m_nTextTop),
                dt::kCalcRect | dt::kWordBreak, m_caption);
            if (wrapped.height() > m_nHeight + kWrapSlack) {
                m_nDrawFlags |= dt::kEndEllipsis;
                y = (m_nHeight - nTextHeight) / 2;
            } else {
                m_nDrawFlags |= dt::kWordBreak;
                y = wrapped.height() > m_nHeight ? 0 : (m_nHeight - wrapped.height()) / 2;
            }
        }
    }
    m_nTextLeft = qMax(m_nTextLeft + x, 1);
    m_nTextTop += y;
    m_bTextPlaced = true;
}

void CAlphaButton::DrawPicture(QPainter& painter) {
    if (m_image.isNull() || m_nPieceWidth <= 0) {
        return;
    }
    if (!m_bCheckType) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRect(0, 0, m_nWidth, m_nHeight), m_image,
                          QRect(m_nPieceWidth * m_nState, 0, m_nPieceWidth, m_nPieceHeight));
        return;
    }
    const int nIndex = m_nState + (m_bChecked ? kCheckedOffset : 0);
    painter.drawImage(QPoint(0, 0), m_image,
                      QRect(m_nPieceWidth * nIndex, 0, m_nPieceWidth, m_nPieceHeight));
}

void CAlphaButton::DrawCaption(QPainter& painter, int nOffset) {
    if (m_caption.isEmpty()) {
        return;
    }
    if (!m_bTextPlaced) {
        PlaceText();
    }
    painter.setPen(ColorFromRef(m_crText[qBound(0, m_nState, kStateCount - 1)]));
    const QRect area(QPoint(m_nTextLeft, m_nTextTop + nOffset),
                     QPoint(m_nTextRight - 1, m_nHeight - 1));
    DrawSkinText(&painter, m_font, area, m_nDrawFlags, m_caption);
}

void CAlphaButton::DrawIcon(QPainter& painter, int nOffset) {
    if (m_icon.isNull()) {
        return;
    }
    const int nSize = static_cast<int>(kIconSize * GetUiScale());
    const int y = (m_nHeight - nSize) / 2 + nOffset;
    painter.drawPixmap(kIconLeft, y, m_icon.pixmap(QSize(nSize, nSize), 1.0));
}

void CAlphaButton::paintEvent(QPaintEvent*) {
    const QSize size = DeviceSize(this);
    m_nWidth = size.width();
    m_nHeight = size.height();
    if (m_nTextRight < 1) {
        m_nTextRight = m_nWidth;
    }
    if (m_bLatch && m_bLatchedDown) {
        m_nState = kPressed;
    }
    QPainter painter(this);
    PaintInDevicePixels(painter, this);
    DrawPicture(painter);
    const int nOffset = m_nState == kPressed ? kPressedTextDrop : 0;
    DrawCaption(painter, nOffset);
    DrawIcon(painter, nOffset);
    m_focusCue.Paint(painter, *this, QRect(0, 0, m_nWidth, m_nHeight), kFocusInset,
                     ColorFromRef(m_crText[kNormal]));
}

void CAlphaButton::Press() {
    m_nState = kPressed;
    update();
}

void CAlphaButton::Release() {
    update();
    if (m_nState != kPressed) {
        return;
    }
    if (!m_bKeepPressed) {
        m_nState = m_bCheckType ? kHover : kNormal;
    }
    if (m_bCheckType) {
        m_bChecked = !m_bChecked;
    }
    if (parentWidget() != nullptr) {
        QCoreApplication::postEvent(
            parentWidget(), new CWindowMessage(kWmCommand, CWindowMessage::CommandParam(m_nId),
                                               reinterpret_cast<intptr_t>(this)));
    }
}

void CAlphaButton::mousePressEvent(QMouseEvent* pEvent) {
    if (pEvent->button() == Qt::LeftButton) {
        Press();
    }
}

void CAlphaButton::mouseReleaseEvent(QMouseEvent* pEvent) {
    // A right click does nothing on a push button.
    if (pEvent->button() == Qt::LeftButton) {
        Release();
    }
}

void CAlphaButton::mouseMoveEvent(QMouseEvent* pEvent) {
    const bool bOver = rect().contains(pEvent->position().toPoint());
    if (bOver && m_nState == kNormal) {
        m_nState = kHover;
        update();
    } else if (!bOver) {
        m_nState = kNormal;
        update();
    }
}

void CAlphaButton::leaveEvent(QEvent*) {
    if (!isEnabled()) {
        return;
    }
    if (!(m_bKeepPressed && m_nState == kPressed)) {
        m_nState = kNormal;
    }
    update();
}

void CAlphaButton::keyPressEvent(QKeyEvent* pEvent) {
    m_focusCue.KeyPressed();
    if (pEvent->key() == Qt::Key_Space && !pEvent->isAutoRepeat()) {
        Press();
        return;
    }
    QWidget::keyPressEvent(pEvent);
}

void CAlphaButton::keyReleaseEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Space && !pEvent->isAutoRepeat()) {
        Release();
        return;
    }
    QWidget::keyReleaseEvent(pEvent);
}

void CAlphaButton::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::EnabledChange) {
        m_nState = isEnabled() ? kNormal : kDisabled;
        update();
    }
    QWidget::changeEvent(pEvent);
}

void CAlphaButton::focusInEvent(QFocusEvent* pEvent) {
    m_focusCue.FocusIn(*pEvent);
    update();
    QWidget::focusInEvent(pEvent);
}

void CAlphaButton::focusOutEvent(QFocusEvent* pEvent) {
    m_focusCue.FocusOut();
    update();
    QWidget::focusOutEvent(pEvent);
}
