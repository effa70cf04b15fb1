#pragma once

#include "GlyphPainter.h"

#include <QImage>
#include <QString>

enum class ButtonTone { Neutral, Primary };

// Button strips: state pictures side by side, 0 normal, 1 hover, 2 pressed, 3 disabled.
class ButtonPainter {
public:
    static constexpr int kStatePressed = 2;
    static constexpr int kStateDisabled = 3;

    // A push button without text; the control writes its caption over it.
    static QImage push(QSize piece, int states, ButtonTone tone);

    // A caption button with its mark. The strip starts at firstState, so that a picture of the
    // disabled state alone can be made.
    static QImage caption(QSize piece, int states, CaptionGlyph glyph, int firstState = 0);

    // A flat command button with its icon and its label, scaled by scale from the 16-pixel
    // drawing. With a menu a small chevron follows the label.
    static QImage command(QSize piece, int states, CommandIcon icon, const QString& label,
                          qreal scale, bool menu);
};
