#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>

class QPainter;

enum class CaptionGlyph { Minimise, Maximise, Restore, Close, Update };
enum class MessageIcon { Notice, Warning, Error, Question };
enum class CommandIcon { Open, View, Extract, ViewMode, Burn, Mount };

// Vector glyphs: the caption buttons' marks, the message icons, the command bar's icons and
// the file picture of the overwrite question.
class GlyphPainter {
public:
    // A caption mark in a square box of about 10 pixels, on whole pixels where it is straight.
    static void caption(QPainter& p, const QRectF& box, CaptionGlyph glyph, const QColor& colour);

    static QImage message(QSize size, MessageIcon icon);

    // A command icon drawn on a grid of 16 units in a square box; its details take the accent
    // colour, which must stand out from what lies below.
    static void command(QPainter& p, const QRectF& box, CommandIcon icon, const QColor& accent);

    // A page with a folded corner: the stand-in for a file whose own icon is not known.
    static QImage document(QSize size);
    // The overwrite question's picture: the page on the disk behind the page from the image,
    // an arrow from one to the other.
    static QImage replace(QSize size);
};
