#include "CMainFrame.h"

#include "CDisplayScale.h"
#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "CImageReader.h"
#include "COvCommandView.h"
#include "CProgressDlg.h"
#include "CTvgMessageBox.h"
#include "CWindowMessage.h"
#include "DevicePixels.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "TvnText.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSplitter>
#include <QStorageInfo>
#include <QTimerEvent>
#include <QVBoxLayout>

namespace {

constexpr int kCommandIds[] = {CMainFrame::kCommandOpen,    CMainFrame::kCommandView,
                               CMainFrame::kCommandExtract, CMainFrame::kCommandViewMenu,
                               CMainFrame::kCommandBurn,    CMainFrame::kCommandMount};
constexpr int kViewMenuIds[] = {CMainFrame::kCommandLargeIcons, CMainFrame::kCommandSmallIcons,
                                CMainFrame::kCommandList, CMainFrame::kCommandDetails};
constexpr int kProgressRange = 100;

// Stands for a pane until the real one is given: an empty white area, as an empty view is.
QWidget* MakePlaceholder() {
    auto* pPane = new QWidget;
    pPane->setBackgroundRole(QPalette::Base);
    pPane->setAutoFillBackground(true);
    return pPane;
}

int Scaled(int nValue) {
    return static_cast<int>(nValue * GetUiScale());
}

QSize Scaled(QSize size) {
    return QSize(Scaled(size.width()), Scaled(size.height()));
}

IntReg PlacementValue(const char16_t* pName) {
    return IntReg(RegRoot::CurrentUser, QString::fromUtf16(kSettingsKey), QString::fromUtf16(pName),
                  false);
}

// The mount point that holds the path, found from its nearest folder that exists: the target
// of a failed write may not exist yet.
QString MountPointOf(const QString& path) {
    QFileInfo info(path);
    while (!info.exists() && !info.isRoot() && info.absolutePath() != info.absoluteFilePath()) {
        info = QFileInfo(info.absolutePath());
    }
    const QStorageInfo storage(info.absoluteFilePath());
    return storage.isValid() ? storage.rootPath() : QDir::rootPath();
}

constexpr const char16_t* kPlacementNames[] = {u"OvWnd_PosX", u"OvWnd_PosY", u"OvWnd_PosW",
                                               u"OvWnd_PosH", u"OvWnd_PosS"};

} // namespace

CMainFrame::CMainFrame(QWidget* pParent) : CGXTFrameWnd(pParent) {
    const qreal dpr = DevicePixelRatioOf(this);
    setMinimumWidth(ToLogical(QSize(Scaled(kMinTrackWidth), 0), dpr).width());
    SetClient(MakeClient());
    MakeProgressDialog();
    m_focusWatch = connect(qApp, &QApplication::focusChanged, this,
                           [this](QWidget*, QWidget* pNow) { OnFocusChanged(pNow); });
    if (g_pImageReader != nullptr) {
        g_pImageReader->SetCallback(ImageReaderCallback, this);
    }
    // The frame owns the watch as its child.
    new CSessionWatch([this](CSessionWatch::Event event) { OnSessionEvent(event); }, this);
}

// The reader may outlive the frame, and must not call into it then.
CMainFrame::~CMainFrame() {
    disconnect(m_focusWatch);
    if (g_pImageReader != nullptr) {
        g_pImageReader->SetCallback(nullptr, nullptr);
    }
}

QWidget* CMainFrame::MakeClient() {
    const qreal dpr = DevicePixelRatioOf(this);
    auto* pClient = new QWidget;
    // The splitter's handle shows the client's own background.
    pClient->setAutoFillBackground(true);
    auto* pLayout = new QVBoxLayout(pClient);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->setSpacing(0);
    m_pCommandView = new COvCommandView(pClient);
    m_pCommandView->setFixedHeight(ToLogical(QSize(0, Scaled(kCommandBarHeight)), dpr).height());
    m_pCommandView->SetCommandTarget(this);
    m_pCommandView->CreateButtons(kCommandIds);
    m_pSplitter = new QSplitter(Qt::Horizontal, pClient);
    m_pSplitter->setChildrenCollapsible(false);
    pLayout->addWidget(m_pCommandView);
    pLayout->addWidget(m_pSplitter, 1);
    SetPanes(MakePlaceholder(), MakePlaceholder());
    return pClient;
}

void CMainFrame::MakeProgressDialog() {
    m_pProgress = new CProgressDlg(this, TvnText(tvn::kProgressTitle), this);
    m_pProgress->ShowCancel(true);
    m_pProgress->SetRange(0, kProgressRange, 1);
    m_pProgress->SetPos(0);
    m_pProgress->hide();
}

void CMainFrame::SetPanes(QWidget* pLeft, QWidget* pRight) {
    delete m_pLeftPane;
    delete m_pRightPane;
    m_pLeftPane = pLeft;
    m_pRightPane = pRight;
    m_pSplitter->addWidget(pLeft);
    m_pSplitter->addWidget(pRight);
    m_pSplitter->setStretchFactor(0, 0);
    m_pSplitter->setStretchFactor(1, 1);
    const qreal dpr = DevicePixelRatioOf(this);
    const int nLeft = ToLogical(QSize(Scaled(kLeftPaneWidth), 0), dpr).width();
    const int nTotal = ToLogical(Scaled(kDefaultSize), dpr).width();
    m_pSplitter->setSizes({nLeft, nTotal - nLeft});
    m_pActivePane = pLeft;
    m_pFolderTree = dynamic_cast<CFolderTreeView*>(pLeft);
    m_pFileList = dynamic_cast<CFileListView*>(pRight);
    if (m_pFolderTree != nullptr) {
        m_pFolderTree->OnInitialUpdate();
        m_pFolderTree->SetFrameCallback(ImageReaderCallback, this);
    }
    if (m_pFileList != nullptr) {
        m_pFileList->SetTreeView(m_pFolderTree);
        m_pFileList->SetFrameCallback(ImageReaderCallback, this);
        m_pFileList->SetViewingHandler([this](bool bViewing) { SetExtractionMode(bViewing); });
    }
}

qmz::Result CMainFrame::OpenFile(const QString& path) {
    return m_pFileList != nullptr ? m_pFileList->OpenImageFile(path) : qmz::kOk;
}

void CMainFrame::OnCopyData(const QString& path) {
    if (path.isEmpty() || (g_pImageReader != nullptr &&
                           (g_pImageReader->IsCopying() || g_pImageReader->IsOpening()))) {
        return;
    }
    if (isMinimized()) {
        setWindowState(windowState() & ~Qt::WindowMinimized);
    }
    const qmz::Result hr = OpenFile(path);
    if (hr < 0 && hr != qmz::kStopped) {
        ShowMessageBox(tvn::kOpenFailed, mb::kOk, tvn::kBoxTitle, this,
                       QString::fromUtf16(kDefaultMessageIcon), false);
    }
}

void CMainFrame::ImageReaderCallback(uint32_t nCode, const char16_t* pPayload, void* pFrame) {
    const QString payload = pPayload != nullptr ? QString::fromUtf16(pPayload) : QString();
    static_cast<CMainFrame*>(pFrame)->OnReaderNotice(nCode, payload);
}

void CMainFrame::OnReaderNotice(uint32_t nCode, const QString& payload) {
    switch (nCode) {
    case NOTIFY_COPY_BEGIN:
        BeginJob(TvnFormat(tvn::kExtracting, payload), kTimerCopy);
        break;
    case NOTIFY_COPY_END:
        EndJob(kTimerCopy);
        break;
    case NOTIFY_NO_ROOM:
        ReportNoRoom(payload);
        break;
    case NOTIFY_OPEN_BEGIN:
        BeginJob(TvnFormat(tvn::kOpening, payload), kTimerOpen);
        break;
    case NOTIFY_OPEN_END:
        EndJob(kTimerOpen);
        break;
    case NOTIFY_WRITE_FAILED:
        Report(TvnFormat(tvn::kWriteFailed, payload));
        break;
    case NOTIFY_READ_FAILED:
        Report(TvnText(m_bExtractionMode ? tvn::kReadFailedView : tvn::kReadFailed));
        break;
    case NOTIFY_ACCESS_DENIED:
        Report(TvnFormat(m_bExtractionMode ? tvn::kAccessDeniedView : tvn::kAccessDenied, payload));
        break;
    case NOTIFY_STOPPING:
        m_pProgress->SetText(TvnText(tvn::kStopping));
        break;
    default:
        break;
    }
}

// The frame takes no input while the job runs; the dialog's stop button stays the one way to
// end it early.
void CMainFrame::BeginJob(const QString& text, int nTimer) {
    // The files of one extraction each announce themselves, thousands a second when they are
    // small: while the dialog is up for the job, the timer shows the latest name.
    if (TimerSlot(nTimer) != 0 && m_pProgress->isVisible()) {
        m_strPendingText = text;
        return;
    }
    m_strPendingText.clear();
    m_pProgress->SetText(text);
    setEnabled(false);
    m_pProgress->setEnabled(true);
    m_pProgress->move(geometry().center() - m_pProgress->rect().center());
    m_pProgress->show();
    // Without a window manager a window shown again keeps its place below the frame.
    m_pProgress->raise();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    int& nTimerId = TimerSlot(nTimer);
    if (nTimerId != 0) {
        killTimer(nTimerId);
    }
    nTimerId = startTimer(kProgressPollMs);
}

void CMainFrame::EndJob(int nTimer) {
    int& nTimerId = TimerSlot(nTimer);
    if (nTimerId != 0) {
        killTimer(nTimerId);
        nTimerId = 0;
    }
    m_pProgress->hide();
    setEnabled(true);
    raise();
    activateWindow();
}

// The report names the disk by its mount point, where a Windows message names a drive letter.
void CMainFrame::ReportNoRoom(const QString& targetPath) {
    const QString mountPoint = MountPointOf(targetPath);
    if (m_bExtractionMode) {
        Report(TvnFormat(tvn::kNoRoomToExtract, mountPoint));
    } else {
        Report(TvnFormat(tvn::kNoRoomForFile, QFileInfo(targetPath).fileName(), mountPoint));
    }
}

// A box is a window of its own, so it takes the user's answer while a job keeps the frame
// disabled.
void CMainFrame::Report(const QString& text) {
    ShowMessageBoxText(text, mb::kOk, tvn::kBoxTitle, this, QString::fromUtf16(kDefaultMessageIcon),
                       false);
}

int& CMainFrame::TimerSlot(int nTimer) {
    return nTimer == kTimerCopy ? m_nCopyTimer : m_nOpenTimer;
}

bool CMainFrame::IsTimerRunning(int nTimer) const {
    return (nTimer == kTimerCopy ? m_nCopyTimer : m_nOpenTimer) != 0;
}

void CMainFrame::OnTimer(int nTimer) {
    if (g_pImageReader == nullptr || m_pProgress == nullptr) {
        return;
    }
    int32_t nPercent = 0;
    g_pImageReader->GetProgress(nTimer == kTimerCopy ? PROGRESS_COPY : PROGRESS_OPEN, &nPercent);
    m_pProgress->SetPos(nPercent);
    if (!m_strPendingText.isEmpty()) {
        m_pProgress->SetText(m_strPendingText);
        m_strPendingText.clear();
    }
}

void CMainFrame::timerEvent(QTimerEvent* pEvent) {
    if (pEvent->timerId() == m_nCopyTimer) {
        OnTimer(kTimerCopy);
    } else if (pEvent->timerId() == m_nOpenTimer) {
        OnTimer(kTimerOpen);
    }
    CGXTFrameWnd::timerEvent(pEvent);
}

// The progress dialog's stop button: the reader ends its job at its next pump.
bool CMainFrame::event(QEvent* pEvent) {
    if (pEvent->type() == CWindowMessage::TypeOf(wmProgressCancel)) {
        if (g_pImageReader != nullptr) {
            g_pImageReader->SetStop(
                static_cast<int32_t>(static_cast<CWindowMessage*>(pEvent)->WParam()));
        }
        return true;
    }
    return CGXTFrameWnd::event(pEvent);
}

void CMainFrame::OnSessionEvent(CSessionWatch::Event) {
    if (g_pImageReader != nullptr && g_pImageReader->IsCopying()) {
        g_pImageReader->SetStop(1);
    }
}

// The pane that last took the keyboard focus is the one the command route asks first.
void CMainFrame::OnFocusChanged(QWidget* pNow) {
    for (QWidget* pPane : {m_pLeftPane, m_pRightPane}) {
        if (pNow != nullptr && pPane != nullptr && (pNow == pPane || pPane->isAncestorOf(pNow))) {
            m_pActivePane = pPane;
        }
    }
}

ICommandTarget* CMainFrame::TargetOf(QWidget* pPane) {
    return dynamic_cast<ICommandTarget*>(pPane);
}

bool CMainFrame::IsOwnCommand(int nId) {
    switch (nId) {
    case kCommandOpen:
    case kCommandViewMenu:
    case kCommandBurn:
    case kCommandMount:
    case kCommandSmallIcons:
    case kCommandList:
    case kCommandDetails:
    case kCommandLargeIcons:
        return true;
    default:
        return false;
    }
}

bool CMainFrame::OnCommand(int nId) {
    ICommandTarget* pActive = TargetOf(m_pActivePane);
    if (pActive != nullptr && pActive->OnCommand(nId)) {
        return true;
    }
    return OnOwnCommand(nId);
}

// The file list does the work of the commands on an image and of the view styles; without a
// file list they do nothing.
bool CMainFrame::OnOwnCommand(int nId) {
    if (!IsOwnCommand(nId)) {
        return false;
    }
    if (nId == kCommandViewMenu) {
        ViewMenu()->popup(QCursor::pos());
    } else if (ICommandTarget* pList = TargetOf(m_pRightPane)) {
        pList->OnCommand(nId);
    }
    return true;
}

bool CMainFrame::OnUpdateCommand(int nId, CommandState& state) {
    ICommandTarget* pActive = TargetOf(m_pActivePane);
    if (pActive != nullptr && pActive->OnUpdateCommand(nId, state)) {
        return true;
    }
    if (!IsOwnCommand(nId)) {
        return false;
    }
    state.bEnabled = true;
    return true;
}

QMenu* CMainFrame::ViewMenu() {
    if (m_pViewMenu == nullptr) {
        m_pViewMenu = new QMenu(this);
        for (const int nId : kViewMenuIds) {
            QAction* pAction = m_pViewMenu->addAction(TvnText(static_cast<uint32_t>(nId)), this,
                                                      [this, nId] { OnCommand(nId); });
            pAction->setData(nId);
        }
    }
    return m_pViewMenu;
}

bool CMainFrame::ReadPlacement(Placement& placement) {
    int32_t values[std::size(kPlacementNames)] = {};
    bool bAll = true;
    for (size_t i = 0; i < std::size(kPlacementNames); ++i) {
        IntReg value = PlacementValue(kPlacementNames[i]);
        bAll = value.Read() && bAll;
        values[i] = value.Get();
    }
    if (!bAll) {
        return false;
    }
    placement.rect = QRect(values[0], values[1], values[2], values[3]);
    placement.bMaximised = values[4] == 1;
    return true;
}

bool CMainFrame::WritePlacement(const Placement& placement) {
    const int32_t values[] = {placement.rect.x(), placement.rect.y(), placement.rect.width(),
                              placement.rect.height(), placement.bMaximised ? 1 : 0};
    bool bAll = true;
    for (size_t i = 0; i < std::size(kPlacementNames); ++i) {
        IntReg value = PlacementValue(kPlacementNames[i]);
        value = values[i];
        bAll = value.Write() && bAll;
    }
    return bAll;
}

CMainFrame::Placement CMainFrame::CurrentPlacement() const {
    const QRect logical = isMaximized() || isMinimized() ? normalGeometry() : geometry();
    const qreal dpr = DevicePixelRatioOf(this);
    return {QRect(qRound(logical.x() * dpr), qRound(logical.y() * dpr),
                  qRound(logical.width() * dpr), qRound(logical.height() * dpr)),
            isMaximized()};
}

void CMainFrame::ShowAtSavedPlacement() {
    const qreal dpr = DevicePixelRatioOf(this);
    Placement placement;
    if (!ReadPlacement(placement)) {
        resize(ToLogical(Scaled(kDefaultSize), dpr));
        show();
    } else if (placement.bMaximised) {
        showMaximized();
    } else {
        setGeometry(ToLogical(placement.rect, dpr));
        show();
    }
}

// A failed write does not keep the window open.
void CMainFrame::closeEvent(QCloseEvent* pEvent) {
    WritePlacement(CurrentPlacement());
    pEvent->accept();
}
