#include "ToolkitHooks.h"

#include "CDisplayScale.h"
#include "CTvgMessageBox.h"
#include "FileSystemHelpers.h"
#include "Formatting.h"
#include "TvnStringIds.h"

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

void ShowNotice(const QString& text) {
    ShowMessageBoxText(text, mb::kOk, tvn::kBoxTitle, nullptr,
                       QString::fromUtf16(kDefaultMessageIcon), false);
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
    SetNoticeHandler(ShowNotice);
}

void SetMainWindowForText(QWidget* pWindow) {
    g_pMainWindow = pWindow;
}

QWidget* MainWindow() {
    return g_pMainWindow;
}
