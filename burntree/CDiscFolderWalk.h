// Takes a folder on disk into a data tree: every file and folder in listing order, except
// that a top-level VIDEO_TS folder gets its files in the DVD's order and a DVD_RTAV folder its
// DVD-VR files, so that the disc plays. Every file's sectors are added to the tree's next
// sector as it goes in.
#pragma once

#include "ITvnDataTree.h"

class CFolderListing;

class CDiscFolderWalk {
public:
    // bDiscFoldersFirst moves VIDEO_TS and DVD_RTAV to the front of their parent.
    CDiscFolderWalk(ITvnDataTree& tree, bool bDiscFoldersFirst);

    // A local folder path with its trailing '/'.
    static QString WithSlash(const QString& folderPath);

    // Inserts the entries of folder under pParent, the first behind pAfter (first child when
    // null). Without bDiscRules the folder's own entries are all plain.
    qmz::Result Walk(const QString& folder, ITvnTreeNode* pParent, ITvnTreeNode* pAfter,
                     bool bDiscRules);
    qmz::Result AddDvdVideoFiles(const QString& folder, ITvnTreeNode* pParent,
                                 ITvnTreeNode* pAfter);
    qmz::Result AddDvdVrFiles(const QString& folder, ITvnTreeNode* pParent);

private:
    qmz::Result AddSubfolder(const QString& folder, const QString& name, ITvnTreeNode* pParent,
                             ITvnTreeNode*& pLast, bool bDiscRules);
    qmz::Result FillSubfolder(const QString& source, ITvnTreeNode* pNode, bool bDiscRules);
    // Inserts a file node and counts its sectors; null when it cannot be inserted.
    ITvnTreeNode* InsertFile(const QString& source, const QString& dest, uint64_t ullSize,
                             ITvnTreeNode* pParent, ITvnTreeNode* pAfter);

    ITvnDataTree& m_tree;
    bool m_bDiscFoldersFirst;
};
