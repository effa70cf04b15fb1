#include "PaintKit.h"

#include <QPainter>

namespace {
// Coverage above which an edge pixel belongs to the window.
constexpr int kInsideAlpha = 128;
} // namespace

QImage PaintKit::canvas(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QPainterPath PaintKit::roundedRect(const QRectF& rect, qreal radius) {
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

QLinearGradient PaintKit::vertical(qreal top, qreal bottom, QRgb topColour, QRgb bottomColour) {
    QLinearGradient gradient(0, top, 0, bottom);
    gradient.setColorAt(0, QColor(topColour));
    gradient.setColorAt(1, QColor(bottomColour));
    return gradient;
}

QColor PaintKit::withAlpha(QRgb colour, qreal alpha) {
    QColor c(colour);
    c.setAlphaF(static_cast<float>(alpha));
    return c;
}

QFont PaintKit::font(int pixelSize, bool bold) {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(pixelSize);
    f.setBold(bold);
    f.setHintingPreference(QFont::PreferVerticalHinting);
    f.setStyleStrategy(QFont::PreferAntialias);
    return f;
}

QImage PaintKit::strip(QSize piece, int states, const StatePainter& paintState) {
    QImage image = canvas(QSize(piece.width() * states, piece.height()));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    for (int state = 0; state < states; ++state) {
        const QRectF rect(piece.width() * state, 0, piece.width(), piece.height());
        p.save();
        p.setClipRect(rect);
        paintState(p, rect, state);
        p.restore();
    }
    return image;
}

QImage PaintKit::cutToKey(const QImage& image, QRgb key, QRgb edge) {
    QImage out = image.convertToFormat(QImage::Format_ARGB32);
    const QColor edgeColour(edge);
    for (int y = 0; y < out.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            const QRgb px = line[x];
            const int a = qAlpha(px);
            if (a < kInsideAlpha) {
                line[x] = key;
                continue;
            }
            const auto mix = [a](int src, int under) {
                return (src * a + under * (255 - a)) / 255;
            };
            line[x] = qRgb(mix(qRed(px), edgeColour.red()), mix(qGreen(px), edgeColour.green()),
                           mix(qBlue(px), edgeColour.blue()));
        }
    }
    return out;
}

QImage PaintKit::transparentKeyed(const QImage& image, QRgb key) {
    QImage out = straight(image);
    const QRgb clear = key & RGB_MASK;
    for (int y = 0; y < out.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            if (qAlpha(line[x]) == 0)
                line[x] = clear;
        }
    }
    return out;
}

QImage PaintKit::straight(const QImage& image) {
    return image.convertToFormat(QImage::Format_ARGB32);
}
