// A document and trees built in memory for the views' tests: the views only read nodes.
#pragma once

#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "COvDataItem.h"
#include "IOvDocument.h"
#include "TvnText.h"

#include <QString>
#include <QStringList>
#include <QTreeWidgetItem>
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

inline QStringList ListRows(CFileListView& list) {
    QStringList names;
    const COvListModel& model = list.ListCtrl().Model();
    for (int i = 0; i < model.rowCount(); ++i) {
        names << model.NodeAt(i)->m_strName;
    }
    return names;
}

// Every folder of the tree as a path of item texts; expanding inserts the subfolders.
inline void CollectTree(QTreeWidgetItem* pItem, const QString& parent, QStringList& paths) {
    const QString path = parent.isEmpty() ? pItem->text(0) : parent + u'/' + pItem->text(0);
    paths << path;
    pItem->setExpanded(true);
    for (int i = 0; i < pItem->childCount(); ++i) {
        CollectTree(pItem->child(i), path, paths);
    }
}

inline QStringList TreePaths(CFolderTreeView& tree) {
    QStringList paths;
    CollectTree(tree.TreeCtrl().topLevelItem(0), QString(), paths);
    return paths;
}
