// The file list's commands that write out of the image: viewing one file through a temporary
// copy, and extracting the selection to a folder the user picks.
#include "CFileListView.h"

#include "CFolderTreeView.h"
#include "CImageReader.h"
#include "COvDataItem.h"
#include "CWindowMessage.h"
#include "EngineFields.h"
#include "ExtractTarget.h"
#include "FileTimeConversion.h"
#include "Locations.h"
#include "TvnText.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QUrl>
#include <sys/stat.h>

namespace {

// The engine's form of a node's path: no leading separator.
QString SourceOf(const COvDataItem& node) {
    const QString path = node.m_strPath + node.m_strDisplayName;
    return path.startsWith(u'\\') ? path.mid(1) : path;
}

// Whether the file at path carries exactly the FILETIME, to the 100 ns tick.
bool HasTime(const QString& path, const qmz::FileTime& ft) {
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    const filetime::UnixTime time = filetime::ToUnix(enginefields::TicksOf(ft));
    return info.st_mtim.tv_sec == time.seconds && info.st_mtim.tv_nsec == time.nanoseconds;
}

} // namespace

void CFileListView::SetViewingHandler(std::function<void(bool)> fnSetViewing) {
    m_fnSetViewing = std::move(fnSetViewing);
}

void CFileListView::SetViewing(bool bViewing) const {
    if (m_fnSetViewing) {
        m_fnSetViewing(bViewing);
    }
}

// The reader's figures belong to one job; the next one starts from nothing.
void CFileListView::EndCopyJob() const {
    g_pImageReader->SetDoneBytes(0);
    g_pImageReader->SetTotalBytes(0);
    g_pImageReader->SetCopyPercent(0);
    NotifyFrame(NOTIFY_COPY_END);
}

void CFileListView::OnViewFile() {
    const std::vector<int> rows = m_wndList.SelectedRows();
    COvDataItem* pNode = rows.empty() ? nullptr : m_wndList.Model().NodeAt(rows.front());
    if (g_pImageReader == nullptr || pNode == nullptr) {
        return;
    }
    if (pNode->IsFolder()) {
        if (m_pTreeView != nullptr) {
            CWindowMessage open(kWmOvOpenFolder, kOpenChildFolder,
                                reinterpret_cast<intptr_t>(pNode));
            QCoreApplication::sendEvent(m_pTreeView, &open);
        }
        return;
    }
    QString folder;
    if (!pNode->IsFile() || !CImageReader::IsWritableName(pNode->m_strDisplayName) ||
        !GetTempFolder(kMaxPathChars, folder)) {
        return;
    }
    // The image's folders are dropped: files of one name share a temporary path, and the time
    // stamp tells whether the copy there is this node's.
    const QString target = folder + pNode->m_strDisplayName;
    qmz::Result hr = qmz::kOk;
    if (!HasTime(target, pNode->m_ftTime)) {
        if (!HasRoomFor(target, pNode->m_ullSize)) {
            ShowCommandMessage(this, TvnFormat(tvn::kNoRoomToView, VolumeOf(target)));
            return;
        }
        g_pImageReader->SetTotalBytes(pNode->m_ullSize);
        g_pImageReader->SetStop(0);
        SetViewing(true);
        hr = g_pImageReader->CopyFile(SourceOf(*pNode), target, &pNode->m_ftTime);
        SetViewing(false);
        EndCopyJob();
    }
    if (hr >= 0) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(target));
        m_lstTempFiles.append(target);
    }
}

void CFileListView::OnExtract() {
    if (g_pImageReader == nullptr) {
        return;
    }
    const QString target = AskExtractTarget(this, m_fnChooseFolder);
    if (target.isEmpty()) {
        return;
    }
    g_pImageReader->SetStop(0);
    std::vector<COvDataItem*> nodes;
    for (const int nRow : m_wndList.SelectedRows()) {
        if (COvDataItem* pNode = m_wndList.Model().NodeAt(nRow)) {
            nodes.push_back(pNode);
        }
    }
    if (!nodes.empty()) {
        ExtractNodes(nodes, target);
    }
    m_answers.Clear();
}

void CFileListView::ExtractNodes(const std::vector<COvDataItem*>& nodes, const QString& target) {
    uint64_t ullTotal = 0;
    for (const COvDataItem* pNode : nodes) {
        ullTotal += pNode->m_ullSize;
    }
    if (!HasRoomFor(target, ullTotal)) {
        ShowCommandMessage(this, TvnFormat(tvn::kNoRoomForSelection, VolumeOf(target)));
        return;
    }
    g_pImageReader->SetTotalBytes(ullTotal);
    qmz::Result hr = qmz::kOk;
    for (COvDataItem* pNode : nodes) {
        hr = ExtractNode(*pNode, target);
        // Each copy starts with the stop flag cleared: a stop that came as a row ended would
        // be lost to the next one.
        if (hr >= 0 && g_pImageReader->GetStop() != 0) {
            hr = qmz::kStopped;
        }
        if (hr < 0) {
            break;
        }
    }
    EndCopyJob();
    if (hr >= 0) {
        SetExtractFolder(target);
    }
}

// One row: written, skipped by the user's answer, or a failure or stop that ends the job.
qmz::Result CFileListView::ExtractNode(COvDataItem& node, const QString& targetFolder) {
    if ((!node.IsFolder() && !node.IsFile()) ||
        !CImageReader::IsWritableName(node.m_strDisplayName)) {
        return qmz::kOk;
    }
    const QString target = targetFolder + node.m_strDisplayName;
    const QFileInfo existing(target);
    if (existing.exists() || existing.isSymLink()) {
        const NotifyData question{&node, target, existing};
        const qmz::Result answer = m_answers.AskOverwrite(this, question);
        if (answer == COverwriteAnswers::kSkip) {
            g_pImageReader->SetDoneBytes(g_pImageReader->GetDoneBytes() + node.m_ullSize);
            return qmz::kOk;
        }
        if (answer != COverwriteAnswers::kWrite) {
            return answer;
        }
    }
    const QString source = SourceOf(node);
    return node.IsFolder() ? g_pImageReader->CopyFolder(source, targetFolder)
                           : g_pImageReader->CopyFile(source, target, &node.m_ftTime);
}
