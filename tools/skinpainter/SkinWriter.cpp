#include "SkinWriter.h"

#include "ProgramIcon.h"
#include "SkinCatalog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTextStream>

namespace {
bool savePng(const QImage& image, const QString& path) {
    return QDir().mkpath(QFileInfo(path).path()) && image.save(path, "PNG");
}
} // namespace

int SkinWriter::writeSkin(const QString& skinDir) {
    int failures = 0;
    for (const SkinPicture& picture : SkinCatalog::pictures()) {
        const QImage image = picture.paint();
        if (image.size() != picture.imageSize()) {
            QTextStream(stderr) << picture.path << ": painted " << image.width() << 'x'
                                << image.height() << ", expected " << picture.imageSize().width()
                                << 'x' << picture.imageSize().height() << '\n';
            ++failures;
            continue;
        }
        if (!savePng(image, skinDir + '/' + picture.path)) {
            QTextStream(stderr) << picture.path << ": cannot be written\n";
            ++failures;
        }
    }
    return failures;
}

int SkinWriter::writeDesktopIcons(const QString& iconsDir) {
    int failures = 0;
    for (int size : ProgramIcon::desktopSizes()) {
        const QString path =
            QStringLiteral("%1/hicolor/%2x%2/apps/ovrin.png").arg(iconsDir).arg(size);
        if (!savePng(ProgramIcon::png(size), path))
            ++failures;
    }
    const QString svgPath = iconsDir + QStringLiteral("/hicolor/scalable/apps/ovrin.svg");
    QFile svg(svgPath);
    if (!QDir().mkpath(QFileInfo(svgPath).path()) || !svg.open(QIODevice::WriteOnly) ||
        svg.write(ProgramIcon::svg().toUtf8()) < 0) {
        ++failures;
    }
    return failures;
}
