#include "CApProgressCtrl.h"

#include "CWindowMessage.h"
#include "DevicePixels.h"
#include "SkinImages.h"
#include "SkinWindows.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr char16_t kDefaultBackground[] = u"Image\\Common\\progressCtrl\\progress_bg.png";
constexpr char16_t kDefaultUnit[] = u"Image\\Common\\progressCtrl\\progress_unit.png";
// A reversed bar shows the middle of its background at this width to height.
constexpr qreal kReverseAspect = 4.0 / 3.0;
constexpr int kCornerDivisor = 4;

// The picture if its file is there; a null picture otherwise.
QImage LoadIfPresent(const QString& relativePath) {
    if (!QFileInfo::exists(InstallPath(relativePath))) {
        return QImage();
    }
    return LoadInstallImage(relativePath, false)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

CApProgressCtrl::CApProgressCtrl(QWidget* pParent) : QWidget(pParent) {}

bool CApProgressCtrl::Create(const QRect& rect, QWidget* pParent, int nId) {
    setParent(pParent);
    m_nId = nId;
    m_rcControl = rect;
    setGeometry(ToLogical(rect, DevicePixelRatioOf(pParent)));
    show();
    return true;
}

bool CApProgressCtrl::LoadImages(const QString& backgroundPath, const QString& unitPath) {
    m_background = LoadIfPresent(backgroundPath.isEmpty() ? QString::fromUtf16(kDefaultBackground)
                                                          : backgroundPath);
    m_unit = LoadIfPresent(unitPath.isEmpty() ? QString::fromUtf16(kDefaultUnit) : unitPath);
    update();
    return !m_background.isNull() && !m_unit.isNull();
}

void CApProgressCtrl::ScaleImages(double scale) {
    m_background = ScalePicture(m_background, scale);
    m_unit = ScalePicture(m_unit, scale);
    update();
}

bool CApProgressCtrl::ReplaceImage(int nSlot, const QString& relativePath) {
    if (nSlot != kSlotBackground && nSlot != kSlotUnit) {
        return false;
    }
    const QImage image = LoadIfPresent(relativePath);
    if (image.isNull()) {
        return false;
    }
    if (nSlot == kSlotBackground) {
        m_background = image;
        m_rcControl.setRight(m_rcControl.left() + image.width() / kCornerDivisor - 1);
        m_rcControl.setBottom(m_rcControl.top() + image.height() - 1);
    } else {
        m_unit = image;
    }
    update();
    return true;
}

void CApProgressCtrl::SetPos(int nPos) {
    m_bReverse = false;
    if (nPos == m_nPos) {
        return;
    }
    if (nPos < m_nPos && parentWidget() != nullptr) {
        parentWidget()->update();
        QCoreApplication::postEvent(parentWidget(), new CWindowMessage(kWmProgressBackwards, 0, 0));
    }
    m_nPos = nPos;
    repaint();
}

void CApProgressCtrl::SetPos(int nPos, bool bReverse) {
    m_bReverse = bReverse;
    if (nPos == m_nPos) {
        return;
    }
    m_nPos = nPos;
    update();
}

void CApProgressCtrl::SetTipText(const QString& text) {
    m_tipText = text;
    setToolTip(text);
}

void CApProgressCtrl::DrawForward(QPainter& painter, const QSizeF& size) const {
    const QRectF whole(QPointF(0, 0), size);
    painter.drawImage(whole, m_background, whole);
    const QRectF filled(0, 0, size.width() * m_nPos / kMaxPos, size.height());
    painter.drawImage(filled, m_unit, filled);
}

void CApProgressCtrl::DrawReverse(QPainter& painter, const QSizeF& size) const {
    const qreal iw = m_background.width();
    const qreal ih = m_background.height();
    const QRectF middle = ih <= iw
                              ? QRectF((iw - ih * kReverseAspect) / 2, 0, ih * kReverseAspect, ih)
                              : QRectF(0, (ih - iw / kReverseAspect) / 2, iw, iw / kReverseAspect);
    painter.drawImage(QRectF(QPointF(0, 0), size), m_background, middle);
    const qreal x = (kMaxPos - m_nPos) * size.width() / kMaxPos;
    const QRectF filled(x, 0, size.width() * m_nPos / kMaxPos, size.height());
    painter.drawImage(filled, m_unit, filled);
}

void CApProgressCtrl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintInDevicePixels(painter, this);
    const QSizeF size = DeviceSize(this);
    if (m_bReverse) {
        DrawReverse(painter, size);
    } else {
        DrawForward(painter, size);
    }
}

void CApProgressCtrl::mousePressEvent(QMouseEvent* pEvent) {
    // A press on the bar is the bar's, so that it does not drag the dialog below.
    pEvent->accept();
}
