// The open dialog's file-type list drops down wide enough for its longest entry.
#include "CFileDialogEX.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

TEST(FileDialogEX, TheFileTypeListFitsItsLongestEntry) {
    const QString longEntry = u"Disc images of every kind this program reads (*.tvi *.iso *.rdf "
                              "*.TVI *.ISO *.RDF *.tvi.part *.iso.part)"_s;
    CFileDialogEX dialog(true, u"Open Image"_s, QString(), longEntry + u";;All files (*)"_s);
    dialog.show();
    auto* pBox = dialog.findChild<QComboBox*>(u"fileTypeCombo"_s);
    ASSERT_NE(pBox, nullptr);
    const int nText = QFontMetrics(pBox->view()->font()).horizontalAdvance(longEntry);
    EXPECT_GT(pBox->view()->minimumWidth(), nText);
    EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
    dialog.reject();
}

} // namespace
