#include "Formatting.h"
#include "CTvnStringTable.h"
#include "QtPrinters.h"
#include "TvnText.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

class Formatting : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_table.LoadFile(OVRIN_LANGUAGE_DIR "/Enu/Tvnrc.txt"_L1));
        SetCurrentStringTable(&m_table);
    }
    void TearDown() override { SetCurrentStringTable(nullptr); }

    CTvnStringTable m_table;
    const QLocale m_english{QLocale::English, QLocale::UnitedStates};
};

TEST_F(Formatting, SizesInKilobytesRoundUpAndGroupByThousands) {
    const struct {
        uint64_t size;
        const char16_t* text;
    } cases[] = {
        {0, u"0 KB"},
        {1, u"1 KB"},
        {1024, u"1 KB"},
        {1025, u"2 KB"},
        {1024ull * 999, u"999 KB"},
        {1024ull * 1000, u"1,000 KB"},
        {UINT64_MAX, u"18,014,398,509,481,984 KB"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FormatSizeInKB(c.size, m_english), QString::fromUtf16(c.text)) << c.size;
    }
}

TEST_F(Formatting, GroupedNumbersUseTheLocalesSeparatorInGroupsOfThree) {
    const struct {
        int64_t number;
        QLocale locale;
        const char16_t* text;
    } cases[] = {
        {0, QLocale(QLocale::English), u"0"},
        {999, QLocale(QLocale::English), u"999"},
        {1234567, QLocale(QLocale::English), u"1,234,567"},
        {-1234, QLocale(QLocale::English), u"-1,234"},
        {1234567, QLocale(QLocale::German), u"1.234.567"},
        // India groups 2-2-3 in its own writing; the rule here is groups of three.
        {12345678, QLocale(QLocale::Hindi, QLocale::India), u"12,345,678"},
        {INT64_MIN, QLocale(QLocale::English), u"-9,223,372,036,854,775,808"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FormatGroupedNumber(c.number, c.locale), QString::fromUtf16(c.text))
            << c.number << " " << c.locale.name().toStdString();
    }
}

TEST_F(Formatting, ScaledSizesChangeUnitAtEachPowerOf1024Exactly) {
    const struct {
        uint64_t size;
        int nUnit;
        double value;
        const char16_t* unit;
    } cases[] = {
        {0, 0, 0, u"bytes"},
        {1023, 0, 1023, u"bytes"},
        {1024, 1, 1, u"KB"},
        {(1u << 20) - 1, 1, 1023.9990234375, u"KB"},
        {1u << 20, 2, 1, u"MB"},
        {0x40000000, 3, 1, u"GB"},
        {0x3FFFFFFF, 2, 1023.999999046325684, u"MB"},
        {0x100000000ull, 3, 4, u"GB"},
    };
    for (const auto& c : cases) {
        double value = -1;
        QString unit;
        EXPECT_EQ(ScaleSize(c.size, value, unit), c.nUnit) << c.size;
        EXPECT_DOUBLE_EQ(value, c.value) << c.size;
        EXPECT_EQ(unit, QString::fromUtf16(c.unit)) << c.size;
    }
}

TEST_F(Formatting, DateAndTimeHaveABlankOnEachSideAndSeconds) {
    qputenv("TZ", "UTC");
    const QDateTime time(QDate(2024, 3, 9), QTime(14, 5, 7), Qt::UTC);
    // CLDR versions differ in the blank before "PM".
    EXPECT_TRUE(FormatDateTime(time, m_english).startsWith(u" 3/9/24 2:05:07"_s));
    EXPECT_EQ(FormatDateTime(time, QLocale(QLocale::German)), u" 09.03.24 14:05:07 "_s);
}

QString CutToFive(const QString& text, int, const void*) {
    return text.left(5);
}

TEST_F(Formatting, TruncationPutsTextOnOneLineAndLeavesMeasuringToTheToolkit) {
    QString out;
    TruncateTextToWidth(out, u"a\nb"_s, 0, nullptr);
    EXPECT_EQ(out, u"a\nb"_s);
    TruncateTextToWidth(out, u"first\nsecond"_s, 100, nullptr);
    EXPECT_EQ(out, u"first second"_s);
    SetTextTruncator(CutToFive);
    TruncateTextToWidth(out, u"ab\ncdefg"_s, 100, nullptr);
    EXPECT_EQ(out, u"ab cd"_s);
    SetTextTruncator(nullptr);
}

TEST_F(Formatting, FontFaceComesFromTheTableOrFallsBackToTheGivenOne) {
    EXPECT_EQ(GetUiFontFace(u"MS Shell Dlg 2"_s), u"DejaVu Sans"_s);
    CTvnStringTable empty;
    SetCurrentStringTable(&empty);
    EXPECT_EQ(GetUiFontFace(u"MS Shell Dlg 2"_s), u"MS Shell Dlg 2"_s);
}

} // namespace
