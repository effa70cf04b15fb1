#include "ProgramIcon.h"

#include "SkinPalette.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QTextStream>
#include <cmath>
#include <numbers>

using namespace SkinPalette;

namespace {
enum class Shape { RoundRect, Circle, Wedge };
enum class Fill { None, Solid, Linear, Radial };

struct Stop {
    qreal at;
    QRgb colour;
    qreal opacity;
};

struct Layer {
    Shape shape;
    QRectF box;            // round rectangle, or the square around a circle or wedge
    qreal corner = 0;      // round rectangle
    qreal fromDegrees = 0; // wedge, clockwise from the right
    qreal toDegrees = 0;
    Fill fill = Fill::Solid;
    QPointF from; // linear start, or radial centre
    QPointF to;   // linear end
    qreal gradientRadius = 0;
    std::vector<Stop> stops; // one stop for a solid fill
    QRgb stroke = 0;
    qreal strokeWidth = 0;
    qreal strokeOpacity = 0;
};

QRectF around(qreal cx, qreal cy, qreal r) {
    return {cx - r, cy - r, 2 * r, 2 * r};
}

constexpr qreal kCentre = 128;
constexpr qreal kDisc = 90;

const std::vector<Layer>& layers() {
    static const std::vector<Layer> all = {
        {Shape::RoundRect,
         {16, 16, 224, 224},
         46,
         0,
         0,
         Fill::Linear,
         {0, 16},
         {0, 240},
         0,
         {{0, qRgb(82, 88, 96), 1}, {1, qRgb(42, 45, 49), 1}},
         qRgb(16, 17, 19),
         3,
         0.8},
        {Shape::RoundRect,
         {19.5, 19.5, 217, 217},
         43,
         0,
         0,
         Fill::None,
         {},
         {},
         0,
         {},
         0xffffff,
         2,
         0.14},
        {Shape::Circle,
         around(kCentre, kCentre + 6, kDisc + 2),
         0,
         0,
         0,
         Fill::Solid,
         {},
         {},
         0,
         {{0, 0, 0.35}}},
        {Shape::Circle,
         around(kCentre, kCentre, kDisc),
         0,
         0,
         0,
         Fill::Radial,
         {98, 88},
         {},
         170,
         {{0, qRgb(247, 249, 250), 1}, {0.55, qRgb(200, 208, 214), 1}, {1, qRgb(146, 158, 167), 1}},
         qRgb(20, 22, 24),
         2,
         0.6},
        {Shape::Wedge,
         around(kCentre, kCentre, kDisc - 2),
         0,
         -72,
         -38,
         Fill::Solid,
         {},
         {},
         0,
         {{0, 0xffffff, 0.6}}},
        {Shape::Wedge,
         around(kCentre, kCentre, kDisc - 2),
         0,
         108,
         142,
         Fill::Solid,
         {},
         {},
         0,
         {{0, 0xffffff, 0.5}}},
        {Shape::Wedge,
         around(kCentre, kCentre, kDisc - 2),
         0,
         12,
         44,
         Fill::Solid,
         {},
         {},
         0,
         {{0, kAccentLight, 0.3}}},
        {Shape::Wedge,
         around(kCentre, kCentre, kDisc - 2),
         0,
         196,
         222,
         Fill::Solid,
         {},
         {},
         0,
         {{0, kNotice, 0.22}}},
        {Shape::Circle,
         around(kCentre, kCentre, 40),
         0,
         0,
         0,
         Fill::Linear,
         {0, 88},
         {0, 168},
         0,
         {{0, kAccentLight, 1}, {1, kAccentDark, 1}},
         qRgb(16, 72, 68),
         2,
         0.9},
        {Shape::Circle,
         around(kCentre, kCentre, 21),
         0,
         0,
         0,
         Fill::Solid,
         {},
         {},
         0,
         {{0, qRgb(206, 214, 219), 1}},
         qRgb(16, 72, 68),
         1.5,
         0.6},
        {Shape::Circle,
         around(kCentre, kCentre, 11),
         0,
         0,
         0,
         Fill::Solid,
         {},
         {},
         0,
         {{0, qRgb(46, 50, 54), 1}},
         qRgb(0, 0, 0),
         2,
         0.4},
    };
    return all;
}

QPointF onCircle(const QRectF& box, qreal degrees) {
    const qreal a = degrees * std::numbers::pi / 180.0;
    return {box.center().x() + box.width() / 2 * std::cos(a),
            box.center().y() + box.height() / 2 * std::sin(a)};
}

QPainterPath pathOf(const Layer& l) {
    QPainterPath path;
    switch (l.shape) {
    case Shape::RoundRect:
        path.addRoundedRect(l.box, l.corner, l.corner);
        break;
    case Shape::Circle:
        path.addEllipse(l.box);
        break;
    case Shape::Wedge:
        path.moveTo(l.box.center());
        path.lineTo(onCircle(l.box, l.fromDegrees));
        path.arcTo(l.box, -l.fromDegrees, -(l.toDegrees - l.fromDegrees));
        path.closeSubpath();
        break;
    }
    return path;
}

QColor colourOf(QRgb rgb, qreal opacity) {
    QColor c(rgb);
    c.setAlphaF(static_cast<float>(opacity));
    return c;
}

QBrush brushOf(const Layer& l) {
    if (l.fill == Fill::None)
        return Qt::NoBrush;
    if (l.fill == Fill::Solid)
        return colourOf(l.stops.front().colour, l.stops.front().opacity);
    QGradient gradient = l.fill == Fill::Linear
                             ? QGradient(QLinearGradient(l.from, l.to))
                             : QGradient(QRadialGradient(l.from, l.gradientRadius));
    for (const Stop& s : l.stops)
        gradient.setColorAt(s.at, colourOf(s.colour, s.opacity));
    return gradient;
}

QString hex(QRgb rgb) {
    return QColor(rgb).name(QColor::HexRgb);
}

QString num(qreal v) {
    return QString::number(v, 'g', 6);
}

void writeGradient(QTextStream& out, const Layer& l, int index) {
    if (l.fill == Fill::Linear) {
        out << "    <linearGradient id=\"g" << index << "\" gradientUnits=\"userSpaceOnUse\" x1=\""
            << num(l.from.x()) << "\" y1=\"" << num(l.from.y()) << "\" x2=\"" << num(l.to.x())
            << "\" y2=\"" << num(l.to.y()) << "\">\n";
    } else {
        out << "    <radialGradient id=\"g" << index << "\" gradientUnits=\"userSpaceOnUse\" cx=\""
            << num(l.from.x()) << "\" cy=\"" << num(l.from.y()) << "\" r=\""
            << num(l.gradientRadius) << "\">\n";
    }
    for (const Stop& s : l.stops) {
        out << "      <stop offset=\"" << num(s.at) << "\" stop-color=\"" << hex(s.colour)
            << "\" stop-opacity=\"" << num(s.opacity) << "\"/>\n";
    }
    out << (l.fill == Fill::Linear ? "    </linearGradient>\n" : "    </radialGradient>\n");
}

QString svgShape(const Layer& l) {
    switch (l.shape) {
    case Shape::RoundRect:
        return QStringLiteral("<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" rx=\"%5\"")
            .arg(num(l.box.x()), num(l.box.y()), num(l.box.width()), num(l.box.height()),
                 num(l.corner));
    case Shape::Circle:
        return QStringLiteral("<circle cx=\"%1\" cy=\"%2\" r=\"%3\"")
            .arg(num(l.box.center().x()), num(l.box.center().y()), num(l.box.width() / 2));
    case Shape::Wedge: {
        const QPointF a = onCircle(l.box, l.fromDegrees);
        const QPointF b = onCircle(l.box, l.toDegrees);
        const int large = l.toDegrees - l.fromDegrees > 180 ? 1 : 0;
        return QStringLiteral("<path d=\"M%1 %2 L%3 %4 A%5 %5 0 %6 1 %7 %8 Z\"")
            .arg(num(l.box.center().x()), num(l.box.center().y()), num(a.x()), num(a.y()),
                 num(l.box.width() / 2), QString::number(large), num(b.x()), num(b.y()));
    }
    }
    return {};
}

QString svgPaint(const Layer& l, int index) {
    QString paint;
    if (l.fill == Fill::None)
        paint = QStringLiteral(" fill=\"none\"");
    else if (l.fill == Fill::Solid)
        paint = QStringLiteral(" fill=\"%1\" fill-opacity=\"%2\"")
                    .arg(hex(l.stops.front().colour), num(l.stops.front().opacity));
    else
        paint = QStringLiteral(" fill=\"url(#g%1)\"").arg(index);
    if (l.strokeWidth > 0) {
        paint += QStringLiteral(" stroke=\"%1\" stroke-width=\"%2\" stroke-opacity=\"%3\"")
                     .arg(hex(l.stroke), num(l.strokeWidth), num(l.strokeOpacity));
    }
    return paint;
}
} // namespace

QString ProgramIcon::svg() {
    QString text;
    QTextStream out(&text);
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kGrid << "\" height=\"" << kGrid
        << "\" viewBox=\"0 0 " << kGrid << ' ' << kGrid << "\">\n";
    out << "  <title>Ovrin</title>\n  <defs>\n";
    const auto& all = layers();
    for (int i = 0; i < static_cast<int>(all.size()); ++i) {
        if (all[i].fill == Fill::Linear || all[i].fill == Fill::Radial)
            writeGradient(out, all[i], i);
    }
    out << "  </defs>\n";
    for (int i = 0; i < static_cast<int>(all.size()); ++i)
        out << "  " << svgShape(all[i]) << svgPaint(all[i], i) << "/>\n";
    out << "</svg>\n";
    return text;
}

QImage ProgramIcon::png(int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(qreal(size) / kGrid, qreal(size) / kGrid);
    for (const Layer& l : layers()) {
        const QPen pen = l.strokeWidth > 0
                             ? QPen(colourOf(l.stroke, l.strokeOpacity), l.strokeWidth)
                             : QPen(Qt::NoPen);
        p.setPen(pen);
        p.setBrush(brushOf(l));
        p.drawPath(pathOf(l));
    }
    p.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

QImage ProgramIcon::onGround(const QImage& ground) {
    QImage image = ground.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter p(&image);
    p.drawImage(0, 0, png(ground.width()));
    p.end();
    return image.convertToFormat(QImage::Format_RGB32).convertToFormat(QImage::Format_ARGB32);
}

std::vector<int> ProgramIcon::desktopSizes() {
    return {16, 22, 24, 32, 48, 64, 128, 256};
}
