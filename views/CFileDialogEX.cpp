#include "CFileDialogEX.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QScrollBar>
#include <QStyle>

namespace {

// Qt names the file-type box of its own dialog so.
constexpr char kFileTypeBox[] = "fileTypeCombo";

} // namespace

CFileDialogEX::CFileDialogEX(bool bOpen, const QString& title, const QString& folder,
                             const QString& filter, QWidget* pParent)
    : QFileDialog(pParent, title, folder, filter) {
    // The widened list needs a dialog of Qt's; the desktop's own has no box to reach.
    setOption(QFileDialog::DontUseNativeDialog);
    setAcceptMode(bOpen ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    setFileMode(bOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
}

int CFileDialogEX::FileTypeDropWidth() const {
    const auto* pBox = findChild<QComboBox*>(QLatin1StringView(kFileTypeBox));
    if (pBox == nullptr) {
        return 0;
    }
    const QFontMetrics metrics(pBox->view()->font());
    int nWidest = 0;
    for (int i = 0; i < pBox->count(); ++i) {
        nWidest = std::max(nWidest, metrics.horizontalAdvance(pBox->itemText(i)));
    }
    const int nScrollBar = pBox->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const int nEdges = 2 * pBox->view()->frameWidth() + 2 * metrics.averageCharWidth();
    return nWidest + nScrollBar + nEdges;
}

void CFileDialogEX::showEvent(QShowEvent* pEvent) {
    QFileDialog::showEvent(pEvent);
    WidenFileTypeList();
}

void CFileDialogEX::WidenFileTypeList() {
    if (auto* pBox = findChild<QComboBox*>(QLatin1StringView(kFileTypeBox))) {
        pBox->view()->setMinimumWidth(FileTypeDropWidth());
    }
}
