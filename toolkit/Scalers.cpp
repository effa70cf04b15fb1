#include "Scalers.h"

namespace {

constexpr int kFractionBits = 16;
constexpr uint32_t kOne = 1u << kFractionBits;
constexpr uint32_t kFractionMask = kOne - 1;
constexpr int kColourChannels = 3;
constexpr uint32_t kOpaqueAlpha = 0xFF000000u;

uint32_t Blend(uint32_t a, uint32_t b, uint32_t fraction) {
    return (a * (kOne - fraction) + b * fraction) >> kFractionBits;
}

// The common loop of the bilinear scalers; nPixelBytes and nRowBytes describe the source.
void ScaleBilinear(uint8_t* pDest, const uint8_t* pSource, int nDestWidth, int nDestHeight,
                   int nSourceWidth, int nSourceHeight, int nPixelBytes, int nRowBytes) {
    if (pDest == nullptr || pSource == nullptr || nDestWidth <= 0 || nDestHeight <= 0 ||
        nSourceWidth <= 0 || nSourceHeight <= 0) {
        return;
    }
    const uint32_t stepX = (static_cast<uint32_t>(nSourceWidth) << kFractionBits) / nDestWidth;
    const uint32_t stepY = (static_cast<uint32_t>(nSourceHeight) << kFractionBits) / nDestHeight;
    uint32_t y = 0;
    for (int row = 0; row < nDestHeight; ++row, y += stepY) {
        const int sy = static_cast<int>(y >> kFractionBits);
        const int syNext = sy + 1 < nSourceHeight ? sy + 1 : sy;
        const uint8_t* pRow = pSource + static_cast<ptrdiff_t>(sy) * nRowBytes;
        const uint8_t* pNextRow = pSource + static_cast<ptrdiff_t>(syNext) * nRowBytes;
        uint8_t* pOut = pDest + static_cast<ptrdiff_t>(row) * nDestWidth * 4;
        uint32_t x = 0;
        for (int col = 0; col < nDestWidth; ++col, x += stepX, pOut += 4) {
            const int sx = static_cast<int>(x >> kFractionBits);
            const int sxNext = sx + 1 < nSourceWidth ? sx + 1 : sx;
            for (int c = 0; c < kColourChannels; ++c) {
                const uint32_t top = Blend(pRow[sx * nPixelBytes + c],
                                           pRow[sxNext * nPixelBytes + c], x & kFractionMask);
                const uint32_t bottom =
                    Blend(pNextRow[sx * nPixelBytes + c], pNextRow[sxNext * nPixelBytes + c],
                          x & kFractionMask);
                pOut[c] = static_cast<uint8_t>(Blend(top, bottom, y & kFractionMask));
            }
        }
    }
}

} // namespace

void ScaleBilinear32(uint8_t* pDest, const uint8_t* pSource, int nDestWidth, int nDestHeight,
                     int nSourceWidth, int nSourceHeight) {
    ScaleBilinear(pDest, pSource, nDestWidth, nDestHeight, nSourceWidth, nSourceHeight, 4,
                  nSourceWidth * 4);
}

void ScaleBilinear24(uint8_t* pDest, const uint8_t* pSource, int nDestWidth, int nDestHeight,
                     int nSourceWidth, int nSourceHeight) {
    ScaleBilinear(pDest, pSource, nDestWidth, nDestHeight, nSourceWidth, nSourceHeight, 3,
                  (nSourceWidth * 3 + 3) / 4 * 4);
}

void ScaleNearest32(uint8_t* pDest, const uint8_t* pSource, int nDestWidth, int nDestHeight,
                    int nSourceWidth, int nSourceHeight) {
    if (pDest == nullptr || pSource == nullptr || nDestWidth <= 0 || nDestHeight <= 0 ||
        nSourceWidth <= 0 || nSourceHeight <= 0) {
        return;
    }
    const uint32_t stepX = (static_cast<uint32_t>(nSourceWidth) << kFractionBits) / nDestWidth;
    const uint32_t stepY = (static_cast<uint32_t>(nSourceHeight) << kFractionBits) / nDestHeight;
    const auto* pSourcePixels = reinterpret_cast<const uint32_t*>(pSource);
    auto* pDestPixels = reinterpret_cast<uint32_t*>(pDest);
    uint32_t y = 0;
    for (int row = 0; row < nDestHeight; ++row, y += stepY) {
        const uint32_t* pRow =
            pSourcePixels + static_cast<ptrdiff_t>(y >> kFractionBits) * nSourceWidth;
        uint32_t x = 0;
        for (int col = 0; col < nDestWidth; ++col, x += stepX) {
            *pDestPixels++ = pRow[x >> kFractionBits];
        }
    }
}

bool DrawScaled(QPainter& painter, const QRect& target, const QImage& source,
                QPainter::CompositionMode mode) {
    if (target.isEmpty() || source.isNull()) {
        return false;
    }
    QImage scaled(target.size(), QImage::Format_RGB32);
    scaled.fill(Qt::black);
    if (source.depth() == 32) {
        const std::vector<uint32_t> pixels = ReadPixels32(source, RowOrder::TopDown);
        ScaleBilinear32(scaled.bits(), reinterpret_cast<const uint8_t*>(pixels.data()),
                        target.width(), target.height(), source.width(), source.height());
    } else if (source.format() == QImage::Format_BGR888) {
        ScaleBilinear24(scaled.bits(), source.constBits(), target.width(), target.height(),
                        source.width(), source.height());
    } else {
        return false;
    }
    const QPainter::CompositionMode oldMode = painter.compositionMode();
    painter.setCompositionMode(mode);
    painter.drawImage(target.topLeft(), scaled);
    painter.setCompositionMode(oldMode);
    return true;
}

std::vector<uint32_t> ReadPixels32(const QImage& image, RowOrder order) {
    // 32-bit pictures are read as they are stored, as a device's pixels would be.
    const QImage rows = image.depth() == 32 ? image : image.convertToFormat(QImage::Format_ARGB32);
    std::vector<uint32_t> pixels;
    pixels.reserve(static_cast<size_t>(rows.width()) * rows.height());
    for (int i = 0; i < rows.height(); ++i) {
        const int y = order == RowOrder::TopDown ? i : rows.height() - 1 - i;
        const auto* pRow = reinterpret_cast<const uint32_t*>(rows.constScanLine(y));
        for (int x = 0; x < rows.width(); ++x) {
            pixels.push_back(pRow[x] | kOpaqueAlpha);
        }
    }
    return pixels;
}
