#include "FolderSort.h"

#include "COvDataItem.h"

#include <algorithm>

namespace {

uint64_t TimeKey(const COvDataItem& node) {
    return (static_cast<uint64_t>(node.m_ftTime.dwHighDateTime) << 32) |
           node.m_ftTime.dwLowDateTime;
}

// Views, not strings: a comparison must not copy a name out of its shared block.
int CompareText(const NodeText& a, const NodeText& b) {
    const QAnyStringView viewA = a.View();
    const QAnyStringView viewB = b.View();
    // Type names come from one cache and share their buffer, so most pairs end here.
    if (viewA.data() == viewB.data() && viewA.size_bytes() == viewB.size_bytes()) {
        return 0;
    }
    return QAnyStringView::compare(viewA, viewB, Qt::CaseInsensitive);
}

bool KeyBefore(const COvDataItem& a, const COvDataItem& b, int nColumn) {
    switch (nColumn) {
    case COvDataItem::SortName:
        return CompareText(a.m_strName, b.m_strName) < 0;
    case COvDataItem::SortSize:
        return a.m_ullSize < b.m_ullSize;
    case COvDataItem::SortType:
        return CompareText(a.m_strTypeName, b.m_strTypeName) < 0;
    case COvDataItem::SortTime:
        return TimeKey(a) < TimeKey(b);
    default:
        return false;
    }
}

} // namespace

bool ComesBefore(const COvDataItem* a, const COvDataItem* b, int nColumn) {
    if (a == nullptr || b == nullptr) {
        return a == nullptr && b != nullptr;
    }
    if (a->m_uKind != b->m_uKind) {
        return a->m_uKind < b->m_uKind;
    }
    return KeyBefore(*a, *b, nColumn);
}

void SortChildren(COvDataItem& folder, int nColumn, bool bAscending) {
    NodeChildren& children = folder.m_vecChildren;
    if (nColumn == COvDataItem::SortName) {
        // The node's own name order is the same rule with a faster comparison.
        std::sort(children.begin(), children.end(),
                  [bAscending](const COvDataItem* a, const COvDataItem* b) {
                      return bAscending ? COvDataItem::LessByNameAscending(a, b)
                                        : COvDataItem::LessByNameAscending(b, a);
                  });
    } else {
        std::sort(children.begin(), children.end(),
                  [nColumn, bAscending](const COvDataItem* a, const COvDataItem* b) {
                      return bAscending ? ComesBefore(a, b, nColumn) : ComesBefore(b, a, nColumn);
                  });
    }
}
