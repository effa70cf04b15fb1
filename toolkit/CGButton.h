// The button of composite controls: a strip blended on a piece of the parent's backdrop, shaped
// by the magenta outline of its picture, with auto-repeat, an optional hover fade and an
// optional animated show. A click posts the parent a command and a clicked notice (1434).
#pragma once

#include "CFocusCue.h"
#include "ToolkitTypes.h"

#include <QBasicTimer>
#include <QFont>
#include <QImage>
#include <QRegion>
#include <QWidget>
#include <memory>
#include <optional>

namespace bs {
inline constexpr uint32_t kLeft = 0x100;
inline constexpr uint32_t kRight = 0x200;
inline constexpr uint32_t kTop = 0x400;
inline constexpr uint32_t kBottom = 0x800;
inline constexpr uint32_t kMultiLine = 0x2000;
} // namespace bs

class CGButton : public QWidget {
    Q_OBJECT
public:
    enum State { kNormal = 0, kHover = 1, kPressed = 2, kDisabled = 3 };
    static constexpr int kTextColours = 8;
    static constexpr int kFirstRepeatMs = 500;
    static constexpr int kRepeatMs = 100;
    static constexpr int kAnimationMs = 100;
    static constexpr int kFadeStepMs = 20;

    // Milliseconds from any fixed start; the animation's clock, replaced by tests.
    using TickSource = uint32_t (*)();
    static void SetTickSource(TickSource pfnTicks);

    explicit CGButton(QWidget* pParent = nullptr);
    ~CGButton() override;

    // nStyle holds the bs:: text placement flags; bRepeat makes a held press repeat.
    bool CreateWindow(QWidget* pParent, const QString& caption, uint32_t nStyle, int nId,
                      bool bRepeat);
    // Places the button at (x, y) with size nWidth by nHeight (device pixels) and takes the
    // strip (4 pictures, 8 for a check button; premultiplied or opaque), its outline and its
    // text placement.
    void SetImage(int x, int y, const QImage& strip, int nWidth, int nHeight, int nState,
                  int nPieceHeight, uint32_t nTipTextId, bool bCheckButton, bool bShow,
                  const QImage& backdrop);
    void ReplaceImage(int x, int y, const QImage& strip, int nWidth, int nHeight);
    void PastePiece(const QImage& piece, int nIndex);
    void SetTipText(const QString& text, bool bActivate);
    void SetTipById(uint32_t nTextId, bool bActivate);
    void SetFontSize(int nPoints);
    void SetFont(const QFont& font);
    void SetCheck(bool bChecked);
    bool GetCheck() const { return m_nCheckOffset == kCheckedOffset; }
    void Enable(bool bEnable);
    void SetState(int nState);
    void SetTextColours(const COLORREF colours[kTextColours]);
    void SetTextInset(int nInset);
    void SetOverlay(COLORREF colour, const QRect& rect);
    void SetTextRect(const QRect& rect);
    void SetBackdrop(const QImage& backdrop);
    void SetFadeOn(bool bOn);
    void SetCopyParent(bool bOn);
    void SetCaptureToParent(bool bOn);
    void SetStretch(bool bOn);
    void SetWordWrap(bool bOn);
    // A change of state then also enables or disables the button.
    void SetEnableWindow(bool bOn);
    void UseAnimation(bool bOn);
    // With bAnimate and an animation record, a show fades and grows the button in after
    // nDelayMs; any other show command shows or hides at once.
    void AnimatedShow(bool bShow, bool bAnimate, uint32_t nDelayMs, bool bExpand, bool bGrowIn);

    int State() const { return m_nState; }
    int Id() const { return m_nId; }
    uint32_t TextFormat() const { return m_nTextFormat; }
    QRegion Outline() const { return m_region; }
    bool Fading() const { return m_fadeTimer.isActive(); }
    // The timer that repeats a held press, and its period now (0 when it does not run).
    int RepeatTimerId() const { return m_repeatTimer.timerId(); }
    int RepeatInterval() const { return m_repeatTimer.isActive() ? m_nRepeatInterval : 0; }
    int AnimationTimerId() const { return m_animationTimer.timerId(); }
    int FadeTimerId() const { return m_fadeTimer.timerId(); }

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void keyReleaseEvent(QKeyEvent* pEvent) override;
    void timerEvent(QTimerEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void focusInEvent(QFocusEvent* pEvent) override;
    void focusOutEvent(QFocusEvent* pEvent) override;

private:
    static constexpr int kCheckedOffset = 4;

    struct Animation {
        bool bActive = false;
        float alpha = -1.0f;
        float alphaStep = 0.0f;
        uint32_t nDelayMs = 0;
        bool bExpand = false;
        QRect rect;
        uint32_t nStartTick = 0;
        int nMaxSteps = 1;
        int nStep = 0;
        QSize stepSize{1, 1};
        QRect home;
        bool bGrowIn = false;
    };

    void Press();
    void Release();
    void PostToParent(uint32_t nMessage, uintptr_t wParam, intptr_t lParam);
    void StartRepeat(int nInterval);
    void OnRepeat();
    void StopFade();
    void OnFadeStep();
    void StopAnimation();
    void OnAnimationTick();
    void MoveToDevice(const QRect& device);
    void ReleaseOwnCapture();
    int PieceIndex() const { return m_nState + m_nCheckOffset; }
    QImage Piece() const;
    QImage ComposeOnBackdrop() const;
    void DrawStretched(QPainter& painter) const;
    void DrawFadeStep(QPainter& painter) const;
    void DrawAnimationFrame(QPainter& painter) const;
    void DrawCaption(QPainter& painter, uint32_t nExtraFlags, const QRect& area) const;
    QRect TextArea() const;
    void UpdateAccessibleName();

    int m_nState = kNormal;
    int m_nCheckOffset = 0;
    QPoint m_position;
    QSize m_size;
    QFont m_font;
    int m_nPieceWidth = 0;
    int m_nPieceHeight = 0;
    uint32_t m_nTextFormat = 0;
    QImage m_strip;
    QRegion m_region;
    uint32_t m_nTipTextId = 0;
    bool m_bCopyParent = false;
    bool m_bCheckButton = false;
    bool m_bFadeOn = false;
    bool m_bWordWrap = false;
    bool m_bFadePending = false;
    QBasicTimer m_fadeTimer;
    int m_nFadeAlpha = 0;
    QBasicTimer m_repeatTimer;
    int m_nRepeatInterval = 0;
    bool m_bRepeatOn = false;
    int m_nRepeatCount = 0;
    int m_nRepeatStep = 1;
    bool m_bCaptureToParent = false;
    bool m_bStretch = false;
    int m_nFontSize = 12;
    QImage m_backdrop;
    std::unique_ptr<Animation> m_pAnimation;
    QBasicTimer m_animationTimer;
    int m_nTextInset = -1;
    COLORREF m_crText[kTextColours] = {kTextWhite, kTextWhite, kTextWhite, kTextDisabled,
                                       kTextWhite, kTextWhite, kTextWhite, kTextDisabled};
    // Sides of the text rectangle; one above 0 replaces that side of the client rectangle.
    int m_nTextLeft = -1;
    int m_nTextTop = -1;
    int m_nTextRight = -1;
    int m_nTextBottom = -1;
    std::optional<COLORREF> m_overlayColour;
    QRect m_rcOverlay;
    bool m_bEnableWindow = false;
    uint32_t m_nStyle = 0;
    int m_nId = 0;
    QString m_caption;
    QString m_tipText;
    CFocusCue m_focusCue;
};
