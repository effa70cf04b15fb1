// Window outlines from key colours: the corner scan of dialogs and the span scan of buttons.
#include "SkinRegions.h"

#include <QImage>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

constexpr QRgb kKey = 0xFF0000FF; // pure blue
constexpr QRgb kSolid = 0xFF303840;

// A picture from rows of text: 'k' key colour, 't' key colour fully transparent, '#' solid.
QImage Picture(const std::vector<std::string>& rows, QRgb key = kKey) {
    QImage image(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()),
                 QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const char c = rows[y][x];
            image.setPixel(x, y, c == '#' ? kSolid : c == 't' ? 0x000000FFu : key);
        }
    }
    return image;
}

// The region as rows of text: '#' inside, '.' cut.
std::vector<std::string> Rows(const QRegion& region, int nWidth, int nHeight) {
    std::vector<std::string> rows;
    for (int y = 0; y < nHeight; ++y) {
        std::string row;
        for (int x = 0; x < nWidth; ++x) {
            row += region.contains(QPoint(x, y)) ? '#' : '.';
        }
        rows.push_back(row);
    }
    return rows;
}

TEST(CornerRegion, CutsOnlyTheCornersAndTogglesWhatTwoPassesCut) {
    const struct {
        const char* name;
        std::vector<std::string> picture;
        std::vector<std::string> region;
    } cases[] = {
        {"no transparent corners", {"####", "####", "####"}, {"####", "####", "####"}},
        {"rounded corners",
         {"kk##kk", "k####k", "######", "k####k", "kk##kk"},
         {"..##..", ".####.", "######", ".####.", "..##.."}},
        // The first row has no solid pixel to end a cut, so it stays; the scan goes on.
        {"key-coloured first row", {"kkkk", "####", "####"}, {"####", "####", "####"}},
        // Cut top down, put back bottom up.
        {"key-coloured left column", {"k###", "k###", "k###"}, {"####", "####", "####"}},
        // The interior is never tested.
        {"key colour inside", {"####", "#kk#", "####"}, {"####", "####", "####"}},
        {"transparent key", {"t##t", "####", "t##t"}, {".##.", "####", ".##."}},
    };
    for (const auto& c : cases) {
        const QImage picture = Picture(c.picture);
        const QRegion region = CreateRegionFromBitmap(picture, kKeyBlue);
        EXPECT_EQ(Rows(region, picture.width(), picture.height()), c.region) << c.name;
        EXPECT_EQ(CreateRegionFromImage(picture, kKeyBlue), region) << c.name;
    }
    EXPECT_TRUE(CreateRegionFromBitmap(QImage(), kKeyBlue).isEmpty());
}

TEST(SpanRegion, RunsFromTheFirstSolidPixelUpToTheLast) {
    const QImage magenta =
        Picture({"kk##kk", "k####k", "kk#kkk", "kkkkkk", "#kkkk#"}, qRgb(255, 0, 255));
    const QRegion region = CreateSpanRegion(magenta, 6, 5, kKeyMagenta);
    // One solid pixel, or none, adds nothing; the last solid pixel is left out.
    EXPECT_EQ(Rows(region, 6, 5),
              (std::vector<std::string>{"..#...", ".###..", "......", "......", "#####."}));
}

} // namespace
