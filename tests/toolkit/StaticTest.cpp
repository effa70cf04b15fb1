#include "CAlphaStatic.h"
#include "CDBufferDC.h"
#include "CGStatic.h"
#include "SkinText.h"
#include "ToolkitTestSupport.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

TEST(CAlphaStatic, DrawFlagsFollowTheStyleAndTheWrapSettings) {
    const struct {
        uint32_t nStyle;
        bool bWordEllipsis;
        bool bEditWrap;
        uint32_t nFlags;
    } cases[] = {
        {ss::kCenter, false, false, 0x11},
        {ss::kRight, false, false, 0x12},
        {ss::kLeftNoWordWrap, false, true, 0},
        {0, false, false, 0x10},
        {ss::kCenter | ss::kCenterImage, true, true, 0x11 | 0x40000 | 0x2000},
    };
    for (const auto& c : cases) {
        CAlphaStatic label(u"text"_s, c.nStyle);
        label.SetWordEllipsis(c.bWordEllipsis);
        label.SetEditControlWrap(c.bEditWrap);
        EXPECT_EQ(label.DrawFlags(), c.nFlags) << c.nStyle;
    }
}

std::pair<int, int> InkRows(const QImage& image) {
    int nFirst = -1;
    int nLast = -1;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) > 128) {
                nFirst = nFirst < 0 ? y : nFirst;
                nLast = y;
                break;
            }
        }
    }
    return {nFirst, nLast};
}

TEST(CAlphaStatic, CentreImageCentresTwoLinesAsOneBlock) {
    CAlphaStatic label(u"First line\nSecond line"_s, ss::kCenter | ss::kCenterImage);
    label.resize(200, 100);
    label.SetTextColour(kTextWhite);
    label.SetBackgroundColour(0);
    const auto [nFirst, nLast] = InkRows(label.grab().toImage());
    ASSERT_GE(nFirst, 0);
    EXPECT_GT(nLast - nFirst, 12) << "two lines";
    EXPECT_NEAR(nFirst, 100 - 1 - nLast, 6);
    EXPECT_EQ(label.accessibleName(), u"First line\nSecond line"_s);
}

TEST(CGStatic, ShowsItsPictureAtNaturalSizeOverTheBackdrop) {
    QWidget parent;
    parent.resize(40, 40);
    QImage backdrop(40, 40, QImage::Format_ARGB32_Premultiplied);
    backdrop.fill(QColor(0, 0, 200));
    CGStatic icon(&parent, 1);
    icon.move(10, 10);
    QImage picture(8, 6, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    picture.setPixel(0, 0, 0xFFFF0000);
    icon.SetBackdrop(backdrop);
    icon.SetImage(picture, 8, 6);
    EXPECT_EQ(icon.size(), QSize(8, 6));
    const QImage shown = icon.grab().toImage();
    EXPECT_EQ(shown.pixel(0, 0), 0xFFFF0000);
    EXPECT_EQ(shown.pixel(7, 5), 0xFF0000C8);
}

TEST(CDBufferDC, CopiesWhatWasDrawnToTheTargetInOneStep) {
    QImage target(20, 10, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::black);
    QPainter painter(&target);
    const QRect area(5, 2, 10, 6);
    {
        CDBufferDC buffer(&painter, &area);
        buffer.fillRect(area, Qt::white);
        EXPECT_EQ(target.pixel(6, 3), 0xFF000000u) << "nothing reaches the target before the end";
    }
    painter.end();
    EXPECT_EQ(target.pixel(5, 2), 0xFFFFFFFFu);
    EXPECT_EQ(target.pixel(14, 7), 0xFFFFFFFFu);
    EXPECT_EQ(target.pixel(4, 2), 0xFF000000u);
}

} // namespace
