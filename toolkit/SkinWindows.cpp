#include "SkinWindows.h"

#include "DevicePixels.h"
#include "SkinImages.h"
#include "SkinRegions.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>

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
        pWindow->setMask(ToLogical(outline, dpr));
    }
}

void PlaceChild(QWidget* pChild, const QRect& device) {
    pChild->setGeometry(ToLogical(device, DevicePixelRatioOf(pChild->parentWidget())));
}

void CenterWindow(QWidget* pWindow) {
    const QWidget* pOwner =
        pWindow->parentWidget() != nullptr ? pWindow->parentWidget()->window() : nullptr;
    QRect area;
    if (pOwner != nullptr && pOwner->isVisible() && !pOwner->isMinimized()) {
        area = pOwner->frameGeometry();
    } else if (const QScreen* pScreen = QGuiApplication::primaryScreen()) {
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
