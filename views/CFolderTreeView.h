// The left pane: the folders of the open image as a tree whose root is the volume. It alone
// decides which folder is current; the file list follows it. Subfolders are inserted when
// their folder is first expanded, so a deep image costs nothing until it is opened.
#pragma once

#include "COvTreeCtrl.h"
#include "COverwriteAnswers.h"
#include "ExtractTarget.h"
#include "ICommandTarget.h"
#include "IOvDocument.h"
#include "ReaderProgress.h"

#include <QIcon>
#include <QWidget>
#include <cstdint>
#include <map>
#include <utility>

class COvDataItem;
class QTreeWidgetItem;

// Sent (never posted) by the file list: wParam kOpenChildFolder, lParam a folder node that is
// a direct child of the current folder. Other wParams are ignored.
inline constexpr uint32_t kWmOvOpenFolder = 0xA17;
inline constexpr uintptr_t kOpenChildFolder = 2;
// The command that the tree answers itself when it is the active pane.
inline constexpr int kCmdTreeExtract = 641;

class CFolderTreeView : public QWidget, public IOvView, public ICommandTarget {
    Q_OBJECT
public:
    // Registers with the document, which must outlive the view.
    explicit CFolderTreeView(IOvDocument* pDocument, QWidget* pParent = nullptr);
    ~CFolderTreeView() override;

    void OnInitialUpdate();
    void OnUpdate(IOvView* pSender, int nHint) override;
    void RebuildTree();

    QTreeWidgetItem* FindCurrentItem() const;
    QTreeWidgetItem* FindItemByNode(const COvDataItem* pNode) const;
    static COvDataItem* NodeOf(const QTreeWidgetItem* pItem);

    COvTreeCtrl& TreeCtrl() { return m_wndTree; }

    bool OnCommand(int nId) override;
    bool OnUpdateCommand(int nId, CommandState& state) override;
    // Command 641 on the tree: the folder at the caret, with the list's checks and question.
    void OnExtract();
    void SetFolderChooser(FolderChooser fnChooser) { m_fnChooseFolder = std::move(fnChooser); }
    // The frame's receiver of the reader's notices, told when a job is over.
    void SetFrameCallback(ImageReaderCallback pfnCallback, void* pContext);

protected:
    bool event(QEvent* pEvent) override;

private:
    QTreeWidgetItem* InsertNode(QTreeWidgetItem* pParent, COvDataItem* pNode);
    QTreeWidgetItem* MakeItem(COvDataItem* pNode);
    void InsertSubfolders(QTreeWidgetItem* pItem);
    void OnItemExpanding(QTreeWidgetItem* pItem);
    void OnSelChanged(QTreeWidgetItem* pItem);
    void OnOpenFolder(uintptr_t wParam, intptr_t lParam);
    void Expand(QTreeWidgetItem* pItem);
    QIcon FolderIcon(int nIcon, int nOpenIcon);
    qmz::Result ExtractFolder(COvDataItem& node, const QString& targetFolder);

    IOvDocument* m_pDocument;
    COvTreeCtrl m_wndTree;
    // Most folders share one pair of pictures, so each pair is drawn once.
    std::map<std::pair<int, int>, QIcon> m_mapFolderIcons;
    FolderChooser m_fnChooseFolder;
    COverwriteAnswers m_answers;
    ImageReaderCallback m_pfnFrameCallback = nullptr;
    void* m_pFrameContext = nullptr;
};
