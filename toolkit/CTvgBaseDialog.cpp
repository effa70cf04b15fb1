#include "CTvgBaseDialog.h"

#include "CAlphaButton.h"
#include "CAlphaStatic.h"
#include "CGStatic.h"
#include "CWindowMessage.h"
#include "DevicePixels.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "SkinFonts.h"
#include "SkinWindows.h"
#include "ToolkitHooks.h"
#include "TvnText.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

namespace {

constexpr char16_t kMinimiseStrip[] = u"Image\\Dialogs\\BaseDialog\\btn_caption_under.png";
constexpr char16_t kCloseStrip[] = u"Image\\Dialogs\\BaseDialog\\btn_caption_close.png";
constexpr char16_t kExtraStrip[] = u"Image\\Dialogs\\BaseDialog\\btn_bb.png";
constexpr char16_t kButtonStrip[] = u"Image\\Common\\button\\btn.png";
constexpr char16_t kIconPicture[] = u"Image\\icon_tvn_24.png";
constexpr char16_t kLogoPicture[] = u"Image\\Dialogs\\BaseDialog\\icon_tvg_logo.png";
constexpr char16_t kProgramIcon[] = u"ovrin";

// Where each control is made, before the backdrop's size places the caption row and buttons.
const QRect kMinimiseRect = RectFromEdges(621, 11, 641, 31);
const QRect kCloseRect = RectFromEdges(648, 11, 668, 31);
const QRect kFirstRect = RectFromEdges(380, 392, 516, 416);
const QRect kSecondRect = RectFromEdges(524, 392, 660, 416);
const QRect kTitleRect = RectFromEdges(287, 11, 687, 33);
const QRect kIconRect = RectFromEdges(5, 5, 29, 29);
const QRect kLogoRect = RectFromEdges(42, 14, 135, 31);
const QRect kExtraRect = RectFromEdges(594, 11, 614, 31);

// The lay-out: caption row from the right edge, push buttons from the bottom right.
constexpr int kCaptionTop = 11;
constexpr int kCaptionSide = 20;
constexpr int kExtraFromRight = 81;
constexpr int kMinimiseFromRight = 54;
constexpr int kCloseFromRight = 27;
constexpr QSize kTitleSize(400, 22);
constexpr QSize kButtonSize(136, 24);
constexpr int kButtonsFromRight = 23;
constexpr int kButtonsFromBottom = 36;
constexpr int kButtonPitch = 143;

QString TextOrEmpty(uint32_t nId) {
    return nId == 0 ? QString() : TvnText(nId);
}

} // namespace

CTvgBaseDialog::CTvgBaseDialog(QWidget* pParent)
    : CTvgDialog(pParent, Qt::Dialog | Qt::FramelessWindowHint), m_scale(DialogScale()) {
    if (qApp != nullptr) {
        m_windowIcon = QApplication::windowIcon().isNull()
                           ? QIcon::fromTheme(QString::fromUtf16(kProgramIcon))
                           : QApplication::windowIcon();
    }
}

CTvgBaseDialog::~CTvgBaseDialog() {
    delete m_pIcon;
    delete m_pExtra;
    delete m_pMinimise;
    delete m_pClose;
    delete m_pFirst;
    delete m_pSecond;
    delete m_pLogo;
    delete m_pTitle;
}

bool CTvgBaseDialog::OnInitDialog() {
    CTvgDialog::OnInitDialog();
    if (!m_windowIcon.isNull()) {
        setWindowIcon(m_windowIcon);
    }
    return true;
}

int32_t CTvgBaseDialog::CreateControls(uint32_t nTitleText, const QString& backdropPath,
                                       uint32_t nFirstText, int nFirstId, uint32_t nSecondText,
                                       int nSecondId, int x, int y, uint32_t nStyle) {
    return CreateControls(TextOrEmpty(nTitleText), backdropPath, TextOrEmpty(nFirstText), nFirstId,
                          TextOrEmpty(nSecondText), nSecondId, x, y, nStyle);
}

int32_t CTvgBaseDialog::CreateControls(const QString& title, const QString& backdropPath,
                                       const QString& firstCaption, int nFirstId,
                                       const QString& secondCaption, int nSecondId, int x, int y,
                                       uint32_t nStyle) {
    m_nOffsetX = x;
    m_nOffsetY = y;
    setWindowTitle(title);
    if (!backdropPath.isEmpty()) {
        m_factory.LoadBackdrop(backdropPath);
        m_factory.ScaleBackdrop(m_scale);
    }
    MakeFonts();
    CreateCaptionButtons(nStyle);
    CreatePictures(nStyle);
    if ((nStyle & kTitle) != 0) {
        m_factory.CreateAlphaStatic(ScaleRect(kTitleRect, m_scale), this, 0, &m_pTitle, title,
                                    kTextWhite, ss::kCenter, &m_titleFont);
    }
    CreatePushButtons((nStyle & kFirstButton) != 0 ? firstCaption : QString(), nFirstId,
                      (nStyle & kSecondButton) != 0 ? secondCaption : QString(), nSecondId);
    return backdropPath.isEmpty() ? kStatusOk : LoadBackdrop(backdropPath);
}

void CTvgBaseDialog::MakeFonts() {
    m_largeFont = ScaleFont(MakeDialogFont(kLargeTitleFontNumerator, kWeightBold), m_scale);
    m_titleFont = ScaleFont(MakeDialogFont(kTitleFontNumerator, kWeightNormal), m_scale);
    m_bodyFont = ScaleFont(MakeDialogFont(kBodyFontNumerator, kWeightNormal), m_scale);
}

void CTvgBaseDialog::CreateCaptionButtons(uint32_t nStyle) {
    if ((nStyle & kExtra) != 0) {
        m_factory.CreateAlphaButton(kExtraRect, this, kExtraId, &m_pExtra,
                                    QString::fromUtf16(kExtraStrip), QString(), tvn::kTipUpdate,
                                    kTextWhite);
        ApplyUpdateSetting();
    }
    if ((nStyle & kMinimise) != 0) {
        m_factory.CreateAlphaButton(kMinimiseRect, this, kMinimiseId, &m_pMinimise,
                                    QString::fromUtf16(kMinimiseStrip), QString(),
                                    tvn::kTipMinimize, kTextWhite);
    }
    if ((nStyle & kClose) != 0) {
        m_factory.CreateAlphaButton(kCloseRect, this, kCloseId, &m_pClose,
                                    QString::fromUtf16(kCloseStrip), QString(), tvn::kTipClose,
                                    kTextWhite);
    }
}

void CTvgBaseDialog::CreatePictures(uint32_t nStyle) {
    if ((nStyle & kLogo) != 0) {
        m_factory.CreateGStatic(ScaleRect(kLogoRect.translated(0, Raise()), m_scale), this, 0,
                                &m_pLogo, QString::fromUtf16(kLogoPicture));
        m_pLogo->ScaleImage(m_scale);
    }
    if ((nStyle & kIcon) != 0) {
        m_factory.CreateGStatic(ScaleRect(kIconRect, m_scale), this, 0, &m_pIcon,
                                QString::fromUtf16(kIconPicture));
        m_pIcon->ScaleImage(m_scale);
    }
}

void CTvgBaseDialog::CreatePushButtons(const QString& firstCaption, int nFirstId,
                                       const QString& secondCaption, int nSecondId) {
    const QString strip = QString::fromUtf16(kButtonStrip);
    if (!firstCaption.isEmpty() && nFirstId != 0) {
        m_factory.CreateAlphaButton(kFirstRect, this, nFirstId, &m_pFirst, strip, firstCaption, 0,
                                    kTextWhite);
        m_pFirst->SetFont(m_bodyFont);
    }
    if (!secondCaption.isEmpty() && nSecondId != 0) {
        m_factory.CreateAlphaButton(kSecondRect, this, nSecondId, &m_pSecond, strip, secondCaption,
                                    0, kTextWhite);
        m_pSecond->SetFont(m_bodyFont);
    }
}

// The update button works only while the user lets the program look for updates and the
// program has not turned the button off.
void CTvgBaseDialog::ApplyUpdateSetting() {
    const QString key = QString::fromUtf16(kSettingsKey);
    DwordReg checkUpdate(RegRoot::CurrentUser, key, QStringLiteral("CheckUpdate"), false,
                         m_pRegistry);
    if (checkUpdate.Read() && checkUpdate.Get() == 0) {
        m_pExtra->Enable(false);
        return;
    }
    DwordReg disableUpgrade(RegRoot::CurrentUser, key, QStringLiteral("DisableUpgradeBtn"), false,
                            m_pRegistry);
    if (disableUpgrade.Read() && disableUpgrade.Get() != 0) {
        m_pExtra->Enable(false);
    }
}

int32_t CTvgBaseDialog::LoadBackdrop(const QString& relativePath) {
    if (relativePath.isEmpty()) {
        return kStatusInvalidArgument;
    }
    const QImage backdrop = LoadShapedBackdrop(relativePath);
    if (backdrop.isNull()) {
        return kStatusFailed;
    }
    m_memory = ScaleShapedPicture(backdrop, m_scale);
    m_size = backdrop.size();
    move(0, 0);
    ShapeWindowToBackdrop(this, m_memory);
    LayOut(m_size.width(), m_size.height());
    CenterWindow(this);
    return kStatusOk;
}

void CTvgBaseDialog::LayOut(int nWidth, int nHeight) {
    const int y = m_nOffsetY + kCaptionTop + Raise();
    const auto place = [this](QWidget* pControl, const QRect& rect) {
        if (pControl != nullptr) {
            PlaceChild(pControl, ScaleRect(rect, m_scale));
        }
    };
    const QSize caption(kCaptionSide, kCaptionSide);
    place(m_pTitle, QRect(QPoint((nWidth - kTitleSize.width()) / 2 + m_nOffsetX, y), kTitleSize));
    place(m_pExtra, QRect(QPoint(nWidth - kExtraFromRight + m_nOffsetX, y), caption));
    place(m_pMinimise, QRect(QPoint(nWidth - kMinimiseFromRight + m_nOffsetX, y), caption));
    place(m_pClose, QRect(QPoint(nWidth - kCloseFromRight + m_nOffsetX, y), caption));
    const int nButtons = m_pSecond != nullptr ? 2 : 1;
    const int xFirst = nWidth - kButtonsFromRight - kButtonSize.width() * nButtons;
    const int yButtons = nHeight - kButtonsFromBottom;
    place(m_pFirst, QRect(QPoint(xFirst, yButtons), kButtonSize));
    place(m_pSecond, QRect(QPoint(xFirst + kButtonPitch, yButtons), kButtonSize));
}

QSize CTvgBaseDialog::BackdropSize() const {
    return ScaleSize(m_size, m_scale);
}

void CTvgBaseDialog::ShowControls(uint32_t nStyle, bool bShow) {
    const std::pair<uint32_t, QWidget*> controls[] = {
        {kMinimise, m_pMinimise},   {kClose, m_pClose}, {kFirstButton, m_pFirst},
        {kSecondButton, m_pSecond}, {kTitle, m_pTitle}, {kIcon, m_pIcon},
        {kLogo, m_pLogo},           {kExtra, m_pExtra}};
    for (const auto& [nBit, pControl] : controls) {
        if ((nStyle & nBit) != 0 && pControl != nullptr) {
            pControl->setVisible(bShow);
        }
    }
}

void CTvgBaseDialog::GetControl(uint32_t nStyleBit, QWidget** ppOut) const {
    switch (nStyleBit) {
    case kMinimise:
        *ppOut = m_pMinimise;
        break;
    case kClose:
        *ppOut = m_pClose;
        break;
    case kFirstButton:
        *ppOut = m_pFirst;
        break;
    case kSecondButton:
        *ppOut = m_pSecond;
        break;
    case kTitle:
        *ppOut = m_pTitle;
        break;
    case kIcon:
        *ppOut = m_pIcon;
        break;
    case kLogo:
        if (m_pLogo != nullptr) {
            *ppOut = m_pLogo;
        }
        break;
    case kExtra:
        *ppOut = m_pExtra;
        break;
    default:
        break;
    }
}

void CTvgBaseDialog::SetControlText(uint32_t nStyleBit, const QString& text) {
    if (nStyleBit == kFirstButton && m_pFirst != nullptr) {
        m_pFirst->SetCaption(text);
    } else if (nStyleBit == kSecondButton && m_pSecond != nullptr) {
        m_pSecond->SetCaption(text);
    } else if (nStyleBit == kTitle && m_pTitle != nullptr) {
        m_pTitle->SetText(text);
    }
}

bool CTvgBaseDialog::OnCommand(int nId) {
    switch (nId) {
    case kCloseId:
        OnCancel();
        return true;
    case kMinimiseId:
        Minimise();
        return true;
    case kExtraId: // the family's upgrade dialog; this program has none
    case kAboutId: // kept from the program while a dialog is up
        return true;
    default:
        return false;
    }
}

// A minimised dialog takes its program along, so that no window of it stays on screen alone.
void CTvgBaseDialog::Minimise() {
    showMinimized();
    QWidget* pMain = MainWindow();
    if (pMain != nullptr && pMain->isVisible()) {
        pMain->showMinimized();
        return;
    }
    if (pMain != nullptr) {
        pMain->hide();
    }
    QWidget* pOwner = parentWidget() != nullptr ? parentWidget()->window() : nullptr;
    if (pOwner != nullptr && pOwner->isVisible()) {
        pOwner->showMinimized();
    }
}

bool CTvgBaseDialog::event(QEvent* pEvent) {
    if (pEvent->type() == CWindowMessage::TypeOf(kWmCommand)) {
        OnCommand(static_cast<int>(static_cast<CWindowMessage*>(pEvent)->WParam() & 0xFFFF));
        return true;
    }
    return CTvgDialog::event(pEvent);
}

void CTvgBaseDialog::paintEvent(QPaintEvent*) {
    PaintBackdrop(this, m_memory);
}

void CTvgBaseDialog::mousePressEvent(QMouseEvent* pEvent) {
    if (!StartBodyMove(this, pEvent)) {
        CTvgDialog::mousePressEvent(pEvent);
    }
}

void CTvgBaseDialog::keyPressEvent(QKeyEvent* pEvent) {
    // Enter presses no button in a skinned dialog.
    if (pEvent->key() == Qt::Key_Return || pEvent->key() == Qt::Key_Enter) {
        return;
    }
    CTvgDialog::keyPressEvent(pEvent);
}
