#include "SkinRegions.h"

namespace {

class KeyTest {
public:
    KeyTest(const QImage& image, COLORREF key)
        : m_image(image.convertToFormat(QImage::Format_ARGB32)), m_key(key) {}
    bool IsKey(int x, int y) const {
        return RefFromRgb(reinterpret_cast<const QRgb*>(m_image.constScanLine(y))[x]) == m_key;
    }
    int Width() const { return m_image.width(); }
    int Height() const { return m_image.height(); }

private:
    QImage m_image;
    COLORREF m_key;
};

// The first solid pixel of row y from the left, or -1.
int FirstSolidFromLeft(const KeyTest& pixels, int y) {
    for (int x = 0; x < pixels.Width(); ++x) {
        if (!pixels.IsKey(x, y)) {
            return x;
        }
    }
    return -1;
}

int FirstSolidFromRight(const KeyTest& pixels, int y) {
    for (int x = pixels.Width() - 1; x >= 0; --x) {
        if (!pixels.IsKey(x, y)) {
            return x;
        }
    }
    return -1;
}

// One corner: the rows in the order of nStep from nFirstRow, cutting from the left or right edge.
void CutCorner(const KeyTest& pixels, QRegion& region, int nFirstRow, int nStep, bool bLeft) {
    const int nWidth = pixels.Width();
    for (int y = nFirstRow; y >= 0 && y < pixels.Height(); y += nStep) {
        const int x = bLeft ? FirstSolidFromLeft(pixels, y) : FirstSolidFromRight(pixels, y);
        if (x < 0) {
            continue;
        }
        const QRect strip = bLeft ? QRect(0, y, x, 1) : QRect(x + 1, y, nWidth - x - 1, 1);
        region = region.xored(QRegion(strip));
        if (x == (bLeft ? 0 : nWidth - 1)) {
            return;
        }
    }
}

QRegion CutCorners(const KeyTest& pixels) {
    QRegion region(0, 0, pixels.Width(), pixels.Height());
    const int nLastRow = pixels.Height() - 1;
    CutCorner(pixels, region, 0, 1, true);
    CutCorner(pixels, region, 0, 1, false);
    CutCorner(pixels, region, nLastRow, -1, true);
    CutCorner(pixels, region, nLastRow, -1, false);
    return region;
}

} // namespace

QRegion CreateRegionFromBitmap(const QImage& bitmap, COLORREF key) {
    if (bitmap.isNull()) {
        return {};
    }
    return CutCorners(KeyTest(bitmap, key));
}

QRegion CreateRegionFromImage(const QImage& image, COLORREF key) {
    return CreateRegionFromBitmap(image, key);
}

QRegion CreateSpanRegion(const QImage& image, int nWidth, int nHeight, COLORREF key) {
    if (image.isNull()) {
        return {};
    }
    const KeyTest pixels(image, key);
    const int nRight = qMin(nWidth, pixels.Width());
    QRegion region;
    for (int y = 0; y < qMin(nHeight, pixels.Height()); ++y) {
        int nFirst = -1;
        int nLast = -1;
        for (int x = 0; x < nRight; ++x) {
            if (pixels.IsKey(x, y)) {
                continue;
            }
            if (nFirst < 0) {
                nFirst = x;
            } else {
                nLast = x;
            }
        }
        if (nLast > nFirst) {
            region += QRect(nFirst, y, nLast - nFirst, 1);
        }
    }
    return region;
}
