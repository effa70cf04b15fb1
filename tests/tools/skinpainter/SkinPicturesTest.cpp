#include "ProgramIcon.h"
#include "SkinCatalog.h"
#include "SkinWriter.h"

#include <QDirIterator>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <set>

namespace {
const QString kSourceDir = QStringLiteral(OVRIN_SOURCE_DIR);
const QString kSkinBesideProgram = QStringLiteral(OVRIN_BIN_DIR "/Image");
// Two paintings of the same picture may differ by rounding in the font rasteriser.
constexpr int kChannelTolerance = 2;
// The SVG renderer and the painter antialias differently; their pictures must still agree.
constexpr double kSvgMeanTolerance = 3.0;

QImage load(const QString& path) {
    return QImage(path).convertToFormat(QImage::Format_ARGB32);
}

// The first pixel that differs by more than the tolerance, or an empty text.
QString firstDifference(const QImage& a, const QImage& b) {
    if (a.size() != b.size())
        return QStringLiteral("size differs");
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (std::abs(qRed(p) - qRed(q)) > kChannelTolerance ||
                std::abs(qGreen(p) - qGreen(q)) > kChannelTolerance ||
                std::abs(qBlue(p) - qBlue(q)) > kChannelTolerance ||
                std::abs(qAlpha(p) - qAlpha(q)) > kChannelTolerance)
                return QStringLiteral("pixel %1,%2").arg(x).arg(y);
        }
    }
    return {};
}

TEST(SkinPictures, EveryCatalogPictureLiesBesideTheProgramAtItsSize) {
    for (const SkinPicture& picture : SkinCatalog::pictures()) {
        const QImage image(kSkinBesideProgram + '/' + picture.path);
        ASSERT_FALSE(image.isNull()) << picture.path.toStdString();
        EXPECT_EQ(image.size(), picture.imageSize()) << picture.path.toStdString();
    }
}

TEST(SkinPictures, CommittedPicturesAreWhatThePainterPaints) {
    QTemporaryDir painted;
    ASSERT_EQ(SkinWriter::writeSkin(painted.path()), 0);
    std::set<QString> catalogued;
    for (const SkinPicture& picture : SkinCatalog::pictures()) {
        catalogued.insert(picture.path);
        const QString difference = firstDifference(load(kSourceDir + "/Image/" + picture.path),
                                                   load(painted.path() + '/' + picture.path));
        EXPECT_TRUE(difference.isEmpty())
            << picture.path.toStdString() << ": " << difference.toStdString();
    }
    // A file that the painter does not make could not be made again at another size.
    QDirIterator files(kSourceDir + "/Image", QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next().mid(kSourceDir.size() + int(sizeof("/Image/")) - 1);
        EXPECT_TRUE(catalogued.count(path)) << "not painted: " << path.toStdString();
    }
}

TEST(SkinPictures, CommittedDesktopIconsAreWhatThePainterPaints) {
    QTemporaryDir painted;
    ASSERT_EQ(SkinWriter::writeDesktopIcons(painted.path()), 0);
    const QString committed = kSourceDir + "/desktop/icons";
    for (int size : ProgramIcon::desktopSizes()) {
        const QString path = QStringLiteral("/hicolor/%1x%1/apps/ovrin.png").arg(size);
        EXPECT_TRUE(firstDifference(load(committed + path), load(painted.path() + path)).isEmpty())
            << path.toStdString();
    }
    QFile svg(committed + "/hicolor/scalable/apps/ovrin.svg");
    ASSERT_TRUE(svg.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(svg.readAll()), ProgramIcon::svg());
}

TEST(SkinPictures, ScalableIconLooksLikeThePaintedOne) {
    constexpr int kSize = 64;
    QSvgRenderer renderer(ProgramIcon::svg().toUtf8());
    ASSERT_TRUE(renderer.isValid());
    QImage rendered(kSize, kSize, QImage::Format_ARGB32_Premultiplied);
    rendered.fill(Qt::transparent);
    QPainter p(&rendered);
    renderer.render(&p);
    p.end();
    const QImage svg = rendered.convertToFormat(QImage::Format_ARGB32);
    const QImage png = ProgramIcon::png(kSize);
    double sum = 0;
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            const QRgb a = svg.pixel(x, y);
            const QRgb b = png.pixel(x, y);
            sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
                   std::abs(qBlue(a) - qBlue(b)) + std::abs(qAlpha(a) - qAlpha(b));
        }
    }
    EXPECT_LT(sum / (kSize * kSize * 4), kSvgMeanTolerance);
}

// Shaped windows are cut where their backdrop holds the dialog key at a corner; button strips
// are transparent at their corners and still carry the button key for a flattening reader.
TEST(SkinPictures, CornersCarryTheKeyColours) {
    struct Case {
        const char* path;
        QRgb corner;
        QPoint inside;
    };
    const Case cases[] = {
        {"Dialogs/ConfirmDialog/bg_confirm.png", qRgb(0, 0, 255), {300, 150}},
        {"Dialogs/ProgressDialog/bg_progress_dialog.png", qRgb(0, 0, 255), {200, 80}},
        {"Dialogs/MessageBox/bg_message_left_top.png", qRgb(0, 0, 255), {200, 80}},
        {"MainFrame/bg_fireBro_01.png", qRgb(0, 0, 255), {5, 20}},
        {"Common/button/btn.png", qRgba(255, 0, 255, 0), {68, 12}},
        {"Dialogs/BaseDialog/btn_caption_close.png", qRgba(255, 0, 255, 0), {22, 2}},
    };
    for (const Case& c : cases) {
        const QImage image = load(kSourceDir + "/Image/" + c.path);
        EXPECT_EQ(image.pixel(0, 0), c.corner) << c.path;
        EXPECT_EQ(qAlpha(image.pixel(c.inside)), 255) << c.path;
        EXPECT_NE(image.pixel(c.inside), c.corner) << c.path;
    }
}
} // namespace

int main(int argc, char** argv) {
    // Painting needs fonts but no screen, also when the tests are only listed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
