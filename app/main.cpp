// ovrin: the desktop viewer of disc images. It runs from its own folder, beside Qmz.so, Image/
// and Language/.
#include "COvrinApp.h"
#include "ToolkitHooks.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    InstallToolkitHooks();
    COvrinApp ovrin(QApplication::arguments());
    return ovrin.Run();
}
