#include "tagTvnDataTreeImpl.h"

#include "CDiscFolderWalk.h"
#include "tagTvnTreeNodeImpl.h"

#include <new>

namespace {

const QString kRootDest = QStringLiteral("\\");

} // namespace

ITvnDataTree* CreateTvnDataTree() {
    return new (std::nothrow) tagTvnDataTreeImpl;
}

void DestroyTvnDataTree(ITvnDataTree* pTree) {
    delete pTree;
}

tagTvnDataTreeImpl::~tagTvnDataTreeImpl() {
    RemoveAll();
}

void tagTvnDataTreeImpl::SetNextSector(uint32_t nextSector) {
    m_uNextSector = nextSector;
}

uint32_t tagTvnDataTreeImpl::GetNextSector() const {
    return m_uNextSector;
}

qmz::Result tagTvnDataTreeImpl::CopyTree(const ITvnDataTree& other) {
    const ITvnTreeNode* pRoot = other.GetRoot();
    if (pRoot == nullptr) {
        return qmz::kOk;
    }
    const qmz::Result hr = CreateRoot(pRoot->GetSource(), &pRoot->GetDest(), pRoot->GetKind(),
                                      TvnLowHalf(pRoot->GetSize()), TvnHighHalf(pRoot->GetSize()),
                                      pRoot->GetStartSector());
    if (hr < 0) {
        return hr;
    }
    return CopyChildren(other, pRoot, m_pRoot);
}

qmz::Result tagTvnDataTreeImpl::CopyChildren(const ITvnDataTree& other, const ITvnTreeNode* pFrom,
                                             ITvnTreeNode* pTo) {
    ITvnTreeNode* pLastCopy = nullptr;
    for (const ITvnTreeNode* pChild = other.NextChild(pFrom, nullptr); pChild != nullptr;
         pChild = other.NextChild(pFrom, pChild)) {
        tagTvnStamp stamp{};
        pLastCopy = InsertNode(pChild->GetSource(), &pChild->GetDest(), &pChild->GetAltName(),
                               pChild->GetKind(), pChild->GetUserValue(),
                               TvnLowHalf(pChild->GetSize()), TvnHighHalf(pChild->GetSize()),
                               pChild->GetStartSector(), pTo, pLastCopy, &pChild->GetStamp(stamp));
        if (pLastCopy == nullptr) {
            return qmz::kEngineOutOfMemory;
        }
        if (const qmz::Result hr = CopyChildren(other, pChild, pLastCopy); hr < 0) {
            return hr;
        }
    }
    return qmz::kOk;
}

qmz::Result tagTvnDataTreeImpl::CreateRoot(const QString& source, const QString* pDest,
                                           uint32_t kind, uint32_t sizeLow, uint32_t sizeHigh,
                                           uint32_t startSector) {
    auto* pRoot = new (std::nothrow) tagTvnTreeNodeImpl;
    if (pRoot == nullptr) {
        return qmz::kEngineOutOfMemory;
    }
    m_pRoot = pRoot;
    pRoot->Init(source, pDest, kind, sizeLow, sizeHigh, startSector);
    return qmz::kOk;
}

ITvnTreeNode* tagTvnDataTreeImpl::InsertNode(const QString& source, const QString* pDest,
                                             const QString* pAltName, uint32_t kind,
                                             uint32_t userValue, uint32_t sizeLow,
                                             uint32_t sizeHigh, uint32_t startSector,
                                             ITvnTreeNode* pParent, ITvnTreeNode* pAfter,
                                             const tagTvnStamp* pStamp) {
    auto* pNode = new (std::nothrow) tagTvnTreeNodeImpl;
    if (pNode == nullptr) {
        return nullptr;
    }
    const QString fileName = tagTvnTreeNodeImpl::FileNameOf(source);
    pNode->SetSource(source);
    pNode->SetDest(pDest != nullptr ? *pDest : fileName);
    pNode->SetAltName(pAltName != nullptr ? *pAltName : fileName);
    pNode->SetKind(kind);
    pNode->SetUserValue(userValue);
    pNode->SetSize(sizeLow, sizeHigh);
    pNode->SetStartSector(startSector);
    if (pStamp != nullptr) {
        pNode->SetStamp(*pStamp);
    }
    if (pParent == nullptr) {
        m_pRoot = pNode;
        return pNode;
    }
    pNode->SetParent(pParent);
    if (pAfter == nullptr) {
        ITvnTreeNode* pOldFirst = pParent->GetFirstChild();
        pNode->SetNext(pOldFirst);
        if (pOldFirst != nullptr) {
            pOldFirst->SetPrev(pNode);
        }
        pParent->SetFirstChild(pNode);
    } else {
        ITvnTreeNode* pOldNext = pAfter->GetNext();
        pNode->SetPrev(pAfter);
        pNode->SetNext(pOldNext);
        if (pOldNext != nullptr) {
            pOldNext->SetPrev(pNode);
        }
        pAfter->SetNext(pNode);
    }
    pNode->Prepare();
    return pNode;
}

ITvnTreeNode* tagTvnDataTreeImpl::RemoveNode(ITvnTreeNode* pNode) {
    if (pNode == nullptr) {
        return nullptr;
    }
    while (pNode->GetFirstChild() != nullptr) {
        RemoveNode(pNode->GetFirstChild());
    }
    ITvnTreeNode* pParent = pNode->GetParent();
    ITvnTreeNode* pNext = pNode->GetNext();
    if (pParent != nullptr) {
        pParent->SetFirstChild(pNext);
    }
    if (pNext != nullptr) {
        pNext->SetPrev(nullptr);
    }
    pNode->Destroy();
    return pParent;
}

qmz::Result tagTvnDataTreeImpl::AddFolder(const QString& folderPath, bool bDiscFoldersFirst) {
    return AddFolderWith(folderPath, bDiscFoldersFirst, true);
}

qmz::Result tagTvnDataTreeImpl::AddFolderPlain(const QString& folderPath, bool bDiscFoldersFirst) {
    return AddFolderWith(folderPath, bDiscFoldersFirst, false);
}

qmz::Result tagTvnDataTreeImpl::AddFolderWith(const QString& folderPath, bool bDiscFoldersFirst,
                                              bool bDiscRulesAtTop) {
    const QString folder = CDiscFolderWalk::WithSlash(folderPath);
    if (m_pRoot == nullptr) {
        const qmz::Result hr = CreateRoot(folder, &kRootDest, ITvnTreeNode::KindFolder, 0, 0, 0);
        if (hr < 0) {
            return hr;
        }
    }
    CDiscFolderWalk walk(*this, bDiscFoldersFirst);
    return walk.Walk(folder, m_pRoot, LastChildOf(m_pRoot), bDiscRulesAtTop);
}

ITvnTreeNode* tagTvnDataTreeImpl::LastChildOf(const ITvnTreeNode* pParent) const {
    ITvnTreeNode* pLast = nullptr;
    for (ITvnTreeNode* pChild = NextChild(pParent, nullptr); pChild != nullptr;
         pChild = NextChild(pParent, pChild)) {
        pLast = pChild;
    }
    return pLast;
}

qmz::Result tagTvnDataTreeImpl::AssignSectors(const uint32_t* pStartSectors, uint32_t nCount) {
    if (pStartSectors != nullptr) {
        uint32_t nChildren = 0;
        ITvnTreeNode* pLast = nullptr;
        for (ITvnTreeNode* pChild = NextChild(m_pRoot, nullptr); pChild != nullptr;
             pChild = NextChild(m_pRoot, pChild)) {
            // The family reads one entry per child; an entry the caller did not give is
            // not read.
            if (nChildren < nCount) {
                pChild->SetStartSector(pStartSectors[nChildren]);
            }
            ++nChildren;
            pLast = pChild;
        }
        if (nChildren != nCount) {
            return kTvnWrongSourceCount;
        }
        if (pLast != nullptr) {
            m_uNextSector =
                pLast->GetStartSector() + static_cast<uint32_t>(TvnSectorsOf(pLast->GetSize()));
        }
    }
    for (ITvnTreeNode* pChild = NextChild(m_pRoot, nullptr); pChild != nullptr;
         pChild = NextChild(m_pRoot, pChild)) {
        if (const qmz::Result hr = AssignFrom(pChild); hr < 0) {
            return hr;
        }
    }
    return qmz::kOk;
}

qmz::Result tagTvnDataTreeImpl::AssignFrom(ITvnTreeNode* pNode) {
    if (pNode->GetKind() == ITvnTreeNode::KindFile) {
        pNode->SetStartSector(m_uNextSector);
        m_uNextSector += static_cast<uint32_t>(TvnSectorsOf(pNode->GetSize()));
        return qmz::kOk;
    }
    if (pNode->GetKind() != ITvnTreeNode::KindFolder) {
        return kTvnBadNode;
    }
    for (ITvnTreeNode* pChild = NextChild(pNode, nullptr); pChild != nullptr;
         pChild = NextChild(pNode, pChild)) {
        if (const qmz::Result hr = AssignFrom(pChild); hr < 0) {
            return hr;
        }
    }
    return qmz::kOk;
}

qmz::Result tagTvnDataTreeImpl::SwapNodes(ITvnTreeNode* pA, ITvnTreeNode* pB) {
    if (pA == nullptr || pB == nullptr) {
        return kTvnBadNode;
    }
    ITvnTreeNode* pParentA = pA->GetParent();
    ITvnTreeNode* pPrevA = pA->GetPrev();
    ITvnTreeNode* pNextA = pA->GetNext();
    ITvnTreeNode* pParentB = pB->GetParent();
    ITvnTreeNode* pPrevB = pB->GetPrev();
    ITvnTreeNode* pNextB = pB->GetNext();
    if (pPrevA == nullptr) {
        if (pParentA != nullptr) {
            pParentA->SetFirstChild(pB);
        }
    } else {
        pPrevA->SetNext(pB);
    }
    // The links are set in the family's order, which decides the result for neighbours that
    // the swap does not support.
    pB->SetParent(pParentA);
    pB->SetPrev(pPrevA);
    if (pA == pPrevB) {
        pB->SetNext(pA);
        pA->SetParent(pParentB);
        pA->SetPrev(pB);
    } else {
        pB->SetNext(pNextA);
        if (pNextA != nullptr) {
            pNextA->SetPrev(pB);
        }
        pA->SetParent(pParentB);
        pA->SetPrev(pPrevB);
        if (pPrevB != nullptr) {
            pPrevB->SetNext(pA);
        }
    }
    pA->SetNext(pNextB);
    if (pNextB != nullptr) {
        pNextB->SetPrev(pA);
    }
    return qmz::kOk;
}

void tagTvnDataTreeImpl::PrepareTree(ITvnTreeNode* pNode) {
    if (pNode == nullptr) {
        return;
    }
    pNode->Prepare();
    for (ITvnTreeNode* pChild = NextChild(pNode, nullptr); pChild != nullptr;
         pChild = NextChild(pNode, pChild)) {
        PrepareTree(pChild);
    }
}

void tagTvnDataTreeImpl::Reserved11() {}

void tagTvnDataTreeImpl::RemoveAll() {
    if (m_pRoot != nullptr) {
        RemoveNode(m_pRoot);
        m_pRoot = nullptr;
    }
}

ITvnTreeNode* tagTvnDataTreeImpl::GetRoot() const {
    return m_pRoot;
}

ITvnTreeNode* tagTvnDataTreeImpl::NextChild(const ITvnTreeNode* pParent,
                                            const ITvnTreeNode* pPrevious) const {
    if (pPrevious != nullptr) {
        return pPrevious->GetNext();
    }
    return pParent != nullptr ? pParent->GetFirstChild() : nullptr;
}

qmz::Result tagTvnDataTreeImpl::AddDvdVrFiles(const QString& folderPath, ITvnTreeNode* pParent) {
    CDiscFolderWalk walk(*this, false);
    return walk.AddDvdVrFiles(CDiscFolderWalk::WithSlash(folderPath), pParent);
}
