#include "LogoPainter.h"

#include "PaintKit.h"
#include "SkinPalette.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

using namespace SkinPalette;

namespace {
const QString kName = QStringLiteral("Ovrin");
const QString kKind = QStringLiteral("Viewer");
constexpr int kLargestPixels = 40;
constexpr qreal kWordGap = 0.3; // of the font's height

// The largest font at which the words fit the picture with a pixel to spare on each side.
int fittingPixels(QSize size, bool withViewer) {
    for (int pixels = kLargestPixels; pixels > 6; --pixels) {
        const QFontMetricsF bold(PaintKit::font(pixels, true));
        const QFontMetricsF light(PaintKit::font(pixels, false));
        qreal width = bold.horizontalAdvance(kName);
        if (withViewer)
            width += pixels * kWordGap + light.horizontalAdvance(kKind);
        if (width <= size.width() - 2 && bold.ascent() + bold.descent() * 0.3 <= size.height() - 2)
            return pixels;
    }
    return 6;
}
} // namespace

QImage LogoPainter::wordmark(QSize size, bool withViewer) {
    QImage image = PaintKit::canvas(size);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const int pixels = fittingPixels(size, withViewer);
    const QFont bold = PaintKit::font(pixels, true);
    const QFontMetricsF metrics(bold);
    const qreal baseline = std::round((size.height() + metrics.capHeight()) / 2.0);

    QPainterPath name;
    name.addText(QPointF(1, baseline), bold, kName);
    p.fillPath(name.translated(0, 1), PaintKit::withAlpha(0, 0.45));
    p.fillPath(name, PaintKit::vertical(baseline - metrics.capHeight(), baseline, kText,
                                        qRgb(214, 220, 226)));
    if (withViewer) {
        QPainterPath kind;
        kind.addText(QPointF(1 + metrics.horizontalAdvance(kName) + pixels * kWordGap, baseline),
                     PaintKit::font(pixels, false), kKind);
        p.fillPath(kind.translated(0, 1), PaintKit::withAlpha(0, 0.45));
        p.fillPath(kind, QColor(kAccentLight));
    }
    return image;
}
