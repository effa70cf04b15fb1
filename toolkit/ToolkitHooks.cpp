#include "ToolkitHooks.h"

#include "CDisplayScale.h"
#include "CTvgMessageBox.h"
#include "FileSystemHelpers.h"
#include "Formatting.h"
#include "TvnStringIds.h"

#include <QApplication>
#include <QFontMetrics>
#include <QIcon>
#include <QPointer>
#include <QScreen>
#include <QStandardPaths>
#include <QWidget>

namespace {

QPointer<QWidget> g_pMainWindow;

// A theme of full-colour icons that Debian ships; the install step installs it.
const QString kFallbackTheme = QStringLiteral("Adwaita");
// The freedesktop base theme "hicolor", which every icon theme inherits; it holds programs' own
// icons, hardly any of types and folders.
const QString kBaseTheme = QStringLiteral("hicolor");

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
    ChooseIconTheme();
    SetTextTruncator(ElideToWidth);
    CDisplayScale::SetDpiSource(ScreenDeviceDpi);
    SetNoticeHandler(ShowNotice);
}

void ChooseIconTheme() {
    static bool s_bDone = false;
    if (s_bDone) {
        return;
    }
    s_bDone = true;
    // Without a desktop session Qt names the base theme as the fallback, or no theme at all
    // and no system folder to look in; either way no folder icon would be found.
    if (QIcon::fallbackThemeName().isEmpty() || QIcon::fallbackThemeName() == kBaseTheme) {
        QIcon::setFallbackThemeName(kFallbackTheme);
    }
    if (QIcon::themeName().isEmpty()) {
        QIcon::setThemeName(kBaseTheme);
    }
    QStringList paths = QIcon::themeSearchPaths();
    const QStringList dataFolders =
        QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, QStringLiteral("icons"),
                                  QStandardPaths::LocateDirectory);
    bool bAdded = false;
    for (const QString& folder : dataFolders) {
        if (!paths.contains(folder)) {
            paths.append(folder);
            bAdded = true;
        }
    }
    if (bAdded) {
        QIcon::setThemeSearchPaths(paths);
    }
}

void SetMainWindowForText(QWidget* pWindow) {
    g_pMainWindow = pWindow;
}

QWidget* MainWindow() {
    return g_pMainWindow;
}
