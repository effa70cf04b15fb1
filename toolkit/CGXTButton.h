// A push button that shows one of three icons cut from a strip (normal, hover, pressed),
// whose mask colour is transparent; disabled, it shows the normal icon faded. The command bar
// is made of them.
#pragma once

#include "CFocusCue.h"
#include "ToolkitTypes.h"

#include <QAbstractButton>
#include <QList>
#include <QPixmap>

class CGXTButton : public QAbstractButton {
    Q_OBJECT
public:
    enum Icon { kIconNormal = 0, kIconHover = 1, kIconPressed = 2 };

    explicit CGXTButton(QWidget* pParent = nullptr);

    // Cuts the strip into nPieces icons of width / nPieces; false, with no icons, for a
    // picture that cannot be read.
    bool Setup(const QString& relativePath, int nPieces, COLORREF maskColour);
    bool Setup(const QImage& strip, int nPieces, COLORREF maskColour);
    // A mask colour that no pixel has, for strips that keep every pixel.
    static constexpr COLORREF kNoMask = 0xFFFFFFFF;

    int CurrentIcon() const { return m_nIcon; }
    QSize IconSize() const { return QSize(m_nIconWidth, m_nIconHeight); }
    QSize sizeHint() const override;

protected:
    bool event(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;

private:
    void SetIconIndex(int nIndex);

    QList<QImage> m_icons;
    CFocusCue m_focusCue;
    int m_nIconWidth = 0;
    int m_nIconHeight = 0;
    bool m_bPressed = false;
    int m_nIcon = kIconNormal;
};
