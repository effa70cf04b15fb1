// Fonts that keep their pixel height, the language's face and button size, text measuring,
// and the two interface scales on a 1.5 screen.
#include "CAlphaButton.h"
#include "CDisplayScale.h"
#include "CRegistry.h"
#include "CTvnStringTable.h"
#include "Formatting.h"
#include "ScalarReg.h"
#include "SkinFonts.h"
#include "TestFiles.h"
#include "ToolkitHooks.h"
#include "TvnText.h"

#include <QFontMetrics>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

TEST(SkinFonts, NumeratorsGiveTheSamePixelHeightAtAnyDpi) {
    const struct {
        int nNumerator;
        int nPixels;
    } cases[] = {{8640, 12}, {10560, 15}, {11520, 16}, {13440, 19}, {12 * 960, 16}};
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

TEST(SkinFonts, TheLanguageNamesFaceAndButtonSize) {
    const struct {
        const char16_t* lines;
        int nTenths;
        const char16_t* face;
    } cases[] = {
        {u"8040\t8\n8012\tDejaVu Sans\n", 80, u"DejaVu Sans"},
        {u"8040\t12\n", 90, u"MS Shell Dlg 2"},
        {u"1\tunrelated\n", 90, u"MS Shell Dlg 2"},
    };
    for (const auto& c : cases) {
        Table table(QString::fromUtf16(c.lines));
        EXPECT_EQ(LabelFontTenths(), c.nTenths);
        EXPECT_EQ(GetUiFontFace(u"MS Shell Dlg 2"_s), QString::fromUtf16(c.face));
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

// Run twice by CTest on a 1.5 screen (QT_SCALE_FACTOR), with EnableDPIAware set and unset in a
// machine store of its own, as the setting is read once a process.
TEST(HighDpi, TheSettingDecidesBetweenTheTwoSizesAndQtScalesOnlyOnce) {
    const QByteArray aware = qgetenv("OVRIN_TEST_DPI_AWARE");
    if (aware.isEmpty()) {
        GTEST_SKIP() << "runs only with a scale factor and a store of its own";
    }
    const bool bAware = aware == "1";
    DwordReg(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey), u"EnableDPIAware"_s, true) =
        bAware ? 1 : 0;
    EXPECT_DOUBLE_EQ(ScreenDeviceDpi(), 144.0);
    EXPECT_DOUBLE_EQ(GetDpiScale(true), 1.5);
    EXPECT_DOUBLE_EQ(GetDpiScale(false), bAware ? 1.5 : 1.0);
    EXPECT_DOUBLE_EQ(GetUiScale(), bAware ? 1.5 : 1.0);

    // A button of 100 by 30: 150 by 45 screen pixels when aware, which Qt's ratio of 1.5
    // places as 100 by 30; unaware it keeps 100 by 30 screen pixels, 67 by 20 for Qt.
    QWidget parent;
    CAlphaButton button;
    button.Create(u"OK"_s, kWsVisible, QRect(0, 0, 100, 30), &parent, 1);
    EXPECT_EQ(button.size(), bAware ? QSize(100, 30) : QSize(67, 20));
    // The label font: 12 screen pixels, 18 when aware; Qt's ratio is undone when painting.
    EXPECT_EQ(MakeLabelFont().pixelSize(), bAware ? 18 : 12);
}

} // namespace
