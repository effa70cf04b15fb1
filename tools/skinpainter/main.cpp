// ovrin-skinpainter: paints the pictures of Ovrin's skin.
//   ovrin-skinpainter SKINDIR                   every picture, under SKINDIR (the Image folder)
//   ovrin-skinpainter --desktop-icons DIR       the program's icon in DIR/hicolor/...
//   ovrin-skinpainter --contact-sheet OUT.png   all pictures at twice their size, to look at
//   ovrin-skinpainter --mockups OUT.png         the windows put together from the pictures

#include "ContactSheet.h"
#include "SkinWriter.h"

#include <QGuiApplication>
#include <QTextStream>

namespace {
int usage() {
    QTextStream(stderr) << "usage: ovrin-skinpainter SKINDIR\n"
                           "       ovrin-skinpainter --desktop-icons DIR\n"
                           "       ovrin-skinpainter --contact-sheet OUT.png\n"
                           "       ovrin-skinpainter --mockups OUT.png\n";
    return 2;
}

int run(const QStringList& args) {
    if (args.size() == 1 && !args[0].startsWith("--"))
        return SkinWriter::writeSkin(args[0]) == 0 ? 0 : 1;
    if (args.size() != 2)
        return usage();
    if (args[0] == "--desktop-icons")
        return SkinWriter::writeDesktopIcons(args[1]) == 0 ? 0 : 1;
    if (args[0] == "--contact-sheet")
        return ContactSheet::pictures().save(args[1]) ? 0 : 1;
    if (args[0] == "--mockups")
        return ContactSheet::mockups().save(args[1]) ? 0 : 1;
    return usage();
}
} // namespace

int main(int argc, char* argv[]) {
    // Painting needs fonts but no screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    return run(app.arguments().mid(1));
}
