#include "ToolkitHooks.h"

#include "CDisplayScale.h"
#include "Formatting.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPointer>
#include <QScreen>
#include <QWidget>

namespace {

QPointer<QWidget> g_pMainWindow;

QString ElideToWidth(const QString& text, int nWidth, const void* pFont) {
    const QFont font = pFont != nullptr           ? *static_cast<const QFont*>(pFont)
                       : g_pMainWindow != nullptr ? g_pMainWindow->font()
                                                  : QApplication::font();
    return QFontMetrics(font).elidedText(text, Qt::ElideRight, nWidth);
}

} // namespace

double ScreenDeviceDpi() {
    const QScreen* pScreen = QGuiApplication::primaryScreen();
    if (pScreen == nullptr) {
        return CDisplayScale::kBaseDpi;
    }
    return pScreen->logicalDotsPerInchX() * pScreen->devicePixelRatio();
}

void InstallToolkitHooks() {
    SetTextTruncator(ElideToWidth);
    CDisplayScale::SetDpiSource(ScreenDeviceDpi);
}

void SetMainWindowForText(QWidget* pWindow) {
    g_pMainWindow = pWindow;
}

QWidget* MainWindow() {
    return g_pMainWindow;
}
