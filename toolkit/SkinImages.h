// Finding, loading and preparing the skin's pictures. Paths are relative to the program's
// folder and may use '\' as separator. A picture that cannot be read comes back null, and
// every user goes on without it.
#pragma once

#include "ToolkitTypes.h"

#include <QImage>
#include <QString>

class QPainter;
class QWidget;

// The folder that relative picture paths start from: the program's own, unless a test or a
// tool running outside the installed layout names another. Empty returns to the program's.
void SetInstallFolder(const QString& folder);
QString InstallFolder();
QString InstallPath(const QString& relativePath);

// The picture as decoded, straight alpha (Format_ARGB32); null if it cannot be read. With
// bUseColourManagement an embedded colour profile is converted to sRGB.
QImage LoadInstallImage(const QString& relativePath, bool bUseColourManagement);
// The same for an absolute path.
QImage LoadImageFile(const QString& path, bool bUseColourManagement);

// The picture laid over an opaque background (ARGB). Black keeps the alpha channel, so that
// the picture can still be blended; any other colour gives an opaque picture.
QImage FlattenImage(const QImage& image, QRgb background);

// Loads a picture for blending: flattened on black, and, with bPremultiply and a path holding
// ".png" (exactly so: ".PNG" is left alone), premultiplied with integer division. The result
// is marked premultiplied only when it is. False, out untouched, for a null path or a picture
// that cannot be read.
bool LoadPremultipliedBitmap(const QString& relativePath, bool bPremultiply, QImage& out);
// B, G and R times A / 255, rounded down; A stays.
void PremultiplyPixels(QImage& image);

// Copies four pieces of a strip, at x = 0, w, 2w, 3w; a null out pointer is skipped.
void SplitStateStrip(const QImage& strip, int nPieceWidth, int nPieceHeight, QImage* pNormal,
                     QImage* pHover, QImage* pPressed, QImage* pDisabled);
// Copies the top left width by height of bitmap to (x, y), leaving out the pixels of the key.
void DrawColourKeyed(COLORREF key, QPainter& dest, int x, int y, int nWidth, int nHeight,
                     const QImage& bitmap);
// The piece of the parent's backdrop under the control, the size of the control in device
// pixels; pixels outside the backdrop are transparent.
QImage CaptureParentBackground(const QWidget* pControl, const QImage& backdrop);

// Writes image as "jpg" (quality 90), "bmp", "png" or "tif"; any other extension fails.
bool SaveImageAs(const QImage& image, const QString& path, const QString& extension);
// Scales image to fit nWidth by nHeight with its own proportions, then saves as above.
bool SaveThumbnailAs(const QImage& image, int nWidth, int nHeight, const QString& path,
                     const QString& extension);
