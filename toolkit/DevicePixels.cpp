#include "DevicePixels.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTransform>
#include <QWidget>

qreal DevicePixelRatioOf(const QWidget* pWidget) {
    if (pWidget != nullptr) {
        return pWidget->devicePixelRatioF();
    }
    const QScreen* pScreen = QGuiApplication::primaryScreen();
    return pScreen != nullptr ? pScreen->devicePixelRatio() : 1.0;
}

QRect ToLogical(const QRect& device, qreal dpr) {
    const QRectF logical(device.x() / dpr, device.y() / dpr, device.width() / dpr,
                         device.height() / dpr);
    return QRect(qRound(logical.x()), qRound(logical.y()), qCeil(logical.width() - 1e-6),
                 qCeil(logical.height() - 1e-6));
}

QSize ToLogical(const QSize& device, qreal dpr) {
    return QSize(qCeil(device.width() / dpr - 1e-6), qCeil(device.height() / dpr - 1e-6));
}

QRegion ToLogical(const QRegion& device, qreal dpr) {
    if (dpr == 1.0) {
        return device;
    }
    QRegion logical;
    for (const QRect& rect : device) {
        logical += ToLogical(rect, dpr);
    }
    return logical;
}

QPoint ToDevice(const QPointF& logical, qreal dpr) {
    return QPoint(qFloor(logical.x() * dpr), qFloor(logical.y() * dpr));
}

QSize DeviceSize(const QWidget* pWidget) {
    const qreal dpr = DevicePixelRatioOf(pWidget);
    return QSize(qRound(pWidget->width() * dpr), qRound(pWidget->height() * dpr));
}

void PaintInDevicePixels(QPainter& painter, const QWidget* pWidget) {
    const qreal dpr = DevicePixelRatioOf(pWidget);
    painter.scale(1.0 / dpr, 1.0 / dpr);
}
