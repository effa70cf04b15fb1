#include "CDiscFolderWalk.h"

#include "CDvdStructure.h"
#include "CFolderListing.h"

namespace {

const QString kVideoTsDest = QStringLiteral("\\VIDEO_TS\\");
const QString kDvdRtavDest = QStringLiteral("\\DVD_RTAV\\");

struct VrFile {
    const char* pName;
    const char* pDest;
};

const VrFile kVrFiles[] = {
    {"VR_MANGR.IFO", "\\DVD_RTAV\\VR_MANGR.IFO"}, {"VR_MANGR.BUP", "\\DVD_RTAV\\VR_MANGR.BUP"},
    {"VR_MOVIE.VRO", "\\DVD_RTAV\\VR_MOVIE.VRO"}, {"VR_STILL.VRO", "\\DVD_RTAV\\VR_STILL.VRO"},
    {"VR_AUDIO.VRO", "\\DVD_RTAV\\VR_AUDIO.VRO"},
};

// Players look for these two folders by their upper-case names.
QString DiscFolderName(const QString& name) {
    for (const char* pDiscName : {"AUDIO_TS", "VIDEO_TS"}) {
        if (name.compare(QLatin1String(pDiscName), Qt::CaseInsensitive) == 0) {
            return QLatin1String(pDiscName);
        }
    }
    return name;
}

} // namespace

CDiscFolderWalk::CDiscFolderWalk(ITvnDataTree& tree, bool bDiscFoldersFirst)
    : m_tree(tree), m_bDiscFoldersFirst(bDiscFoldersFirst) {}

QString CDiscFolderWalk::WithSlash(const QString& folderPath) {
    return folderPath.endsWith(u'/') ? folderPath : folderPath + u'/';
}

qmz::Result CDiscFolderWalk::Walk(const QString& folder, ITvnTreeNode* pParent,
                                  ITvnTreeNode* pAfter, bool bDiscRules) {
    const QString source = WithSlash(folder);
    CFolderListing listing;
    qmz::Result hr = listing.Read(source);
    ITvnTreeNode* pLast = pAfter;
    for (const CFolderListing::Entry& entry : listing.Entries()) {
        if (hr < 0) {
            break;
        }
        if (entry.bFolder) {
            hr = AddSubfolder(source, entry.name, pParent, pLast, bDiscRules);
            continue;
        }
        pLast = InsertFile(source + entry.name, pParent->GetDest() + entry.name, entry.ullSize,
                           pParent, pLast);
        hr = pLast != nullptr ? qmz::kOk : kTvnBadNode;
    }
    return hr;
}

qmz::Result CDiscFolderWalk::AddSubfolder(const QString& folder, const QString& name,
                                          ITvnTreeNode* pParent, ITvnTreeNode*& pLast,
                                          bool bDiscRules) {
    const QString discName = bDiscRules ? DiscFolderName(name) : name;
    const QString source = folder + name + u'/';
    const QString dest = pParent->GetDest() + discName + u'\\';
    ITvnTreeNode* pNode = m_tree.InsertNode(source, &dest, nullptr, ITvnTreeNode::KindFolder, 0, 0,
                                            0, 0, pParent, pLast, nullptr);
    if (pNode == nullptr) {
        return kTvnBadNode;
    }
    pLast = pNode;
    return FillSubfolder(source, pNode, bDiscRules);
}

qmz::Result CDiscFolderWalk::FillSubfolder(const QString& source, ITvnTreeNode* pNode,
                                           bool bDiscRules) {
    const QString& dest = pNode->GetDest();
    const bool bVideo = bDiscRules && dest.compare(kVideoTsDest, Qt::CaseInsensitive) == 0;
    const bool bVr = bDiscRules && dest.compare(kDvdRtavDest, Qt::CaseInsensitive) == 0;
    if (!bVideo && !bVr) {
        return Walk(source, pNode, nullptr, true);
    }
    const qmz::Result hr =
        bVideo ? AddDvdVideoFiles(source, pNode, nullptr) : AddDvdVrFiles(source, pNode);
    ITvnTreeNode* pFirst = pNode->GetParent()->GetFirstChild();
    if (hr < 0 || !m_bDiscFoldersFirst || pFirst == pNode) {
        return hr;
    }
    return m_tree.SwapNodes(pFirst, pNode);
}

qmz::Result CDiscFolderWalk::AddDvdVideoFiles(const QString& folder, ITvnTreeNode* pParent,
                                              ITvnTreeNode* pAfter) {
    std::vector<CDvdStructure::DiscFile> files;
    if (const qmz::Result hr = CDvdStructure::ListDvdVideoFiles(WithSlash(folder), files); hr < 0) {
        return hr;
    }
    ITvnTreeNode* pLast = pAfter;
    for (const CDvdStructure::DiscFile& file : files) {
        pLast =
            InsertFile(file.source, pParent->GetDest() + file.name, file.ullSize, pParent, pLast);
        if (pLast == nullptr) {
            return kTvnBadNode;
        }
    }
    return qmz::kOk;
}

qmz::Result CDiscFolderWalk::AddDvdVrFiles(const QString& folder, ITvnTreeNode* pParent) {
    const QString source = WithSlash(folder);
    CFolderListing listing;
    if (const qmz::Result hr = listing.Read(source); hr < 0) {
        return hr;
    }
    ITvnTreeNode* pLast = nullptr;
    for (const VrFile& vrFile : kVrFiles) {
        const CFolderListing::Entry* pEntry = listing.FindFile(QLatin1String(vrFile.pName));
        if (pEntry == nullptr) {
            continue;
        }
        pLast = InsertFile(source + pEntry->name, QLatin1String(vrFile.pDest), pEntry->ullSize,
                           pParent, pLast);
        if (pLast == nullptr) {
            return kTvnBadNode;
        }
    }
    return qmz::kOk;
}

ITvnTreeNode* CDiscFolderWalk::InsertFile(const QString& source, const QString& dest,
                                          uint64_t ullSize, ITvnTreeNode* pParent,
                                          ITvnTreeNode* pAfter) {
    ITvnTreeNode* pNode =
        m_tree.InsertNode(source, &dest, nullptr, ITvnTreeNode::KindFile, 0, TvnLowHalf(ullSize),
                          TvnHighHalf(ullSize), 0, pParent, pAfter, nullptr);
    if (pNode != nullptr) {
        m_tree.SetNextSector(m_tree.GetNextSector() + static_cast<uint32_t>(TvnSectorsOf(ullSize)));
    }
    return pNode;
}
