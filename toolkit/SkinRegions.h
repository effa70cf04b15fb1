// Window outlines cut from a key colour. The key is compared with each pixel's colour without
// its alpha. Regions are in the picture's pixels.
#pragma once

#include "ToolkitTypes.h"

#include <QImage>
#include <QRegion>

// The full rectangle with its four corners cut: in each corner, row by row from the outer edge
// inwards, the key-coloured run up to the first solid pixel is toggled out of the region, and
// the corner's scan ends at the first row that starts with a solid pixel. A row with no solid
// pixel stays and the scan goes on. The four passes toggle, so a run that two passes cut comes
// back. Empty for a null bitmap, which leaves the window rectangular.
QRegion CreateRegionFromBitmap(const QImage& bitmap, COLORREF key);
// The same on a picture as decoded, before it is flattened.
QRegion CreateRegionFromImage(const QImage& image, COLORREF key);
// The outline of one piece, row by row: from the first solid pixel up to, not over, the last.
// A row with fewer than two solid pixels adds nothing.
QRegion CreateSpanRegion(const QImage& image, int nWidth, int nHeight, COLORREF key);
