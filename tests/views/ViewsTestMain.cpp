// The views' tests run inside one QApplication, with the program's English texts and settings
// of their own.
#include "CTvnStringTable.h"
#include "TvnText.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // The build lists the tests by running this program without the tests' environment.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // The commands store the folders the user chose; the user's own settings stay untouched.
    const QTemporaryDir settings;
    qputenv("BRINDLEWAY_USER_REGISTRY", settings.filePath(QStringLiteral("user.db")).toUtf8());
    qputenv("BRINDLEWAY_MACHINE_REGISTRY",
            settings.filePath(QStringLiteral("machine.db")).toUtf8());
    QApplication app(argc, argv);
    CTvnStringTable table;
    if (!table.LoadFile(QStringLiteral(OVRIN_LANGUAGE_DIR "/Enu/Tvnrc.txt"))) {
        return 1;
    }
    SetCurrentStringTable(&table);
    ::testing::InitGoogleTest(&argc, argv);
    const int nResult = RUN_ALL_TESTS();
    SetCurrentStringTable(nullptr);
    return nResult;
}
