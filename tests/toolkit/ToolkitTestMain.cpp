// The toolkit's tests run inside one QApplication with the toolkit's measuring hooks.
#include "ToolkitHooks.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // The build lists the tests by running this program without the tests' environment.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    InstallToolkitHooks();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
