// The push button of the skinned dialogs: a strip of four pictures (eight for a check button)
// drawn over whatever the parent painted below, with a caption. A click posts the parent a
// command with the button's id.
#pragma once

#include "CFocusCue.h"
#include "ToolkitTypes.h"

#include <QFont>
#include <QIcon>
#include <QImage>
#include <QWidget>

inline constexpr uint32_t kWsVisible = 0x10000000;
inline constexpr uint32_t kWsDisabled = 0x08000000;

class CAlphaButton : public QWidget {
    Q_OBJECT
public:
    enum State { kNormal = 0, kHover = 1, kPressed = 2, kDisabled = 3 };
    static constexpr int kStateCount = 4;
    static constexpr int kDefaultId = 10000;

    explicit CAlphaButton(QWidget* pParent = nullptr);

    // Places the button at rect (device pixels, scaled by the DPI scale of the settings).
    // nStyle: kWsVisible shows it, kWsDisabled disables it.
    bool Create(const QString& caption, uint32_t nStyle, const QRect& rect, QWidget* pParent,
                int nId);
    // False, with no picture, if the picture cannot be read.
    bool LoadStrip(const QString& path, bool bRelative, bool bCheckType, bool bKeepPressed);
    void SetTextPosition(int x, int y, bool bCentreX, bool bCentreY);
    void SetCaption(const QString& caption);
    void SetTipText(const QString& text, bool bActivate);
    void SetTipById(uint32_t nTextId, bool bActivate);
    void SetTextColour(COLORREF colour);
    void SetLatch(bool bLatch);
    // Off also returns the button to normal.
    void SetLatchedDown(bool bDown);
    void Enable(bool bEnable);
    void SetState(int nState);
    void SetFont(const QFont& font);
    void SetTextRight(int nRight);
    void SetMargins(int nLeftMargin, bool bCentreX, bool bCentreY);
    void SetCheck(bool bChecked);
    void SetIcon(const QIcon& icon);

    int State() const { return m_nState; }
    int Id() const { return m_nId; }
    bool Checked() const { return m_bChecked; }
    QString Caption() const { return m_caption; }
    QSize PieceSize() const { return QSize(m_nPieceWidth, m_nPieceHeight); }
    // Where the caption goes, in device pixels; placed at the next paint.
    QRect TextRect() const;

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void keyReleaseEvent(QKeyEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void focusInEvent(QFocusEvent* pEvent) override;
    void focusOutEvent(QFocusEvent* pEvent) override;

private:
    void Press();
    void Release();
    void PlaceText();
    void DrawPicture(QPainter& painter);
    void DrawCaption(QPainter& painter, int nOffset);
    void DrawIcon(QPainter& painter, int nOffset);
    void UpdateAccessibleName();

    QImage m_image;
    COLORREF m_crText[kStateCount];
    int m_nState = kNormal;
    QString m_tipText;
    bool m_bLatch = false;
    bool m_bLatchedDown = false;
    bool m_bCheckType = false;
    bool m_bKeepPressed = false;
    int m_nTextLeft = 0;
    int m_nTextTop = 0;
    int m_nTextRight = 0;
    bool m_bCentreX = true;
    bool m_bCentreY = true;
    QFont m_font;
    int m_nWidth = 0;
    int m_nHeight = 0;
    bool m_bTextPlaced = false;
    uint32_t m_nDrawFlags = 0;
    int m_nLeftMargin = 0;
    int m_nPieceWidth = 0;
    int m_nPieceHeight = 0;
    int m_nId = kDefaultId;
    bool m_bChecked = false;
    QIcon m_icon;
    QString m_caption;
    CFocusCue m_focusCue;
};
