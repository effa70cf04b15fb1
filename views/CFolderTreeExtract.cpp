// The tree's extraction (641): the folder at the caret, written into a folder the user picks.
#include "CFolderTreeView.h"

#include "CImageReader.h"
#include "COvDataItem.h"
#include "Locations.h"
#include "TvnText.h"

#include <QFileInfo>

void CFolderTreeView::SetFrameCallback(ImageReaderCallback pfnCallback, void* pContext) {
    m_pfnFrameCallback = pfnCallback;
    m_pFrameContext = pContext;
}

bool CFolderTreeView::OnCommand(int nId) {
    if (nId != kCmdTreeExtract) {
        return false;
    }
    OnExtract();
    return true;
}

bool CFolderTreeView::OnUpdateCommand(int nId, CommandState& state) {
    if (nId != kCmdTreeExtract) {
        return false;
    }
    state.bEnabled = true;
    return true;
}

void CFolderTreeView::OnExtract() {
    COvDataItem* pNode = NodeOf(m_wndTree.currentItem());
    if (g_pImageReader == nullptr || pNode == nullptr) {
        return;
    }
    const QString target = AskExtractTarget(this, m_fnChooseFolder);
    if (target.isEmpty()) {
        return;
    }
    g_pImageReader->SetStop(0);
    if (!HasRoomFor(target, pNode->m_ullSize)) {
        ShowCommandMessage(this, TvnFormat(tvn::kNoRoomForSelection, VolumeOf(target)));
        m_answers.Clear();
        return;
    }
    g_pImageReader->SetTotalBytes(pNode->m_ullSize);
    const qmz::Result hr = ExtractFolder(*pNode, target);
    // The bar is left where it stands: the dialog goes with the job's end.
    g_pImageReader->SetDoneBytes(0);
    g_pImageReader->SetTotalBytes(0);
    if (m_pfnFrameCallback != nullptr) {
        m_pfnFrameCallback(NOTIFY_COPY_END, nullptr, m_pFrameContext);
    }
    if (hr >= 0) {
        SetExtractFolder(target);
    }
    m_answers.Clear();
}

// Only a folder is written; the root, which stands for the whole volume, has no name to write
// it under. A skip ends the job, which has nothing else to do.
qmz::Result CFolderTreeView::ExtractFolder(COvDataItem& node, const QString& targetFolder) {
    if (!node.IsFolder() || !CImageReader::IsWritableName(node.m_strDisplayName)) {
        return qmz::kOk;
    }
    const QString target = targetFolder + node.m_strDisplayName;
    const QFileInfo existing(target);
    if (existing.exists() || existing.isSymLink()) {
        const NotifyData question{&node, target, existing};
        const qmz::Result answer = m_answers.AskOverwrite(this, question);
        if (answer != COverwriteAnswers::kWrite) {
            return answer;
        }
    }
    const QString path = node.m_strPath + node.m_strDisplayName;
    return g_pImageReader->CopyFolder(path.startsWith(u'\\') ? path.mid(1) : path, targetFolder);
}
