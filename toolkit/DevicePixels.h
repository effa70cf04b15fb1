// The skin's sizes are device pixels: pictures are drawn 1:1 on the screen's own pixels and the
// scale factors of the settings (1.0 or 1.5) say how many. Qt places widgets in logical
// pixels, device pixels divided by the screen's device pixel ratio, so every size crosses
// here once, and painting undoes the ratio so that nothing is scaled twice or blurred.
#pragma once

#include <QPainter>
#include <QRect>
#include <QRegion>
#include <QSize>

class QWidget;

// The widget's ratio, or the primary screen's for no widget; 1.0 without a screen.
qreal DevicePixelRatioOf(const QWidget* pWidget);
QRect ToLogical(const QRect& device, qreal dpr);
QSize ToLogical(const QSize& device, qreal dpr);
QRegion ToLogical(const QRegion& device, qreal dpr);
QPoint ToDevice(const QPointF& logical, qreal dpr);
// The widget's size in device pixels.
QSize DeviceSize(const QWidget* pWidget);
// Makes the painter draw in device pixels on the widget.
void PaintInDevicePixels(QPainter& painter, const QWidget* pWidget);
