#include "BarPainter.h"

#include "PaintKit.h"
#include "SkinPalette.h"

#include <QPainter>

using namespace SkinPalette;

namespace {
constexpr qreal kRadius = 4;
// The fill stands this far inside the track's edge, so the track frames it at any width.
constexpr qreal kInset = 2;
constexpr int kStripePitch = 12;
} // namespace

QImage BarPainter::track(QSize size) {
    QImage image = PaintKit::canvas(size);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r(0, 0, size.width(), size.height());
    p.setPen(Qt::NoPen);
    p.setBrush(PaintKit::withAlpha(kEtchLight, 0.6));
    p.drawRoundedRect(r, kRadius + 0.5, kRadius + 0.5);
    p.setPen(QPen(QColor(kOutline), 1));
    p.setBrush(PaintKit::vertical(0, size.height(), qRgb(30, 32, 34), qRgb(44, 46, 48)));
    p.drawRoundedRect(r.adjusted(0.5, 0.5, -0.5, -1.5), kRadius, kRadius);
    p.fillRect(QRectF(kRadius, 1, size.width() - 2 * kRadius, 1), PaintKit::withAlpha(0, 0.35));
    return PaintKit::transparentKeyed(image, kKeyButton);
}

QImage BarPainter::fill(QSize size) {
    QImage image = PaintKit::canvas(size);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r =
        QRectF(0, 0, size.width(), size.height()).adjusted(kInset, kInset, -kInset, -kInset - 1);
    const QPainterPath shape = PaintKit::roundedRect(r, kRadius - 1);
    p.fillPath(shape, PaintKit::vertical(r.top(), r.bottom(), kAccentLight, kAccentDark));
    p.setClipPath(shape);
    p.setPen(QPen(PaintKit::withAlpha(0xffffff, 0.07), kStripePitch / 2.0));
    for (int x = -size.height(); x < size.width() + size.height(); x += kStripePitch)
        p.drawLine(QPointF(x, size.height()), QPointF(x + size.height(), 0));
    p.fillRect(QRectF(r.left(), r.top(), r.width(), 1), PaintKit::withAlpha(0xffffff, 0.35));
    p.fillRect(QRectF(r.left(), r.bottom() - 1, r.width(), 1), PaintKit::withAlpha(0, 0.25));
    return PaintKit::transparentKeyed(image, kKeyButton);
}
