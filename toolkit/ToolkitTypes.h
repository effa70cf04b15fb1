// Colours, status results and message numbers that every skinned control shares.
#pragma once

#include <QColor>
#include <cstdint>

// A colour as 0x00BBGGRR, the form in which the skin's colours and key colours are written.
using COLORREF = uint32_t;

inline constexpr COLORREF kKeyBlue = 0x00FF0000;    // shaped dialogs' outline
inline constexpr COLORREF kKeyMagenta = 0x00FF00FF; // shaped buttons' outline
inline constexpr COLORREF kTextWhite = 0x00FFFFFF;
inline constexpr COLORREF kTextDisabled = 0x00D6D6D6;
inline constexpr COLORREF kTextDisabledCombo = 0x00817874;
inline constexpr COLORREF kTextDisabledAlphaButton = 0x00646464;

// Backgrounds that pictures are flattened on (ARGB). Black keeps the alpha channel for
// blending; the others make the picture opaque.
inline constexpr QRgb kFlattenKeepAlpha = 0xFF000000;
inline constexpr QRgb kFlattenWhite = 0xFFFFFFFF;
inline constexpr QRgb kFlattenKeyBlue = 0xFF0000FF;

inline constexpr int32_t kStatusOk = 0;
inline constexpr int32_t kStatusInvalidArgument = static_cast<int32_t>(0x80070057);
inline constexpr int32_t kStatusFailed = static_cast<int32_t>(0x80004005);

inline QColor ColorFromRef(COLORREF colour) {
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

// The pixel as a colour reference: its alpha is dropped, as a device pixel has none.
inline COLORREF RefFromRgb(QRgb pixel) {
    return static_cast<COLORREF>(qRed(pixel)) | static_cast<COLORREF>(qGreen(pixel)) << 8 |
           static_cast<COLORREF>(qBlue(pixel)) << 16;
}
