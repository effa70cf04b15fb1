// A document and trees built in memory for the views' tests: the views only read nodes.
#pragma once

#include "COvDataItem.h"
#include "IOvDocument.h"
#include "TvnText.h"

#include <QString>
#include <memory>

class TestDocument : public IOvDocument {
public:
    TestDocument() { CreateRootItem(); }

    COvDataItem* GetRootItem() const override { return m_pRoot.get(); }
    void DeleteRootItem() override { m_pRoot.reset(); }
    void CreateRootItem() override {
        m_pRoot =
            std::make_unique<COvDataItem>(TvnText(tvn::kNoImageRoot), COvDataItem::KindRoot, 0, 0);
    }
    COvDataItem* GetCurrentFolder() const override { return m_pCurrent; }
    void SetCurrentFolder(COvDataItem* pFolder) override { m_pCurrent = pFolder; }

    // A new tree, as an opened image gives; the views hear of it as the list would tell them.
    COvDataItem* ReplaceRoot(const QString& name) {
        m_pCurrent = nullptr;
        m_pRoot = std::make_unique<COvDataItem>(name, COvDataItem::KindRoot, 0, 0);
        return m_pRoot.get();
    }

private:
    std::unique_ptr<COvDataItem> m_pRoot;
    COvDataItem* m_pCurrent = nullptr;
};

inline COvDataItem* AddFolder(COvDataItem* pParent, const QString& name) {
    return pParent->AddChild(pParent->m_strPath + pParent->m_strName + u'\\' + name,
                             COvDataItem::KindFolder, 0, 0);
}

inline COvDataItem* AddFile(COvDataItem* pParent, const QString& name, uint64_t size = 0) {
    return pParent->AddChild(pParent->m_strPath + pParent->m_strName + u'\\' + name,
                             COvDataItem::KindFile, static_cast<uint32_t>(size),
                             static_cast<uint32_t>(size >> 32));
}
