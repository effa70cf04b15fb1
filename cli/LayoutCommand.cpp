// ovrin-cli layout: what a burn project would put on a disc from a folder, node by node, and
// the DVD-Video structure when the folder holds one. Sectors count from the first sector that
// the project's files take.
#include "CDvdStructure.h"
#include "CliCommands.h"
#include "CliFrontEnd.h"
#include "ITvnDataTree.h"

#include <QFileInfo>

#include <cstdio>

namespace cli {
namespace {

const QString kDvdFirstOption = QStringLiteral("--dvd-first");
const QString kVideoTsDest = QStringLiteral("\\VIDEO_TS\\");

void PrintNodes(const ITvnDataTree& tree, const ITvnTreeNode* pNode) {
    std::printf("%c %10u %10llu %s\n", pNode->GetKind() == ITvnTreeNode::KindFolder ? 'd' : 'f',
                pNode->GetStartSector(),
                static_cast<unsigned long long>(TvnSectorsOf(pNode->GetSize())),
                pNode->GetDest().toUtf8().constData());
    for (const ITvnTreeNode* pChild = tree.NextChild(pNode, nullptr); pChild != nullptr;
         pChild = tree.NextChild(pNode, pChild)) {
        PrintNodes(tree, pChild);
    }
}

const ITvnTreeNode* FindVideoTs(const ITvnDataTree& tree) {
    const ITvnTreeNode* pRoot = tree.GetRoot();
    for (const ITvnTreeNode* pChild = tree.NextChild(pRoot, nullptr); pChild != nullptr;
         pChild = tree.NextChild(pRoot, pChild)) {
        if (pChild->GetDest() == kVideoTsDest) {
            return pChild;
        }
    }
    return nullptr;
}

qmz::Result PrintDvdStructure(const QString& videoTs) {
    uint32_t nTitleSets = 0;
    uint32_t nMenuFiles = 0;
    uint32_t nCells = 0;
    uint32_t nVobs = 0;
    qmz::Result hr = CDvdStructure::CountTitleSets(videoTs, nTitleSets);
    if (hr >= 0) {
        hr = CDvdStructure::CountMenuFiles(videoTs, nMenuFiles);
    }
    if (hr >= 0) {
        hr = CDvdStructure::CountStructure(videoTs, nCells, nVobs);
    }
    if (hr >= 0) {
        std::printf("Title sets: %u\nMenu VOBs:  %u\nCells:      %u\nVOBs:       %u\n", nTitleSets,
                    nMenuFiles, nCells, nVobs);
    }
    return hr;
}

// Builds the tree, lays it out from sector 0 and prints it; the code of the first failure.
qmz::Result PrintLayout(ITvnDataTree& tree, const QString& folder, bool bDvdFirst) {
    qmz::Result hr = tree.AddFolder(folder, bDvdFirst);
    if (hr < 0) {
        return hr;
    }
    const uint32_t nSectors = tree.GetNextSector();
    tree.SetNextSector(0);
    hr = tree.AssignSectors(nullptr, 0);
    if (hr < 0) {
        return hr;
    }
    PrintNodes(tree, tree.GetRoot());
    std::printf("Sectors:    %u\n", nSectors);
    const ITvnTreeNode* pVideoTs = FindVideoTs(tree);
    return pVideoTs != nullptr ? PrintDvdStructure(pVideoTs->GetSource()) : qmz::kOk;
}

} // namespace

int RunLayout(const QStringList& args) {
    QStringList folders = args;
    const bool bDvdFirst = folders.removeAll(kDvdFirstOption) > 0;
    if (folders.size() != 1 || folders[0].startsWith(u'-')) {
        return kExitUsage;
    }
    const QFileInfo folderInfo(folders[0]);
    if (!folderInfo.isDir()) {
        PrintError(QStringLiteral("\"%1\" does not exist or is not a folder.").arg(folders[0]));
        return kExitFailure;
    }
    ITvnDataTree* pTree = CreateTvnDataTree();
    if (pTree == nullptr) {
        PrintError(QStringLiteral("There is not enough memory for the layout."));
        return kExitFailure;
    }
    const qmz::Result hr = PrintLayout(*pTree, folderInfo.absoluteFilePath(), bDvdFirst);
    DestroyTvnDataTree(pTree);
    if (hr < 0) {
        PrintError(QStringLiteral("\"%1\" cannot be laid out on a disc. %2")
                       .arg(folders[0], CliFrontEnd::DescribeCode(hr)));
        return kExitFailure;
    }
    return std::fflush(stdout) == 0 ? kExitOk : kExitFailure;
}

} // namespace cli
