// The file list's commands on the image as a whole: opening one.
#include "CFileListView.h"

#include "CFileDialogEX.h"
#include "CImageReader.h"
#include "CTvgMessageBox.h"
#include "Locations.h"
#include "TvnText.h"

#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;

// The engine decides by itself how to read each of these; nothing else is handed to it.
constexpr QLatin1StringView kImageExtensions[] = {".tvi"_L1, ".iso"_L1, ".rdf"_L1};
constexpr QLatin1StringView kOpenedImageFormat = " [%1]"_L1;

// The extension as the shell sees it: from the name's last dot on, empty without one.
QString ExtensionOf(const QString& path) {
    const QString name = QFileInfo(path).fileName();
    const qsizetype nDot = name.lastIndexOf(u'.');
    return nDot < 0 ? QString() : name.mid(nDot);
}

bool IsImageName(const QString& path) {
    const QString extension = ExtensionOf(path);
    for (const QLatin1StringView accepted : kImageExtensions) {
        if (extension.compare(accepted, Qt::CaseInsensitive) == 0) {
            return true;
        }
    }
    return false;
}

// The language file keeps the family's "name|patterns|name|patterns||" filter, with patterns
// joined by ';'; Qt wants "name (patterns);;name (patterns)" with blanks between patterns.
QString QtFilterOf(const QString& familyFilter) {
    const QStringList parts = familyFilter.split(u'|');
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        if (parts[i].isEmpty()) {
            break;
        }
        QString name = parts[i];
        if (const qsizetype nOpen = name.lastIndexOf(u" ("_s); nOpen >= 0 && name.endsWith(u')')) {
            name.truncate(nOpen);
        }
        entries << name + u" ("_s + QString(parts[i + 1]).replace(u';', u' ') + u')';
    }
    return entries.join(u";;"_s);
}

QString ImageFilter() {
    QStringList patterns;
    for (const QLatin1StringView extension : kImageExtensions) {
        patterns << u'*' + extension;
    }
    const QString allExtensions = patterns.join(u';');
    return QtFilterOf(TvnFormat(tvn::kOpenFilter, allExtensions));
}

QString ChooseImageWithDialog(QWidget* pParent, const QString& folder, const QString& filter,
                              const QString& title) {
    CFileDialogEX dialog(true, title, folder, filter, pParent);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return QString();
    }
    return dialog.selectedFiles().constFirst();
}

} // namespace

void CFileListView::SetFrameCallback(ImageReaderCallback pfnCallback, void* pContext) {
    m_pfnFrameCallback = pfnCallback;
    m_pFrameContext = pContext;
}

void CFileListView::NotifyFrame(uint32_t nCode) const {
    if (m_pfnFrameCallback != nullptr) {
        m_pfnFrameCallback(nCode, nullptr, m_pFrameContext);
    }
}

void CFileListView::ClearDocument() {
    // The rows point into the tree that goes; they are let go before it.
    m_wndList.Model().SetFolder(nullptr, 0);
    m_pDocument->DeleteRootItem();
    m_pDocument->CreateRootItem();
    m_pDocument->SetCurrentFolder(nullptr);
}

qmz::Result CFileListView::OpenImageFile(const QString& path) {
    if (g_pImageReader == nullptr) {
        return qmz::kUnexpected;
    }
    if (!IsImageName(path)) {
        return qmz::kFail;
    }
    ClearDocument();
    m_pDocument->UpdateAllViews(this, kHintNewTree);
    const QString title = TvnText(tvn::kAppTitle);
    window()->setWindowTitle(title);
    g_pImageReader->SetStop(0);

    COvDataItem* pRoot = m_pDocument->GetRootItem();
    const qmz::Result hr =
        pRoot != nullptr ? g_pImageReader->OpenImage(path, pRoot) : qmz::kOutOfMemory;
    if (hr < 0) {
        ClearDocument();
        m_strImagePath.clear();
    } else {
        SetImageFolder(QFileInfo(path).absolutePath());
        m_strImagePath = path;
        window()->setWindowTitle(title + QString(kOpenedImageFormat).arg(path));
    }
    NotifyFrame(NOTIFY_OPEN_END);
    m_pDocument->UpdateAllViews(this, kHintNewTree);
    return hr;
}

void CFileListView::OnOpenImage() {
    if (g_pImageReader == nullptr) {
        return;
    }
    const ImageChooser& fnChoose = m_fnChooseImage ? m_fnChooseImage : ChooseImageWithDialog;
    const QString path =
        fnChoose(this, GetImageFolder(), ImageFilter(), TvnText(tvn::kOpenDialogTitle));
    if (path.isEmpty()) {
        return;
    }
    const qmz::Result hr = OpenImageFile(path);
    if (hr < 0 && hr != qmz::kStopped) {
        ShowMessageBox(tvn::kOpenFailed, mb::kOk, tvn::kBoxTitle, nullptr,
                       QString::fromUtf16(kDefaultMessageIcon), false);
    }
}
