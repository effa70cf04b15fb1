// A top-level window without a system frame that draws its own: a caption band with the icon,
// the logo, the title and the caption buttons, and thin borders, around one client widget. It
// tests its own points, moves and sizes itself through the window system and offers the window
// menu from its icon. Every number here is in device pixels.
#pragma once

#include <QFont>
#include <QImage>
#include <QPoint>
#include <QRegion>
#include <QWidget>

class QMenu;

class CGXTFrameWnd : public QWidget {
    Q_OBJECT
public:
    // What a point of the window belongs to.
    enum Hit {
        kHitNowhere,
        kHitClient,
        kHitCaption,
        kHitLeft,
        kHitRight,
        kHitTop,
        kHitBottom,
        kHitTopLeft,
        kHitTopRight,
        kHitBottomLeft,
        kHitBottomRight,
    };
    // What a click on the band does.
    enum Click {
        kClickNone = 0,
        kClickIcon = 1,
        kClickMinimise = 2,
        kClickMaximise = 3,
        kClickRestore = 4,
        kClickClose = 5,
        kClickUpdate = 6,
    };
    // Which caption button the pointer is over.
    enum Hover {
        kHoverNone = 0,
        kHoverMinimise = 0x10,
        kHoverMaximise = 0x20,
        kHoverRestore = 0x30,
        kHoverClose = 0x40,
        kHoverUpdate = 0x50,
    };

    static constexpr int kBandTop = 44;
    static constexpr int kBandSide = 6;
    static constexpr int kBandBottom = 7;

    explicit CGXTFrameWnd(QWidget* pParent = nullptr);
    ~CGXTFrameWnd() override;

    // The widget inside the band; the frame takes it over.
    void SetClient(QWidget* pClient);
    QWidget* Client() const { return m_pClient; }

    // For a point in the window, in device pixels.
    Hit HitTest(QPoint pt) const;
    int ClickCode(QPoint pt) const;
    int HoverCode(QPoint pt) const;
    // The hover code of the button under the pointer, or the click code of the button held
    // down; 0 for none.
    int HotState() const { return m_nHotState; }
    // The caption button in that place from the right (0 close, 1 maximise, 2 minimise,
    // 3 update), where it is tested for clicks.
    QRect ButtonRect(int nOrder) const;
    // Made on first use; its actions carry the click codes of the caption buttons as data.
    QMenu* SystemMenu();

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;

private:
    void LoadPictures();
    void PlaceClient();
    void UpdateMask();
    void PaintBorders(QPainter& painter, QSize size) const;
    static void PaintBottomPiece(QPainter& painter, const QImage& piece, int x, int y);
    void PaintCaption(QPainter& painter, QSize size) const;
    void PaintButtons(QPainter& painter) const;
    const QImage& ButtonPicture(int nOrder) const;
    qreal UnitRatio() const;
    QSize UnitSize() const;
    QPoint DevicePoint(const QMouseEvent* pEvent) const;
    void SetHotState(int nHotState);
    void ShowButtonTip(int nHoverCode, QPoint globalPos);
    void StartResize(Hit hit);
    void RunClickCode(int nCode);
    QPoint MenuOrigin() const;
    void PopupSystemMenu(QPoint globalPos);
    void EnableSystemMenu();

    QWidget* m_pClient = nullptr;
    QMenu* m_pSystemMenu = nullptr;
    QImage m_pieces[9];
    // The outline of each corner piece, without its key colour.
    QRegion m_outlines[9];
    QImage m_icon;
    QImage m_logo;
    // Normal, hover and pressed of close, maximise, restore and minimise.
    QImage m_buttons[4][3];
    QImage m_updateDisabled;
    QSize m_buttonSize;
    QFont m_titleFont;
    int m_nHotState = kHoverNone;
    int m_nPressed = kClickNone;
    bool m_bDragPending = false;
    QPoint m_dragStart;
};
