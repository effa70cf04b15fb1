#include "BackdropPainter.h"

#include "PaintKit.h"
#include "SkinPalette.h"

#include <QPainter>
#include <array>

using namespace SkinPalette;

namespace {
constexpr std::array<int, 3> kMessageColumns = {456, 50, 12};
constexpr std::array<int, 3> kMessageRows = {162, 50, 46};

void paintBands(QPainter& p, int width, int height) {
    using BP = BackdropPainter;
    p.fillRect(QRectF(0, 0, width, BP::kCaptionHeight),
               PaintKit::vertical(0, BP::kCaptionHeight, kCaptionTop, kCaptionBottom));
    p.fillRect(QRect(0, BP::kCaptionHeight - 1, width, 1), QColor(kEtchDark));
    p.fillRect(QRect(0, BP::kCaptionHeight, width, 1), QColor(kEtchLight));

    const int footerTop = height - BP::kFooterHeight;
    p.fillRect(QRectF(0, footerTop, width, BP::kFooterHeight),
               PaintKit::vertical(footerTop, height, kFooterTop, kFooterBottom));
    p.fillRect(QRect(0, footerTop, width, 1), QColor(kEtchDark));
    p.fillRect(QRect(0, footerTop + 1, width, 1), PaintKit::withAlpha(kEtchLight, 0.5));
}

void paintEdges(QPainter& p, int width, int height) {
    const int r = BackdropPainter::kRadius;
    p.fillRect(QRect(r - 1, 1, width - 2 * (r - 1), 1), QColor(kHighlight));
    p.fillRect(QRect(1, r, 1, BackdropPainter::kCaptionHeight - r - 1),
               PaintKit::withAlpha(kHighlight, 0.45));
    p.fillRect(QRect(r - 1, height - 2, width - 2 * (r - 1), 1), QColor(kEtchDark));
    p.setPen(QPen(QColor(kOutline), 1));
    p.setBrush(Qt::NoBrush);
    p.drawPath(PaintKit::roundedRect(QRectF(0.5, 0.5, width - 1, height - 1), r));
}
} // namespace

QImage BackdropPainter::dialog(QSize size) {
    QImage image = PaintKit::canvas(size);
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        const QPainterPath shape =
            PaintKit::roundedRect(QRectF(0, 0, size.width(), size.height()), kRadius + 0.5);
        p.fillPath(shape, QColor(kBody));
        p.setClipPath(shape);
        paintBands(p, size.width(), size.height());
        p.setClipping(false);
        paintEdges(p, size.width(), size.height());
    }
    return PaintKit::cutToKey(image, kKeyDialog, kOutline);
}

QSize BackdropPainter::messagePieceSize(int row, int column) {
    return {kMessageColumns.at(column), kMessageRows.at(row)};
}

QImage BackdropPainter::messagePiece(int row, int column) {
    int x = 0;
    int y = 0;
    for (int c = 0; c < column; ++c)
        x += kMessageColumns.at(c);
    for (int r = 0; r < row; ++r)
        y += kMessageRows.at(r);
    const QSize whole(kMessageColumns[0] + kMessageColumns[1] + kMessageColumns[2],
                      kMessageRows[0] + kMessageRows[1] + kMessageRows[2]);
    return dialog(whole).copy(QRect(QPoint(x, y), messagePieceSize(row, column)));
}
