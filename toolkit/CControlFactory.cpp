#include "CControlFactory.h"

#include "CAlphaButton.h"
#include "CAlphaStatic.h"
#include "CApProgressCtrl.h"
#include "CGButton.h"
#include "CGStatic.h"
#include "DevicePixels.h"
#include "SkinImages.h"
#include "SkinWindows.h"

int32_t CControlFactory::LoadBackdrop(const QString& relativePath) {
    m_backdrop = FlattenImage(LoadInstallImage(relativePath, false), kFlattenWhite)
                     .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return m_backdrop.isNull() ? kStatusFailed : kStatusOk;
}

void CControlFactory::ScaleBackdrop(double scale) {
    m_backdrop = ScalePicture(m_backdrop, scale);
}

int32_t CControlFactory::SetUpAlphaButton(CAlphaButton* pButton, const QString& stripPath,
                                          const QString& caption, uint32_t nTipTextId,
                                          COLORREF textColour) {
    if (pButton == nullptr) {
        return kStatusInvalidArgument;
    }
    const bool bLoaded = pButton->LoadStrip(stripPath, true, false, false);
    pButton->SetCaption(caption);
    if (nTipTextId != 0) {
        pButton->SetTipById(nTipTextId, true);
    }
    pButton->SetTextColour(textColour);
    return bLoaded ? kStatusOk : kStatusFailed;
}

int32_t CControlFactory::CreateAlphaButton(const QRect& rect, QWidget* pParent, int nId,
                                           CAlphaButton** ppOut, const QString& stripPath,
                                           const QString& caption, uint32_t nTipTextId,
                                           COLORREF textColour) {
    if (ppOut == nullptr || *ppOut != nullptr) {
        return kStatusInvalidArgument;
    }
    auto* pButton = new CAlphaButton(pParent);
    pButton->Create(caption, kWsVisible, rect, pParent, nId);
    *ppOut = pButton;
    return SetUpAlphaButton(pButton, stripPath, caption, nTipTextId, textColour);
}

int32_t CControlFactory::CreateGButton(const QRect& rect, QWidget* pParent, int nId,
                                       CGButton** ppOut, const QString& stripPath, int nState,
                                       uint32_t nTipTextId, bool bCheckButton, bool bShow,
                                       uint32_t nStyle, const QFont* pFont) {
    if (ppOut == nullptr || *ppOut != nullptr) {
        return kStatusInvalidArgument;
    }
    QImage strip;
    const bool bLoaded = LoadPremultipliedBitmap(stripPath, true, strip);
    auto* pButton = new CGButton(pParent);
    pButton->CreateWindow(pParent, QString(), nStyle, nId, false);
    pButton->SetImage(rect.x(), rect.y(), strip, rect.width(), rect.height(), nState,
                      strip.height(), nTipTextId, bCheckButton, bShow, m_backdrop);
    if (pFont != nullptr) {
        pButton->SetFont(*pFont);
    }
    *ppOut = pButton;
    return bLoaded ? kStatusOk : kStatusFailed;
}

int32_t CControlFactory::CreateGStatic(const QRect& rect, QWidget* pParent, int nId,
                                       CGStatic** ppOut, const QString& imagePath) {
    if (ppOut == nullptr || *ppOut != nullptr) {
        return kStatusInvalidArgument;
    }
    auto* pStatic = new CGStatic(pParent, nId);
    pStatic->move(ToLogical(rect, DevicePixelRatioOf(pParent)).topLeft());
    pStatic->SetBackdrop(m_backdrop);
    *ppOut = pStatic;
    if (imagePath.isEmpty()) {
        pStatic->resize(ToLogical(rect.size(), DevicePixelRatioOf(pParent)));
        return kStatusOk;
    }
    QImage image;
    if (!LoadPremultipliedBitmap(imagePath, true, image)) {
        pStatic->resize(ToLogical(rect.size(), DevicePixelRatioOf(pParent)));
        return kStatusFailed;
    }
    pStatic->SetImage(image, image.width(), image.height());
    return kStatusOk;
}

int32_t CControlFactory::CreateAlphaStatic(const QRect& rect, QWidget* pParent, int nId,
                                           CAlphaStatic** ppOut, const QString& text,
                                           COLORREF textColour, uint32_t nStyle,
                                           const QFont* pFont) {
    if (ppOut == nullptr || *ppOut != nullptr) {
        return kStatusInvalidArgument;
    }
    auto* pStatic = new CAlphaStatic(text, nStyle, pParent, nId);
    pStatic->setGeometry(ToLogical(rect, DevicePixelRatioOf(pParent)));
    pStatic->SetTransparent(true);
    pStatic->SetTextColour(textColour);
    if (pFont != nullptr) {
        pStatic->SetFont(*pFont);
    }
    *ppOut = pStatic;
    return kStatusOk;
}

int32_t CControlFactory::CreateProgressCtrl(const QRect& rect, QWidget* pParent, int nId,
                                            CApProgressCtrl** ppOut, const QString& backgroundPath,
                                            const QString& unitPath) {
    if (ppOut == nullptr || *ppOut != nullptr) {
        return kStatusInvalidArgument;
    }
    auto* pBar = new CApProgressCtrl(pParent);
    pBar->Create(rect, pParent, nId);
    *ppOut = pBar;
    return pBar->LoadImages(backgroundPath, unitPath) ? kStatusOk : kStatusFailed;
}
