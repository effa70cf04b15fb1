#include "COvrinDoc.h"

#include "COvDataItem.h"
#include "TvnText.h"

#include <new>

COvrinDoc::COvrinDoc() {
    CreateRootItem();
}

COvrinDoc::~COvrinDoc() {
    DeleteRootItem();
}

// The current folder lies in the tree that goes, so it goes with it.
void COvrinDoc::DeleteRootItem() {
    m_pCurrentFolder = nullptr;
    m_pRootItem.reset();
}

// A failed allocation leaves no root; every user of the root tests it.
void COvrinDoc::CreateRootItem() {
    DeleteRootItem();
    m_pRootItem.reset(new (std::nothrow)
                          COvDataItem(TvnText(tvn::kNoImageRoot), COvDataItem::KindRoot, 0, 0));
}
