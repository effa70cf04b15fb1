#include "CGButton.h"

#include "CWindowMessage.h"
#include "DevicePixels.h"
#include "SkinFonts.h"
#include "SkinImages.h"
#include "SkinRegions.h"
#include "SkinText.h"
#include "TvnText.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimerEvent>

namespace {

constexpr int kStatePictures = 4;
constexpr int kCheckPictures = 8;
constexpr int kTextSideInset = 10;
constexpr uint32_t kMultiLineFormat = 0xFFFFFFDF;
constexpr uint32_t kInsetFormat = dt::kEndEllipsis | dt::kSingleLine | dt::kVCenter | dt::kCenter;
constexpr int kRepeatStepsPerRise = 20;
constexpr int kRepeatStepRise = 5;
constexpr int kMaxRepeatStep = 2000;
constexpr int kFadeAlphaStep = 2;
constexpr int kFadeAlphaEnd = 255;
constexpr int kStretchHead = 5;
constexpr int kStretchColumn = 5;
constexpr int kStretchTail = 30;
constexpr float kAnimationStartAlpha = 0.4f;
constexpr float kAnimationAlphaStep = 0.15f;
constexpr float kAnimationMaxAlpha = 1.01f;
constexpr int kGrowInParts = 4;
constexpr int kFocusInset = 3;

uint32_t SystemTicks() {
    return static_cast<uint32_t>(QDateTime::currentMSecsSinceEpoch());
}

CGButton::TickSource g_pfnTicks = SystemTicks;

uint32_t TextFormatOf(uint32_t nStyle) {
    const uint32_t nHorizontal = nStyle & (bs::kLeft | bs::kRight);
    uint32_t nFormat = nHorizontal == bs::kLeft    ? dt::kLeft
                       : nHorizontal == bs::kRight ? dt::kRight
                                                   : dt::kCenter;
    const uint32_t nVertical = nStyle & (bs::kTop | bs::kBottom);
    nFormat |= nVertical == bs::kTop ? 0 : nVertical == bs::kBottom ? dt::kBottom : dt::kVCenter;
    // Every flag but single line: a multi-line button measures its caption and draws none.
    nFormat |= (nStyle & bs::kMultiLine) == 0 ? dt::kSingleLine : kMultiLineFormat;
    return nFormat;
}

} // namespace

void CGButton::SetTickSource(TickSource pfnTicks) {
    g_pfnTicks = pfnTicks != nullptr ? pfnTicks : SystemTicks;
}

CGButton::CGButton(QWidget* pParent) : QWidget(pParent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    m_font = MakeNumeratorFont(m_nFontSize * kFontNumeratorPerPoint, QString(), 0);
}

CGButton::~CGButton() = default;

bool CGButton::CreateWindow(QWidget* pParent, const QString& caption, uint32_t nStyle, int nId,
                            bool bRepeat) {
    setParent(pParent);
    resize(1, 1);
    m_caption = caption;
    m_nStyle = nStyle;
    m_nId = nId;
    m_bRepeatOn = bRepeat;
    UpdateAccessibleName();
    return true;
}

void CGButton::SetImage(int x, int y, const QImage& strip, int nWidth, int nHeight, int nState,
                        int nPieceHeight, uint32_t nTipTextId, bool bCheckButton, bool bShow,
                        const QImage& backdrop) {
    m_bCheckButton = bCheckButton;
    m_strip = strip;
    m_nPieceWidth = strip.width() / (bCheckButton ? kCheckPictures : kStatePictures);
    m_nPieceHeight = nPieceHeight;
    m_nState = nState;
    m_backdrop = backdrop;
    m_nTipTextId = nTipTextId;
    if (nTipTextId != 0) {
        SetTipById(nTipTextId, true);
    }
    m_region = CreateSpanRegion(strip, m_nPieceWidth, nPieceHeight, kKeyMagenta);
    if (!m_region.isEmpty()) {
        setMask(ToLogical(m_region, DevicePixelRatioOf(this)));
    }
    MoveToDevice(QRect(x, y, nWidth, nHeight));
    setVisible(bShow);
    m_nTextFormat = TextFormatOf(m_nStyle);
    m_font = MakeNumeratorFont(m_nFontSize * kFontNumeratorPerPoint, QString(), 0);
    update();
}

void CGButton::ReplaceImage(int x, int y, const QImage& strip, int nWidth, int nHeight) {
    const bool bSamePicture =
        strip.width() == m_strip.width() && strip.height() == m_strip.height();
    m_strip = strip;
    if (bSamePicture) {
        m_region = CreateSpanRegion(strip, m_nPieceWidth, m_nPieceHeight, kKeyMagenta);
        if (!m_region.isEmpty()) {
            setMask(ToLogical(m_region, DevicePixelRatioOf(this)));
        }
    }
    MoveToDevice(QRect(x, y, nWidth, nHeight));
    update();
}

void CGButton::PastePiece(const QImage& piece, int nIndex) {
    if (m_strip.isNull()) {
        return;
    }
    QPainter painter(&m_strip);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(nIndex * m_nPieceWidth, 0, piece);
    painter.end();
    update();
}

void CGButton::SetTipText(const QString& text, bool bActivate) {
    m_tipText = text;
    setToolTip(bActivate ? text : QString());
    UpdateAccessibleName();
}

void CGButton::SetTipById(uint32_t nTextId, bool bActivate) {
    SetTipText(TvnText(nTextId).section(u'\n', 0, 0), bActivate);
}

void CGButton::SetFontSize(int nPoints) {
    m_nFontSize = nPoints;
    QFont font = m_font;
    font.setPixelSize(NumeratorPixelSize(nPoints * kFontNumeratorPerPoint));
    m_font = font;
    update();
}

void CGButton::SetFont(const QFont& font) {
    m_font = font;
    update();
}

void CGButton::SetCheck(bool bChecked) {
    if (!m_bCheckButton) {
        return;
    }
    m_nCheckOffset = bChecked ? kCheckedOffset : 0;
    update();
}

void CGButton::Enable(bool bEnable) {
    if (!bEnable) {
        ReleaseOwnCapture();
    }
    m_nState = bEnable ? kNormal : kDisabled;
    setEnabled(bEnable);
    update();
}

void CGButton::SetState(int nState) {
    if (nState < kNormal || nState > kDisabled) {
        return;
    }
    StopFade();
    m_nState = nState;
    if (m_bEnableWindow) {
        setEnabled(nState != kDisabled);
    }
    update();
}

void CGButton::SetTextColours(const COLORREF colours[kTextColours]) {
    std::copy(colours, colours + kTextColours, m_crText);
    update();
}

void CGButton::SetTextInset(int nInset) {
    m_nTextInset = nInset;
    update();
}

void CGButton::SetOverlay(COLORREF colour, const QRect& rect) {
    m_overlayColour = colour;
    m_rcOverlay = rect;
    update();
}

void CGButton::SetTextRect(const QRect& rect) {
    m_nTextLeft = rect.left();
    m_nTextTop = rect.top();
    m_nTextRight = rect.left() + rect.width();
    m_nTextBottom = rect.top() + rect.height();
    update();
}

void CGButton::SetBackdrop(const QImage& backdrop) {
    m_backdrop = backdrop;
    update();
}

void CGButton::SetFadeOn(bool bOn) {
    m_bFadeOn = bOn;
    if (!bOn) {
        StopFade();
    }
}

void CGButton::SetCopyParent(bool bOn) {
    m_bCopyParent = bOn;
    update();
}

void CGButton::SetCaptureToParent(bool bOn) {
    m_bCaptureToParent = bOn;
}

void CGButton::SetStretch(bool bOn) {
    m_bStretch = bOn;
    update();
}

void CGButton::SetWordWrap(bool bOn) {
    m_bWordWrap = bOn;
    update();
}

void CGButton::SetEnableWindow(bool bOn) {
    m_bEnableWindow = bOn;
}

void CGButton::UseAnimation(bool bOn) {
    if (bOn && m_pAnimation == nullptr) {
        m_pAnimation = std::make_unique<Animation>();
    }
}

void CGButton::UpdateAccessibleName() {
    setAccessibleName(m_caption.isEmpty() ? m_tipText : m_caption);
}

void CGButton::MoveToDevice(const QRect& device) {
    m_position = device.topLeft();
    m_size = device.size();
    const qreal dpr = DevicePixelRatioOf(parentWidget());
    setGeometry(ToLogical(device, dpr));
}

void CGButton::ReleaseOwnCapture() {
    if (QWidget::mouseGrabber() == this) {
        releaseMouse();
    }
}

void CGButton::PostToParent(uint32_t nMessage, uintptr_t wParam, intptr_t lParam) {
    if (parentWidget() != nullptr) {
        QCoreApplication::postEvent(parentWidget(), new CWindowMessage(nMessage, wParam, lParam));
    }
}

// --- input ---------------------------------------------------------------------------------

void CGButton::StartRepeat(int nInterval) {
    m_nRepeatInterval = nInterval;
    m_repeatTimer.start(nInterval, this);
}

void CGButton::Press() {
    if (!isEnabled()) {
        return;
    }
    StopFade();
    m_nState = kPressed;
    update();
    if (m_bRepeatOn) {
        StartRepeat(kFirstRepeatMs);
    }
}

void CGButton::Release() {
    m_nRepeatCount = 0;
    m_nRepeatStep = 1;
    if (!isEnabled()) {
        return;
    }
    m_repeatTimer.stop();
    ReleaseOwnCapture();
    if (m_nState != kPressed) {
        m_nState = kNormal;
        update();
        return;
    }
    if (m_bCheckButton) {
        m_nCheckOffset = kCheckedOffset - m_nCheckOffset;
    }
    m_nState = kNormal;
    update();
    const auto lSelf = reinterpret_cast<intptr_t>(this);
    PostToParent(kWmCommand, CWindowMessage::CommandParam(m_nId), lSelf);
    PostToParent(kWmButtonClicked, static_cast<uintptr_t>(m_nId), lSelf);
    setFocus(Qt::MouseFocusReason);
}

void CGButton::OnRepeat() {
    m_repeatTimer.stop();
    if (m_nState == kPressed) {
        PostToParent(kWmCommand, CWindowMessage::CommandParam(m_nId),
                     reinterpret_cast<intptr_t>(this));
        setFocus(Qt::OtherFocusReason);
        StartRepeat(kRepeatMs);
    }
    if (!isEnabled()) {
        ReleaseOwnCapture();
    }
    ++m_nRepeatCount;
    // Kept for callers that read how long a press has run; the period stays the same.
    m_nRepeatStep =
        qMin((m_nRepeatCount / kRepeatStepsPerRise) * kRepeatStepRise + 1, kMaxRepeatStep);
}

void CGButton::mousePressEvent(QMouseEvent* pEvent) {
    if (pEvent->button() == Qt::LeftButton) {
        Press();
        return;
    }
    if (pEvent->button() == Qt::RightButton && isEnabled()) {
        if (parentWidget() != nullptr) {
            CWindowMessage notice(kWmNotify, static_cast<uintptr_t>(m_nId), kNmRightClick,
                                  pEvent->globalPosition().toPoint());
            QCoreApplication::sendEvent(parentWidget(), &notice);
        }
        ReleaseOwnCapture();
        m_nState = kNormal;
        update();
    }
}

void CGButton::mouseDoubleClickEvent(QMouseEvent* pEvent) {
    if (pEvent->button() != Qt::LeftButton || !isEnabled()) {
        return;
    }
    m_nState = kPressed;
    update();
    PostToParent(kWmCommand, CWindowMessage::CommandParam(m_nId, kBnDoubleClicked),
                 reinterpret_cast<intptr_t>(this));
    setFocus(Qt::MouseFocusReason);
}

void CGButton::mouseReleaseEvent(QMouseEvent* pEvent) {
    if (pEvent->button() == Qt::LeftButton) {
        Release();
    }
}

void CGButton::mouseMoveEvent(QMouseEvent* pEvent) {
    if (!isEnabled()) {
        return;
    }
    const bool bOver = rect().contains(pEvent->position().toPoint()) &&
                       (mask().isEmpty() || mask().contains(pEvent->position().toPoint()));
    const bool bLeftDown = (pEvent->buttons() & Qt::LeftButton) != 0;
    if (bOver && !bLeftDown && m_nState != kHover) {
        m_nState = kHover;
        m_bFadePending = m_bFadeOn;
        update();
    } else if (bOver && bLeftDown && m_nState != kPressed) {
        m_nState = kPressed;
        update();
    } else if (!bOver && bLeftDown && m_nState == kPressed) {
        // Held down outside: the press waits, unpainted, for the mouse to come back.
        m_nState = kNormal;
        update();
    } else if (!bOver && !bLeftDown) {
        ReleaseOwnCapture();
        if (m_bCaptureToParent && parentWidget() != nullptr) {
            parentWidget()->grabMouse();
        }
        m_nState = kNormal;
        update();
    }
}

void CGButton::leaveEvent(QEvent*) {
    if (!m_bCaptureToParent) {
        ReleaseOwnCapture();
    }
    if (isEnabled()) {
        StopFade();
        m_nState = kNormal;
    }
    if (m_bCaptureToParent && parentWidget() != nullptr) {
        parentWidget()->grabMouse();
    }
    update();
}

void CGButton::keyPressEvent(QKeyEvent* pEvent) {
    m_focusCue.KeyPressed();
    if (pEvent->key() == Qt::Key_Space && !pEvent->isAutoRepeat()) {
        Press();
        return;
    }
    QWidget::keyPressEvent(pEvent);
}

void CGButton::keyReleaseEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Space && !pEvent->isAutoRepeat()) {
        Release();
        return;
    }
    QWidget::keyReleaseEvent(pEvent);
}

void CGButton::timerEvent(QTimerEvent* pEvent) {
    if (pEvent->timerId() == m_repeatTimer.timerId()) {
        OnRepeat();
    } else if (pEvent->timerId() == m_animationTimer.timerId()) {
        OnAnimationTick();
    } else if (pEvent->timerId() == m_fadeTimer.timerId()) {
        OnFadeStep();
    } else {
        QWidget::timerEvent(pEvent);
    }
}

void CGButton::changeEvent(QEvent* pEvent) {
    QWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::EnabledChange) {
        m_nState = isEnabled() ? kNormal : kDisabled;
        update();
    }
}

void CGButton::focusInEvent(QFocusEvent* pEvent) {
    m_focusCue.FocusIn(*pEvent);
    update();
    QWidget::focusInEvent(pEvent);
}

void CGButton::focusOutEvent(QFocusEvent* pEvent) {
    m_focusCue.FocusOut();
    update();
    QWidget::focusOutEvent(pEvent);
}

// --- fade and animation --------------------------------------------------------------------

void CGButton::StopFade() {
    m_fadeTimer.stop();
    m_bFadePending = false;
}

void CGButton::OnFadeStep() {
    m_nFadeAlpha += kFadeAlphaStep;
    if (m_nFadeAlpha >= kFadeAlphaEnd) {
        m_fadeTimer.stop();
    }
    update();
}

void CGButton::AnimatedShow(bool bShow, bool bAnimate, uint32_t nDelayMs, bool bExpand,
                            bool bGrowIn) {
    if (m_pAnimation == nullptr || !bAnimate) {
        setVisible(bShow);
        return;
    }
    Animation& animation = *m_pAnimation;
    if (!bShow) {
        setVisible(false);
        if (m_animationTimer.isActive()) {
            StopAnimation();
            MoveToDevice(animation.home);
            animation.nStep = 0;
        }
        return;
    }
    StopAnimation();
    animation.home = QRect(m_position, m_size);
    animation.rect = animation.home;
    animation.bActive = true;
    animation.alpha = kAnimationStartAlpha;
    animation.alphaStep = kAnimationAlphaStep;
    animation.nDelayMs = nDelayMs;
    animation.bExpand = bExpand;
    animation.bGrowIn = bGrowIn;
    animation.nStartTick = g_pfnTicks();
    m_animationTimer.start(kAnimationMs, this);
    if (!bGrowIn) {
        show();
    }
}

void CGButton::StopAnimation() {
    m_animationTimer.stop();
    if (m_pAnimation != nullptr) {
        m_pAnimation->bActive = false;
    }
}

void CGButton::OnAnimationTick() {
    Animation& animation = *m_pAnimation;
    if (g_pfnTicks() - animation.nStartTick <= animation.nDelayMs) {
        return;
    }
    if (animation.alpha < 1.0f || !animation.bExpand) {
        if (animation.alpha < 0.0f || animation.alpha > 1.0f) {
            StopAnimation();
            update();
            return;
        }
        QRect rect = animation.home;
        animation.alpha += animation.alphaStep;
        if (animation.bGrowIn) {
            const float shrink = qMax(0.0f, 1.0f - animation.alpha);
            const int dx = static_cast<int>(rect.width() / kGrowInParts * shrink);
            const int dy = static_cast<int>(rect.height() / kGrowInParts * shrink);
            rect.adjust(dx, dy, -dx, -dy);
        }
        animation.rect = rect;
        MoveToDevice(rect);
        show();
        update();
        return;
    }
    if (animation.nStep <= animation.nMaxSteps) {
        const int dx = animation.nStep * animation.stepSize.width();
        const int dy = animation.nStep * animation.stepSize.height();
        animation.rect = animation.home.adjusted(-dx, -dy, dx, dy);
        setMask(QRegion(
            QRect(QPoint(0, 0), ToLogical(animation.rect.size(), DevicePixelRatioOf(this)))));
        MoveToDevice(animation.rect);
        ++animation.nStep;
        return;
    }
    StopAnimation();
    MoveToDevice(animation.home);
    setMask(ToLogical(m_region.isEmpty() ? QRegion(QRect(QPoint(0, 0), m_size)) : m_region,
                      DevicePixelRatioOf(this)));
    animation.nStep = 0;
    update();
}

// --- painting ------------------------------------------------------------------------------

QImage CGButton::Piece() const {
    return m_strip.copy(PieceIndex() * m_nPieceWidth, 0, m_nPieceWidth, m_nPieceHeight);
}

// The piece blended on the backdrop under the button: squeezed into a narrower button, else
// its halves at 1:1 with its middle column repeated between them.
QImage CGButton::ComposeOnBackdrop() const {
    QImage canvas = CaptureParentBackground(this, m_backdrop);
    const int nWidth = canvas.width();
    const int nHeight = canvas.height();
    const int x0 = PieceIndex() * m_nPieceWidth;
    QPainter painter(&canvas);
    if (nWidth < m_nPieceWidth) {
        painter.drawImage(QRect(0, 0, nWidth, nHeight), m_strip,
                          QRect(x0, 0, m_nPieceWidth, m_nPieceHeight));
    } else {
        const int nHalf = m_nPieceWidth / 2;
        painter.drawImage(QPoint(0, 0), m_strip, QRect(x0, 0, nHalf, m_nPieceHeight));
        int x = nHalf;
        for (; x < nWidth - nHalf; x += kStretchColumn) {
            painter.drawImage(QPoint(x, 0), m_strip,
                              QRect(x0 + nHalf, 0, kStretchColumn, m_nPieceHeight));
        }
        const int nRest = m_nPieceWidth - nHalf;
        painter.drawImage(QPoint(nWidth - nRest, 0), m_strip,
                          QRect(x0 + nHalf, 0, nRest, m_nPieceHeight));
    }
    if (m_overlayColour.has_value()) {
        painter.fillRect(m_rcOverlay, ColorFromRef(*m_overlayColour));
    }
    return canvas;
}

// Three pieces of the first picture: head, repeated columns, tail flush with the right edge.
void CGButton::DrawStretched(QPainter& painter) const {
    const int nWidth = DeviceSize(this).width();
    const int nPieceWidth = m_strip.width() / kStatePictures;
    const int x0 = PieceIndex() * nPieceWidth;
    const int nRows = m_strip.height();
    const QImage opaque = m_strip.convertToFormat(QImage::Format_RGB32);
    painter.drawImage(QPoint(0, 0), opaque, QRect(x0, 0, kStretchHead, nRows));
    for (int x = kStretchHead; x < nWidth - kStretchTail; x += kStretchColumn) {
        painter.drawImage(QPoint(x, 0), opaque, QRect(x0 + kStretchHead, 0, kStretchColumn, nRows));
    }
    painter.drawImage(QPoint(nWidth - kStretchTail, 0), opaque,
                      QRect(x0 + nPieceWidth - kStretchTail, 0, kStretchTail, nRows));
}

// The hover picture comes in over the backdrop, a little more opaque at each step.
void CGButton::DrawFadeStep(QPainter& painter) const {
    if (!m_backdrop.isNull()) {
        painter.drawImage(0, 0, CaptureParentBackground(this, m_backdrop));
    }
    painter.setOpacity(m_nFadeAlpha / 255.0);
    painter.drawImage(QPoint(0, 0), Piece());
    painter.setOpacity(1.0);
}

void CGButton::DrawAnimationFrame(QPainter& painter) const {
    const Animation& animation = *m_pAnimation;
    const QSize size = DeviceSize(this);
    QImage frame = ComposeOnBackdrop();
    const QRect textArea =
        QRect(QPoint(0, 0), animation.rect.size())
            .adjusted(-(animation.nStep * animation.stepSize.width() - kTextSideInset),
                      -animation.nStep * animation.stepSize.height(),
                      animation.nStep * animation.stepSize.width() - kTextSideInset,
                      animation.nStep * animation.stepSize.height());
    if (animation.nStep == 0) {
        QPainter framePainter(&frame);
        DrawCaption(framePainter, m_nTextFormat | dt::kEndEllipsis, textArea);
    }
    QImage blended = CaptureParentBackground(this, m_backdrop);
    {
        QPainter blendPainter(&blended);
        blendPainter.setOpacity(qBound(0.0f, animation.alpha, kAnimationMaxAlpha));
        blendPainter.drawImage(0, 0, frame);
    }
    painter.drawImage(QRect(QPoint(0, 0), size), blended);
    if (animation.nStep > 0) {
        DrawCaption(painter, m_nTextFormat | dt::kEndEllipsis, textArea);
    }
}

QRect CGButton::TextArea() const {
    QRect area(QPoint(0, 0), DeviceSize(this));
    const bool bTextRectSet =
        m_nTextLeft != -1 || m_nTextTop != -1 || m_nTextRight != -1 || m_nTextBottom != -1;
    if (!bTextRectSet) {
        area.adjust(kTextSideInset, 0, -kTextSideInset, 0);
    }
    if (m_nTextLeft > 0) {
        area.setLeft(m_nTextLeft);
    }
    if (m_nTextTop > 0) {
        area.setTop(m_nTextTop);
    }
    if (m_nTextRight > 0) {
        area.setRight(m_nTextRight - 1);
    }
    if (m_nTextBottom > 0) {
        area.setBottom(m_nTextBottom - 1);
    }
    return area;
}

void CGButton::DrawCaption(QPainter& painter, uint32_t nFlags, const QRect& area) const {
    if (m_caption.isEmpty()) {
        return;
    }
    painter.setPen(ColorFromRef(m_crText[qBound(0, PieceIndex(), kTextColours - 1)]));
    DrawSkinText(&painter, m_font, area, nFlags, m_caption);
}

void CGButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintInDevicePixels(painter, this);
    const bool bAnimating = m_pAnimation != nullptr && m_pAnimation->bActive;
    // Copy parent: the parent's pixels, which Qt lays under every child, are the picture.
    if (!m_bCopyParent && !m_strip.isNull()) {
        if (m_bFadePending) {
            m_bFadePending = false;
            m_nFadeAlpha = 0;
            m_fadeTimer.start(kFadeStepMs, this);
        }
        if (m_bStretch) {
            DrawStretched(painter);
        } else if (m_fadeTimer.isActive()) {
            DrawFadeStep(painter);
        } else if (bAnimating) {
            DrawAnimationFrame(painter);
        } else if (m_strip.hasAlphaChannel() && !m_backdrop.isNull()) {
            painter.drawImage(0, 0, ComposeOnBackdrop());
        } else {
            painter.drawImage(
                QPoint(0, 0), m_strip.convertToFormat(QImage::Format_RGB32),
                QRect(PieceIndex() * m_nPieceWidth, 0, m_nPieceWidth, m_nPieceHeight));
        }
    }
    if (!bAnimating) {
        const QRect area = TextArea();
        uint32_t nFlags = m_nTextFormat | dt::kEndEllipsis | dt::kNoPrefix;
        QRect textArea = area;
        if (m_bWordWrap) {
            nFlags = dt::kWordBreak;
        } else if (m_nTextInset != -1) {
            textArea.setLeft(area.left() + m_nTextInset);
            nFlags = kInsetFormat;
        }
        DrawCaption(painter, nFlags, textArea);
    }
    m_focusCue.Paint(painter, *this, QRect(QPoint(0, 0), DeviceSize(this)), kFocusInset,
                     ColorFromRef(m_crText[kNormal]));
}
