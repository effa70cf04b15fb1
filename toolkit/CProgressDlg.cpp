#include "CProgressDlg.h"

#include "CAlphaButton.h"
#include "CAlphaStatic.h"
#include "CApProgressCtrl.h"
#include "CWindowMessage.h"
#include "DevicePixels.h"
#include "Formatting.h"
#include "SkinFonts.h"
#include "SkinWindows.h"
#include "ToolkitHooks.h"
#include "TvnText.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>

namespace {

constexpr char16_t kBackdropPath[] = u"Image\\Dialogs\\ProgressDialog\\bg_progress_dialog.png";
constexpr char16_t kButtonStrip[] = u"Image\\Common\\button\\btn.png";
constexpr char16_t kCloseStrip[] = u"Image\\Dialogs\\BaseDialog\\btn_caption_close.png";
constexpr char16_t kBarBackground[] = u"Image\\Common\\progressCtrl\\progress_bg_438.png";
constexpr char16_t kBarUnit[] = u"Image\\Common\\progressCtrl\\progress_unit_438.png";

// The window's size when its backdrop cannot be read.
constexpr QSize kTemplateSize(468, 164);
constexpr int kProgressTitleNumerator = 10560;
constexpr int kTitleWidth = 200;
constexpr int kTitleHeight = 20;
constexpr int kTitleTop = 7;
const QRect kTextRect = RectFromEdges(15, 39, 453, 79);
const QRect kBarRect = RectFromEdges(15, 82, 453, 110);
constexpr int kCancelFromRight = 146;
constexpr int kCancelFromBottom = 34;
constexpr QSize kCancelSize(136, 24);
constexpr int kCloseFromRight = 30;
constexpr int kCloseTop = 5;
constexpr int kCaptionButtonSide = 20;
constexpr int kPercent = 100;
// The longest text the label is given, as the label's buffer held.
constexpr int kMaxTextLength = 300;

} // namespace

CProgressDlg::CProgressDlg(QWidget* pParent, const QString& title, QWidget* pNotify)
    : QDialog(pParent != nullptr ? pParent : MainWindow(), Qt::Dialog | Qt::FramelessWindowHint),
      m_scale(DialogScale()), m_pParent(parentWidget()), m_pNotify(pNotify), m_strTitle(title) {
    setModal(false);
    setWindowTitle(title);
    OnInitDialog();
    CenterWindow(this);
}

CProgressDlg::~CProgressDlg() {
    delete m_pTitle;
    delete m_pClose;
    delete m_pText;
    delete m_pBar;
    delete m_pCancel;
}

void CProgressDlg::OnInitDialog() {
    MakeFonts();
    LoadBackdrop();
    CreateChildren();
    m_pText->SetWordEllipsis(true);
}

void CProgressDlg::MakeFonts() {
    m_titleFont = ScaleFont(MakeDialogFont(kProgressTitleNumerator, kWeightNormal), m_scale);
    m_textFont = ScaleFont(MakeDialogFont(kBodyFontNumerator, kWeightNormal), m_scale);
}

void CProgressDlg::LoadBackdrop() {
    const QImage backdrop = LoadShapedBackdrop(QString::fromUtf16(kBackdropPath));
    m_size = backdrop.isNull() ? kTemplateSize : backdrop.size();
    m_memory = ScaleShapedPicture(backdrop, m_scale);
    resize(ToLogical(ScaleSize(m_size, m_scale), DevicePixelRatioOf(this)));
    ShapeWindowToBackdrop(this, m_memory);
}

void CProgressDlg::CreateChildren() {
    const int w = m_size.width();
    const int h = m_size.height();
    m_factory.CreateAlphaStatic(ScaleRect(kTextRect, m_scale), this, 0, &m_pText, m_strText,
                                kTextWhite, ss::kCenter, &m_textFont);
    m_factory.CreateAlphaStatic(QRect(0, 0, kTitleWidth, kTitleHeight), this, 0, &m_pTitle,
                                m_strTitle, kTextWhite, ss::kCenter, &m_titleFont);
    PlaceChild(
        m_pTitle,
        ScaleRect(QRect((w - kTitleWidth) / 2, kTitleTop, kTitleWidth, kTitleHeight), m_scale));
    m_factory.CreateAlphaButton(
        QRect(QPoint(w - kCancelFromRight, h - kCancelFromBottom), kCancelSize), this, kCancelId,
        &m_pCancel, QString::fromUtf16(kButtonStrip), TvnText(tvn::kButtonCancel), 0, kTextWhite);
    m_factory.CreateAlphaButton(
        QRect(w - kCloseFromRight, kCloseTop, kCaptionButtonSide, kCaptionButtonSide), this,
        kCloseId, &m_pClose, QString::fromUtf16(kCloseStrip), QString(), 0, kTextWhite);
    m_factory.CreateProgressCtrl(ScaleRect(kBarRect, m_scale), this, 0, &m_pBar,
                                 QString::fromUtf16(kBarBackground), QString::fromUtf16(kBarUnit));
    m_pBar->ScaleImages(m_scale);
}

void CProgressDlg::SetRange(int nLower, int nUpper, int nStep) {
    m_nLower = nLower;
    m_nUpper = nUpper;
    m_nStep = nStep;
}

void CProgressDlg::SetPos(int nPos) {
    m_nPos = nPos;
    int nPercent = 0;
    if (m_nLower < m_nUpper) {
        nPercent = static_cast<int>(
            (nPos - m_nLower) * static_cast<double>(kPercent) / (m_nUpper - m_nLower) + 0.5);
    }
    if (nPercent == m_nPercent) {
        return;
    }
    m_nPercent = nPercent;
    // The bar paints at once, and as it is not opaque Qt repaints the backdrop under it in the
    // same pass: invalidating the bar's place on the dialog as well would paint it twice.
    if (m_pBar != nullptr) {
        m_pBar->SetPos(nPercent);
    }
}

void CProgressDlg::ShowCancel(bool bShow) {
    if (m_pCancel != nullptr) {
        m_pCancel->setVisible(bShow);
    }
}

bool CProgressDlg::SetText(const QString& text) {
    if (text.isNull() || m_pText == nullptr) {
        return false;
    }
    if (text == m_strText) {
        return false;
    }
    m_strText = text;
    QString shown = text;
    if (!text.isEmpty()) {
        TruncateTextToWidth(shown, text, DeviceSize(m_pText).width(), &m_textFont);
    }
    m_pText->SetText(shown.left(kMaxTextLength));
    return true;
}

bool CProgressDlg::SetTextNoTruncate(const QString& text) {
    if (text.isNull() || m_pText == nullptr) {
        return false;
    }
    if (text == m_strText) {
        return false;
    }
    m_strText = text;
    m_pText->SetText(text);
    return true;
}

bool CProgressDlg::SetTextWithPath(const QString& prefix, const QString& path) {
    QString shortPath;
    TruncateTextToWidth(shortPath, path, ScaleSize(QSize(kPathWidth, 0), m_scale).width(),
                        &m_textFont);
    // Cut already: a second cut would join the two lines.
    return SetTextNoTruncate(prefix + u'\n' + shortPath);
}

void CProgressDlg::SetTitle(const QString& title) {
    m_strTitle = title;
    setWindowTitle(title);
    if (m_pTitle != nullptr) {
        m_pTitle->SetText(title);
    }
}

void CProgressDlg::SetCancelCaption(const QString& caption) {
    if (m_pCancel == nullptr) {
        return;
    }
    const QFont font = MakeLabelFont();
    QString shown;
    TruncateTextToWidth(shown, caption, DeviceSize(m_pCancel).width(), &font);
    m_pCancel->SetCaption(shown);
}

void CProgressDlg::OnCancelRequest() {
    m_bCancelled = true;
    if (m_pNotify != nullptr) {
        QCoreApplication::postEvent(m_pNotify,
                                    new CWindowMessage(wmProgressCancel, m_bCancelled ? 1 : 0, 0));
    }
}

bool CProgressDlg::event(QEvent* pEvent) {
    if (pEvent->type() == CWindowMessage::TypeOf(kWmCommand)) {
        const int nId = static_cast<int>(static_cast<CWindowMessage*>(pEvent)->WParam() & 0xFFFF);
        if (nId == kCancelId || nId == kCloseId) {
            OnCancelRequest();
        }
        return true;
    }
    return QDialog::event(pEvent);
}

void CProgressDlg::paintEvent(QPaintEvent*) {
    PaintBackdrop(this, m_memory);
}

void CProgressDlg::mousePressEvent(QMouseEvent* pEvent) {
    if (!StartBodyMove(this, pEvent)) {
        QDialog::mousePressEvent(pEvent);
    }
}

void CProgressDlg::keyPressEvent(QKeyEvent* pEvent) {
    switch (pEvent->key()) {
    case Qt::Key_Escape:
        // Escape is the close button's command, as its id is the dialog's cancel id.
        OnCancelRequest();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return;
    default:
        QDialog::keyPressEvent(pEvent);
    }
}

void CProgressDlg::closeEvent(QCloseEvent* pEvent) {
    // Closing from the window manager cancels; the owner decides when the window goes.
    OnCancelRequest();
    pEvent->ignore();
}
