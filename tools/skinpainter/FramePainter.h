#pragma once

#include <QImage>

// The main window's border: a caption band on top, thin sides and bottom, drawn from eight
// pieces named after the cells 1 to 9 of a 3 by 3 grid (5 is the client area).
class FramePainter {
public:
    static constexpr int kCaptionHeight = 44;
    static constexpr int kPieceWidth = 10;
    static constexpr int kSideHeight = 3;
    static constexpr int kBottomHeight = 6;

    static QImage piece(int cell);
    static QSize pieceSize(int cell);

    // The caption band alone, for pictures that sit on it opaque.
    static QImage captionBand(QSize size);
};
