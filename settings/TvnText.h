// The one way the program gets the words it shows: by number, from the language table that
// start-up chose.
#pragma once

#include "TvnStringIds.h"

#include <QString>
#include <cstdint>

class CTvnStringTable;

// The table stays the caller's; null takes it away.
void SetCurrentStringTable(const CTvnStringTable* pTable);

// Called for a number without a text. The default warns on the debug output; tests make it
// fail the test.
using MissingTextHandler = void (*)(uint32_t id);
void SetMissingTextHandler(MissingTextHandler pfnHandler);

// Whether the current table has a text of that number; asks without a warning.
bool HasTvnText(uint32_t id);
// A missing text comes back as "[text NNN]", so that a gap shows on screen and in reports
// instead of an empty label.
QString TvnText(uint32_t id);
// The text with %1, %2, ... replaced in one pass, so that a value holding "%2" stays as it
// is.
template <typename... Args> QString TvnFormat(uint32_t id, const Args&... args) {
    return TvnText(id).arg(args...);
}
