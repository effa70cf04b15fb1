#include "CTvgMessageBox.h"

#include "CAlphaButton.h"
#include "CAlphaStatic.h"
#include "CGStatic.h"
#include "CWindowMessage.h"
#include "DevicePixels.h"
#include "SkinFonts.h"
#include "SkinImages.h"
#include "SkinText.h"
#include "SkinWindows.h"
#include "TvnText.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>
#include <QtMath>

namespace {

using namespace Qt::StringLiterals;

int g_nOpenBoxes = 0;

const QString kPictureFolder = u"Image\\Dialogs\\MessageBox\\"_s;
const QString kBackdropPath = kPictureFolder + u"bg_re_04.png"_s;
const QString kButtonStrip = u"Image\\Common\\button\\btn.png"_s;
const QString kCloseStrip = u"Image\\Dialogs\\BaseDialog\\btn_caption_close.png"_s;

// The text starts in a box of its own, grows to the right up to a widest line, and the window
// grows by as much as the text outgrows that box.
constexpr QRect kTextStart(QPoint(100, 60), QPoint(417, 159));
constexpr int kMinTextWidth = 318;
constexpr int kLineHeightBudget = 76;
constexpr int kMaxLineWidth = 874;
constexpr int kHeightAllowance = 88;
constexpr int kMaxExtraHeight = 560;
constexpr QSize kBaseSize(468, 208);
constexpr int kTextAreaMargin = 77;
constexpr int kTextAreaTop = 31;

// The nine pieces: three columns and three rows of fixed sizes. The middle pieces tile in
// steps of their size; the last middle tile is laid flush against the right and bottom pieces,
// over whatever lies below it.
constexpr int kLeftWidth = 456;
constexpr int kTileSide = 50;
constexpr int kRightWidth = 12;
constexpr int kTopHeight = 162;
constexpr int kBottomHeight = 46;
const char* const kColumnNames[] = {"left", "mid", "right"};
const char* const kRowNames[] = {"top", "mid", "bot"};
constexpr int kColumnWidths[] = {kLeftWidth, kTileSide, kRightWidth};
constexpr int kRowHeights[] = {kTopHeight, kTileSide, kBottomHeight};

constexpr QPoint kIconStart(50, 60);
constexpr int kIconGapBeforeText = 50;
constexpr QSize kTitleSize(400, 20);
constexpr int kTitleTop = 6;
constexpr int kButtonStep = 146;
constexpr QSize kButtonSize(136, 24);
constexpr int kButtonRowFromBottom = 34;
constexpr int kCloseFromRight = 30;
constexpr QSize kCloseSize(20, 20);
constexpr int kCloseTop = 5;

constexpr uint32_t kMeasureOneLine =
    dt::kEditControl | dt::kNoPrefix | dt::kCalcRect | dt::kSingleLine;
constexpr uint32_t kMeasureWrapped =
    dt::kEditControl | dt::kNoPrefix | dt::kCalcRect | dt::kWordBreak;
constexpr uint32_t kDrawWrapped = dt::kEditControl | dt::kNoPrefix | dt::kWordBreak;
constexpr uint32_t kNotifyIconBits = mb::kIconInformation | mb::kIconError | mb::kIconQuestion;

QString Piece(int nColumn, int nRow) {
    return kPictureFolder + u"bg_message_%1_%2.png"_s.arg(QLatin1StringView(kColumnNames[nColumn]),
                                                          QLatin1StringView(kRowNames[nRow]));
}

// Where the middle pieces go along one side: in steps from the end of the first piece, then
// once more flush against the last piece.
std::vector<int> TilePositions(int nFirstPiece, int nExtra) {
    std::vector<int> positions;
    for (int i = 0; i < nExtra / kTileSide; ++i) {
        positions.push_back(nFirstPiece + kTileSide * i);
    }
    positions.push_back(nExtra + nFirstPiece - kTileSide);
    return positions;
}

// Pieces are drawn at their fixed sizes, whatever the files hold; a missing one leaves the key
// colour below it.
void DrawPiece(QPainter& painter, const QImage& piece, int nColumn, int nRow, int x, int y) {
    if (piece.isNull()) {
        return;
    }
    const QRect source(0, 0, kColumnWidths[nColumn], kRowHeights[nRow]);
    painter.drawImage(QPoint(x, y), piece.copy(source));
}

QString IconFile(const char* name) {
    return kPictureFolder + QLatin1StringView(name);
}

} // namespace

CTvgMessageBox::CTvgMessageBox(uint32_t nTextId, uint32_t nType, uint32_t nTitleId,
                               QWidget* pParent, const QString& iconPath, bool bTopMost)
    : CTvgMessageBox(TvnText(nTextId), TvnText(nTitleId), nType, pParent, iconPath, bTopMost) {}

CTvgMessageBox::CTvgMessageBox(const QString& text, uint32_t nType, uint32_t nTitleId,
                               QWidget* pParent, const QString& iconPath, bool bTopMost)
    : CTvgMessageBox(text, TvnText(nTitleId), nType, pParent, iconPath, bTopMost) {}

CTvgMessageBox::CTvgMessageBox(const QString& text, const QString& title, uint32_t nType,
                               QWidget* pParent, const QString& iconPath, bool bTopMost)
    : QDialog(pParent, Qt::Dialog | Qt::FramelessWindowHint |
                           (bTopMost ? Qt::WindowStaysOnTopHint : Qt::Widget)),
      m_bTopMost(bTopMost), m_text(text), m_title(title), m_iconPath(IconPathFor(nType, iconPath)),
      m_nType(nType), m_scale(DialogScale()) {
    setObjectName(QString::fromUtf16(kMessageBoxClassName));
    setWindowRole(QString::fromUtf16(kMessageBoxClassName));
    setWindowTitle(m_title);
    setAccessibleName(m_title);
    setAccessibleDescription(m_text);
    setAttribute(Qt::WA_OpaquePaintEvent);
    // The box itself holds the keyboard focus, so that no button shows a focus frame until
    // the user tabs to one; keys then reach the box first.
    setFocusPolicy(Qt::StrongFocus);
    OnInitDialog();
    setFocus();
}

CTvgMessageBox::~CTvgMessageBox() {
    --g_nOpenBoxes;
}

std::vector<int> CTvgMessageBox::ButtonIds(uint32_t nType) {
    using namespace tvn;
    switch (nType & mb::kButtonMask) {
    case mb::kOk:
        return {kButtonOk};
    case mb::kOkCancel:
        return {kButtonCancel, kButtonOk};
    case mb::kAbortRetryIgnore:
        return {kButtonIgnore, kButtonRetry, kButtonAbort};
    case mb::kYesNoCancel:
        return {kButtonCancel, kButtonNo, kButtonYes};
    case mb::kYesNo:
        return {kButtonNo, kButtonYes};
    case mb::kRetryCancel:
        return {kButtonCancel, kButtonRetry};
    default:
        if ((nType & kNotifyIconBits) != 0) {
            return {kButtonOk};
        }
        return {};
    }
}

QString CTvgMessageBox::IconPathFor(uint32_t nType, const QString& argument) {
    const uint32_t nIcon = nType & mb::kIconMask;
    const uint32_t nButtons = nType & mb::kButtonMask;
    if (nIcon == mb::kIconInformation) {
        return IconFile("icon_exclamation.png");
    }
    if (nButtons > mb::kRetryCancel) {
        return argument;
    }
    const bool bOkRow = nButtons == mb::kOk || nButtons == mb::kOkCancel;
    switch (nIcon) {
    case mb::kIconWarning:
        return IconFile(bOkRow ? "icon_warning.png" : "icon_exclamation.png");
    case mb::kIconQuestion:
        return IconFile("icon_question.png");
    case mb::kIconError:
        return IconFile("icon_error.png");
    default:
        break;
    }
    if (bOkRow) {
        return IconFile("icon_warning.png");
    }
    const bool bQuestionRow = nButtons == mb::kYesNoCancel || nButtons == mb::kYesNo;
    return bQuestionRow ? IconFile("icon_question.png") : QString();
}

int CTvgMessageBox::OpenCount() {
    return g_nOpenBoxes;
}

QSize CTvgMessageBox::BoxSize() const {
    return ScaleSize(m_size, m_scale);
}

QRect CTvgMessageBox::TextRect() const {
    return ScaleRect(m_rcText, m_scale);
}

std::vector<CAlphaButton*> CTvgMessageBox::Buttons() const {
    std::vector<CAlphaButton*> buttons;
    for (const auto& pButton : m_buttons) {
        buttons.push_back(pButton.get());
    }
    return buttons;
}

void CTvgMessageBox::OnInitDialog() {
    ++g_nOpenBoxes;
    m_factory.LoadBackdrop(kBackdropPath);
    m_factory.ScaleBackdrop(m_scale);
    CreateTitleAndIcon();
    ComposeBody();
    CreateButtons();
    PlaceTitleAndIcon();
}

void CTvgMessageBox::CreateTitleAndIcon() {
    if (!m_iconPath.isEmpty()) {
        CGStatic* pIcon = nullptr;
        m_factory.CreateGStatic(ScaleRect(QRect(kIconStart, QSize(0, 0)), m_scale), this, 0, &pIcon,
                                m_iconPath);
        m_pIcon.reset(pIcon);
        m_pIcon->ScaleImage(m_scale);
        // Without its picture the icon would be an empty square that still stops a drag.
        m_pIcon->setVisible(m_pIcon->HasImage());
    }
    m_titleFont = ScaleFont(MakeDialogFont(kTitleFontNumerator, kWeightNormal), m_scale);
    m_bodyFont = ScaleFont(MakeDialogFont(kBodyFontNumerator, kWeightNormal), m_scale);
    CAlphaStatic* pTitle = nullptr;
    m_factory.CreateAlphaStatic(QRect(QPoint(0, 0), kTitleSize), this, 0, &pTitle, m_title,
                                kTextWhite, ss::kCenter, &m_titleFont);
    m_pTitle.reset(pTitle);
    // A plain label lets presses through, so the box drags by its title line.
    m_pTitle->setAttribute(Qt::WA_TransparentForMouseEvents);
}

// The text's size at 1.0 in a room at 1.0, measured at the font the box draws with and rounded
// up, so that the scaled text rectangle holds the text as drawn.
QRect CTvgMessageBox::MeasureText(const QRect& room, uint32_t nFlags) const {
    const QRect measured =
        DrawSkinText(nullptr, m_bodyFont, ScaleRect(room, m_scale), nFlags, m_text);
    return QRect(room.topLeft(),
                 QSize(qCeil(measured.width() / m_scale), qCeil(measured.height() / m_scale)));
}

// Sizes the box by its text and paints the body, text included, once.
void CTvgMessageBox::ComposeBody() {
    QRect rcText = MeasureText(kTextStart, kMeasureOneLine);
    // An empty text measures no height; it counts as one empty line.
    const int nLineHeight =
        qMax(rcText.height(), qCeil(QFontMetrics(m_bodyFont).height() / m_scale));
    const int nPerLine = rcText.width() / qMax(1, kLineHeightBudget / nLineHeight);
    // A line too long for the widest box keeps its one-line width: the box grows to fit it.
    if (nPerLine <= kMaxLineWidth) {
        rcText.setWidth(qMax(nPerLine, kMinTextWidth));
    }
    rcText = MeasureText(rcText, kMeasureWrapped);
    rcText.setHeight(qMax(rcText.height(), nLineHeight));

    const int nExtraWidth = qMax(0, rcText.width() - kMinTextWidth);
    const int nExtraHeight = qBound(0, rcText.height() - kHeightAllowance, kMaxExtraHeight);
    m_size = kBaseSize + QSize(nExtraWidth, nExtraHeight);

    QImage pieces(m_size, QImage::Format_ARGB32_Premultiplied);
    pieces.fill(ColorFromRef(kKeyBlue));
    {
        QPainter painter(&pieces);
        DrawPieces(painter, nExtraWidth, nExtraHeight);
    }
    // The text is drawn after scaling, at the scaled font, so that it stays crisp.
    m_body = ScaleShapedPicture(pieces, m_scale);
    const int nAvailable = m_size.height() - kTextAreaMargin;
    // A text taller than the band between the title line and the buttons starts at the top of
    // the band instead of climbing over the title.
    const int nTop = qMax((nAvailable - rcText.height()) / 2 + kTextAreaTop, kTextAreaTop);
    m_rcText = QRect(QPoint(rcText.left(), nTop), rcText.size());
    DrawTextIntoBody();
    ApplyShape();
}

void CTvgMessageBox::DrawPieces(QPainter& painter, int nExtraWidth, int nExtraHeight) const {
    QImage pieces[3][3];
    for (int nRow = 0; nRow < 3; ++nRow) {
        for (int nColumn = 0; nColumn < 3; ++nColumn) {
            pieces[nRow][nColumn] = LoadInstallImage(Piece(nColumn, nRow), false);
        }
    }
    const std::vector<int> xs = TilePositions(kLeftWidth, nExtraWidth);
    const std::vector<int> ys = TilePositions(kTopHeight, nExtraHeight);
    const int xRight = m_size.width() - kRightWidth;
    const int yBottom = m_size.height() - kBottomHeight;
    enum { kLeft, kMiddle, kRight };
    enum { kTop, kCentre, kBottom };

    DrawPiece(painter, pieces[kTop][kLeft], kLeft, kTop, 0, 0);
    for (int x : xs) {
        DrawPiece(painter, pieces[kTop][kMiddle], kMiddle, kTop, x, 0);
    }
    DrawPiece(painter, pieces[kTop][kRight], kRight, kTop, xRight, 0);
    for (int y : ys) {
        DrawPiece(painter, pieces[kCentre][kLeft], kLeft, kCentre, 0, y);
    }
    for (int x : xs) {
        for (int y : ys) {
            DrawPiece(painter, pieces[kCentre][kMiddle], kMiddle, kCentre, x, y);
        }
    }
    for (int y : ys) {
        DrawPiece(painter, pieces[kCentre][kRight], kRight, kCentre, xRight, y);
    }
    DrawPiece(painter, pieces[kBottom][kLeft], kLeft, kBottom, 0, yBottom);
    for (int x : xs) {
        DrawPiece(painter, pieces[kBottom][kMiddle], kMiddle, kBottom, x, yBottom);
    }
    DrawPiece(painter, pieces[kBottom][kRight], kRight, kBottom, xRight, yBottom);
}

void CTvgMessageBox::DrawTextIntoBody() {
    QPainter painter(&m_body);
    painter.setPen(ColorFromRef(kTextWhite));
    // Whole lines only, and none under the buttons: the cut falls at a line's end.
    const QRect band(0, kTextAreaTop, m_size.width(), m_size.height() - kTextAreaMargin);
    DrawSkinText(&painter, m_bodyFont, ScaleRect(m_rcText.intersected(band), m_scale), kDrawWrapped,
                 m_text);
}

// The outline comes from the key colour left at the corners; the window takes the body's size
// in device pixels and stands in the middle of its owner or of the screen.
void CTvgMessageBox::ApplyShape() {
    ShapeWindowToBackdrop(this, m_body);
    setFixedSize(size());
    CenterWindow(this);
}

void CTvgMessageBox::CreateButtons() {
    m_buttons.clear();
    const std::vector<int> ids = ButtonIds(m_nType);
    const int nWidth = m_size.width();
    const int nHeight = m_size.height();
    for (size_t i = 0; i < ids.size(); ++i) {
        const QRect rect(
            QPoint(nWidth - kButtonStep * static_cast<int>(i + 1), nHeight - kButtonRowFromBottom),
            kButtonSize);
        CAlphaButton* pButton = nullptr;
        m_factory.CreateAlphaButton(rect, this, ids[i], &pButton, kButtonStrip, TvnText(ids[i]), 0,
                                    kTextWhite);
        m_buttons.emplace_back(pButton);
    }
    // A box that cannot be answered by a button is not closed by one either.
    if (ids.empty()) {
        return;
    }
    CAlphaButton* pClose = nullptr;
    m_factory.CreateAlphaButton(QRect(QPoint(nWidth - kCloseFromRight, kCloseTop), kCloseSize),
                                this, kCloseId, &pClose, kCloseStrip, QString(), tvn::kTipClose,
                                kTextWhite);
    m_pClose.reset(pClose);
}

void CTvgMessageBox::PlaceTitleAndIcon() {
    if (m_pIcon != nullptr && m_size.height() == kBaseSize.height()) {
        const QSize icon = DeviceSize(m_pIcon.get());
        const QRect text = TextRect();
        const QRect gap = ScaleRect(QRect(0, 0, kIconGapBeforeText, 0), m_scale);
        // Centred on the text, which stands in the middle of the band between the title line
        // and the buttons; the middle of the whole window would set the icon lower than the
        // text it belongs to.
        const QPoint at(text.left() - gap.width(),
                        text.top() + (text.height() - icon.height()) / 2);
        m_pIcon->move(ToLogical(QRect(at, icon), DevicePixelRatioOf(this)).topLeft());
    }
    const QRect title(QPoint((m_size.width() - kTitleSize.width()) / 2, kTitleTop), kTitleSize);
    PlaceChild(m_pTitle.get(), ScaleRect(title, m_scale));
}

void CTvgMessageBox::accept() {
    OnOK();
}

void CTvgMessageBox::reject() {
    OnCancel();
}

void CTvgMessageBox::OnOK() {
    done(mb::kIdOk);
}

void CTvgMessageBox::OnCancel() {
    done(mb::kIdCancel);
}

void CTvgMessageBox::OnYes() {
    done(mb::kIdYes);
}

void CTvgMessageBox::OnNo() {
    done(mb::kIdNo);
}

void CTvgMessageBox::OnRetry() {
    done(mb::kIdRetry);
}

void CTvgMessageBox::OnIgnore() {
    done(mb::kIdIgnore);
}

void CTvgMessageBox::OnAbort() {
    done(mb::kIdAbort);
}

void CTvgMessageBox::OnCommand(int nId) {
    switch (nId) {
    case tvn::kButtonOk:
        OnOK();
        break;
    case tvn::kButtonCancel:
    case kCloseId:
        OnCancel();
        break;
    case tvn::kButtonAbort:
        OnAbort();
        break;
    case tvn::kButtonRetry:
        OnRetry();
        break;
    case tvn::kButtonIgnore:
        OnIgnore();
        break;
    case tvn::kButtonYes:
        OnYes();
        break;
    case tvn::kButtonNo:
        OnNo();
        break;
    default:
        break;
    }
}

bool CTvgMessageBox::event(QEvent* pEvent) {
    if (pEvent->type() == CWindowMessage::TypeOf(kWmCommand)) {
        const auto* pMessage = static_cast<const CWindowMessage*>(pEvent);
        OnCommand(static_cast<int>(pMessage->WParam() & 0xFFFF));
        return true;
    }
    return QDialog::event(pEvent);
}

void CTvgMessageBox::paintEvent(QPaintEvent*) {
    PaintBackdrop(this, m_body);
}

// The box drags by any point of its body that no control covers.
void CTvgMessageBox::mousePressEvent(QMouseEvent* pEvent) {
    const bool bOnBody = childAt(pEvent->position().toPoint()) == nullptr;
    if (pEvent->button() == Qt::LeftButton && bOnBody && windowHandle() != nullptr) {
        windowHandle()->startSystemMove();
        return;
    }
    QDialog::mousePressEvent(pEvent);
}

// Enter ends the box with OK whatever buttons it shows, as the family's message boxes do.
void CTvgMessageBox::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->modifiers() == Qt::NoModifier || pEvent->modifiers() == Qt::KeypadModifier) {
        switch (pEvent->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            OnOK();
            return;
        case Qt::Key_Escape:
            OnCancel();
            return;
        default:
            break;
        }
    }
    QDialog::keyPressEvent(pEvent);
}

int ShowMessageBox(uint32_t nTextId, uint32_t nType, uint32_t nTitleId, QWidget* pParent,
                   const QString& iconPath, bool bTopMost) {
    CTvgMessageBox box(nTextId, nType, nTitleId, pParent, iconPath, bTopMost);
    return box.exec();
}

int ShowMessageBoxText(const QString& text, uint32_t nType, uint32_t nTitleId, QWidget* pParent,
                       const QString& iconPath, bool bTopMost) {
    CTvgMessageBox box(text, nType, nTitleId, pParent, iconPath, bTopMost);
    return box.exec();
}
