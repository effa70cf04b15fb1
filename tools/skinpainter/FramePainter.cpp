#include "FramePainter.h"

#include "PaintKit.h"
#include "SkinPalette.h"

#include <QPainter>

using namespace SkinPalette;

namespace {
constexpr int kRadius = 6;
// Width of the border beside the client area; the pieces are wider and the client covers
// the rest.
constexpr int kVisibleSide = 6;
constexpr int kSheetWidth = 3 * FramePainter::kPieceWidth;
constexpr int kSheetHeight =
    FramePainter::kCaptionHeight + FramePainter::kSideHeight + FramePainter::kBottomHeight;

void paintCaption(QPainter& p, int width) {
    const int h = FramePainter::kCaptionHeight;
    p.fillRect(QRectF(0, 0, width, h), PaintKit::vertical(0, h, kCaptionTop, kCaptionBottom));
    p.fillRect(QRect(0, h - 1, width, 1), QColor(kEtchDark));
}

void paintSides(QPainter& p) {
    const int top = FramePainter::kCaptionHeight;
    const int w = kSheetWidth;
    p.fillRect(QRect(0, top, w, kSheetHeight - top), QColor(kFrameSide));
    p.fillRect(QRect(kVisibleSide - 1, top, 1, FramePainter::kSideHeight), QColor(kEtchDark));
    p.fillRect(QRect(w - kVisibleSide, top, 1, FramePainter::kSideHeight), QColor(kEtchDark));
    p.fillRect(
        QRect(kVisibleSide - 1, top + FramePainter::kSideHeight, w - 2 * (kVisibleSide - 1), 1),
        QColor(kEtchDark));
    p.fillRect(QRect(1, kRadius, 1, kSheetHeight - 2 * kRadius),
               PaintKit::withAlpha(kHighlight, 0.4));
}

// The whole border of a tiny window, three pieces wide, from which the pieces are cut.
QImage sheet() {
    QImage image = PaintKit::canvas(QSize(kSheetWidth, kSheetHeight));
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        const QPainterPath shape =
            PaintKit::roundedRect(QRectF(0, 0, kSheetWidth, kSheetHeight), kRadius + 0.5);
        p.setClipPath(shape);
        paintSides(p);
        paintCaption(p, kSheetWidth);
        p.fillRect(QRect(kRadius - 1, 1, kSheetWidth - 2 * (kRadius - 1), 1), QColor(kHighlight));
        p.setClipping(false);
        p.setPen(QPen(QColor(kOutline), 1));
        p.drawPath(
            PaintKit::roundedRect(QRectF(0.5, 0.5, kSheetWidth - 1, kSheetHeight - 1), kRadius));
    }
    return PaintKit::cutToKey(image, kKeyDialog, kOutline);
}
} // namespace

QSize FramePainter::pieceSize(int cell) {
    const int row = (cell - 1) / 3;
    const int heights[] = {kCaptionHeight, kSideHeight, kBottomHeight};
    return {kPieceWidth, heights[row]};
}

QImage FramePainter::piece(int cell) {
    const int row = (cell - 1) / 3;
    const int column = (cell - 1) % 3;
    const int tops[] = {0, kCaptionHeight, kCaptionHeight + kSideHeight};
    return sheet().copy(QRect(QPoint(column * kPieceWidth, tops[row]), pieceSize(cell)));
}

QImage FramePainter::captionBand(QSize size) {
    QImage image = PaintKit::canvas(size);
    QPainter p(&image);
    paintCaption(p, size.width());
    return image;
}
