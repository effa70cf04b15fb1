// The orders of the file list's columns. Kinds go first (folders before files); descending is
// the plain reversal of ascending, so in it files stand before folders.
#pragma once

class COvDataItem;

// Whether a goes before b in ascending order of the column; null goes first.
bool ComesBefore(const COvDataItem* a, const COvDataItem* b, int nColumn);
// Reorders the folder's children in place: unstable, so equal rows have no defined order.
void SortChildren(COvDataItem& folder, int nColumn, bool bAscending);
