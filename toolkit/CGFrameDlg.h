// A skinned dialog that draws a frame of its own around a client area: it keeps the inset of
// that area and answers the system's caption and frame sizes with the skin's.
#pragma once

#include "CTvgBaseDialog.h"

#include <QMargins>

class CGFrameDlg : public CTvgBaseDialog {
    Q_OBJECT
public:
    // The indices of the sizes that the skin answers itself.
    static constexpr int kSmCyCaption = 4;
    static constexpr int kSmCxFrame = 32;
    static constexpr int kSmCyFrame = 33;

    explicit CGFrameDlg(QWidget* pParent = nullptr);

    // The skin's caption height and frame widths; any other index the system's value, or 0
    // for one this platform does not have.
    static int GetSystemMetrics(int nIndex);
    QMargins ClientInset() const { return m_rcClientInset; }

private:
    QMargins m_rcClientInset;
};
