// How sizes, numbers, dates and scale factors are written for people, in the user's locale:
// groups of three digits with the locale's separator, no decimals.
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <cstdint>

// "1,234 KB": rounded up, so that a file of one byte shows as 1.
QString FormatSizeInKB(uint64_t size, const QLocale& locale = QLocale::system());
QString FormatGroupedNumber(int64_t number, const QLocale& locale = QLocale::system());
// The size in the largest unit it reaches (1 KiB, 1 MiB and 1 GiB exactly); unit is the
// unit's name, and the result its index, 0 for bytes to 3 for gigabytes.
int ScaleSize(uint64_t size, double& value, QString& unit);
// " date time ", short date and the time with seconds, with a blank on each side.
QString FormatDateTime(const QDateTime& time, const QLocale& locale = QLocale::system());

// Cuts text to a pixel width with an ellipsis. Measuring needs fonts, which the toolkit
// brings: it installs the measuring body. Until then line feeds become blanks and nothing is
// cut. pFont null means the main window's font.
using TextTruncator = QString (*)(const QString& text, int nWidth, const void* pFont);
void SetTextTruncator(TextTruncator pfnTruncator);
void TruncateTextToWidth(QString& out, const QString& text, int nWidth, const void* pFont);

// The face that the language table names, or face when it names none.
QString GetUiFontFace(const QString& face);
