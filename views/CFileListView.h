// The right pane: the entries of the document's current folder, folders and files, in one
// list. It never changes the current folder itself: a folder opened here is opened through
// the tree.
#pragma once

#include "COvListCtrl.h"
#include "ICommandTarget.h"
#include "IOvDocument.h"

#include <QStringList>
#include <QWidget>

class CFolderTreeView;
class COvDataItem;

// The commands that this pane knows.
inline constexpr int kCmdOpenImage = 639;
inline constexpr int kCmdViewFile = 640;
inline constexpr int kCmdSmallIcons = 643;
inline constexpr int kCmdList = 644;
inline constexpr int kCmdReport = 645;
inline constexpr int kCmdLargeIcons = 646;

class CFileListView : public QWidget, public IOvView, public ICommandTarget {
    Q_OBJECT
public:
    // Registers with the document, which must outlive the view.
    explicit CFileListView(IOvDocument* pDocument, QWidget* pParent = nullptr);
    // Removes the files that were extracted for viewing.
    ~CFileListView() override;

    void OnUpdate(IOvView* pSender, int nHint) override;
    bool OnCommand(int nId) override;
    bool OnUpdateCommand(int nId, CommandState& state) override;

    // The tree that opens folders for this list; the frame sets it, it is not owned.
    void SetTreeView(CFolderTreeView* pTreeView) { m_pTreeView = pTreeView; }
    void SetViewMode(int nMode);
    int ViewMode() const { return m_dwViewMode; }
    void SortByColumn(int nColumn);
    void OpenRow(int nRow);
    // A copy made for viewing, removed when the list goes.
    void AddTempFile(const QString& path) { m_lstTempFiles.append(path); }

    COvListCtrl& ListCtrl() { return m_wndList; }

protected:
    bool event(QEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void UpdateSortArrows(const COvDataItem* pFolder);
    void DeleteTempFiles();

    IOvDocument* m_pDocument;
    int m_dwViewMode = COvListCtrl::ModeReport;
    CFolderTreeView* m_pTreeView = nullptr;
    QStringList m_lstTempFiles;
    COvListCtrl m_wndList;
};
