// What every shaped dialog of the skin does alike: a backdrop picture that gives the window its
// size, outline and face, placement of children by device-pixel rectangles, centring, and a
// drag by the window's body instead of a caption bar.
#pragma once

#include <QImage>
#include <QRect>

class QMouseEvent;
class QWidget;

// The rectangle from (left, top) up to, not including, (right, bottom), as the skin's
// coordinates are written.
QRect RectFromEdges(int nLeft, int nTop, int nRight, int nBottom);

// The picture flattened on the outline key, so that its transparent corners turn key blue;
// premultiplied for drawing. Null if it cannot be read.
QImage LoadShapedBackdrop(const QString& relativePath);
// Sizes the window to the picture (device pixels) and cuts its outline from the key blue
// corners. A null picture leaves size and outline alone.
void ShapeWindowToBackdrop(QWidget* pWindow, const QImage& backdrop);
// Places a child at a rectangle in its parent's device pixels.
void PlaceChild(QWidget* pChild, const QRect& device);
// Centres a top-level window over its parent's window when that is on screen, else on the
// screen's work area.
void CenterWindow(QWidget* pWindow);
// A left press on the window itself starts the window manager's move; false if the press was
// not one, or the platform cannot move windows.
bool StartBodyMove(QWidget* pWindow, const QMouseEvent* pEvent);
