#pragma once

#include <QImage>

// Dialog backdrops: a slate body under a caption band and a footer band, cut to rounded
// corners by the dialog key colour.
class BackdropPainter {
public:
    // Bands that every dialog shares: the caption row with title and close button, and the
    // footer row that holds the push buttons 10 pixels above the bottom edge.
    static constexpr int kCaptionHeight = 31;
    static constexpr int kFooterHeight = 46;
    static constexpr int kRadius = 6;

    static QImage dialog(QSize size);

    // One of the nine pieces of the message box, row and column 0 to 2. The body is uniform
    // wherever pieces are tiled or overlap, so any repetition composes without a seam.
    static QImage messagePiece(int row, int column);
    static QSize messagePieceSize(int row, int column);
};
