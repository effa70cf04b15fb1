// The data tree of a burn project. It owns its nodes through m_pRoot; each node owns its
// children through its first-child link.
#pragma once

#include "ITvnDataTree.h"

struct tagTvnDataTreeImpl : public ITvnDataTree {
    tagTvnDataTreeImpl() = default;
    ~tagTvnDataTreeImpl() override;
    tagTvnDataTreeImpl(const tagTvnDataTreeImpl&) = delete;
    tagTvnDataTreeImpl& operator=(const tagTvnDataTreeImpl&) = delete;

    void SetNextSector(uint32_t nextSector) override;
    uint32_t GetNextSector() const override;
    qmz::Result CopyTree(const ITvnDataTree& other) override;
    // Replaces m_pRoot without freeing a root that is already there.
    qmz::Result CreateRoot(const QString& source, const QString* pDest, uint32_t kind,
                           uint32_t sizeLow, uint32_t sizeHigh, uint32_t startSector) override;
    ITvnTreeNode* InsertNode(const QString& source, const QString* pDest, const QString* pAltName,
                             uint32_t kind, uint32_t userValue, uint32_t sizeLow, uint32_t sizeHigh,
                             uint32_t startSector, ITvnTreeNode* pParent, ITvnTreeNode* pAfter,
                             const tagTvnStamp* pStamp) override;
    // On a later sibling, the siblings before it fall out of the parent's list; on the root,
    // m_pRoot keeps pointing at the freed node. RemoveAll is the way to clear the tree.
    ITvnTreeNode* RemoveNode(ITvnTreeNode* pNode) override;
    qmz::Result AddFolder(const QString& folderPath, bool bDiscFoldersFirst) override;
    qmz::Result AssignSectors(const uint32_t* pStartSectors, uint32_t nCount) override;
    // Correct when pA is a first child or pB's previous sibling. Otherwise, when pB was a
    // first child, its parent keeps pointing at pB.
    qmz::Result SwapNodes(ITvnTreeNode* pA, ITvnTreeNode* pB) override;
    void PrepareTree(ITvnTreeNode* pNode) override;
    void Reserved11() override;
    void RemoveAll() override;
    ITvnTreeNode* GetRoot() const override;
    ITvnTreeNode* NextChild(const ITvnTreeNode* pParent,
                            const ITvnTreeNode* pPrevious) const override;
    qmz::Result AddDvdVrFiles(const QString& folderPath, ITvnTreeNode* pParent) override;
    qmz::Result AddFolderPlain(const QString& folderPath, bool bDiscFoldersFirst) override;

    ITvnTreeNode* m_pRoot = nullptr;
    uint32_t m_uNextSector = 0;

private:
    qmz::Result CopyChildren(const ITvnDataTree& other, const ITvnTreeNode* pFrom,
                             ITvnTreeNode* pTo);
    qmz::Result AssignFrom(ITvnTreeNode* pNode);
    qmz::Result AddFolderWith(const QString& folderPath, bool bDiscFoldersFirst,
                              bool bDiscRulesAtTop);
    ITvnTreeNode* LastChildOf(const ITvnTreeNode* pParent) const;
};
