// The overwrite question on its own: the folder and file forms of its texts, the two entries'
// lines, and the answer of its caption's close button.
#include "CAlphaStatic.h"
#include "CConfirmFile.h"
#include "CGButton.h"
#include "TestFiles.h"
#include "ToolkitTestSupport.h"
#include "ViewsTestSupport.h"

#include <QTimer>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

// Runs the dialog and answers it with act once it is up; the end code.
int Answer(CConfirmFile& dialog, const std::function<void(CConfirmFile&)>& act) {
    QTimer::singleShot(0, &dialog, [&] { act(dialog); });
    return dialog.exec();
}

TEST(ConfirmFile, TheTargetDecidesTheFormAndEachEntryShowsItsSizeAndTime) {
    const testsupport::TempDir dir;
    testsupport::WriteFile(dir / "same", std::vector<uint8_t>(1536));
    fs::create_directories(dir / "folder");
    COvDataItem root(u"ROOT"_s, COvDataItem::KindRoot, 0, 0);
    COvDataItem* pFile = AddFile(&root, u"same"_s, 3u << 20);
    COvDataItem* pFolder = AddFolder(&root, u"folder"_s);
    const struct {
        const char* name;
        fs::path target;
        const COvDataItem* pItem;
        QString heading;
        QString oldSize;
        QString newSize;
    } cases[] = {
        {"a file over a file", dir / "same", pFile,
         u"A file named \"same\" already exists in this folder."_s, u"1.50 KB"_s, u"3.00 MB"_s},
        {"a file over a folder: the folder form", dir / "folder", pFile,
         u"A folder named \"folder\" already exists in this folder."_s, QString(), u"3.00 MB"_s},
        {"a folder over a folder: no sizes", dir / "folder", pFolder,
         u"A folder named \"folder\" already exists in this folder."_s, QString(), QString()},
        {"no item: the target twice", dir / "same", nullptr,
         u"A file named \"same\" already exists in this folder."_s, u"1.50 KB"_s, u"1.50 KB"_s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = QString::fromStdString(c.target.string());
        const NotifyData data{c.pItem, path, QFileInfo(path)};
        CConfirmFile dialog;
        dialog.SetData(&data);
        QStringList texts;
        Answer(dialog, [&](CConfirmFile& d) {
            for (const int nId :
                 {CConfirmFile::kIdHeading, CConfirmFile::kIdOldText, CConfirmFile::kIdNewText}) {
                texts << d.Text(nId)->Text();
            }
            d.done(CConfirmFile::kIdSkip);
        });
        ASSERT_EQ(texts.size(), 3);
        EXPECT_EQ(texts[0], c.heading);
        EXPECT_EQ(texts[1].section(u'\n', 0, 0), c.oldSize);
        EXPECT_EQ(texts[2].section(u'\n', 0, 0), c.newSize);
        EXPECT_TRUE(texts[2].startsWith(c.newSize + u"\nModified: "_s));
    }
}

// The answer buttons and Escape are clicked in the extraction tests, where their effect shows.
TEST(ConfirmFile, TheCaptionsCloseButtonStopsAndTheQuestionStaysOnTop) {
    CConfirmFile dialog;
    EXPECT_EQ(Answer(dialog,
                     [](CConfirmFile& d) {
                         QWidget* pClose = nullptr;
                         d.GetControl(CTvgBaseDialog::kClose, &pClose);
                         toolkittest::Click(*pClose);
                     }),
              CConfirmFile::kIdStop);
    EXPECT_TRUE(dialog.windowFlags() & Qt::WindowStaysOnTopHint);
}

} // namespace
