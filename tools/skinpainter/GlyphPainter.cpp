#include "GlyphPainter.h"

#include "PaintKit.h"
#include "SkinPalette.h"

#include <QPainter>
#include <QPainterPath>

using namespace SkinPalette;

namespace {
// Message icons and command icons are drawn on these grids and scaled to their size.
constexpr qreal kMessageGrid = 36;
constexpr qreal kCommandGrid = 16;

void strokeLine(QPainter& p, QPointF a, QPointF b, const QColor& colour, qreal width) {
    p.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawLine(a, b);
}

void captionUpdate(QPainter& p, const QRectF& b, const QColor& colour) {
    const qreal cx = b.center().x();
    p.setPen(QPen(colour, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawPolyline(QPolygonF{QPointF(b.left() + 1.5, b.top() + 4.5), QPointF(cx, b.top() + 1),
                             QPointF(b.right() - 1.5, b.top() + 4.5)});
    p.drawLine(QPointF(cx, b.top() + 1.5), QPointF(cx, b.top() + 7));
    p.fillRect(QRectF(b.left(), b.bottom() - 1, b.width(), 1), colour);
}

// The round or triangular badge of a message icon, with a soft shadow below it.
void messageBadge(QPainter& p, MessageIcon icon) {
    const QRgb base = icon == MessageIcon::Notice    ? kNotice
                      : icon == MessageIcon::Warning ? kWarning
                      : icon == MessageIcon::Error   ? kError
                                                     : kQuestion;
    QPainterPath shape;
    if (icon == MessageIcon::Warning) {
        shape.moveTo(18, 4);
        shape.lineTo(33, 30.5);
        shape.lineTo(3, 30.5);
        shape.closeSubpath();
    } else {
        shape.addEllipse(QPointF(18, 18), 15, 15);
    }
    p.setPen(QPen(PaintKit::withAlpha(0, 0.35), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(PaintKit::withAlpha(0, 0.35));
    p.drawPath(shape.translated(0, 1));
    const QColor light = QColor(base).lighter(125);
    const QColor dark = QColor(base).darker(125);
    QLinearGradient fill(0, 3, 0, 33);
    fill.setColorAt(0, light);
    fill.setColorAt(1, dark);
    p.setPen(QPen(QBrush(fill), 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(fill);
    p.drawPath(shape);
    p.setPen(QPen(PaintKit::withAlpha(0xffffff, 0.35), 1));
    p.setBrush(Qt::NoBrush);
    if (icon != MessageIcon::Warning)
        p.drawArc(QRectF(4.5, 4.5, 27, 27), 40 * 16, 100 * 16);
}

void messageMark(QPainter& p, MessageIcon icon) {
    const QColor white(kText);
    switch (icon) {
    case MessageIcon::Notice:
        strokeLine(p, {18, 10}, {18, 20}, white, 3.4);
        p.setPen(Qt::NoPen);
        p.setBrush(white);
        p.drawEllipse(QPointF(18, 25.5), 2.1, 2.1);
        break;
    case MessageIcon::Warning: {
        const QColor ink(58, 40, 10);
        strokeLine(p, {18, 13}, {18, 21}, ink, 3.2);
        p.setPen(Qt::NoPen);
        p.setBrush(ink);
        p.drawEllipse(QPointF(18, 26), 1.9, 1.9);
        break;
    }
    case MessageIcon::Error:
        strokeLine(p, {12.5, 12.5}, {23.5, 23.5}, white, 3.4);
        strokeLine(p, {23.5, 12.5}, {12.5, 23.5}, white, 3.4);
        break;
    case MessageIcon::Question: {
        QPainterPath hook;
        hook.moveTo(13, 14);
        hook.arcTo(QRectF(13, 9, 10, 10), 180, -250);
        hook.lineTo(18, 21);
        p.setPen(QPen(white, 3.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(Qt::NoBrush);
        p.drawPath(hook);
        p.setPen(Qt::NoPen);
        p.setBrush(white);
        p.drawEllipse(QPointF(18, 26), 2.1, 2.1);
        break;
    }
    }
}

void commandOpen(QPainter& p, const QColor& ink, const QColor& accent) {
    QPainterPath back;
    back.moveTo(1.5, 3);
    back.lineTo(6, 3);
    back.lineTo(7.5, 4.5);
    back.lineTo(13.5, 4.5);
    back.lineTo(13.5, 13.5);
    back.lineTo(1.5, 13.5);
    back.closeSubpath();
    p.setPen(QPen(ink, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(PaintKit::withAlpha(ink.rgb(), 0.25));
    p.drawPath(back);
    const QPolygonF front{{4, 7.5}, {15.5, 7.5}, {13.5, 13.5}, {1.5, 13.5}};
    p.setBrush(ink);
    p.drawPolygon(front);
    p.setPen(QPen(accent, 1.2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(5.5, 10.5), QPointF(11.5, 10.5));
}

void commandView(QPainter& p, const QColor& ink, const QColor& accent) {
    QPainterPath eye;
    eye.moveTo(1, 8);
    eye.quadTo(8, 0.5, 15, 8);
    eye.quadTo(8, 15.5, 1, 8);
    p.setPen(QPen(ink, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(PaintKit::withAlpha(ink.rgb(), 0.18));
    p.drawPath(eye);
    p.setPen(Qt::NoPen);
    p.setBrush(accent);
    p.drawEllipse(QPointF(8, 8), 3, 3);
    p.setBrush(PaintKit::withAlpha(0, 0.6));
    p.drawEllipse(QPointF(8, 8), 1.3, 1.3);
}

void commandExtract(QPainter& p, const QColor& ink, const QColor& accent) {
    p.setPen(QPen(ink, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawPolyline(QPolygonF{{2, 9.5}, {2, 14}, {14, 14}, {14, 9.5}});
    p.setPen(QPen(accent, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawLine(QPointF(8, 1.5), QPointF(8, 10.5));
    p.drawPolyline(QPolygonF{{4.5, 7.5}, {8, 11}, {11.5, 7.5}});
}

void commandViewMode(QPainter& p, const QColor& ink, const QColor& accent) {
    p.setPen(Qt::NoPen);
    const QPointF corners[] = {{2, 2}, {9, 2}, {2, 9}, {9, 9}};
    for (int i = 0; i < 4; ++i) {
        p.setBrush(i == 0 ? accent : ink);
        p.drawRoundedRect(QRectF(corners[i], QSizeF(5, 5)), 1, 1);
    }
}

void disc(QPainter& p, QPointF centre, qreal radius, const QColor& ink) {
    p.setPen(QPen(ink, 1.1));
    p.setBrush(PaintKit::withAlpha(ink.rgb(), 0.3));
    p.drawEllipse(centre, radius, radius);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawEllipse(centre, radius * 0.42, radius * 0.42);
    p.setBrush(PaintKit::withAlpha(0, 0.55));
    p.drawEllipse(centre, radius * 0.16, radius * 0.16);
}

void commandBurn(QPainter& p, const QColor& ink) {
    disc(p, {6.5, 9.5}, 5.5, ink);
    QPainterPath flame;
    flame.moveTo(12.5, 1);
    flame.cubicTo(15.5, 4, 16, 6.5, 14.5, 8.3);
    flame.cubicTo(13.5, 9.5, 11, 9.5, 10.3, 8.2);
    flame.cubicTo(9.5, 6.5, 11, 5.5, 11.5, 4);
    flame.cubicTo(12.3, 3.5, 12.6, 2.3, 12.5, 1);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(kWarning));
    p.drawPath(flame);
}

void commandMount(QPainter& p, const QColor& ink, const QColor& accent) {
    // A disc going into the slot of a drive.
    p.save();
    p.setClipRect(QRectF(0, 0, 16, 9.6));
    disc(p, {8, 6.5}, 5.5, ink);
    p.restore();
    p.setPen(QPen(ink, 1.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(PaintKit::withAlpha(ink.rgb(), 0.2));
    p.drawRoundedRect(QRectF(1.5, 9.5, 13, 5), 1, 1);
    p.setPen(Qt::NoPen);
    p.setBrush(accent);
    p.drawEllipse(QPointF(12, 12), 0.9, 0.9);
}
} // namespace

void GlyphPainter::caption(QPainter& p, const QRectF& b, CaptionGlyph glyph, const QColor& colour) {
    p.save();
    p.setBrush(Qt::NoBrush);
    switch (glyph) {
    case CaptionGlyph::Minimise:
        p.fillRect(QRectF(b.left(), b.bottom() - 2, b.width(), 1.5), colour);
        break;
    case CaptionGlyph::Maximise:
        p.setPen(QPen(colour, 1));
        p.drawRect(b.adjusted(0.5, 0.5, -0.5, -0.5));
        p.fillRect(QRectF(b.left(), b.top(), b.width(), 2), colour);
        break;
    case CaptionGlyph::Restore:
        p.setPen(QPen(colour, 1));
        p.drawPolyline(QPolygonF{{b.left() + 2.5, b.top() + 2},
                                 {b.left() + 2.5, b.top() + 0.5},
                                 {b.right() - 0.5, b.top() + 0.5},
                                 {b.right() - 0.5, b.bottom() - 2.5},
                                 {b.right() - 2, b.bottom() - 2.5}});
        p.drawRect(QRectF(b.left() + 0.5, b.top() + 2.5, b.width() - 3, b.height() - 3));
        p.fillRect(QRectF(b.left(), b.top() + 2, b.width() - 2, 2), colour);
        break;
    case CaptionGlyph::Close:
        strokeLine(p, b.topLeft() + QPointF(0.5, 0.5), b.bottomRight() - QPointF(0.5, 0.5), colour,
                   1.5);
        strokeLine(p, b.topRight() + QPointF(-0.5, 0.5), b.bottomLeft() + QPointF(0.5, -0.5),
                   colour, 1.5);
        break;
    case CaptionGlyph::Update:
        captionUpdate(p, b, colour);
        break;
    }
    p.restore();
}

QImage GlyphPainter::message(QSize size, MessageIcon icon) {
    QImage image = PaintKit::canvas(size);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size.width() / kMessageGrid, size.height() / kMessageGrid);
    messageBadge(p, icon);
    messageMark(p, icon);
    return image;
}

void GlyphPainter::command(QPainter& p, const QRectF& box, CommandIcon icon, const QColor& accent) {
    p.save();
    p.translate(box.topLeft());
    p.scale(box.width() / kCommandGrid, box.height() / kCommandGrid);
    const QColor ink(kGlyph);
    switch (icon) {
    case CommandIcon::Open:
        commandOpen(p, ink, accent);
        break;
    case CommandIcon::View:
        commandView(p, ink, accent);
        break;
    case CommandIcon::Extract:
        commandExtract(p, ink, accent);
        break;
    case CommandIcon::ViewMode:
        commandViewMode(p, ink, accent);
        break;
    case CommandIcon::Burn:
        commandBurn(p, ink);
        break;
    case CommandIcon::Mount:
        commandMount(p, ink, accent);
        break;
    }
    p.restore();
}

QImage GlyphPainter::document(QSize size) {
    QImage image = PaintKit::canvas(size);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size.width() / 30.0, size.height() / 30.0);
    QPainterPath page;
    page.moveTo(7.5, 3.5);
    page.lineTo(18.5, 3.5);
    page.lineTo(23.5, 8.5);
    page.lineTo(23.5, 26.5);
    page.lineTo(7.5, 26.5);
    page.closeSubpath();
    p.setPen(QPen(QColor(24, 26, 28), 1));
    p.setBrush(PaintKit::vertical(3, 27, qRgb(244, 246, 247), qRgb(200, 206, 211)));
    p.drawPath(page);
    p.setBrush(QColor(168, 176, 183));
    p.drawPolygon(QPolygonF{{18.5, 3.5}, {18.5, 8.5}, {23.5, 8.5}});
    p.setRenderHint(QPainter::Antialiasing, false);
    p.fillRect(QRect(10, 12, 10, 2), QColor(kAccent));
    for (int y : {16, 19, 22})
        p.fillRect(QRect(10, y, y == 22 ? 7 : 10, 1), QColor(142, 150, 157));
    return image;
}

namespace {

// A page with a folded corner at (x, y) on the 48-unit grid, 20 by 26.
void drawPage(QPainter& p, qreal x, qreal y, QRgb top, QRgb bottom) {
    QPainterPath page;
    page.moveTo(x, y);
    page.lineTo(x + 14, y);
    page.lineTo(x + 20, y + 6);
    page.lineTo(x + 20, y + 26);
    page.lineTo(x, y + 26);
    page.closeSubpath();
    p.setPen(QPen(QColor(kOutline), 1));
    p.setBrush(PaintKit::vertical(int(y), int(y + 26), top, bottom));
    p.drawPath(page);
    p.setBrush(QColor(168, 176, 183));
    p.drawPolygon(QPolygonF{{x + 14, y}, {x + 14, y + 6}, {x + 20, y + 6}});
    p.setPen(QPen(QColor(142, 150, 157), 1));
    for (qreal line : {12.5, 16.5, 20.5})
        p.drawLine(QPointF(x + 4, y + line), QPointF(x + (line > 20 ? 11 : 15), y + line));
}

} // namespace

QImage GlyphPainter::replace(QSize size) {
    QImage image = PaintKit::canvas(size);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size.width() / 48.0, size.height() / 48.0);
    // The page already on the disk, greyed, behind; the page from the image in front.
    drawPage(p, 4.5, 4.5, qRgb(176, 182, 187), qRgb(132, 139, 145));
    drawPage(p, 23.5, 17.5, qRgb(244, 246, 247), qRgb(200, 206, 211));
    // The arrow from the new page round to the old one.
    QPainterPath arc;
    arc.moveTo(30, 13);
    arc.cubicTo(36, 9, 42, 10, 42, 15);
    p.setPen(QPen(QColor(kAccentLight), 3, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    p.drawPath(arc);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(kAccentLight));
    p.drawPolygon(QPolygonF{{25, 13}, {31.5, 8.5}, {31.5, 17.5}});
    return image;
}
