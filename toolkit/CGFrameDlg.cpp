#include "CGFrameDlg.h"

#include <QApplication>
#include <QScreen>
#include <QStyle>

namespace {

constexpr int kClientInset = 5;
constexpr int kSkinCaptionHeight = 25;
constexpr int kSkinFrameWidth = 6;
constexpr int kSkinFrameHeight = 5;

// The system's sizes that have a counterpart here.
constexpr int kSmCxScreen = 0;
constexpr int kSmCyScreen = 1;
constexpr int kSmCxVScroll = 2;
constexpr int kSmCyHScroll = 3;

int PlatformMetric(int nIndex) {
    const QScreen* pScreen = QGuiApplication::primaryScreen();
    switch (nIndex) {
    case kSmCxScreen:
        return pScreen != nullptr ? pScreen->geometry().width() : 0;
    case kSmCyScreen:
        return pScreen != nullptr ? pScreen->geometry().height() : 0;
    case kSmCxVScroll:
    case kSmCyHScroll:
        return QApplication::style() != nullptr
                   ? QApplication::style()->pixelMetric(QStyle::PM_ScrollBarExtent)
                   : 0;
    default:
        return 0;
    }
}

} // namespace

CGFrameDlg::CGFrameDlg(QWidget* pParent)
    : CTvgBaseDialog(pParent),
      m_rcClientInset(kClientInset, kClientInset, kClientInset, kClientInset) {}

int CGFrameDlg::GetSystemMetrics(int nIndex) {
    switch (nIndex) {
    case kSmCyCaption:
        return kSkinCaptionHeight;
    case kSmCxFrame:
        return kSkinFrameWidth;
    case kSmCyFrame:
        return kSkinFrameHeight;
    default:
        return PlatformMetric(nIndex);
    }
}
