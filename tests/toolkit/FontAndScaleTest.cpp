#include "CTvnStringTable.h"
#include "Formatting.h"
#include "SkinFonts.h"
#include "TestFiles.h"
#include "TvnText.h"

#include <QFontMetrics>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

TEST(SkinFonts, NumeratorsGiveTheSamePixelHeightAtAnyDpi) {
    const struct {
        int nNumerator;
        int nPixels;
    } cases[] = {{8640, 12}, {10560, 15}, {11520, 16}, {13440, 19}};
    for (const auto& c : cases) {
        EXPECT_EQ(MakeNumeratorFont(c.nNumerator, u"DejaVu Sans"_s, 400).pixelSize(), c.nPixels)
            << c.nNumerator;
    }
    EXPECT_EQ(MakeNumeratorFont(13440, QString(), 700).weight(), QFont::Bold);
}

class Table {
public:
    explicit Table(const QString& lines) {
        const testsupport::TempDir dir;
        const QByteArray bytes = lines.toUtf8();
        testsupport::WriteFile(dir / "Tvnrc.txt", {bytes.begin(), bytes.end()});
        EXPECT_TRUE(m_table.LoadFile(QString::fromStdString((dir / "Tvnrc.txt").string())));
        SetCurrentStringTable(&m_table);
    }
    ~Table() { SetCurrentStringTable(nullptr); }

private:
    CTvnStringTable m_table;
};

TEST(SkinFonts, TheLanguageNamesTheButtonSize) {
    const struct {
        const char16_t* lines;
        int nTenths;
    } cases[] = {{u"8040\t8\n", 80}, {u"8040\t12\n", 90}, {u"1\tunrelated\n", 90}};
    for (const auto& c : cases) {
        Table table(QString::fromUtf16(c.lines));
        EXPECT_EQ(LabelFontTenths(), c.nTenths);
    }
}

TEST(ToolkitHooks, TextIsCutToItsWidthWithTheGivenFont) {
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(12);
    const QString text = u"a rather long file name\nwith a second line.iso"_s;
    QString out;
    TruncateTextToWidth(out, text, 80, &font);
    EXPECT_TRUE(out.endsWith(QChar(0x2026))) << out.toStdString();
    EXPECT_FALSE(out.contains(u'\n'));
    EXPECT_LE(QFontMetrics(font).horizontalAdvance(out), 80);
    TruncateTextToWidth(out, u"short"_s, 80, nullptr);
    EXPECT_EQ(out, u"short"_s);
}

} // namespace
