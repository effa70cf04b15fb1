// What every shaped dialog of the skin does alike: a backdrop picture that gives the window its
// size, outline and face, placement of children by device-pixel rectangles, centring, and a
// drag by the window's body instead of a caption bar.
#pragma once

#include <QFont>
#include <QImage>
#include <QRect>

class QMouseEvent;
class QWidget;

// The rectangle from (left, top) up to, not including, (right, bottom), as the skin's
// coordinates are written.
QRect RectFromEdges(int nLeft, int nTop, int nRight, int nBottom);

// A dialog is laid out at 1.0 and drawn at this scale: the DPI scale while the program follows
// the screen, else 1.0. Pictures, children, fonts and window grow together, so that nothing
// that the dialog places by its numbers falls outside a window that kept its 1.0 size.
double DialogScale();
// Each edge scaled, not the size, so that rectangles that touch at 1.0 still touch; rounded as
// CAlphaButton::Create rounds, so that a dialog's own children line up with its buttons.
QRect ScaleRect(const QRect& rect, double scale);
QSize ScaleSize(const QSize& size, double scale);
// Smoothly filtered, once, from the picture composed at 1.0; the same picture at 1.0.
QImage ScalePicture(const QImage& picture, double scale);
// A picture flattened on the outline key, scaled smoothly without blending the key into the
// body: every pixel that the key would tint joins the cut, which stays exact key blue so that
// the outline is cut from the scaled picture itself.
QImage ScaleShapedPicture(const QImage& keyed, double scale);
// A pixel-sized font, its pixel size scaled so that the text stays crisp at the larger size.
QFont ScaleFont(const QFont& font, double scale);

// The picture flattened on the outline key, so that its transparent corners turn key blue;
// premultiplied for drawing. Null if it cannot be read.
QImage LoadShapedBackdrop(const QString& relativePath);
// Sizes the window to the picture (device pixels) and cuts its outline from the key blue
// corners. A null picture leaves size and outline alone.
void ShapeWindowToBackdrop(QWidget* pWindow, const QImage& backdrop);
// Paints the picture that ShapeWindowToBackdrop sized the window to, as the window's face.
void PaintBackdrop(QWidget* pWindow, const QImage& picture);
// Places a child at a rectangle in its parent's device pixels.
void PlaceChild(QWidget* pChild, const QRect& device);
// Centres a top-level window over its parent's window, or the active window for one without a
// parent, when that is on screen; else on the screen's work area.
void CenterWindow(QWidget* pWindow);
// A left press on the window itself starts the window manager's move; false if the press was
// not one, or the platform cannot move windows.
bool StartBodyMove(QWidget* pWindow, const QMouseEvent* pEvent);
