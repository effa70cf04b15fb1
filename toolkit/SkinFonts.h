// The skin's fonts keep their pixel height at any DPI: a size is given as a numerator that the
// screen's DPI divides, which comes to numerator / 720 pixels.
#pragma once

#include <QFont>
#include <QString>

inline constexpr int kBodyFontNumerator = 8640;        // dialog text, 12 pixels
inline constexpr int kTitleFontNumerator = 11520;      // dialog title, 16 pixels
inline constexpr int kLargeTitleFontNumerator = 13440; // a base dialog's large title, 19 pixels
inline constexpr int kFontNumeratorPerPoint = 960;     // a skinned button's size in points
inline constexpr int kWeightNormal = 400;
inline constexpr int kWeightBold = 700;
// The face every skinned dialog asks for; the language table names the one it stands for.
inline constexpr char16_t kDefaultDialogFace[] = u"MS Shell Dlg 2";

// Pixel height of a numerator font, rounded.
int NumeratorPixelSize(int nNumerator);
// A font of that height. An empty face leaves the choice to the system; nWeight 0 keeps the
// face's own weight.
QFont MakeNumeratorFont(int nNumerator, const QString& face, int nWeight);
// The dialog face of this language.
QFont MakeDialogFont(int nNumerator, int nWeight);
// A font of a size in tenths of a point on the screen whose scale is dDpiScale (DPI / 96).
QFont MakePointFont(double tenthsOfPoint, double dDpiScale, const QString& face);
// The size of a label's and push button's text in tenths of a point: the language's size
// (text 8040, in points, at most 9), or 9 points.
int LabelFontTenths();
// A label's and push button's font: its size divided by the forced DPI scale, times the
// interface scale, on this screen.
QFont MakeLabelFont();

// A weight of the 100 to 900 scale, 400 normal and 700 bold.
QFont::Weight WeightOf(int nWeight);
