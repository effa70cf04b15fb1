#include "SkinText.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStringList>

namespace {

int QtFlagsOf(uint32_t nFlags) {
    int nQt = (nFlags & dt::kCenter) != 0  ? Qt::AlignHCenter
              : (nFlags & dt::kRight) != 0 ? Qt::AlignRight
                                           : Qt::AlignLeft;
    if ((nFlags & dt::kSingleLine) != 0) {
        nQt |= Qt::TextSingleLine;
        nQt |= (nFlags & dt::kVCenter) != 0  ? Qt::AlignVCenter
               : (nFlags & dt::kBottom) != 0 ? Qt::AlignBottom
                                             : Qt::AlignTop;
    } else {
        nQt |= Qt::AlignTop;
        if ((nFlags & dt::kWordBreak) != 0) {
            nQt |= Qt::TextWordWrap;
        }
    }
    if ((nFlags & dt::kNoPrefix) == 0) {
        nQt |= Qt::TextShowMnemonic;
    }
    return nQt;
}

// Each part that is wider than nWidth is cut with an ellipsis.
QString ElideParts(const QString& text, QChar separator, const QFontMetrics& metrics, int nWidth) {
    QStringList parts = text.split(separator);
    for (QString& part : parts) {
        part = metrics.elidedText(part, Qt::ElideRight, nWidth);
    }
    return parts.join(separator);
}

QString ShownText(const QString& text, uint32_t nFlags, const QFontMetrics& metrics, int nWidth) {
    QString shown = text;
    if ((nFlags & dt::kWordEllipsis) != 0) {
        shown = ElideParts(shown, u' ', metrics, nWidth);
    }
    // A text that wraps keeps its words; only whole lines are cut.
    if ((nFlags & dt::kEndEllipsis) != 0 && (nFlags & dt::kWordBreak) == 0) {
        shown = ElideParts(shown, u'\n', metrics, nWidth);
    }
    return shown;
}

} // namespace

QRect DrawSkinText(QPainter* pPainter, const QFont& font, const QRect& rect, uint32_t nFlags,
                   const QString& text) {
    const QFontMetrics metrics(font);
    const int nQtFlags = QtFlagsOf(nFlags);
    const QString shown = ShownText(text, nFlags, metrics, rect.width());
    const QRect bounds = metrics.boundingRect(rect, nQtFlags, shown);
    if (pPainter == nullptr || (nFlags & dt::kCalcRect) != 0) {
        return QRect(rect.topLeft(), bounds.size());
    }
    QRect area = rect;
    if ((nFlags & dt::kEditControl) != 0 && metrics.lineSpacing() > 0) {
        // A line that would show only in part is left out.
        area.setHeight(qMax(metrics.lineSpacing(),
                            area.height() / metrics.lineSpacing() * metrics.lineSpacing()));
    }
    pPainter->save();
    pPainter->setFont(font);
    pPainter->setClipRect(area, Qt::IntersectClip);
    pPainter->drawText(area, nQtFlags, shown);
    pPainter->restore();
    return bounds;
}
