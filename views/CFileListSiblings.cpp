// The file list's hand-over of the open image to the family's burning program (661) and to
// its virtual-drive program (671).
#include "CFileListView.h"

#include "CImageReader.h"
#include "CTvgMessageBox.h"
#include "Locations.h"
#include "SiblingPrograms.h"
#include "TvnText.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>

namespace {

using namespace Qt::StringLiterals;

constexpr char16_t kMountingProgramName[] = u"Marlowe10";

// Only these are single files that the test can find; other images may be a set of files.
bool MustExist(const QString& imagePath) {
    const QString suffix = u'.' + QFileInfo(imagePath).suffix();
    return suffix.compare(".iso"_L1, Qt::CaseInsensitive) == 0 ||
           suffix.compare(".tvi"_L1, Qt::CaseInsensitive) == 0;
}

// Starts program with the image and the hand-over argument; the system's reason is shown when
// it cannot start.
bool StartSibling(QWidget* pParent, QProcess& process, const QString& program,
                  const QString& imagePath, const char16_t* pArgument) {
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(program, {imagePath, QString::fromUtf16(pArgument)});
    if (process.waitForStarted(-1)) {
        return true;
    }
    ShowCommandMessage(pParent, process.errorString());
    return false;
}

} // namespace

// The image must still be there and readable before a sibling gets it; one that isn't is
// closed here as well.
bool CFileListView::CheckImageStillThere() {
    if (MustExist(m_strImagePath) && !QFileInfo::exists(m_strImagePath)) {
        ShowCommandMessage(this, TvnFormat(tvn::kImageGone, m_strImagePath));
        return false;
    }
    if (g_pImageReader->CanOpen(m_strImagePath) < 0) {
        ShowCommandMessage(this, TvnFormat(tvn::kImageRefused, m_strImagePath));
        ClearDocument();
        m_pDocument->UpdateAllViews(this, kHintNewTree);
        window()->setWindowTitle(TvnText(tvn::kAppTitle));
        return false;
    }
    return true;
}

void CFileListView::ForgetImage(bool bTellFailure, qmz::Result hr) {
    window()->setWindowTitle(TvnText(tvn::kAppTitle));
    ClearDocument();
    m_pDocument->UpdateAllViews(this, kHintNewTree);
    m_strImagePath.clear();
    if (bTellFailure && hr != qmz::kStopped) {
        ShowMessageBox(tvn::kOpenFailed, mb::kOk, tvn::kBoxTitle, this,
                       QString::fromUtf16(kDefaultMessageIcon), false);
    }
}

void CFileListView::OnBurnImage() {
    if (g_pImageReader == nullptr || !CheckImageStillThere()) {
        return;
    }
    QString program;
    if (!GetBurningProgramPath(&program)) {
        ShowCommandMessage(this, TvnText(tvn::kTorvaneMissing));
        return;
    }
    if (!IsBurningProgramFree(false)) {
        ShowCommandMessage(this, TvnText(tvn::kTorvaneBusy), mb::kIconInformation);
        return;
    }
    // The burning program reads the image file itself; this program lets go of it meanwhile.
    g_pImageReader->DisconnectEngine();
    QProcess process;
    if (StartSibling(this, process, program, m_strImagePath, kBurningInterOpArgument)) {
        HideFrame(window());
        process.waitForFinished(-1);
        RestoreFrame(window());
    }
    g_pImageReader->ConnectEngine();
    const qmz::Result hr = g_pImageReader->ReopenImage();
    NotifyFrame(NOTIFY_OPEN_END);
    if (hr < 0) {
        ForgetImage(true, hr);
    }
}

void CFileListView::OnMarloweUnit() {
    if (g_pImageReader == nullptr || !CheckImageStillThere()) {
        return;
    }
    QString program;
    if (!GetMountingProgramPath(&program)) {
        ShowCommandMessage(
            this, TvnFormat(tvn::kMarloweMissing, QString::fromUtf16(kMountingProgramName)));
        return;
    }
    if (HandOverToRunningDrive(window())) {
        return;
    }
    QProcess process;
    if (!StartSibling(this, process, program, m_strImagePath, kMountingInterOpArgument)) {
        return;
    }
    // The window stays alive while the virtual-drive program runs: the image is still open here.
    QEventLoop loop;
    connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    if (process.state() != QProcess::NotRunning) {
        loop.exec();
    }
}
