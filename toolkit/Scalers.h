// Small fixed-point (16.16) scalers of raw pixel rows, and the 32-bit pixel reads they work on.
// Pixels are bytes B, G, R(, A), as QImage keeps ARGB32 and BGR888 on little-endian machines.
#pragma once

#include <QImage>
#include <QPainter>
#include <cstdint>
#include <vector>

// Source rows of width x 4 bytes. The destination's alpha bytes are not written.
void ScaleBilinear32(uint8_t* pDest, const uint8_t* pSource, int nDestWidth, int nDestHeight,
                     int nSourceWidth, int nSourceHeight);
// Source rows of width x 3 bytes padded to a multiple of 4; 32-bit destination.
void ScaleBilinear24(uint8_t* pDest, const uint8_t* pSource, int nDestWidth, int nDestHeight,
                     int nSourceWidth, int nSourceHeight);
void ScaleNearest32(uint8_t* pDest, const uint8_t* pSource, int nDestWidth, int nDestHeight,
                    int nSourceWidth, int nSourceHeight);

// Scales source (32-bit, or 24-bit BGR888) to target with the fitting scaler and draws it
// with mode. False for any other depth.
bool DrawScaled(QPainter& painter, const QRect& target, const QImage& source,
                QPainter::CompositionMode mode = QPainter::CompositionMode_Source);

enum class RowOrder { TopDown = 1, BottomUp = 2 };
// The picture's pixels as 32-bit values in the given row order, every alpha byte set to 255.
std::vector<uint32_t> ReadPixels32(const QImage& image, RowOrder order);
