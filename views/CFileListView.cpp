#include "CFileListView.h"

#include "CFolderTreeView.h"
#include "COvDataItem.h"
#include "CWindowMessage.h"
#include "FolderSort.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QListView>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

constexpr int kSortColumns = 4;

struct ModeCommand {
    int nCommand;
    int nMode;
};
constexpr ModeCommand kModeCommands[] = {
    {kCmdLargeIcons, COvListCtrl::ModeLargeIcons},
    {kCmdReport, COvListCtrl::ModeReport},
    {kCmdSmallIcons, COvListCtrl::ModeSmallIcons},
    {kCmdList, COvListCtrl::ModeList},
};

const ModeCommand* FindModeCommand(int nId) {
    for (const ModeCommand& entry : kModeCommands) {
        if (entry.nCommand == nId) {
            return &entry;
        }
    }
    return nullptr;
}

bool IsSelectAll(const QEvent* pEvent) {
    if (pEvent->type() != QEvent::KeyPress) {
        return false;
    }
    const auto* pKey = static_cast<const QKeyEvent*>(pEvent);
    return pKey->key() == Qt::Key_A && (pKey->modifiers() & Qt::ControlModifier) != 0;
}

} // namespace

CFileListView::CFileListView(IOvDocument* pDocument, QWidget* pParent)
    : QWidget(pParent), m_pDocument(pDocument), m_wndList(this) {
    auto* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(&m_wndList);
    setFocusProxy(&m_wndList);
    m_wndList.setFocusProxy(m_wndList.ReportView());
    connect(&m_wndList, &COvListCtrl::columnClicked, this, &CFileListView::SortByColumn);
    connect(&m_wndList, &COvListCtrl::rowDoubleClicked, this, &CFileListView::OpenRow);
    m_wndList.ReportView()->installEventFilter(this);
    m_wndList.IconView()->installEventFilter(this);
    m_pDocument->AddView(this);
}

CFileListView::~CFileListView() {
    m_pDocument->RemoveView(this);
    DeleteTempFiles();
}

void CFileListView::DeleteTempFiles() {
    for (const QString& path : std::as_const(m_lstTempFiles)) {
        QFile::remove(path);
    }
    m_lstTempFiles.clear();
}

void CFileListView::OnUpdate(IOvView*, int nHint) {
    COvDataItem* pFolder = m_pDocument->GetCurrentFolder();
    // Without a folder the list keeps what it shows until the next hint that has one.
    if (pFolder == nullptr || (nHint != kHintCurrentFolder && nHint != kHintNewTree)) {
        return;
    }
    m_wndList.Model().SetFolder(pFolder, static_cast<int>(pFolder->m_vecChildren.size()));
    UpdateSortArrows(pFolder);
}

void CFileListView::SetViewMode(int nMode) {
    m_wndList.SetViewMode(nMode);
    m_dwViewMode = m_wndList.ViewModeValue();
    m_wndList.setFocusProxy(m_wndList.ActiveView());
}

void CFileListView::SortByColumn(int nColumn) {
    COvDataItem* pFolder = m_pDocument->GetCurrentFolder();
    if (pFolder == nullptr || nColumn < 0 || nColumn >= kSortColumns) {
        return;
    }
    // Each folder keeps its own order: the state lives on the node.
    for (int i = 0; i < kSortColumns; ++i) {
        int32_t& nState = pFolder->m_anSortState[i];
        nState = (i != nColumn) ? 0 : (nState == 0 ? 1 : -nState);
    }
    SortChildren(*pFolder, nColumn, pFolder->m_anSortState[nColumn] == 1);
    if (m_wndList.Model().Folder() == pFolder) {
        m_wndList.Model().RowsReordered();
    }
    UpdateSortArrows(pFolder);
}

void CFileListView::UpdateSortArrows(const COvDataItem* pFolder) {
    if (pFolder == nullptr) {
        return;
    }
    for (int i = 0; i < kSortColumns; ++i) {
        if (pFolder->m_anSortState[i] != 0) {
            m_wndList.SetSortArrow(i, pFolder->m_anSortState[i]);
            return;
        }
    }
    m_wndList.SetSortArrow(0, 0);
}

void CFileListView::OpenRow(int nRow) {
    COvDataItem* pNode = m_wndList.Model().NodeAt(nRow);
    if (pNode == nullptr || m_pTreeView == nullptr) {
        return;
    }
    if (pNode->IsFile()) {
        CWindowMessage command(kWmCommand, CWindowMessage::CommandParam(kCmdViewFile), 0);
        QCoreApplication::sendEvent(this, &command);
    } else if (pNode->IsFolder()) {
        CWindowMessage open(kWmOvOpenFolder, kOpenChildFolder, reinterpret_cast<intptr_t>(pNode));
        QCoreApplication::sendEvent(m_pTreeView, &open);
    }
}

bool CFileListView::OnCommand(int nId) {
    switch (nId) {
    case kCmdOpenImage:
        OnOpenImage();
        return true;
    case kCmdViewFile:
        OnViewFile();
        return true;
    case kCmdExtract:
        OnExtract();
        return true;
    case kCmdBurnImage:
        OnBurnImage();
        return true;
    case kCmdMarloweUnit:
        OnMarloweUnit();
        return true;
    default:
        break;
    }
    if (const ModeCommand* pEntry = FindModeCommand(nId)) {
        SetViewMode(pEntry->nMode);
        return true;
    }
    return false;
}

bool CFileListView::OnUpdateCommand(int nId, CommandState& state) {
    if (const ModeCommand* pEntry = FindModeCommand(nId)) {
        state.bEnabled = true;
        state.bChecked = m_dwViewMode == pEntry->nMode;
        return true;
    }
    if (nId == kCmdViewFile) {
        state.bEnabled = m_wndList.SelectedRowCount() == 1;
        return true;
    }
    if (nId == kCmdOpenImage || nId == kCmdExtract || nId == kCmdBurnImage ||
        nId == kCmdMarloweUnit) {
        state.bEnabled = true;
        return true;
    }
    return false;
}

bool CFileListView::event(QEvent* pEvent) {
    if (pEvent->type() == CWindowMessage::TypeOf(kWmCommand)) {
        const auto* pMessage = static_cast<const CWindowMessage*>(pEvent);
        OnCommand(static_cast<int>(pMessage->WParam() & 0xFFFF));
        return true;
    }
    return QWidget::event(pEvent);
}

bool CFileListView::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (IsSelectAll(pEvent)) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        m_wndList.SelectAll();
        QApplication::restoreOverrideCursor();
        return true;
    }
    return QWidget::eventFilter(pWatched, pEvent);
}
