#include "CAlphaButton.h"
#include "CAlphaStatic.h"
#include "CControlFactory.h"
#include "CGButton.h"
#include "CGStatic.h"
#include "Scalers.h"
#include "SkinImages.h"
#include "ToolkitTestSupport.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using namespace toolkittest;

TEST(PremultipliedBitmap, MultipliesWithIntegerDivisionOnlyForALowerCasePngPath) {
    TempInstall install;
    // 201 * 128 / 255 is 100.9: rounding would give 101.
    const QImage picture = Strip({qRgba(201, 100, 50, 128)}, 2, 1);
    install.Save(picture, u"Image/Common/strip.png"_s);
    install.Save(picture, u"Image/Common/STRIP.PNG"_s);
    const QImage marker = Strip({0xFF112233}, 1, 1);
    const struct {
        QString path;
        bool bPremultiply;
        bool bLoaded;
        QRgb expected;
        QImage::Format format;
    } cases[] = {
        {u"Image\\Common\\strip.png"_s, true, true, qRgba(100, 50, 25, 128),
         QImage::Format_ARGB32_Premultiplied},
        {u"Image\\Common\\STRIP.PNG"_s, true, true, qRgba(201, 100, 50, 128),
         QImage::Format_ARGB32},
        {u"Image/Common/strip.png"_s, false, true, qRgba(201, 100, 50, 128), QImage::Format_ARGB32},
        // A missing picture or no path leaves the output alone.
        {u"Image/Common/none.png"_s, true, false, 0xFF112233, QImage::Format_ARGB32},
        {QString(), true, false, 0xFF112233, QImage::Format_ARGB32},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path.toStdString());
        QImage bitmap = marker;
        EXPECT_EQ(LoadPremultipliedBitmap(c.path, c.bPremultiply, bitmap), c.bLoaded);
        EXPECT_EQ(bitmap.format(), c.format);
        ASSERT_EQ(bitmap.width(), c.bLoaded ? 2 : 1);
        EXPECT_EQ(reinterpret_cast<const QRgb*>(bitmap.constScanLine(0))[0], c.expected);
    }
    EXPECT_TRUE(LoadInstallImage(u"Image/Common/none.png"_s, true).isNull());
}

TEST(SkinPictures, MissingPicturesLeaveWorkingControls) {
    TempInstall install;
    QWidget parent;
    CControlFactory factory;
    EXPECT_EQ(factory.LoadBackdrop(u"Image/Dialogs/MessageBox/bg.png"_s), kStatusFailed);
    CAlphaButton* pButton = nullptr;
    EXPECT_EQ(factory.CreateAlphaButton(QRect(10, 10, 80, 24), &parent, 8016, &pButton,
                                        u"Image/Common/button/none.png"_s, u"OK"_s, 0, kTextWhite),
              kStatusFailed);
    ASSERT_NE(pButton, nullptr);
    EXPECT_EQ(pButton->geometry(), QRect(10, 10, 80, 24));
    CGButton* pGButton = nullptr;
    EXPECT_EQ(factory.CreateGButton(QRect(0, 0, 20, 20), &parent, 7, &pGButton, u"none.png"_s, 0, 0,
                                    false, true, 0, nullptr),
              kStatusFailed);
    CGStatic* pIcon = nullptr;
    EXPECT_EQ(factory.CreateGStatic(QRect(5, 5, 32, 32), &parent, 9, &pIcon, u"none.png"_s),
              kStatusFailed);
    ASSERT_NE(pIcon, nullptr);
    EXPECT_FALSE(pIcon->HasImage());
    EXPECT_FALSE(parent.grab().isNull());
    // A filled or missing out pointer is refused.
    EXPECT_EQ(factory.CreateAlphaButton(QRect(), &parent, 1, &pButton, QString(), QString(), 0, 0),
              kStatusInvalidArgument);
    CAlphaStatic** ppNone = nullptr;
    EXPECT_EQ(factory.CreateAlphaStatic(QRect(), &parent, 1, ppNone, QString(), 0, 0, nullptr),
              kStatusInvalidArgument);
}

TEST(SkinPictures, StripsSplitIntoFourPiecesAndKeyedCopiesLeaveTheKeyOut) {
    const QImage strip = Strip({0xFF010101, 0xFF020202, 0xFF030303, 0xFF040404}, 3, 2);
    QImage normal;
    QImage pressed;
    QImage disabled;
    SplitStateStrip(strip, 3, 2, &normal, nullptr, &pressed, &disabled);
    EXPECT_EQ(normal.size(), QSize(3, 2));
    EXPECT_EQ(normal.pixel(2, 1), 0xFF010101);
    EXPECT_EQ(pressed.pixel(0, 0), 0xFF030303);
    EXPECT_EQ(disabled.pixel(0, 0), 0xFF040404);

    QImage keyed = Strip({0xFFFF00FF, 0xFF00FF00}, 1, 1);
    QImage dest = Strip({0xFF101010}, 3, 1);
    QPainter painter(&dest);
    DrawColourKeyed(kKeyMagenta, painter, 1, 0, 2, 1, keyed);
    painter.end();
    EXPECT_EQ(dest.pixel(0, 0), 0xFF101010);
    EXPECT_EQ(dest.pixel(1, 0), 0xFF101010);
    EXPECT_EQ(dest.pixel(2, 0), 0xFF00FF00);
}

TEST(SkinPictures, SavesOnlyTheFourLowerCaseKinds) {
    testsupport::TempDir dir;
    const QImage picture = Strip({0xFF204060}, 4, 4);
    const struct {
        const char* extension;
        bool bSaved;
    } cases[] = {{"png", true}, {"bmp", true}, {"jpg", true}, {"JPG", false}, {"gif", false}};
    for (const auto& c : cases) {
        const QString path =
            QString::fromStdString((dir / "out.").string()) + QLatin1StringView(c.extension);
        EXPECT_EQ(SaveImageAs(picture, path, QLatin1StringView(c.extension)), c.bSaved)
            << c.extension;
        EXPECT_EQ(!QImage(path).isNull(), c.bSaved) << c.extension;
    }
}

TEST(Scalers, InterpolateInFixedPointAndStayInsideTheSource) {
    // One row of two pixels, B G R A.
    const uint8_t source[] = {0, 0, 0, 0xFF, 200, 100, 40, 0xFF};
    uint8_t dest[4 * 4 * 2] = {};
    ScaleBilinear32(dest, source, 4, 2, 2, 1);
    // x steps by half a pixel; the last column repeats, and the single row is reused below.
    const uint8_t row[] = {0, 0, 0, 0, 100, 50, 20, 0, 200, 100, 40, 0, 200, 100, 40, 0};
    EXPECT_EQ(0, memcmp(dest, row, sizeof row));
    EXPECT_EQ(0, memcmp(dest + sizeof row, row, sizeof row));

    uint8_t nearest[4 * 4] = {};
    ScaleNearest32(nearest, source, 4, 1, 2, 1);
    EXPECT_EQ(nearest[4 * 1], 0);
    EXPECT_EQ(nearest[4 * 2], 200);

    // 24-bit rows are padded to 4 bytes: a second row starts at byte 8, not 6.
    const uint8_t padded[] = {10, 20, 30, 10, 20, 30, 0, 0, 90, 80, 70, 90, 80, 70, 0, 0};
    uint8_t out[4 * 2] = {};
    ScaleBilinear24(out, padded, 1, 2, 2, 2);
    EXPECT_EQ(out[4], 90);
    EXPECT_EQ(out[5], 80);

    ScaleBilinear32(nullptr, source, 4, 2, 2, 1);
    const std::vector<uint32_t> pixels =
        ReadPixels32(Strip({0x00102030, 0x80405060}, 1, 1), RowOrder::TopDown);
    EXPECT_EQ(pixels, (std::vector<uint32_t>{0xFF102030, 0xFF405060}));
}

} // namespace
