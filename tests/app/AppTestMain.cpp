// The application's tests run inside one QApplication with the toolkit's hooks, on settings
// stores of their own that the process throws away, with instance locks of their own.
#include "CInstanceGuard.h"
#include "ToolkitHooks.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // The build lists the tests by running this program without the tests' environment.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QTemporaryDir stores;
    qputenv("BRINDLEWAY_USER_REGISTRY", stores.filePath(QStringLiteral("user.db")).toLocal8Bit());
    qputenv("BRINDLEWAY_MACHINE_REGISTRY",
            stores.filePath(QStringLiteral("machine.db")).toLocal8Bit());
    qputenv(CInstanceGuard::kScopeVariable,
            "tests-" + QByteArray::number(QCoreApplication::applicationPid()));
    QApplication app(argc, argv);
    InstallToolkitHooks();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
