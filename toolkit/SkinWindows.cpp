#include "SkinWindows.h"

#include "CDisplayScale.h"
#include "DevicePixels.h"
#include "SkinImages.h"
#include "SkinRegions.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <QtMath>

namespace {

// The outline on Qt's logical grid. Where a logical pixel covers parts of several device pixels
// the corners' cut is rounded outward, so that no key colour shows at a scaled corner; a last
// partial row or column stays in the window, and PaintBackdrop covers it.
QRegion LogicalOutline(const QRegion& outline, QSize device, qreal dpr) {
    const QRegion cut = QRegion(QRect(QPoint(0, 0), device)) - outline;
    QRegion logicalCut;
    for (const QRect& rect : cut) {
        logicalCut += QRect(
            QPoint(qFloor(rect.left() / dpr), qFloor(rect.top() / dpr)),
            QPoint(qCeil((rect.right() + 1) / dpr) - 1, qCeil((rect.bottom() + 1) / dpr) - 1));
    }
    return QRegion(QRect(QPoint(0, 0), ToLogical(device, dpr))) - logicalCut;
}

constexpr int kOpaque = 255;

int ScaleEdge(int nEdge, double scale) {
    return static_cast<int>(nEdge * scale);
}

} // namespace

double DialogScale() {
    return GetDpiScale(false);
}

QRect ScaleRect(const QRect& rect, double scale) {
    return QRect(QPoint(ScaleEdge(rect.left(), scale), ScaleEdge(rect.top(), scale)),
                 QPoint(ScaleEdge(rect.left() + rect.width(), scale) - 1,
                        ScaleEdge(rect.top() + rect.height(), scale) - 1));
}

QSize ScaleSize(const QSize& size, double scale) {
    return QSize(ScaleEdge(size.width(), scale), ScaleEdge(size.height(), scale));
}

QImage ScalePicture(const QImage& picture, double scale) {
    if (scale == 1.0 || picture.isNull()) {
        return picture;
    }
    return picture.scaled(ScaleSize(picture.size(), scale), Qt::IgnoreAspectRatio,
                          Qt::SmoothTransformation);
}

QImage ScaleShapedPicture(const QImage& keyed, double scale) {
    if (scale == 1.0 || keyed.isNull()) {
        return keyed;
    }
    const QRgb key = ColorFromRef(kKeyBlue).rgb();
    // The key turns transparent, so that filtering fades the edge out instead of tinting it.
    QImage cut = keyed.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < cut.height(); ++y) {
        auto* pLine = reinterpret_cast<QRgb*>(cut.scanLine(y));
        for (int x = 0; x < cut.width(); ++x) {
            if ((pLine[x] | 0xFF000000U) == key) {
                pLine[x] = 0;
            }
        }
    }
    QImage scaled = ScalePicture(cut, scale);
    for (int y = 0; y < scaled.height(); ++y) {
        auto* pLine = reinterpret_cast<QRgb*>(scaled.scanLine(y));
        for (int x = 0; x < scaled.width(); ++x) {
            if (qAlpha(pLine[x]) < kOpaque) {
                pLine[x] = key;
            }
        }
    }
    return scaled;
}

QFont ScaleFont(const QFont& font, double scale) {
    QFont scaled = font;
    if (font.pixelSize() > 0) {
        scaled.setPixelSize(qRound(font.pixelSize() * scale));
    }
    return scaled;
}

QRect RectFromEdges(int nLeft, int nTop, int nRight, int nBottom) {
    return QRect(nLeft, nTop, nRight - nLeft, nBottom - nTop);
}

QImage LoadShapedBackdrop(const QString& relativePath) {
    return FlattenImage(LoadInstallImage(relativePath, false), kFlattenKeyBlue)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

void ShapeWindowToBackdrop(QWidget* pWindow, const QImage& backdrop) {
    if (backdrop.isNull()) {
        return;
    }
    const qreal dpr = DevicePixelRatioOf(pWindow);
    pWindow->resize(ToLogical(backdrop.size(), dpr));
    const QRegion outline = CreateRegionFromBitmap(backdrop, kKeyBlue);
    if (!outline.isEmpty()) {
        pWindow->setMask(LogicalOutline(outline, backdrop.size(), dpr));
    }
}

void PaintBackdrop(QWidget* pWindow, const QImage& picture) {
    QPainter painter(pWindow);
    PaintInDevicePixels(painter, pWindow);
    painter.drawImage(QPoint(0, 0), picture);
    // At a fractional scale the window can be part of a logical pixel larger than its picture:
    // the picture's last row and column stretch over the rest.
    const QSize device = DeviceSize(pWindow);
    const int nWidth = picture.width();
    const int nHeight = picture.height();
    if (device.height() > nHeight && nHeight > 0) {
        painter.drawImage(QRect(0, nHeight, nWidth, device.height() - nHeight), picture,
                          QRect(0, nHeight - 1, nWidth, 1));
    }
    if (device.width() > nWidth && nWidth > 0) {
        painter.drawImage(QRect(nWidth, 0, device.width() - nWidth, device.height()), picture,
                          QRect(nWidth - 1, 0, 1, nHeight));
    }
}

void PlaceChild(QWidget* pChild, const QRect& device) {
    pChild->setGeometry(ToLogical(device, DevicePixelRatioOf(pChild->parentWidget())));
}

void CenterWindow(QWidget* pWindow) {
    const QWidget* pOwner = pWindow->parentWidget() != nullptr ? pWindow->parentWidget()->window()
                                                               : QApplication::activeWindow();
    QRect area;
    if (pOwner != nullptr && pOwner != pWindow && pOwner->isVisible() && !pOwner->isMinimized()) {
        area = pOwner->frameGeometry();
    } else if (const QScreen* pScreen = pWindow->screen(); pScreen != nullptr) {
        area = pScreen->availableGeometry();
    }
    if (area.isValid()) {
        QRect placed(QPoint(0, 0), pWindow->size());
        placed.moveCenter(area.center());
        pWindow->move(placed.topLeft());
    }
}

bool StartBodyMove(QWidget* pWindow, const QMouseEvent* pEvent) {
    if (pEvent->button() != Qt::LeftButton || pWindow->windowHandle() == nullptr) {
        return false;
    }
    return pWindow->windowHandle()->startSystemMove();
}
