#include "COvrinApp.h"
#include "Locations.h"

#include "CDisplayScale.h"
#include "CFileListView.h"
#include "CFileTypeCache.h"
#include "CFolderTreeView.h"
#include "CImageReader.h"
#include "CInstanceChannel.h"
#include "CLanguageChain.h"
#include "CMainFrame.h"
#include "COvrinDoc.h"
#include "CTvgMessageBox.h"
#include "SkinImages.h"
#include "ToolkitHooks.h"
#include "TvnText.h"

#include <QApplication>
#include <QEvent>
#include <QFileInfo>
#include <QFont>
#include <QIcon>
#include <QMessageBox>
#include <QTimer>
#include <cmath>
#include <new>

namespace {

constexpr double kPointsPerInch = 72.0;

// Set, this ends the program once the frame has painted after the start, the image that the
// command line names open; the window benchmark times the start from the outside with it.
constexpr const char* kQuitAfterFirstPaint = "OVRIN_QUIT_AFTER_FIRST_PAINT";

// The quit is queued so that the children drawn in the same pass still reach the screen.
class CQuitAfterPaint : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override {
        if (pEvent->type() == QEvent::Paint) {
            pWatched->removeEventFilter(this);
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        }
        return false;
    }
};

// Lets the window redraw and take the stop button's click while the reader works.
void PumpEvents(void*) {
    QCoreApplication::processEvents();
}

// The program's window in front of the frame that the user last saw, if any: the progress
// dialog or a message box.
QWidget* LastActivePopup(const QWidget* pFrame) {
    if (QWidget* pModal = QApplication::activeModalWidget()) {
        return pModal;
    }
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* pWindow : windows) {
        if (pWindow != pFrame && pWindow->isVisible() && pWindow->windowType() == Qt::Dialog) {
            return pWindow;
        }
    }
    return nullptr;
}

} // namespace

COvrinApp::COvrinApp(QStringList arguments, Setup setup)
    : m_lstArguments(std::move(arguments)), m_setup(std::move(setup)) {
    if (m_setup.programFolder.isEmpty()) {
        m_setup.programFolder = ProgramFolder();
    }
}

COvrinApp::~COvrinApp() = default;

int COvrinApp::Run() {
    int nResult = 0;
    if (InitInstance()) {
        if (qEnvironmentVariableIsSet(kQuitAfterFirstPaint)) {
            QuitAfterNextPaint();
        }
        nResult = QApplication::exec();
    }
    ExitInstance();
    return nResult;
}

// Paints that the open's pump let through came before the walk's end; the whole frame is
// marked for a paint so that the one awaited shows the image's tree.
void COvrinApp::QuitAfterNextPaint() {
    m_pFrame->installEventFilter(new CQuitAfterPaint(m_pFrame.get()));
    m_pFrame->update();
}

bool COvrinApp::InitInstance() {
    // Every relative picture path, the message box's icon included, is the program folder's.
    SetInstallFolder(m_setup.programFolder);
    if (!LoadLanguage()) {
        return false;
    }
    ParseCommandLine();
    if (!PassGuards()) {
        return false;
    }
    m_pDocument = std::make_unique<COvrinDoc>();
    BuildGlobalFont();
    CreateImageReader();
    CreateFrame();
    ListenForSecondStarts();
    return OpenFileOnStart();
}

// No language table means no words for a skinned box, so the system's own box tells.
bool COvrinApp::LoadLanguage() {
    m_pLanguage = std::make_unique<CLanguageChain>(m_setup.programFolder);
    QString pathTried;
    m_bTableLoaded = m_pLanguage->LoadStringTable(m_pLanguage->LoadTransfer(), m_table, pathTried);
    if (!m_bTableLoaded) {
        QMessageBox::critical(
            nullptr, QString(),
            QStringLiteral("The file [%1] is missing.\nPlease reinstall application.")
                .arg(pathTried));
        m_pLanguage->UnloadTransfer();
        return false;
    }
    SetCurrentStringTable(&m_table);
    return true;
}

// A name that does not exist is dropped without a word: the start goes on as one without it.
// The name is made absolute at once, as the working folder does not stay the one the user
// started in.
void COvrinApp::ParseCommandLine() {
    const QString name = m_lstArguments.value(1);
    if (!name.isEmpty() && QFileInfo::exists(name)) {
        m_strFileToOpen = QFileInfo(name).absoluteFilePath();
    }
}

// The family's programs first, in their fixed order, then this program's own lock.
bool COvrinApp::PassGuards() {
    for (const CInstanceGuard::FamilyRow& row : CInstanceGuard::kFamily) {
        if (CInstanceGuard::StopsStart(row)) {
            return false;
        }
    }
    return m_guard.TakeOwnLock(m_strFileToOpen);
}

// A second start that came up beside this one finds the window here. Without the socket the
// program still runs; a second start then ends without handing its file over.
void COvrinApp::ListenForSecondStarts() {
    m_pChannel = std::make_unique<CInstanceChannel>(
        [this] { return HandOverState(); }, [this](const QString& path) { OnSecondStart(path); });
    m_pChannel->Listen(CInstanceGuard::AddressOf(CInstanceGuard::InstanceSocketName()));
}

// A modal box up counts as a disabled window, as its owner is disabled on other systems.
uint8_t COvrinApp::HandOverState() const {
    uint8_t nState = 0;
    if (!m_pFrame->isEnabled() || QApplication::activeModalWidget() != nullptr) {
        nState |= CInstanceChannel::kStateDisabled;
    }
    if (LastActivePopup(m_pFrame.get()) != nullptr) {
        nState |= CInstanceChannel::kStatePopup;
    }
    return nState;
}

// The window comes back from the task bar and to the front, with the box the user has yet to
// answer in front of it; then it opens the file, if one came.
void COvrinApp::OnSecondStart(const QString& path) {
    if (m_pFrame->isMinimized()) {
        m_pFrame->setWindowState(m_pFrame->windowState() & ~Qt::WindowMinimized);
    }
    QWidget* pFront = LastActivePopup(m_pFrame.get());
    pFront = pFront != nullptr ? pFront : m_pFrame.get();
    pFront->raise();
    pFront->activateWindow();
    if (!path.isEmpty()) {
        m_pFrame->OnCopyData(path);
    }
}

// The toolkit's font keeps its height in device pixels at any DPI, as the skin's pictures do,
// and grows only with the interface scale. Qt sizes fonts in logical pixels, which the device
// pixel ratio turns into device pixels.
void COvrinApp::BuildGlobalFont() {
    QFont font = QApplication::font();
    const double dRatio = qApp->devicePixelRatio();
    const double dLogical = font.pixelSize() > 0
                                ? font.pixelSize()
                                : font.pointSizeF() * ScreenDeviceDpi() / dRatio / kPointsPerInch;
    const int nDevice =
        static_cast<int>(std::floor(dLogical * dRatio / GetDpiScale(false) * GetUiScale()));
    const int nLogical = qRound(nDevice / dRatio);
    if (nLogical > 0) {
        font.setPixelSize(nLogical);
        QApplication::setFont(font);
    }
}

// Without memory for the reader the window still comes up; every user tests the pointer.
void COvrinApp::CreateImageReader() {
    // Every node the walk makes asks the one type service for its type text and icons.
    CFileTypeCache::InstallForDataItems();
    m_pReader.reset(new (std::nothrow) CImageReader(m_setup.enginePath));
    g_pImageReader = m_pReader.get();
    if (g_pImageReader != nullptr) {
        g_pImageReader->SetPump(PumpEvents, nullptr);
    }
}

void COvrinApp::CreateFrame() {
    m_pFrame = std::make_unique<CMainFrame>();
    m_pFrame->SetPanes(new CFolderTreeView(m_pDocument.get()),
                       new CFileListView(m_pDocument.get()));
    m_pFrame->setWindowTitle(TvnText(tvn::kAppTitle));
    SetMainWindowForText(m_pFrame.get());
    m_pFrame->ShowAtSavedPlacement();
    // The program's own icon, from the desktop's icon theme where the install put it.
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("ovrin")));
}

// A failed open never ends the program; a stop by the user is not a failure to tell.
bool COvrinApp::OpenFileOnStart() {
    if (m_strFileToOpen.isEmpty() || !QFileInfo::exists(m_strFileToOpen)) {
        return true;
    }
    const qmz::Result hr = m_pFrame->OpenFile(m_strFileToOpen);
    if (hr < 0 && hr != qmz::kStopped) {
        ShowMessageBox(tvn::kOpenFailed, mb::kOk, tvn::kBoxTitle, m_pFrame.get(),
                       QString::fromUtf16(kDefaultMessageIcon), false);
    }
    return true;
}

// The window goes first, with the panes that read the document, as the window system closes
// it before the program ends; the reader then goes before the language it reports in.
int COvrinApp::ExitInstance() {
    m_pChannel.reset();
    SetMainWindowForText(nullptr);
    m_pFrame.reset();
    m_pDocument.reset();
    SetInstallFolder(QString());
    m_guard.ReleaseOwnLock();
    g_pImageReader = nullptr;
    m_pReader.reset();
    if (m_pLanguage != nullptr) {
        m_pLanguage->UnloadTransfer();
    }
    if (m_bTableLoaded) {
        SetCurrentStringTable(nullptr);
        m_bTableLoaded = false;
    }
    return 0;
}
