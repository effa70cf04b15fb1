#include "SkinWindows.h"

#include "CDisplayScale.h"
#include "DevicePixels.h"
#include "SkinImages.h"
#include "SkinRegions.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <QtMath>
#include <vector>

namespace {

// Which device pixels of a size the outline keeps, row by row.
class DeviceCoverage {
public:
    DeviceCoverage(const QRegion& outline, QSize size)
        : m_size(size), m_bits(static_cast<size_t>(size.width()) * size.height(), false) {
        for (const QRect& rect : outline) {
            const QRect inside = rect.intersected(QRect(QPoint(0, 0), size));
            for (int y = inside.top(); y <= inside.bottom(); ++y) {
                for (int x = inside.left(); x <= inside.right(); ++x) {
                    m_bits[Index(x, y)] = true;
                }
            }
        }
    }
    // Every device pixel that the block touches is kept; none outside the size is.
    bool Covers(int x0, int y0, int x1, int y1) const {
        if (x0 < 0 || y0 < 0 || x1 >= m_size.width() || y1 >= m_size.height()) {
            return false;
        }
        for (int y = y0; y <= y1; ++y) {
            for (int x = x0; x <= x1; ++x) {
                if (!m_bits[Index(x, y)]) {
                    return false;
                }
            }
        }
        return true;
    }

private:
    size_t Index(int x, int y) const { return static_cast<size_t>(y) * m_size.width() + x; }
    QSize m_size;
    std::vector<bool> m_bits;
};

// The outline on Qt's logical grid. A logical pixel that spans several device pixels stays
// only if all of them do, so that no key colour and nothing past the picture shows at a
// fractional scale.
QRegion LogicalOutline(const QRegion& device, QSize size, qreal dpr) {
    if (dpr == 1.0) {
        return device;
    }
    const DeviceCoverage coverage(device, size);
    const auto first = [dpr](int n) { return qFloor(n * dpr); };
    const auto last = [dpr](int n) { return qCeil((n + 1) * dpr) - 1; };
    const QSize logical = ToLogical(size, dpr);
    QRegion outline;
    for (int ly = 0; ly < logical.height(); ++ly) {
        int nRunStart = -1;
        for (int lx = 0; lx <= logical.width(); ++lx) {
            const bool bKept =
                lx < logical.width() && coverage.Covers(first(lx), first(ly), last(lx), last(ly));
            if (bKept && nRunStart < 0) {
                nRunStart = lx;
            } else if (!bKept && nRunStart >= 0) {
                outline += QRect(nRunStart, ly, lx - nRunStart, 1);
                nRunStart = -1;
            }
        }
    }
    return outline;
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
