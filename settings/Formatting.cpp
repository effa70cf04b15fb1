#include "Formatting.h"

#include "TvnText.h"

namespace {

constexpr uint64_t kKilobyte = 1024;
constexpr int kGroupSize = 3;

TextTruncator g_pfnTruncator = nullptr;

struct SizeUnit {
    uint64_t nFirst; // the smallest size shown in this unit
    double dDivisor;
    tvn::TextId nameId;
};

// Largest first.
constexpr SizeUnit kUnits[] = {
    {uint64_t{1} << 30, 1073741824.0, tvn::kUnitGigabytes},
    {uint64_t{1} << 20, 1048576.0, tvn::kUnitMegabytes},
    {uint64_t{1} << 10, 1024.0, tvn::kUnitKilobytes},
    {0, 1.0, tvn::kUnitBytes},
};
constexpr int kUnitCount = sizeof kUnits / sizeof kUnits[0];

// The unit names, read once for the life of the process.
const QString& UnitName(int nIndex) {
    static const QString names[kUnitCount] = {TvnText(kUnits[0].nameId), TvnText(kUnits[1].nameId),
                                              TvnText(kUnits[2].nameId), TvnText(kUnits[3].nameId)};
    return names[nIndex];
}

QString TimeWithSeconds(const QTime& time, const QLocale& locale) {
    // The long format adds the time zone's name, which the short date beside it lacks.
    QString format = locale.timeFormat(QLocale::LongFormat);
    format.remove(u't');
    return locale.toString(time, format.trimmed());
}

} // namespace

QString FormatSizeInKB(uint64_t size, const QLocale& locale) {
    const uint64_t nKilobytes = size / kKilobyte + (size % kKilobyte != 0 ? 1 : 0);
    return FormatGroupedNumber(static_cast<int64_t>(nKilobytes), locale) + u' ' +
           UnitName(kUnitCount - 2);
}

QString FormatGroupedNumber(int64_t number, const QLocale& locale) {
    const uint64_t magnitude =
        number < 0 ? uint64_t{0} - static_cast<uint64_t>(number) : static_cast<uint64_t>(number);
    const QString digits = QString::number(magnitude);
    const QString separator = locale.groupSeparator();
    QString out;
    for (qsizetype i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % kGroupSize == 0) {
            out += separator;
        }
        out += digits[i];
    }
    return number < 0 ? locale.negativeSign() + out : out;
}

int ScaleSize(uint64_t size, double& value, QString& unit) {
    int nIndex = 0;
    while (size < kUnits[nIndex].nFirst) {
        ++nIndex;
    }
    value = static_cast<double>(size) / kUnits[nIndex].dDivisor;
    unit = UnitName(nIndex);
    return kUnitCount - 1 - nIndex;
}

QString FormatDateTime(const QDateTime& time, const QLocale& locale) {
    const QDateTime local = time.toLocalTime();
    return u' ' + locale.toString(local.date(), QLocale::ShortFormat) + u' ' +
           TimeWithSeconds(local.time(), locale) + u' ';
}

void SetTextTruncator(TextTruncator pfnTruncator) {
    g_pfnTruncator = pfnTruncator;
}

void TruncateTextToWidth(QString& out, const QString& text, int nWidth, const void* pFont) {
    if (nWidth <= 0) {
        out = text;
        return;
    }
    QString oneLine = text;
    oneLine.replace(u'\n', u' ');
    out = g_pfnTruncator != nullptr ? g_pfnTruncator(oneLine, nWidth, pFont) : oneLine;
}

QString GetUiFontFace(const QString& face) {
    // Asked first, as TvnText would turn a missing face into a placeholder that no font has.
    if (!HasTvnText(tvn::kFontFace)) {
        return face;
    }
    const QString named = TvnText(tvn::kFontFace).trimmed();
    return named.isEmpty() ? face : named;
}
