#include "CGXTFrameWnd.h"

#include "CDisplayScale.h"
#include "DevicePixels.h"
#include "SkinFonts.h"
#include "SkinImages.h"
#include "SkinRegions.h"
#include "ToolkitTypes.h"
#include "TvnText.h"

#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWindow>
#include <algorithm>

namespace {

// The 3 by 3 grid of border pieces; the middle cell is the client area.
constexpr int kTopLeft = 1;
constexpr int kTopMiddle = 2;
constexpr int kTopRight = 3;
constexpr int kLeft = 4;
constexpr int kRight = 6;
constexpr int kBottomLeft = 7;
constexpr int kBottomMiddle = 8;
constexpr int kBottomRight = 9;
constexpr int kPieceCells[] = {kTopLeft, kTopMiddle,  kTopRight,     kLeft,
                               kRight,   kBottomLeft, kBottomMiddle, kBottomRight};
constexpr int kCornerCells[] = {kTopLeft, kTopRight, kBottomLeft, kBottomRight};

// The side pieces stop where the caption band's pieces end, and the bottom pieces are this high.
constexpr int kSideTop = 43;
constexpr int kBottomPieceHeight = 6;
// Above this line a point that belongs to nothing else is the caption.
constexpr int kCaptionBottom = 43;
// The top edge sizes the window only in its outermost pixels; the rest of the band moves it.
constexpr int kTopGrip = 4;
// Along each edge, this near a corner sizes both ways.
constexpr int kCornerGrip = 16;

constexpr QPoint kIconAt(8, 5);
constexpr int kLogoGap = 13;
constexpr int kLogoTop = 7;
constexpr QSize kLogoSize(102, 30);
constexpr int kTitleBoxWidth = 300;

// Caption buttons are set from the right edge with a gap between them; clicks are taken from a
// little above the picture down to its bottom.
constexpr int kButtonsRight = 10;
constexpr int kButtonGap = 7;
constexpr int kButtonTop = 11;
constexpr int kButtonHitTop = 4;
constexpr int kButtonCount = 4;
constexpr int kButtonStates = 3;
constexpr int kOrderClose = 0;
constexpr int kOrderMaximise = 1;
constexpr int kOrderMinimise = 2;
constexpr int kOrderUpdate = 3;
constexpr int kStripClose = 0;
constexpr int kStripMax = 1;
constexpr int kStripRestore = 2;
constexpr int kStripMin = 3;

// Where the window menu opens after a right click, from the pointer.
constexpr QPoint kMenuOffset(5, 5);

// Where a screen's scale is not a whole number, the window's shape is rounded to whole logical
// pixels, and a pixel of the key colour may stay inside it; it shows in the outer edge's dark
// instead of the key's blue.
constexpr QRgb kOutsideColour = qRgb(0, 0, 0);

void ClearKeyColour(QImage& piece) {
    if (piece.isNull()) {
        return;
    }
    piece = piece.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < piece.height(); ++y) {
        auto* pRow = reinterpret_cast<QRgb*>(piece.scanLine(y));
        for (int x = 0; x < piece.width(); ++x) {
            if (RefFromRgb(pRow[x]) == kKeyBlue) {
                pRow[x] = kOutsideColour;
            }
        }
    }
}

QString PiecePath(int nCell) {
    return QStringLiteral("Image/MainFrame/bg_fireBro_0%1.png").arg(nCell);
}

uint32_t TipOf(int nHoverCode) {
    switch (nHoverCode) {
    case CGXTFrameWnd::kHoverMinimise:
        return tvn::kTipMinimize;
    case CGXTFrameWnd::kHoverMaximise:
        return tvn::kTipMaximize;
    case CGXTFrameWnd::kHoverRestore:
        return tvn::kTipRestore;
    case CGXTFrameWnd::kHoverClose:
        return tvn::kTipClose;
    default:
        return tvn::kTipUpdate;
    }
}

Qt::Edges EdgesOf(CGXTFrameWnd::Hit hit) {
    switch (hit) {
    case CGXTFrameWnd::kHitLeft:
        return Qt::LeftEdge;
    case CGXTFrameWnd::kHitRight:
        return Qt::RightEdge;
    case CGXTFrameWnd::kHitTop:
        return Qt::TopEdge;
    case CGXTFrameWnd::kHitBottom:
        return Qt::BottomEdge;
    case CGXTFrameWnd::kHitTopLeft:
        return Qt::TopEdge | Qt::LeftEdge;
    case CGXTFrameWnd::kHitTopRight:
        return Qt::TopEdge | Qt::RightEdge;
    case CGXTFrameWnd::kHitBottomLeft:
        return Qt::BottomEdge | Qt::LeftEdge;
    case CGXTFrameWnd::kHitBottomRight:
        return Qt::BottomEdge | Qt::RightEdge;
    default:
        return {};
    }
}

Qt::CursorShape CursorOf(CGXTFrameWnd::Hit hit) {
    switch (hit) {
    case CGXTFrameWnd::kHitLeft:
    case CGXTFrameWnd::kHitRight:
        return Qt::SizeHorCursor;
    case CGXTFrameWnd::kHitTop:
    case CGXTFrameWnd::kHitBottom:
        return Qt::SizeVerCursor;
    case CGXTFrameWnd::kHitTopLeft:
    case CGXTFrameWnd::kHitBottomRight:
        return Qt::SizeFDiagCursor;
    case CGXTFrameWnd::kHitTopRight:
    case CGXTFrameWnd::kHitBottomLeft:
        return Qt::SizeBDiagCursor;
    default:
        return Qt::ArrowCursor;
    }
}

} // namespace

CGXTFrameWnd::CGXTFrameWnd(QWidget* pParent) : QWidget(pParent, Qt::FramelessWindowHint) {
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    LoadPictures();
    m_titleFont = MakeDialogFont(kTitleFontNumerator, kWeightNormal);
}

CGXTFrameWnd::~CGXTFrameWnd() = default;

void CGXTFrameWnd::LoadPictures() {
    for (int nCell : kPieceCells) {
        m_pieces[nCell - 1] = LoadInstallImage(PiecePath(nCell), false);
    }
    for (int nCell : kCornerCells) {
        m_outlines[nCell - 1] = CreateRegionFromImage(m_pieces[nCell - 1], kKeyBlue);
        ClearKeyColour(m_pieces[nCell - 1]);
    }
    m_icon = LoadInstallImage(QStringLiteral("Image/MainFrame/icon_tvn_non_alpha.png"), false);
    m_logo = LoadInstallImage(QStringLiteral("Image/MainFrame/filebro_Tvn.png"), false);
    const char* names[] = {"close", "max", "restore", "min"};
    for (int i = 0; i < kButtonCount; ++i) {
        const QImage strip = LoadInstallImage(
            QStringLiteral("Image/MainFrame/btn_caption_%1.png").arg(names[i]), false);
        const int nWidth = strip.width() / kButtonStates;
        SplitStateStrip(strip, nWidth, strip.height(), &m_buttons[i][0], &m_buttons[i][1],
                        &m_buttons[i][2], nullptr);
    }
    m_updateDisabled =
        LoadInstallImage(QStringLiteral("Image/MainFrame/btn_caption_update_disabled.png"), false);
    m_buttonSize = m_buttons[kStripClose][0].size();
}

void CGXTFrameWnd::SetClient(QWidget* pClient) {
    delete m_pClient;
    m_pClient = pClient;
    if (m_pClient != nullptr) {
        m_pClient->setParent(this);
        // The frame's cursor changes over its edges; the client keeps its own.
        m_pClient->setCursor(Qt::ArrowCursor);
        PlaceClient();
        m_pClient->show();
    }
}

void CGXTFrameWnd::PlaceClient() {
    if (m_pClient == nullptr) {
        return;
    }
    const QSize size = UnitSize();
    const QRect client(kBandSide, kBandTop, size.width() - 2 * kBandSide,
                       size.height() - kBandTop - kBandBottom);
    m_pClient->setGeometry(ToLogical(client, UnitRatio()));
}

// The corners are cut by the pieces' key colour. A maximised window fills the work area
// exactly, so its corners stay square.
void CGXTFrameWnd::UpdateMask() {
    if (isMaximized()) {
        clearMask();
        return;
    }
    const QSize size = UnitSize();
    QRegion shape(QRect(QPoint(0, 0), size));
    for (int nCell : kCornerCells) {
        const QImage& piece = m_pieces[nCell - 1];
        const QRegion& outline = m_outlines[nCell - 1];
        if (outline.isEmpty()) {
            continue;
        }
        const int x = nCell == kTopLeft || nCell == kBottomLeft ? 0 : size.width() - piece.width();
        const int y = nCell <= kTopRight ? 0 : size.height() - piece.height();
        const QRegion cut = QRegion(piece.rect()).subtracted(outline);
        shape -= cut.translated(x, y);
    }
    setMask(ToLogical(shape, UnitRatio()));
}

QRect CGXTFrameWnd::ButtonRect(int nOrder) const {
    if (m_buttonSize.isEmpty() || nOrder < 0 || nOrder >= kButtonCount) {
        return {};
    }
    const int nRight =
        UnitSize().width() - kButtonsRight - nOrder * (m_buttonSize.width() + kButtonGap);
    return QRect(nRight - m_buttonSize.width(), kButtonHitTop, m_buttonSize.width(),
                 kButtonTop + m_buttonSize.height() - kButtonHitTop);
}

CGXTFrameWnd::Hit CGXTFrameWnd::HitTest(QPoint pt) const {
    const QSize size = UnitSize();
    if (!QRect(QPoint(0, 0), size).contains(pt)) {
        return kHitNowhere;
    }
    if (QRect(kBandSide, kBandTop, size.width() - 2 * kBandSide,
              size.height() - kBandTop - kBandBottom)
            .contains(pt)) {
        return kHitClient;
    }
    if (!isMaximized()) {
        const bool bLeft = pt.x() < kBandSide;
        const bool bRight = pt.x() >= size.width() - kBandSide;
        const bool bTop = pt.y() < kTopGrip;
        const bool bBottom = pt.y() >= size.height() - kBandBottom;
        const bool bNearLeft = pt.x() < kCornerGrip;
        const bool bNearRight = pt.x() >= size.width() - kCornerGrip;
        const bool bNearTop = pt.y() < kCornerGrip;
        const bool bNearBottom = pt.y() >= size.height() - kCornerGrip;
        if ((bTop && bNearLeft) || (bLeft && bNearTop)) {
            return kHitTopLeft;
        }
        if ((bTop && bNearRight) || (bRight && bNearTop)) {
            return kHitTopRight;
        }
        if ((bBottom && bNearLeft) || (bLeft && bNearBottom)) {
            return kHitBottomLeft;
        }
        if ((bBottom && bNearRight) || (bRight && bNearBottom)) {
            return kHitBottomRight;
        }
        if (bTop) {
            return kHitTop;
        }
        if (bLeft) {
            return kHitLeft;
        }
        if (bRight) {
            return kHitRight;
        }
        if (bBottom) {
            return kHitBottom;
        }
    }
    return pt.y() < kCaptionBottom ? kHitCaption : kHitNowhere;
}

int CGXTFrameWnd::ClickCode(QPoint pt) const {
    const int codes[] = {kClickClose, isMaximized() ? kClickRestore : kClickMaximise,
                         kClickMinimise, kClickUpdate};
    for (int i = 0; i < kButtonCount; ++i) {
        if (ButtonRect(i).contains(pt)) {
            return codes[i];
        }
    }
    const QRect icon(kIconAt.x(), 0, m_icon.width(), m_icon.height());
    return icon.contains(pt) ? kClickIcon : kClickNone;
}

int CGXTFrameWnd::HoverCode(QPoint pt) const {
    const int codes[] = {kHoverClose, isMaximized() ? kHoverRestore : kHoverMaximise,
                         kHoverMinimise, kHoverUpdate};
    for (int i = 0; i < kButtonCount; ++i) {
        if (ButtonRect(i).contains(pt)) {
            return codes[i];
        }
    }
    return kHoverNone;
}

void CGXTFrameWnd::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.scale(1.0 / UnitRatio(), 1.0 / UnitRatio());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSize size = UnitSize();
    PaintBorders(painter, size);
    PaintCaption(painter, size);
    PaintButtons(painter);
}

void CGXTFrameWnd::PaintBorders(QPainter& painter, QSize size) const {
    const int nBottom = size.height() - kBottomPieceHeight;
    const QImage& left = m_pieces[kLeft - 1];
    const QImage& right = m_pieces[kRight - 1];
    const QImage& bottom = m_pieces[kBottomMiddle - 1];
    const QImage& bottomRight = m_pieces[kBottomRight - 1];
    for (int y = kSideTop; y < nBottom && !left.isNull(); y += left.height()) {
        painter.drawImage(0, y, left);
        painter.drawImage(size.width() - right.width(), y, right);
    }
    for (int x = bottom.width(); x < size.width() - bottom.width() && !bottom.isNull();
         x += bottom.width()) {
        PaintBottomPiece(painter, bottom, x, nBottom);
    }
    PaintBottomPiece(painter, m_pieces[kBottomLeft - 1], 0, nBottom);
    PaintBottomPiece(painter, bottomRight, size.width() - bottomRight.width(), nBottom);
}

// The bottom band is a pixel higher than its pieces. Their inner edge line goes one row up, to
// meet the client area as the side pieces' does, and their first inner row fills the gap.
void CGXTFrameWnd::PaintBottomPiece(QPainter& painter, const QImage& piece, int x, int y) {
    constexpr int kGapRows = kBandBottom - kBottomPieceHeight;
    constexpr int kInnerRows = 2;
    painter.drawImage(x, y, piece);
    painter.drawImage(QPoint(x, y - kGapRows), piece, QRect(0, 0, piece.width(), kInnerRows));
}

void CGXTFrameWnd::PaintCaption(QPainter& painter, QSize size) const {
    const QImage& topLeft = m_pieces[kTopLeft - 1];
    const QImage& middle = m_pieces[kTopMiddle - 1];
    const QImage& topRight = m_pieces[kTopRight - 1];
    for (int x = topLeft.width(); x < size.width() - topRight.width() && !middle.isNull();
         x += middle.width()) {
        painter.drawImage(x, 0, middle);
    }
    painter.drawImage(0, 0, topLeft);
    painter.drawImage(size.width() - topRight.width(), 0, topRight);
    painter.drawImage(kIconAt, m_icon);
    const QRect logo(QPoint(kIconAt.x() + m_icon.width() + kLogoGap, kLogoTop), kLogoSize);
    painter.drawImage(logo, m_logo);
    painter.setFont(m_titleFont);
    painter.setPen(ColorFromRef(kTextWhite));
    // Centred in the band, but never over the logo or the buttons of a narrow window.
    const int nLeft = std::max((size.width() - kTitleBoxWidth) / 2, logo.right() + kLogoGap);
    const int nRight = std::min((size.width() + kTitleBoxWidth) / 2,
                                ButtonRect(kButtonCount - 1).left() - kButtonGap);
    if (nRight <= nLeft) {
        return;
    }
    const QRect box(nLeft, 0, nRight - nLeft, kCaptionBottom);
    painter.drawText(box, Qt::AlignCenter,
                     painter.fontMetrics().elidedText(windowTitle(), Qt::ElideRight, box.width()));
}

const QImage& CGXTFrameWnd::ButtonPicture(int nOrder) const {
    if (nOrder == kOrderUpdate) {
        // No update agent exists, so the update button is always shown disabled.
        return m_updateDisabled;
    }
    const int strips[] = {kStripClose, isMaximized() ? kStripRestore : kStripMax, kStripMin};
    const int codes[] = {kClickClose, isMaximized() ? kClickRestore : kClickMaximise,
                         kClickMinimise};
    const int hovers[] = {kHoverClose, isMaximized() ? kHoverRestore : kHoverMaximise,
                          kHoverMinimise};
    int nState = 0;
    if (m_nHotState == codes[nOrder]) {
        nState = 2;
    } else if (m_nHotState == hovers[nOrder]) {
        nState = 1;
    }
    return m_buttons[strips[nOrder]][nState];
}

void CGXTFrameWnd::PaintButtons(QPainter& painter) const {
    for (int i = 0; i < kButtonCount; ++i) {
        const QRect rect = ButtonRect(i);
        if (!rect.isEmpty()) {
            painter.drawImage(rect.left(), kButtonTop, ButtonPicture(i));
        }
    }
}

void CGXTFrameWnd::resizeEvent(QResizeEvent* pEvent) {
    PlaceClient();
    UpdateMask();
    QWidget::resizeEvent(pEvent);
}

void CGXTFrameWnd::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::WindowStateChange) {
        UpdateMask();
        update();
    } else if (pEvent->type() == QEvent::WindowTitleChange) {
        update();
    }
    QWidget::changeEvent(pEvent);
}

// The band is laid out in the skin's pixels and grows as a whole with the interface scale, so
// that it matches the command bar and the panes beneath it.
qreal CGXTFrameWnd::UnitRatio() const {
    return DevicePixelRatioOf(this) / GetUiScale();
}

QSize CGXTFrameWnd::UnitSize() const {
    const qreal ratio = UnitRatio();
    return QSize(qRound(width() * ratio), qRound(height() * ratio));
}

QPoint CGXTFrameWnd::DevicePoint(const QMouseEvent* pEvent) const {
    return ToDevice(pEvent->position(), UnitRatio());
}

void CGXTFrameWnd::SetHotState(int nHotState) {
    if (m_nHotState != nHotState) {
        m_nHotState = nHotState;
        update();
    }
}

void CGXTFrameWnd::ShowButtonTip(int nHoverCode, QPoint globalPos) {
    if (nHoverCode == kHoverNone) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(globalPos, TvnText(TipOf(nHoverCode)), this);
    }
}

void CGXTFrameWnd::mouseMoveEvent(QMouseEvent* pEvent) {
    const QPoint pt = DevicePoint(pEvent);
    if (m_bDragPending && (pEvent->buttons() & Qt::LeftButton) &&
        (pt - m_dragStart).manhattanLength() >= QApplication::startDragDistance()) {
        // Moving starts with the drag rather than the press, so that a double click on the
        // band still arrives here.
        m_bDragPending = false;
        if (windowHandle() != nullptr) {
            windowHandle()->startSystemMove();
        }
        return;
    }
    if (m_nPressed != kClickNone) {
        SetHotState(ClickCode(pt) == m_nPressed ? m_nPressed : kHoverNone);
        return;
    }
    const int nHover = HoverCode(pt);
    if (nHover != m_nHotState) {
        ShowButtonTip(nHover, pEvent->globalPosition().toPoint());
    }
    SetHotState(nHover);
    setCursor(CursorOf(HitTest(pt)));
}

void CGXTFrameWnd::mousePressEvent(QMouseEvent* pEvent) {
    if (pEvent->button() != Qt::LeftButton) {
        return;
    }
    const QPoint pt = DevicePoint(pEvent);
    const Hit hit = HitTest(pt);
    const int nCode = ClickCode(pt);
    if (nCode != kClickNone) {
        m_nPressed = nCode;
        SetHotState(nCode);
    } else if (hit == kHitCaption) {
        m_bDragPending = true;
        m_dragStart = pt;
    } else {
        StartResize(hit);
    }
}

void CGXTFrameWnd::StartResize(Hit hit) {
    const Qt::Edges edges = EdgesOf(hit);
    if (edges != Qt::Edges() && windowHandle() != nullptr) {
        windowHandle()->startSystemResize(edges);
    }
}

void CGXTFrameWnd::mouseReleaseEvent(QMouseEvent* pEvent) {
    const QPoint pt = DevicePoint(pEvent);
    if (pEvent->button() == Qt::RightButton) {
        if (HitTest(pt) == kHitCaption) {
            PopupSystemMenu(pEvent->globalPosition().toPoint() + kMenuOffset);
        }
        return;
    }
    if (pEvent->button() != Qt::LeftButton) {
        return;
    }
    const int nPressed = m_nPressed;
    m_nPressed = kClickNone;
    m_bDragPending = false;
    SetHotState(HoverCode(pt));
    if (nPressed != kClickNone && ClickCode(pt) == nPressed) {
        RunClickCode(nPressed);
    }
}

void CGXTFrameWnd::mouseDoubleClickEvent(QMouseEvent* pEvent) {
    const QPoint pt = DevicePoint(pEvent);
    if (pEvent->button() != Qt::LeftButton || HitTest(pt) != kHitCaption) {
        return;
    }
    m_bDragPending = false;
    const int nCode = ClickCode(pt);
    if (nCode == kClickNone) {
        RunClickCode(isMaximized() ? kClickRestore : kClickMaximise);
    } else if (nCode == kClickIcon) {
        // Closing from inside the event that the window's own widgets are handling is left
        // to the event loop.
        QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
    } else {
        RunClickCode(nCode);
    }
}

void CGXTFrameWnd::leaveEvent(QEvent* pEvent) {
    if (m_nPressed == kClickNone) {
        SetHotState(kHoverNone);
    }
    QWidget::leaveEvent(pEvent);
}

void CGXTFrameWnd::RunClickCode(int nCode) {
    switch (nCode) {
    case kClickIcon:
        PopupSystemMenu(mapToGlobal(MenuOrigin()));
        break;
    case kClickMinimise:
        showMinimized();
        break;
    case kClickMaximise:
        isMaximized() ? showNormal() : showMaximized();
        break;
    case kClickRestore:
        showNormal();
        break;
    case kClickClose:
        close();
        break;
    default:
        // The update button has no agent behind it.
        break;
    }
}

// Below the icon, at the client area's corner; at the window's left edge when maximised.
QPoint CGXTFrameWnd::MenuOrigin() const {
    QPoint origin = m_pClient != nullptr ? m_pClient->pos() : QPoint();
    if (isMaximized()) {
        origin.setX(0);
    }
    return origin;
}

QMenu* CGXTFrameWnd::SystemMenu() {
    if (m_pSystemMenu != nullptr) {
        return m_pSystemMenu;
    }
    m_pSystemMenu = new QMenu(this);
    const auto add = [this](uint32_t nText, int nCode, auto action) {
        QAction* pAction = m_pSystemMenu->addAction(TvnText(nText), this, action);
        pAction->setData(nCode);
        return pAction;
    };
    add(tvn::kTipRestore, kClickRestore, [this] { showNormal(); });
    add(tvn::kSysMenuMove, kClickNone, [this] {
        if (windowHandle() != nullptr) {
            windowHandle()->startSystemMove();
        }
    });
    add(tvn::kSysMenuSize, kClickNone, [this] { StartResize(kHitBottomRight); });
    add(tvn::kTipMinimize, kClickMinimise, [this] { showMinimized(); });
    add(tvn::kTipMaximize, kClickMaximise, [this] { showMaximized(); });
    m_pSystemMenu->addSeparator();
    add(tvn::kTipClose, kClickClose, [this] { close(); });
    return m_pSystemMenu;
}

// A maximised window can be neither moved, sized nor maximised; a normal one not restored.
void CGXTFrameWnd::EnableSystemMenu() {
    const QList<QAction*> actions = SystemMenu()->actions();
    const bool bMaximised = isMaximized();
    const bool bEnabled[] = {bMaximised, !bMaximised, !bMaximised, true, !bMaximised};
    for (int i = 0; i < static_cast<int>(std::size(bEnabled)); ++i) {
        actions[i]->setEnabled(bEnabled[i]);
    }
}

void CGXTFrameWnd::PopupSystemMenu(QPoint globalPos) {
    EnableSystemMenu();
    raise();
    activateWindow();
    SystemMenu()->popup(globalPos);
}
