// The right pane: the entries of the document's current folder, folders and files, in one
// list. It never changes the current folder itself: a folder opened here is opened through
// the tree.
#pragma once

#include "COvListCtrl.h"
#include "COverwriteAnswers.h"
#include "ExtractTarget.h"
#include "ICommandTarget.h"
#include "IOvDocument.h"
#include "QmzTypes.h"
#include "ReaderProgress.h"

#include <QStringList>
#include <QWidget>
#include <functional>
#include <vector>

class CFolderTreeView;
class COvDataItem;

// The commands that this pane knows.
inline constexpr int kCmdOpenImage = 639;
inline constexpr int kCmdViewFile = 640;
inline constexpr int kCmdExtract = 641;
inline constexpr int kCmdBurnImage = 661;
inline constexpr int kCmdMarloweUnit = 671;
inline constexpr int kCmdSmallIcons = 643;
inline constexpr int kCmdList = 644;
inline constexpr int kCmdReport = 645;
inline constexpr int kCmdLargeIcons = 646;

class CFileListView : public QWidget, public IOvView, public ICommandTarget {
    Q_OBJECT
public:
    // Asks the user for an image: the first folder, the filter in Qt's form and the title; an
    // empty answer is a cancel. Tests put their own answer here instead of a dialog.
    using ImageChooser = std::function<QString(QWidget* pParent, const QString& folder,
                                               const QString& filter, const QString& title)>;

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

    // Command 639: the user picks an image, which replaces the one open; a failure is told in
    // a message box unless the user stopped it.
    void OnOpenImage();
    // Replaces the document's tree by the image's. The earlier image is gone even when this
    // fails; the result is the reader's code, or kFail for a name that is not an image.
    qmz::Result OpenImageFile(const QString& path);
    // An empty tree and no current folder.
    void ClearDocument();
    // Command 640: the first selected file, copied to the temp folder unless an up-to-date
    // copy lies there, opened with the desktop's program; a folder is opened in the tree.
    void OnViewFile();
    // Command 641: the selected rows, written into a folder the user picks, with a question
    // for each target that exists.
    void OnExtract();
    // Commands 661 and 671: the image handed to the burning or the virtual-drive program.
    void OnBurnImage();
    void OnMarloweUnit();
    void SetFolderChooser(FolderChooser fnChooser) { m_fnChooseFolder = std::move(fnChooser); }
    // Told true while a file is copied for viewing rather than extracted; the frame words its
    // failure reports by it.
    void SetViewingHandler(std::function<void(bool)> fnSetViewing);
    // Empty exactly when no image is open.
    const QString& ImagePath() const { return m_strImagePath; }
    void SetImageChooser(ImageChooser fnChooser) { m_fnChooseImage = std::move(fnChooser); }
    // The frame's receiver of the reader's notices, which the commands also tell when a job
    // is over.
    void SetFrameCallback(ImageReaderCallback pfnCallback, void* pContext);

protected:
    bool event(QEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void UpdateSortArrows(const COvDataItem* pFolder);
    void DeleteTempFiles();
    void NotifyFrame(uint32_t nCode) const;
    void SetViewing(bool bViewing) const;
    void EndCopyJob() const;
    void ExtractNodes(const std::vector<COvDataItem*>& nodes, const QString& target);
    qmz::Result ExtractNode(COvDataItem& node, const QString& targetFolder);
    bool CheckImageStillThere();
    void ForgetImage(bool bTellFailure, qmz::Result hr);

    IOvDocument* m_pDocument;
    int m_dwViewMode = COvListCtrl::ModeReport;
    CFolderTreeView* m_pTreeView = nullptr;
    QStringList m_lstTempFiles;
    QString m_strImagePath;
    ImageChooser m_fnChooseImage;
    FolderChooser m_fnChooseFolder;
    std::function<void(bool)> m_fnSetViewing;
    COverwriteAnswers m_answers;
    ImageReaderCallback m_pfnFrameCallback = nullptr;
    void* m_pFrameContext = nullptr;
    COvListCtrl m_wndList;
};
