// The list's model: the protocol checks of Qt's model tester, and the text of each cell.
#include "CIconTable.h"
#include "COvListModel.h"
#include "CShellIcons.h"
#include "Formatting.h"
#include "ToolkitHooks.h"
#include "ViewsTestSupport.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDateTime>
#include <QStyle>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

QString Cell(const COvListModel& model, int nRow, int nColumn) {
    return model.data(model.index(nRow, nColumn), Qt::DisplayRole).toString();
}

TEST(ListModel, PassesTheModelTesterThroughFolderChanges) {
    TestDocument doc;
    COvDataItem* pRoot = doc.GetRootItem();
    COvDataItem* pFolder = AddFolder(pRoot, u"Docs"_s);
    AddFile(pFolder, u"a.txt"_s, 10);
    AddFile(pRoot, u"b.bin"_s, 20);

    COvListModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.SetFolder(pRoot, static_cast<int>(pRoot->m_vecChildren.size()));
    EXPECT_EQ(model.rowCount(), 2);
    model.SetFolder(pFolder, 1);
    EXPECT_EQ(model.rowCount(), 1);
    model.RowsReordered();
    // A row count that outlives the folder's children asks for no node beyond them.
    model.SetFolder(pFolder, 5);
    EXPECT_EQ(Cell(model, 4, 0), QString());
}

TEST(ListModel, SizeCellsInKilobytesRoundedUpFoldersInBrackets) {
    const struct {
        bool bFolder;
        uint64_t size;
        const char16_t* expected;
    } cases[] = {{false, 0, u"0 KB"},
                 {false, 1, u"1 KB"},
                 {false, 1024, u"1 KB"},
                 {false, 1025, u"2 KB"},
                 {false, 5ull << 40, u"5,368,709,120 KB"},
                 {true, 0, u"<0 KB>"},
                 {true, 3000, u"<3 KB>"}};
    for (const auto& c : cases) {
        TestDocument doc;
        COvDataItem* pNode = c.bFolder ? AddFolder(doc.GetRootItem(), u"f"_s)
                                       : AddFile(doc.GetRootItem(), u"f"_s, c.size);
        pNode->m_ullSize = c.size;
        const QString expected =
            QString::fromUtf16(c.expected).replace(u","_s, QLocale::system().groupSeparator());
        EXPECT_EQ(COvListModel::CellText(*pNode, COvListModel::ColumnSize), expected) << c.size;
    }
}

TEST(ListModel, NameTypeAndLocalDateCells) {
    TestDocument doc;
    COvDataItem* pFile = AddFile(doc.GetRootItem(), u"Read Me.txt"_s, 1);
    pFile->m_strTypeName = u"Plain text document"_s;
    // 2024-03-01 12:34:56 UTC as FILETIME ticks.
    const QDateTime when(QDate(2024, 3, 1), QTime(12, 34, 56), Qt::UTC);
    const uint64_t ticks =
        static_cast<uint64_t>(when.toSecsSinceEpoch() + 11'644'473'600LL) * 10'000'000ULL;
    pFile->m_ftTime = {static_cast<uint32_t>(ticks), static_cast<uint32_t>(ticks >> 32)};

    COvListModel model;
    model.SetFolder(doc.GetRootItem(), 1);
    EXPECT_EQ((QStringList{Cell(model, 0, COvListModel::ColumnName),
                           Cell(model, 0, COvListModel::ColumnType),
                           Cell(model, 0, COvListModel::ColumnDate)}),
              (QStringList{u"Read Me.txt"_s, u"Plain text document"_s, FormatDateTime(when)}));
    EXPECT_EQ(model.data(model.index(0, COvListModel::ColumnSize), Qt::TextAlignmentRole)
                      .value<Qt::Alignment>() &
                  Qt::AlignRight,
              Qt::AlignRight);
    EXPECT_FALSE(model.data(model.index(0, 0), Qt::DecorationRole).value<QIcon>().isNull());
}

TEST(ShellIcons, ThemeNameThenGenericNameThenTheStyleFileIcon) {
    const struct {
        const char16_t* name;
        const char16_t* generic;
        const char16_t* shown; // the theme icon's name; null for the style's file icon
    } cases[] = {
        {u"folder", u"", u"folder"},
        {u"application-x-no-such-type", u"text-x-generic", u"text-x-generic"},
        {u"application-x-no-such-type", u"", nullptr},
        {u"", u"", nullptr},
    };
    CIconTable table;
    CShellIcons icons(table);
    // The style's own icon comes from the theme too, once the theme is set.
    ChooseIconTheme();
    const QString fileIcon = QApplication::style()->standardIcon(QStyle::SP_FileIcon).name();
    for (const auto& c : cases) {
        const int nIndex = table.IndexOf(QString::fromUtf16(c.name), QString::fromUtf16(c.generic));
        const QIcon icon = icons.Icon(nIndex);
        EXPECT_FALSE(icon.isNull());
        EXPECT_EQ(icon.name(), c.shown != nullptr ? QString::fromUtf16(c.shown) : fileIcon)
            << QString::fromUtf16(c.name).toStdString();
    }
    EXPECT_EQ(icons.Icon(-1).name(), fileIcon);
    EXPECT_EQ(icons.Icon(1000).name(), fileIcon);
}

} // namespace
