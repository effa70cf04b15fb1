#include "ButtonPainter.h"

#include "PaintKit.h"
#include "SkinPalette.h"

#include <QPainter>
#include <cmath>

using namespace SkinPalette;

namespace {
constexpr qreal kPushRadius = 3;
constexpr qreal kCaptionRadius = 4;
constexpr qreal kCommandRadius = 3;
constexpr int kCommandPadding = 7;
constexpr int kCommandGap = 6;
constexpr int kLabelPixels = 12;

struct Face {
    QRgb top;
    QRgb bottom;
    QRgb border;
    qreal highlight; // opacity of the light line under the top edge
};

Face pushFace(ButtonTone tone, int state) {
    if (state == ButtonPainter::kStateDisabled)
        return {kButtonDisabled, kButtonDisabled, qRgb(46, 48, 50), 0.06};
    if (state == ButtonPainter::kStatePressed)
        return {kAccentDark, kAccent, qRgb(18, 70, 67), 0.0};
    if (tone == ButtonTone::Primary) {
        return state == 1 ? Face{qRgb(66, 180, 172), kAccent, kAccentDark, 0.35}
                          : Face{kAccent, qRgb(36, 132, 127), kAccentDark, 0.3};
    }
    return state == 1 ? Face{kButtonHoverTop, kButtonHoverBottom, kButtonBorder, 0.3}
                      : Face{kButtonTop, kButtonBottom, kButtonBorder, 0.22};
}

void paintFace(QPainter& p, const QRectF& r, const Face& face, qreal radius) {
    const QRectF outer = r.adjusted(0.5, 0.5, -0.5, -0.5);
    p.setPen(QPen(QColor(face.border), 1));
    p.setBrush(PaintKit::vertical(r.top(), r.bottom(), face.top, face.bottom));
    p.drawRoundedRect(outer, radius, radius);
    if (face.highlight > 0) {
        p.fillRect(QRectF(r.left() + radius, r.top() + 1, r.width() - 2 * radius, 1),
                   PaintKit::withAlpha(0xffffff, face.highlight));
    } else {
        p.fillRect(QRectF(r.left() + radius, r.top() + 1, r.width() - 2 * radius, 1),
                   PaintKit::withAlpha(0, 0.25));
    }
}

QColor captionInk(int state) {
    if (state == ButtonPainter::kStateDisabled)
        return QColor(kGlyphDisabled);
    return state == 0 ? QColor(kGlyph) : QColor(kText);
}

void paintCaptionBack(QPainter& p, const QRectF& r, CaptionGlyph glyph, int state) {
    const bool close = glyph == CaptionGlyph::Close;
    if (state == 1) {
        p.setPen(Qt::NoPen);
        p.setBrush(close ? QColor(kDanger) : PaintKit::withAlpha(0xffffff, 0.16));
        p.drawRoundedRect(r, kCaptionRadius, kCaptionRadius);
    } else if (state == ButtonPainter::kStatePressed) {
        p.setPen(Qt::NoPen);
        p.setBrush(close ? QColor(kDangerDark) : QColor(kAccent));
        p.drawRoundedRect(r, kCaptionRadius, kCaptionRadius);
        p.fillRect(QRectF(r.left() + kCaptionRadius, r.top(), r.width() - 2 * kCaptionRadius, 1),
                   PaintKit::withAlpha(0, 0.3));
    }
}

void paintCommandBack(QPainter& p, const QRectF& r, int state) {
    const QRectF outer = r.adjusted(0.5, 0.5, -0.5, -0.5);
    if (state == 1) {
        p.setPen(QPen(PaintKit::withAlpha(0xffffff, 0.2), 1));
        p.setBrush(PaintKit::withAlpha(0xffffff, 0.1));
        p.drawRoundedRect(outer, kCommandRadius, kCommandRadius);
    } else if (state == ButtonPainter::kStatePressed) {
        paintFace(p, r, Face{kAccentDark, kAccent, qRgb(18, 70, 67), 0.0}, kCommandRadius);
    }
}

void paintChevron(QPainter& p, QPointF centre, qreal scale, const QColor& ink) {
    const qreal half = 2.5 * scale;
    p.setPen(QPen(ink, 1.2 * scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawPolyline(QPolygonF{centre + QPointF(-half, -half / 2), centre + QPointF(0, half / 2),
                             centre + QPointF(half, -half / 2)});
}
} // namespace

QImage ButtonPainter::push(QSize piece, int states, ButtonTone tone) {
    const QImage image =
        PaintKit::strip(piece, states, [tone](QPainter& p, const QRectF& r, int s) {
            paintFace(p, r, pushFace(tone, s), kPushRadius);
        });
    return PaintKit::transparentKeyed(image, kKeyButton);
}

QImage ButtonPainter::caption(QSize piece, int states, CaptionGlyph glyph, int firstState) {
    const QImage image = PaintKit::strip(
        piece, states, [glyph, firstState](QPainter& p, const QRectF& r, int index) {
            const int state = firstState + index;
            paintCaptionBack(p, r, glyph, state);
            const qreal side = 10;
            const QRectF box(r.left() + std::floor((r.width() - side) / 2),
                             r.top() + std::floor((r.height() - side) / 2), side, side);
            GlyphPainter::caption(p, box, glyph, captionInk(state));
        });
    return PaintKit::transparentKeyed(image, kKeyButton);
}

QImage ButtonPainter::command(QSize piece, int states, CommandIcon icon, const QString& label,
                              qreal scale, bool menu) {
    const QImage image = PaintKit::strip(piece, states, [&](QPainter& p, const QRectF& r, int s) {
        paintCommandBack(p, r, s);
        const qreal iconSide = 16 * scale;
        const qreal left = r.left() + std::round(kCommandPadding * scale);
        const QRectF iconBox(left, r.top() + std::round((r.height() - iconSide) / 2), iconSide,
                             iconSide);
        const QColor accent(s == ButtonPainter::kStatePressed ? kText : kAccentLight);
        GlyphPainter::command(p, iconBox, icon, accent);
        const QColor ink(kText);
        p.setPen(ink);
        p.setFont(PaintKit::font(static_cast<int>(std::lround(kLabelPixels * scale)), false));
        const qreal textLeft = iconBox.right() + std::round(kCommandGap * scale);
        p.drawText(QRectF(textLeft, r.top(), r.right() - textLeft, r.height()),
                   Qt::AlignLeft | Qt::AlignVCenter, label);
        if (menu) {
            const qreal x = r.right() - std::round(kCommandPadding * scale) - 2.5 * scale;
            paintChevron(p, QPointF(x, r.center().y() + 0.5), scale, ink);
        }
    });
    return PaintKit::transparentKeyed(image, kKeyButton);
}
