// ovrin: the desktop viewer of disc images. It runs from its own folder, beside Qmz.so, Image/
// and Language/.
#include "CLanguageChain.h"
#include "CMainFrame.h"
#include "CTvnStringTable.h"
#include "ToolkitHooks.h"
#include "TvnText.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>

namespace {

// No language table means no words for a skinned box, so the system's own box tells.
bool LoadLanguage(CLanguageChain& chain, CTvnStringTable& table) {
    QString pathTried;
    if (chain.LoadStringTable(chain.LoadTransfer(), table, pathTried)) {
        SetCurrentStringTable(&table);
        return true;
    }
    QMessageBox::critical(
        nullptr, QString(),
        QStringLiteral("The file [%1] is missing.\nPlease reinstall application.").arg(pathTried));
    return false;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    CLanguageChain chain(CLanguageChain::ExecutableFolder());
    CTvnStringTable table;
    if (!LoadLanguage(chain, table)) {
        chain.UnloadTransfer();
        return 1;
    }
    InstallToolkitHooks();
    // The program's own icon, from the desktop's icon theme where the install put it.
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("ovrin")));

    int nResult = 0;
    {
        CMainFrame frame;
        SetMainWindowForText(&frame);
        frame.setWindowTitle(TvnText(tvn::kAppTitle));
        frame.ShowAtSavedPlacement();
        nResult = QApplication::exec();
        SetMainWindowForText(nullptr);
    }
    SetCurrentStringTable(nullptr);
    chain.UnloadTransfer();
    return nResult;
}
