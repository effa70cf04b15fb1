#include "CDBufferDC.h"

#include <QPaintDevice>

namespace {

QRect AreaOf(QPainter* pTarget, const QRect* pArea) {
    if (pArea != nullptr) {
        return *pArea;
    }
    if (pTarget->hasClipping()) {
        return pTarget->clipBoundingRect().toAlignedRect();
    }
    const QPaintDevice* pDevice = pTarget->device();
    return QRect(0, 0, pDevice->width(), pDevice->height());
}

} // namespace

CDBufferDC::CDBufferDC(QPainter* pTarget, const QRect* pArea)
    : m_pTarget(pTarget), m_rcArea(AreaOf(pTarget, pArea)) {
    // The surface has the target's pixel density, so that the copy back is 1:1.
    const qreal dpr = pTarget->device()->devicePixelRatioF();
    m_surface = QImage(m_rcArea.size() * dpr, QImage::Format_ARGB32_Premultiplied);
    m_surface.setDevicePixelRatio(dpr);
    begin(&m_surface);
    setFont(pTarget->font());
    translate(-m_rcArea.topLeft());
}

CDBufferDC::~CDBufferDC() {
    end();
    const QPainter::CompositionMode oldMode = m_pTarget->compositionMode();
    m_pTarget->setCompositionMode(QPainter::CompositionMode_Source);
    m_pTarget->drawImage(m_rcArea.topLeft(), m_surface);
    m_pTarget->setCompositionMode(oldMode);
}
