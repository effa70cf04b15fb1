// The folder tree: lazy insertion, its order, the hints it sends and obeys, and the open-folder
// message of the list.
#include "CFolderTreeView.h"
#include "CWindowMessage.h"
#include "ViewsTestSupport.h"

#include <QCoreApplication>
#include <QTreeWidgetItem>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

class HintRecorder : public IOvView {
public:
    explicit HintRecorder(IOvDocument& doc) : m_doc(doc) { m_doc.AddView(this); }
    ~HintRecorder() override { m_doc.RemoveView(this); }
    void OnUpdate(IOvView*, int nHint) override { m_vecHints.push_back(nHint); }

    IOvDocument& m_doc;
    std::vector<int> m_vecHints;
};

struct TreeFixture : ::testing::Test {
    TreeFixture() {
        COvDataItem* pRoot = doc.ReplaceRoot(u"DISC_1"_s);
        pDocs = AddFolder(pRoot, u"beta"_s);
        AddFolder(pRoot, u"Alpha"_s);
        pLower = AddFolder(pRoot, u"alpha"_s);
        AddFile(pRoot, u"file.txt"_s, 5);
        pDeep = AddFolder(pDocs, u"deep"_s);
        AddFolder(pDeep, u"deeper"_s);
        AddFile(pDocs, u"inside.txt"_s, 5);
    }

    TestDocument doc;
    COvDataItem* pDocs = nullptr;
    COvDataItem* pLower = nullptr;
    COvDataItem* pDeep = nullptr;
};

TEST(FolderTree, EmptyDocumentShowsTheUnnamedRootWithoutButton) {
    TestDocument doc;
    CFolderTreeView tree(&doc);
    tree.OnInitialUpdate();
    QTreeWidgetItem* pRoot = tree.TreeCtrl().topLevelItem(0);
    ASSERT_NE(pRoot, nullptr);
    EXPECT_EQ(pRoot->text(0), u"No image open"_s);
    EXPECT_NE(pRoot->childIndicatorPolicy(), QTreeWidgetItem::ShowIndicator);
    EXPECT_EQ(doc.GetCurrentFolder(), doc.GetRootItem());
    EXPECT_FALSE(pRoot->icon(0).isNull());
}

TEST_F(TreeFixture, NewTreeHintRebuildsExpandsRootAndSendsFolderHint) {
    CFolderTreeView tree(&doc);
    HintRecorder recorder(doc);
    doc.UpdateAllViews(&recorder, kHintNewTree);
    QTreeWidgetItem* pRoot = tree.TreeCtrl().topLevelItem(0);
    ASSERT_NE(pRoot, nullptr);
    EXPECT_EQ(pRoot->text(0), u"DISC_1"_s);
    EXPECT_TRUE(pRoot->isExpanded());
    // Sorted by the tree's text order without case; equal texts keep the folder's order.
    EXPECT_EQ(doc.GetCurrentFolder(), doc.GetRootItem());
    EXPECT_EQ(recorder.m_vecHints, std::vector<int>{kHintCurrentFolder});
    // Other hints leave the tree alone.
    doc.UpdateAllViews(&recorder, kHintCurrentFolder);
    doc.UpdateAllViews(&recorder, 7);
    EXPECT_EQ(tree.TreeCtrl().topLevelItem(0), pRoot);
    EXPECT_EQ(TreePaths(tree),
              (QStringList{u"DISC_1"_s, u"DISC_1/Alpha"_s, u"DISC_1/alpha"_s, u"DISC_1/beta"_s,
                           u"DISC_1/beta/deep"_s, u"DISC_1/beta/deep/deeper"_s}));
}

TEST_F(TreeFixture, SubfoldersAreInsertedOnFirstExpansionOnly) {
    CFolderTreeView tree(&doc);
    tree.OnInitialUpdate();
    QTreeWidgetItem* pBeta = tree.FindItemByNode(pDocs);
    ASSERT_NE(pBeta, nullptr);
    EXPECT_EQ(pBeta->childCount(), 0);
    EXPECT_EQ(pBeta->childIndicatorPolicy(), QTreeWidgetItem::ShowIndicator);
    EXPECT_EQ(tree.FindItemByNode(pDeep), nullptr);
    for (int i = 0; i < 3; ++i) {
        pBeta->setExpanded(true);
        pBeta->setExpanded(false);
    }
    // Files never become items.
    ASSERT_EQ(pBeta->childCount(), 1);
    EXPECT_EQ(tree.FindItemByNode(pDeep), pBeta->child(0));
    // A folder without subfolders has no button, yet selecting it makes it current.
    QTreeWidgetItem* pAlpha = tree.FindItemByNode(pLower);
    EXPECT_NE(pAlpha->childIndicatorPolicy(), QTreeWidgetItem::ShowIndicator);
    tree.TreeCtrl().setCurrentItem(pAlpha);
    EXPECT_EQ(doc.GetCurrentFolder(), pLower);
}

TEST_F(TreeFixture, OpenFolderMessageMovesToAChildOfTheCurrentFolderOnly) {
    const struct {
        uintptr_t wParam;
        bool bChild; // the child of the current folder, else a grandchild
        bool bMoves;
    } cases[] = {
        {kOpenChildFolder, true, true},   {0, true, false}, {1, true, false}, {3, true, false},
        {kOpenChildFolder, false, false},
    };
    for (const auto& c : cases) {
        CFolderTreeView tree(&doc);
        tree.OnInitialUpdate();
        COvDataItem* pTarget = c.bChild ? pDocs : pDeep;
        CWindowMessage message(kWmOvOpenFolder, c.wParam, reinterpret_cast<intptr_t>(pTarget));
        QCoreApplication::sendEvent(&tree, &message);
        EXPECT_EQ(doc.GetCurrentFolder(), c.bMoves ? pDocs : doc.GetRootItem()) << c.wParam;
        if (c.bMoves) {
            // The opened folder shows its own subfolders at once.
            QTreeWidgetItem* pItem = tree.FindItemByNode(pDocs);
            EXPECT_TRUE(pItem->isSelected());
            EXPECT_TRUE(pItem->isExpanded());
            EXPECT_NE(tree.FindItemByNode(pDeep), nullptr);
        }
    }
}

} // namespace
