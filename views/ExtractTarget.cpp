#include "ExtractTarget.h"

#include "CImageReader.h"
#include "CTvgMessageBox.h"
#include "FileSystemHelpers.h"
#include "Locations.h"
#include "MountTable.h"
#include "TvnText.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>

namespace {

// The family's path buffers hold 260 characters with the terminating NUL.
constexpr int kMaxTypedPathChars = 259;

QString& MountTablePath() {
    static QString path = MountTable::SystemTablePath();
    return path;
}

QString WithTrailingSlash(const QString& path) {
    return path.endsWith(u'/') ? path : path + u'/';
}

} // namespace

QString ChooseFolderWithDialog(QWidget* pParent, const QString& startFolder, const QString& title) {
    QFileDialog dialog(pParent, title);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOptions(QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
    if (QFileInfo::exists(startFolder)) {
        dialog.setDirectory(startFolder);
    }
    for (QLineEdit* pEdit : dialog.findChildren<QLineEdit*>()) {
        pEdit->setMaxLength(kMaxTypedPathChars);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return QString();
    }
    return dialog.selectedFiles().constFirst();
}

bool IsFolderWritable(const QString& path) {
    return CanWriteToFolder(path);
}

bool HasRoomFor(const QString& path, uint64_t ullSize) {
    return CImageReader::CheckDiskRoom(path, ullSize) != 0;
}

QString VolumeOf(const QString& path) {
    const MountTable table(MountTablePath());
    const MountTable::Mount* pMount = table.Find(path);
    return pMount != nullptr ? pMount->mountPoint : QDir::rootPath();
}

void SetExtractMountTable(const QString& tablePath) {
    MountTablePath() = tablePath.isEmpty() ? MountTable::SystemTablePath() : tablePath;
}

QString AskExtractTarget(QWidget* pParent, const FolderChooser& fnChoose) {
    const QString startFolder = WithTrailingSlash(GetExtractFolder());
    const QString title = TvnText(tvn::kExtractBrowseTitle);
    const QString chosen = fnChoose ? fnChoose(pParent, startFolder, title)
                                    : ChooseFolderWithDialog(pParent, startFolder, title);
    if (chosen.isEmpty()) {
        return QString();
    }
    const QString target = WithTrailingSlash(QDir::cleanPath(chosen));
    const int nDriveType = MountTable(MountTablePath()).DriveTypeOf(target);
    if (nDriveType == MountTable::kDriveUnknown || nDriveType == MountTable::kDriveOptical) {
        ShowCommandMessage(pParent, TvnText(tvn::kTargetNotWritableDrive));
        return QString();
    }
    if (!IsFolderWritable(target)) {
        ShowCommandMessage(pParent, TvnFormat(tvn::kFolderNotWritable, target));
        return QString();
    }
    return target;
}

void ShowCommandMessage(QWidget* pParent, const QString& text, uint32_t nIconFlags) {
    ShowMessageBoxText(text, mb::kOk | nIconFlags, tvn::kBoxTitle, pParent,
                       QString::fromUtf16(kDefaultMessageIcon), false);
}
