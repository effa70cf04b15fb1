#include "SkinFonts.h"

#include "CDisplayScale.h"
#include "Formatting.h"
#include "TvnText.h"

#include <QtMath>

namespace {

// Numerator / DPI tenths of a point at 72 points an inch: numerator / 720 pixels.
constexpr double kNumeratorPerPixel = 720.0;
constexpr double kPointsPerInch = 72.0;
constexpr int kMaxLabelTenths = 90;
constexpr int kTenthsPerPoint = 10;

} // namespace

int NumeratorPixelSize(int nNumerator) {
    return qRound(nNumerator / kNumeratorPerPixel);
}

QFont::Weight WeightOf(int nWeight) {
    return static_cast<QFont::Weight>(qBound(1, nWeight, 1000));
}

QFont MakeNumeratorFont(int nNumerator, const QString& face, int nWeight) {
    QFont font;
    if (!face.isEmpty()) {
        font.setFamilies({face});
    }
    font.setPixelSize(NumeratorPixelSize(nNumerator));
    if (nWeight > 0) {
        font.setWeight(WeightOf(nWeight));
    }
    return font;
}

QFont MakeDialogFont(int nNumerator, int nWeight) {
    return MakeNumeratorFont(nNumerator, GetUiFontFace(QString::fromUtf16(kDefaultDialogFace)),
                             nWeight);
}

QFont MakePointFont(double tenthsOfPoint, double dDpiScale, const QString& face) {
    QFont font;
    if (!face.isEmpty()) {
        font.setFamilies({face});
    }
    const double pixels =
        tenthsOfPoint / kTenthsPerPoint * CDisplayScale::kBaseDpi * dDpiScale / kPointsPerInch;
    font.setPixelSize(qMax(1, qRound(pixels)));
    return font;
}

int LabelFontTenths() {
    if (!HasTvnText(tvn::kButtonFontSize)) {
        return kMaxLabelTenths;
    }
    const int nPoints = TvnText(tvn::kButtonFontSize).trimmed().toInt();
    return qMin(nPoints * kTenthsPerPoint, kMaxLabelTenths);
}

QFont MakeLabelFont() {
    const double tenths = LabelFontTenths() / GetDpiScale(true) * GetUiScale();
    return MakePointFont(tenths, GetDpiScale(true),
                         GetUiFontFace(QString::fromUtf16(kDefaultDialogFace)));
}
