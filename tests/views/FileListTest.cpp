// The file list beside its tree: refills on hints, sorting per folder with the header's
// arrows, opening rows, keys, view modes, tips, and a folder of many files.
#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "CWindowMessage.h"
#include "ViewsTestSupport.h"

#include <QHeaderView>
#include <QListView>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>
#include <optional>

namespace {

using namespace Qt::StringLiterals;

struct Panes {
    explicit Panes(TestDocument& doc) : tree(&doc), list(&doc) {
        list.SetTreeView(&tree);
        list.resize(700, 400);
        tree.OnInitialUpdate();
    }
    CFolderTreeView tree;
    CFileListView list;
};

void ClickHeading(CFileListView& list, int nColumn) {
    QHeaderView* pHeader = list.ListCtrl().ReportView()->header();
    const QPoint at(pHeader->sectionViewportPosition(nColumn) + 5, pHeader->height() / 2);
    QTest::mouseClick(pHeader->viewport(), Qt::LeftButton, Qt::NoModifier, at);
}

// The headings' arrows as states: 1 up, -1 down, 0 none. Qt's descending mark points up.
std::vector<int> Arrows(CFileListView& list) {
    const QHeaderView* pHeader = list.ListCtrl().ReportView()->header();
    std::vector<int> states(COvListModel::ColumnCount, 0);
    if (pHeader->sortIndicatorSection() >= 0) {
        states.at(pHeader->sortIndicatorSection()) =
            pHeader->sortIndicatorOrder() == Qt::DescendingOrder ? 1 : -1;
    }
    return states;
}

std::vector<int> SortStates(const COvDataItem& folder) {
    return {std::begin(folder.m_anSortState), std::end(folder.m_anSortState)};
}

struct ListFixture : ::testing::Test {
    ListFixture() {
        COvDataItem* pRoot = doc.ReplaceRoot(u"DISC"_s);
        pFolder = AddFolder(pRoot, u"Sub"_s);
        AddFile(pFolder, u"b.txt"_s, 3000);
        AddFile(pFolder, u"a.txt"_s, 2000);
        AddFolder(pFolder, u"Inner"_s);
        AddFile(pRoot, u"z.bin"_s, 10)->m_ftTime = {1, 0};
        AddFile(pRoot, u"m.bin"_s, 4000)->m_ftTime = {2, 0};
        pRoot->SortChildrenByName();
        pFolder->SortChildrenByName();
        // The walk leaves each folder sorted by name, and says so.
        pRoot->m_anSortState[0] = 1;
        pFolder->m_anSortState[0] = 1;
        panes.emplace(doc);
        panes->list.show();
    }
    TestDocument doc;
    COvDataItem* pFolder = nullptr;
    std::optional<Panes> panes;
};

TEST_F(ListFixture, HintsRefillTheListFromTheCurrentFolder) {
    EXPECT_EQ(ListRows(panes->list), (QStringList{u"Sub"_s, u"m.bin"_s, u"z.bin"_s}));
    panes->tree.TreeCtrl().setCurrentItem(panes->tree.FindItemByNode(pFolder));
    EXPECT_EQ(ListRows(panes->list), (QStringList{u"Inner"_s, u"a.txt"_s, u"b.txt"_s}));
    // Without a current folder the rows stay until a hint brings one.
    doc.SetCurrentFolder(nullptr);
    doc.UpdateAllViews(nullptr, kHintCurrentFolder);
    EXPECT_EQ(panes->list.ListCtrl().Model().rowCount(), 3);
    // A new tree reaches the list through the tree's selection of the new root.
    COvDataItem* pRoot = doc.ReplaceRoot(u"EMPTY"_s);
    doc.UpdateAllViews(&panes->list, kHintNewTree);
    EXPECT_EQ(doc.GetCurrentFolder(), pRoot);
    EXPECT_EQ(panes->list.ListCtrl().Model().rowCount(), 0);
}

TEST_F(ListFixture, HeadingClicksCycleOrderAndArrowsPerFolder) {
    const struct {
        int nColumn;
        std::vector<int> states;
        QStringList names;
    } steps[] = {
        // Already ascending by name, so the first click turns it round: files before folders.
        {0, {-1, 0, 0, 0}, {u"z.bin"_s, u"m.bin"_s, u"Sub"_s}},
        {0, {1, 0, 0, 0}, {u"Sub"_s, u"m.bin"_s, u"z.bin"_s}},
        {1, {0, 1, 0, 0}, {u"Sub"_s, u"z.bin"_s, u"m.bin"_s}},
        {1, {0, -1, 0, 0}, {u"m.bin"_s, u"z.bin"_s, u"Sub"_s}},
        {3, {0, 0, 0, 1}, {u"Sub"_s, u"z.bin"_s, u"m.bin"_s}},
    };
    for (const auto& step : steps) {
        ClickHeading(panes->list, step.nColumn);
        EXPECT_EQ(ListRows(panes->list), step.names) << step.nColumn;
        EXPECT_EQ(SortStates(*doc.GetRootItem()), step.states) << step.nColumn;
        EXPECT_EQ(Arrows(panes->list), step.states) << step.nColumn;
    }
    // Another folder shows its own order and arrow; back in the first, both are as they were.
    panes->tree.TreeCtrl().setCurrentItem(panes->tree.FindItemByNode(pFolder));
    EXPECT_EQ(Arrows(panes->list), (std::vector<int>{1, 0, 0, 0}));
    panes->tree.TreeCtrl().setCurrentItem(panes->tree.TreeCtrl().topLevelItem(0));
    EXPECT_EQ(Arrows(panes->list), (std::vector<int>{0, 0, 0, 1}));

    // A folder that the walk left unsorted ascends at the first click.
    AddFile(pFolder, u"0.txt"_s);
    pFolder->m_anSortState[0] = 0;
    panes->tree.TreeCtrl().setCurrentItem(panes->tree.FindItemByNode(pFolder));
    EXPECT_EQ(Arrows(panes->list), (std::vector<int>{0, 0, 0, 0}));
    panes->list.SortByColumn(0);
    EXPECT_EQ(ListRows(panes->list), (QStringList{u"Inner"_s, u"0.txt"_s, u"a.txt"_s, u"b.txt"_s}));
    EXPECT_EQ(Arrows(panes->list), (std::vector<int>{1, 0, 0, 0}));
}

class CommandSpy : public QObject {
public:
    bool eventFilter(QObject*, QEvent* pEvent) override {
        if (pEvent->type() == CWindowMessage::TypeOf(kWmCommand)) {
            m_vecCommands.push_back(
                static_cast<int>(static_cast<CWindowMessage*>(pEvent)->WParam() & 0xFFFF));
        }
        return false;
    }
    std::vector<int> m_vecCommands;
};

TEST_F(ListFixture, DoubleClickOpensFoldersThroughTheTreeAndFilesByCommand) {
    CommandSpy spy;
    panes->list.installEventFilter(&spy);
    QTreeView* pReport = panes->list.ListCtrl().ReportView();
    const auto doubleClick = [&](QPoint at) {
        // A double click starts with a click: the view opens only the row it was pressed on.
        QTest::mouseClick(pReport->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        QTest::mouseDClick(pReport->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    };
    doubleClick(QPoint(50, pReport->viewport()->height() - 5));
    EXPECT_EQ(doc.GetCurrentFolder(), doc.GetRootItem());
    doubleClick(pReport->visualRect(pReport->model()->index(1, 0)).center());
    EXPECT_EQ(spy.m_vecCommands, std::vector<int>{kCmdViewFile});
    doubleClick(pReport->visualRect(pReport->model()->index(0, 0)).center());
    EXPECT_EQ(doc.GetCurrentFolder(), pFolder);
    EXPECT_TRUE(panes->tree.FindItemByNode(pFolder)->isSelected());
    EXPECT_EQ(ListRows(panes->list).first(), u"Inner"_s);
}

TEST_F(ListFixture, CtrlASelectsEveryRowAndViewFileNeedsExactlyOne) {
    CommandState state;
    ASSERT_TRUE(panes->list.OnUpdateCommand(kCmdViewFile, state));
    EXPECT_FALSE(state.bEnabled);
    QTreeView* pReport = panes->list.ListCtrl().ReportView();
    QTest::mouseClick(pReport->viewport(), Qt::LeftButton, Qt::NoModifier,
                      pReport->visualRect(pReport->model()->index(2, 0)).center());
    panes->list.OnUpdateCommand(kCmdViewFile, state);
    EXPECT_TRUE(state.bEnabled);
    QTest::keyClick(pReport, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(panes->list.ListCtrl().SelectedRowCount(), 3);
    panes->list.OnUpdateCommand(kCmdViewFile, state);
    EXPECT_FALSE(state.bEnabled);
}

TEST_F(ListFixture, ViewCommandsSwitchModes) {
    const struct {
        int nCommand;
        int nMode;
        bool bReport;
        QListView::ViewMode listMode;
    } cases[] = {
        {kCmdLargeIcons, COvListCtrl::ModeLargeIcons, false, QListView::IconMode},
        {kCmdSmallIcons, COvListCtrl::ModeSmallIcons, false, QListView::ListMode},
        {kCmdList, COvListCtrl::ModeList, false, QListView::ListMode},
        {kCmdReport, COvListCtrl::ModeReport, true, QListView::ListMode},
    };
    EXPECT_EQ(panes->list.ViewMode(), COvListCtrl::ModeReport);
    for (const auto& c : cases) {
        EXPECT_TRUE(panes->list.OnCommand(c.nCommand));
        EXPECT_EQ(panes->list.ViewMode(), c.nMode);
        COvListCtrl& ctrl = panes->list.ListCtrl();
        EXPECT_EQ(ctrl.ReportView()->isVisible(), c.bReport);
        EXPECT_EQ(ctrl.IconView()->isVisible(), !c.bReport);
        if (!c.bReport) {
            EXPECT_EQ(ctrl.IconView()->viewMode(), c.listMode);
        }
        CommandState state;
        EXPECT_TRUE(panes->list.OnUpdateCommand(c.nCommand, state));
        EXPECT_TRUE(state.bChecked);
    }
    EXPECT_FALSE(panes->list.OnCommand(9999));
}

TEST_F(ListFixture, TipShowsTheWholeTextOfACutCellOnly) {
    AddFile(doc.GetRootItem(), u"a rather long file name that no narrow column can hold.txt"_s);
    doc.UpdateAllViews(nullptr, kHintCurrentFolder);
    QTreeView* pReport = panes->list.ListCtrl().ReportView();
    const QPoint longCell = pReport->visualRect(pReport->model()->index(3, 0)).center();
    const QPoint shortCell = pReport->visualRect(pReport->model()->index(1, 0)).center();
    COvListCtrl& ctrl = panes->list.ListCtrl();
    EXPECT_EQ((QStringList{ctrl.CutCellTextAt(longCell), ctrl.CutCellTextAt(shortCell),
                           ctrl.CutCellTextAt(QPoint(5, 390))}),
              (QStringList{u"a rather long file name that no narrow column can hold.txt"_s,
                           QString(), QString()}));
}

TEST(FileList, AHundredThousandFilesFormatOnlyTheDrawnRows) {
    constexpr int kFiles = 100'000;
    TestDocument doc;
    COvDataItem* pRoot = doc.GetRootItem();
    for (int i = 0; i < kFiles; ++i) {
        AddFile(pRoot, u"file%1.dat"_s.arg(kFiles - i, 6, 10, QChar(u'0')),
                static_cast<uint64_t>(i));
    }
    CFolderTreeView tree(&doc);
    CFileListView list(&doc);
    list.resize(700, 400);
    list.show();

    tree.OnInitialUpdate();
    list.grab();
    const int nCells = list.ListCtrl().Model().FormattedCellCount();
    // A few dozen rows of four cells fit into 400 pixels.
    EXPECT_LT(nCells, 4 * 100);
    EXPECT_GT(nCells, 0);

    ClickHeading(list, 0);
    list.grab();
    EXPECT_EQ(list.ListCtrl().Model().NodeAt(0)->m_strName, u"file000001.dat"_s);
    EXPECT_LT(list.ListCtrl().Model().FormattedCellCount() - nCells, 4 * 100);
    // The icon modes place every row but measure only the first.
    for (const int nCommand : {kCmdList, kCmdLargeIcons}) {
        const int nBefore = list.ListCtrl().Model().FormattedCellCount();
        list.OnCommand(nCommand);
        list.grab();
        EXPECT_LT(list.ListCtrl().Model().FormattedCellCount() - nBefore, 400) << nCommand;
    }
}

} // namespace
