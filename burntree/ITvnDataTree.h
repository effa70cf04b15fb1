// A burn project's tree of files: built from folders on disk, kept linked, and laid out in
// 2048-byte sectors. The operations keep the family's table order; a position that does
// nothing keeps its place.
#pragma once

#include "ITvnTreeNode.h"
#include "QmzTypes.h"

// Codes of the engine family's table that the tree returns.
inline constexpr qmz::Result kTvnBadDvdFolder = qmz::MakeResult(0xE0FF0014);
inline constexpr qmz::Result kTvnWrongSourceCount = qmz::MakeResult(0xE0FF0035);
inline constexpr qmz::Result kTvnBadNode = qmz::MakeResult(0xE0FF003D);

inline constexpr uint64_t kTvnSectorBytes = 2048;

inline uint32_t TvnLowHalf(uint64_t value) {
    return static_cast<uint32_t>(value);
}

inline uint32_t TvnHighHalf(uint64_t value) {
    constexpr unsigned kHighHalfShift = 32;
    return static_cast<uint32_t>(value >> kHighHalfShift);
}

inline uint64_t TvnSectorsOf(uint64_t ullBytes) {
    return ullBytes / kTvnSectorBytes + (ullBytes % kTvnSectorBytes != 0 ? 1 : 0);
}

class ITvnDataTree {
public:
    virtual ~ITvnDataTree() = default;
    virtual void SetNextSector(uint32_t nextSector) = 0;
    virtual uint32_t GetNextSector() const = 0;
    virtual qmz::Result CopyTree(const ITvnDataTree& other) = 0;
    virtual qmz::Result CreateRoot(const QString& source, const QString* pDest, uint32_t kind,
                                   uint32_t sizeLow, uint32_t sizeHigh, uint32_t startSector) = 0;
    // Without a parent the node becomes the root; without pAfter it becomes the first child.
    virtual ITvnTreeNode* InsertNode(const QString& source, const QString* pDest,
                                     const QString* pAltName, uint32_t kind, uint32_t userValue,
                                     uint32_t sizeLow, uint32_t sizeHigh, uint32_t startSector,
                                     ITvnTreeNode* pParent, ITvnTreeNode* pAfter,
                                     const tagTvnStamp* pStamp) = 0;
    // Frees the node with everything below it and returns its parent. The parent's list is
    // repaired as if the node were its first child.
    virtual ITvnTreeNode* RemoveNode(ITvnTreeNode* pNode) = 0;
    // bDiscFoldersFirst moves a VIDEO_TS or DVD_RTAV folder to the front of its parent.
    virtual qmz::Result AddFolder(const QString& folderPath, bool bDiscFoldersFirst) = 0;
    // With pStartSectors, the root's children start at those sectors; then every file gets
    // the next free sectors in tree order.
    virtual qmz::Result AssignSectors(const uint32_t* pStartSectors, uint32_t nCount) = 0;
    // Meant for a first child as pA; see tagTvnDataTreeImpl for the other cases.
    virtual qmz::Result SwapNodes(ITvnTreeNode* pA, ITvnTreeNode* pB) = 0;
    virtual void PrepareTree(ITvnTreeNode* pNode) = 0;
    virtual void Reserved11() = 0;
    virtual void RemoveAll() = 0;
    virtual ITvnTreeNode* GetRoot() const = 0;
    virtual ITvnTreeNode* NextChild(const ITvnTreeNode* pParent,
                                    const ITvnTreeNode* pPrevious) const = 0;
    virtual qmz::Result AddDvdVrFiles(const QString& folderPath, ITvnTreeNode* pParent) = 0;
    // Like AddFolder, but the folder's own entries are taken in without the disc-folder rules.
    virtual qmz::Result AddFolderPlain(const QString& folderPath, bool bDiscFoldersFirst) = 0;
};

// The factory of the module; null when memory is out. The tree is freed by DestroyTvnDataTree.
ITvnDataTree* CreateTvnDataTree();
void DestroyTvnDataTree(ITvnDataTree* pTree);
