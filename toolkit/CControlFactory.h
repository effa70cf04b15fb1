// Makes a skinned dialog's controls on its backdrop. The dialog loads its backdrop once, then
// creates each control through the factory, which hands the control the backdrop to blend
// over. Every creator refuses (kStatusInvalidArgument) a null or already filled out pointer;
// otherwise it makes the control, stores it and answers kStatusOk, or kStatusFailed when a
// picture could not be read, in which case the control works without it.
#pragma once

#include "ToolkitTypes.h"

#include <QFont>
#include <QImage>
#include <QRect>
#include <QString>

class CAlphaButton;
class CAlphaStatic;
class CApProgressCtrl;
class CGButton;
class CGStatic;
class QWidget;

class CControlFactory {
public:
    // Flattened on white; replaces the old backdrop, or clears it when the picture is missing.
    int32_t LoadBackdrop(const QString& relativePath);
    // The backdrop enlarged by the dialog's scale, so that controls blend over what the dialog
    // paints under them.
    void ScaleBackdrop(double scale);
    const QImage& Backdrop() const { return m_backdrop; }

    // rect in device pixels before the DPI scale; a strip of 4 pictures.
    int32_t CreateAlphaButton(const QRect& rect, QWidget* pParent, int nId, CAlphaButton** ppOut,
                              const QString& stripPath, const QString& caption, uint32_t nTipTextId,
                              COLORREF textColour);
    // The same settings on a button that exists.
    int32_t SetUpAlphaButton(CAlphaButton* pButton, const QString& stripPath,
                             const QString& caption, uint32_t nTipTextId, COLORREF textColour);
    // nStyle: the bs:: text placement flags.
    int32_t CreateGButton(const QRect& rect, QWidget* pParent, int nId, CGButton** ppOut,
                          const QString& stripPath, int nState, uint32_t nTipTextId,
                          bool bCheckButton, bool bShow, uint32_t nStyle, const QFont* pFont);
    // A picture sized from itself at rect's top left; an empty path makes a static without one.
    int32_t CreateGStatic(const QRect& rect, QWidget* pParent, int nId, CGStatic** ppOut,
                          const QString& imagePath);
    // nStyle: the ss:: alignment flags; pFont null keeps the label font.
    int32_t CreateAlphaStatic(const QRect& rect, QWidget* pParent, int nId, CAlphaStatic** ppOut,
                              const QString& text, COLORREF textColour, uint32_t nStyle,
                              const QFont* pFont);

    // Empty paths take the bar's default pictures; kStatusFailed when either is not there.
    int32_t CreateProgressCtrl(const QRect& rect, QWidget* pParent, int nId,
                               CApProgressCtrl** ppOut, const QString& backgroundPath,
                               const QString& unitPath);

private:
    QImage m_backdrop;
};
