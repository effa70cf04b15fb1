// The program's window: the skinned frame around the command bar and the two panes, the route
// of the numbered commands, the one progress dialog, and its place on the screen between runs.
#pragma once

#include "CGXTFrameWnd.h"
#include "CSessionWatch.h"
#include "ICommandTarget.h"
#include "QmzTypes.h"

#include <QMetaObject>
#include <QRect>
#include <QString>
#include <cstdint>

class CFileListView;
class CFolderTreeView;
class COvCommandView;
class CProgressDlg;
class QMenu;
class QSplitter;

class CMainFrame : public CGXTFrameWnd, public ICommandTarget {
    Q_OBJECT
public:
    // Device pixels at an interface scale of 1.0.
    static constexpr int kCommandBarHeight = 37;
    static constexpr int kLeftPaneWidth = 230;
    static constexpr int kMinTrackWidth = 450;
    static constexpr QSize kDefaultSize{800, 400};

    // The buttons of the command bar, in their order.
    static constexpr int kCommandOpen = 639;
    static constexpr int kCommandView = 640;
    static constexpr int kCommandExtract = 641;
    static constexpr int kCommandViewMenu = 642;
    static constexpr int kCommandBurn = 661;
    static constexpr int kCommandMount = 671;
    // The view menu's entries, which change how the file list shows its entries.
    static constexpr int kCommandSmallIcons = 643;
    static constexpr int kCommandList = 644;
    static constexpr int kCommandDetails = 645;
    static constexpr int kCommandLargeIcons = 646;

    // The frame's two timers, which poll the reader's progress while a job runs.
    static constexpr int kTimerCopy = 1;
    static constexpr int kTimerOpen = 2;
    static constexpr int kProgressPollMs = 200;

    // Where the window stands, in device pixels; the normal rectangle when maximised.
    struct Placement {
        QRect rect;
        bool bMaximised = false;
    };

    explicit CMainFrame(QWidget* pParent = nullptr);
    ~CMainFrame() override;

    // Takes the reader's notices (ImageReaderCallback) while the process-wide reader exists.
    // Puts the folder pane on the left and the file list on the right, in place of the panes
    // there before; the frame owns them. The left one becomes the active pane. A file list
    // reports its jobs' ends to the frame and opens folders through a folder tree beside it.
    void SetPanes(QWidget* pLeft, QWidget* pRight);
    QWidget* LeftPane() const { return m_pLeftPane; }
    QWidget* RightPane() const { return m_pRightPane; }
    QSplitter* Splitter() const { return m_pSplitter; }
    COvCommandView* CommandView() const { return m_pCommandView; }
    CProgressDlg* ProgressDialog() const { return m_pProgress; }
    QMenu* ViewMenu();

    // The stored placement; false if any of its values is missing.
    static bool ReadPlacement(Placement& placement);
    // Each value on its own; false if any write failed.
    static bool WritePlacement(const Placement& placement);
    Placement CurrentPlacement() const;
    // Shows the window where the last run left it: maximised if it was, at the default size
    // if the stored placement is incomplete.
    void ShowAtSavedPlacement();

    // Opens the image through the file list: its result, or 0 without a file list.
    qmz::Result OpenFile(const QString& path);
    // A path that a second start of the program hands over: opened, the window restored
    // first, unless the reader is busy copying or opening, when it is dropped without a word.
    void OnCopyData(const QString& path);

    // The reader's and the file list's notices about their jobs; pFrame is the CMainFrame.
    static void ImageReaderCallback(uint32_t nCode, const char16_t* pPayload, void* pFrame);
    // Set by the file list while the user views a file rather than extracting it, which
    // changes the words of the failure reports.
    void SetExtractionMode(bool bViewing) { m_bExtractionMode = bViewing; }
    bool ExtractionMode() const { return m_bExtractionMode; }
    bool IsTimerRunning(int nTimer) const;
    // Shows the reader's progress of the job that timer nTimer follows.
    void OnTimer(int nTimer);

    // A running extraction is stopped before the session ends or the machine sleeps: its
    // partial file is removed rather than left behind cut short. An opening goes on.
    void OnSessionEvent(CSessionWatch::Event event);

    // The active pane first, then the frame's own commands.
    bool OnCommand(int nId) override;
    bool OnUpdateCommand(int nId, CommandState& state) override;

protected:
    void closeEvent(QCloseEvent* pEvent) override;
    bool event(QEvent* pEvent) override;
    void timerEvent(QTimerEvent* pEvent) override;

private:
    QWidget* MakeClient();
    void MakeProgressDialog();
    void OnFocusChanged(QWidget* pNow);
    static bool IsOwnCommand(int nId);
    bool OnOwnCommand(int nId);
    static ICommandTarget* TargetOf(QWidget* pPane);
    void OnReaderNotice(uint32_t nCode, const QString& payload);
    void BeginJob(const QString& text, int nTimer);
    void EndJob(int nTimer);
    void ReportNoRoom(const QString& targetPath);
    void Report(const QString& text);
    int& TimerSlot(int nTimer);

    COvCommandView* m_pCommandView = nullptr;
    QSplitter* m_pSplitter = nullptr;
    QWidget* m_pLeftPane = nullptr;
    QWidget* m_pRightPane = nullptr;
    QWidget* m_pActivePane = nullptr;
    CFolderTreeView* m_pFolderTree = nullptr;
    CFileListView* m_pFileList = nullptr;
    CProgressDlg* m_pProgress = nullptr;
    QMenu* m_pViewMenu = nullptr;
    bool m_bExtractionMode = false;
    // The newest file name of a running job, shown at the next tick.
    QString m_strPendingText;
    // Qt's ids of the running timers, 0 while stopped.
    int m_nCopyTimer = 0;
    int m_nOpenTimer = 0;
    // Ended first thing in the destructor: the panes dying after it move the focus.
    QMetaObject::Connection m_focusWatch;
};
