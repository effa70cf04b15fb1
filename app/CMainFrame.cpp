#include "CMainFrame.h"

#include "CDisplayScale.h"
#include "COvCommandView.h"
#include "CProgressDlg.h"
#include "DevicePixels.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "TvnText.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QMenu>
#include <QSplitter>
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

IntReg PlacementValue(const char16_t* pName) {
    return IntReg(RegRoot::CurrentUser, QString::fromUtf16(kSettingsKey), QString::fromUtf16(pName),
                  false);
}

constexpr const char16_t* kPlacementNames[] = {u"OvWnd_PosX", u"OvWnd_PosY", u"OvWnd_PosW",
                                               u"OvWnd_PosH", u"OvWnd_PosS"};

} // namespace

CMainFrame::CMainFrame(QWidget* pParent) : CGXTFrameWnd(pParent) {
    const qreal dpr = DevicePixelRatioOf(this);
    setMinimumWidth(ToLogical(QSize(Scaled(kMinTrackWidth), 0), dpr).width());
    SetClient(MakeClient());
    MakeProgressDialog();
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* pNow) { OnFocusChanged(pNow); });
}

CMainFrame::~CMainFrame() = default;

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
    const int nLeft = ToLogical(QSize(kLeftPaneWidth, 0), dpr).width();
    const int nTotal = ToLogical(kDefaultSize, dpr).width();
    m_pSplitter->setSizes({nLeft, nTotal - nLeft});
    m_pActivePane = pLeft;
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
        resize(ToLogical(kDefaultSize, dpr));
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
