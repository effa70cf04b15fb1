#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QLinearGradient>
#include <QPainterPath>
#include <functional>

// Small drawing helpers that every kind of picture shares.
class PaintKit {
public:
    // Paints one state picture of a strip into its rectangle.
    using StatePainter = std::function<void(QPainter&, const QRectF&, int state)>;

    static QImage canvas(QSize size);
    static QPainterPath roundedRect(const QRectF& rect, qreal radius);
    static QLinearGradient vertical(qreal top, qreal bottom, QRgb topColour, QRgb bottomColour);
    static QColor withAlpha(QRgb colour, qreal alpha);
    static QFont font(int pixelSize, bool bold);

    // A strip of equal pictures side by side, one per state.
    static QImage strip(QSize piece, int states, const StatePainter& paintState);

    // Turns an antialiased shape into a window outline: what lies mostly outside becomes the
    // opaque key colour, which the window's region cuts away; the rest is made opaque over the
    // outline colour, so no pixel of the edge shows a tint of the key.
    static QImage cutToKey(const QImage& image, QRgb key, QRgb edge);

    // Straight alpha for saving; fully transparent pixels carry the key colour, so that a
    // reader that flattens the picture and tests for the key finds the same outline that an
    // alpha blend shows.
    static QImage transparentKeyed(const QImage& image, QRgb key);
    static QImage straight(const QImage& image);
};
