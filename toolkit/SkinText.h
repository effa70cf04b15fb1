// Text drawn by the rules of the skinned controls' draw flags, measured with QFontMetrics.
#pragma once

#include <QFont>
#include <QRect>
#include <QString>
#include <cstdint>

class QPainter;

namespace dt {
inline constexpr uint32_t kLeft = 0x0;
inline constexpr uint32_t kCenter = 0x1;
inline constexpr uint32_t kRight = 0x2;
inline constexpr uint32_t kVCenter = 0x4;
inline constexpr uint32_t kBottom = 0x8;
inline constexpr uint32_t kWordBreak = 0x10;
inline constexpr uint32_t kSingleLine = 0x20;
inline constexpr uint32_t kCalcRect = 0x400;
inline constexpr uint32_t kNoPrefix = 0x800;
inline constexpr uint32_t kEditControl = 0x2000;
inline constexpr uint32_t kEndEllipsis = 0x8000;
inline constexpr uint32_t kWordEllipsis = 0x40000;
} // namespace dt

// Draws text in rect by the flags and returns the rectangle the text takes. With
// dt::kCalcRect, or with no painter, it only measures: the result then starts at rect's top
// left.
QRect DrawSkinText(QPainter* pPainter, const QFont& font, const QRect& rect, uint32_t nFlags,
                   const QString& text);
