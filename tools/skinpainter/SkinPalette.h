#pragma once

#include <QRgb>

// The skin's colours in one place, so that the whole look can be turned to another tint by
// changing a few values and painting again.
namespace SkinPalette {

// Key colours: what a window or button outline cuts away.
inline constexpr QRgb kKeyDialog = qRgb(0, 0, 255);
inline constexpr QRgb kKeyButton = qRgb(255, 0, 255);

// Surfaces, dark slate. The body is the colour that file icons are composed on, so that they
// sit on the dialog without a seam; the command bar colour is the strip under the caption.
inline constexpr QRgb kBody = qRgb(61, 63, 64);
inline constexpr QRgb kCommandBar = qRgb(83, 88, 96);
inline constexpr QRgb kCaptionTop = qRgb(76, 80, 87);
inline constexpr QRgb kCaptionBottom = qRgb(54, 57, 62);
inline constexpr QRgb kFooterTop = qRgb(53, 55, 56);
inline constexpr QRgb kFooterBottom = qRgb(46, 48, 49);
inline constexpr QRgb kFrameSide = qRgb(54, 57, 62);

// Edges: a dark outline, a light line along the top inside it, etched separators.
inline constexpr QRgb kOutline = qRgb(22, 23, 25);
inline constexpr QRgb kHighlight = qRgb(112, 117, 124);
inline constexpr QRgb kEtchDark = qRgb(32, 34, 36);
inline constexpr QRgb kEtchLight = qRgb(78, 81, 84);

// The one accent: pressed controls and progress.
inline constexpr QRgb kAccent = qRgb(46, 158, 152);
inline constexpr QRgb kAccentLight = qRgb(74, 186, 178);
inline constexpr QRgb kAccentDark = qRgb(29, 114, 110);

// Push buttons.
inline constexpr QRgb kButtonTop = qRgb(96, 101, 106);
inline constexpr QRgb kButtonBottom = qRgb(74, 78, 82);
inline constexpr QRgb kButtonHoverTop = qRgb(114, 120, 126);
inline constexpr QRgb kButtonHoverBottom = qRgb(88, 93, 98);
inline constexpr QRgb kButtonDisabled = qRgb(70, 72, 74);
inline constexpr QRgb kButtonBorder = qRgb(30, 32, 34);

// Glyphs and text.
inline constexpr QRgb kText = qRgb(255, 255, 255);
inline constexpr QRgb kGlyph = qRgb(226, 230, 233);
inline constexpr QRgb kGlyphDisabled = qRgb(118, 122, 126);
inline constexpr QRgb kDanger = qRgb(196, 70, 64);
inline constexpr QRgb kDangerDark = qRgb(150, 46, 42);

// Message icons.
inline constexpr QRgb kNotice = qRgb(56, 142, 214);
inline constexpr QRgb kWarning = qRgb(233, 168, 46);
inline constexpr QRgb kError = qRgb(210, 68, 60);
inline constexpr QRgb kQuestion = kAccent;

} // namespace SkinPalette
