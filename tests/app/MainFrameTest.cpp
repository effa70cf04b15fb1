// The main frame: its place between runs, and the order in which its route
// asks the panes and itself.
#include "AppTestSupport.h"
#include "CMainFrame.h"
#include "CRegistry.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "ToolkitTestSupport.h"

#include <QMenu>
#include <gtest/gtest.h>
#include <optional>

namespace {

using apptest::RecordingPane;
using Placement = CMainFrame::Placement;

void ClearSettings() {
    CRegistry::Default().Root(RegRoot::CurrentUser).DeleteKey(QString::fromUtf16(kSettingsKey));
}

void Store(const char16_t* pName, int32_t nValue) {
    IntReg(RegRoot::CurrentUser, QString::fromUtf16(kSettingsKey), QString::fromUtf16(pName),
           true) = nValue;
}

class MainFrameTest : public ::testing::Test {
protected:
    void SetUp() override { ClearSettings(); }
    void TearDown() override { ClearSettings(); }

    toolkittest::CommittedSkin m_skin;
};

TEST_F(MainFrameTest, ReadsThePlacementOnlyWhenEveryValueIsThere) {
    const char16_t* const names[] = {u"OvWnd_PosX", u"OvWnd_PosY", u"OvWnd_PosW", u"OvWnd_PosH",
                                     u"OvWnd_PosS"};
    struct Case {
        // Stored under the names from the first one on.
        std::vector<int32_t> values;
        size_t nFirst = 0;
        std::optional<Placement> read = std::nullopt;
    };
    const Case cases[] = {
        {.values = {}},
        {.values = {1}, .nFirst = 4},
        {.values = {10, 20, 640, 480}},
        {.values = {10, 20, 640, 480, 0}, .read = Placement{QRect(10, 20, 640, 480), false}},
        {.values = {-5, 7, 0, 0, 1}, .read = Placement{QRect(-5, 7, 0, 0), true}},
    };
    for (const Case& c : cases) {
        ClearSettings();
        for (size_t i = 0; i < c.values.size(); ++i) {
            Store(names[c.nFirst + i], c.values[i]);
        }
        Placement placement;
        ASSERT_EQ(CMainFrame::ReadPlacement(placement), c.read.has_value()) << c.values.size();
        if (c.read) {
            EXPECT_EQ(std::pair(placement.rect, placement.bMaximised),
                      std::pair(c.read->rect, c.read->bMaximised));
        }
    }
}

TEST_F(MainFrameTest, ShowsAtTheDefaultSizeOrMaximisedOrWhereItWas) {
    const std::optional<Placement> saved[] = {std::nullopt,
                                              Placement{QRect(30, 40, 700, 500), false},
                                              Placement{QRect(30, 40, 700, 500), true}};
    for (const std::optional<Placement>& placement : saved) {
        ClearSettings();
        if (placement) {
            CMainFrame::WritePlacement(*placement);
        } else {
            Store(u"OvWnd_PosS", 1);
        }
        CMainFrame frame;
        frame.ShowAtSavedPlacement();
        EXPECT_EQ(frame.isMaximized(), placement && placement->bMaximised);
        if (!frame.isMaximized()) {
            EXPECT_EQ(frame.geometry(),
                      placement ? placement->rect
                                : QRect(frame.geometry().topLeft(), CMainFrame::kDefaultSize));
        }
    }
}

TEST_F(MainFrameTest, ClosingStoresTheNormalRectangle) {
    for (const bool bMaximise : {false, true}) {
        CMainFrame frame;
        frame.setGeometry(50, 60, 640, 420);
        frame.show();
        if (bMaximise) {
            frame.showMaximized();
        }
        QCoreApplication::processEvents();
        frame.close();
        Placement placement;
        ASSERT_TRUE(CMainFrame::ReadPlacement(placement));
        EXPECT_EQ(placement.rect, QRect(50, 60, 640, 420));
        EXPECT_EQ(placement.bMaximised, bMaximise);
    }
}

// The left pane is active until another takes the focus; the frame's own commands go to the
// file list on the right.
TEST_F(MainFrameTest, RoutesToTheActivePaneFirstThenToItself) {
    struct Case {
        int nId;
        bool bLeftKnows;
        bool bHandled;
        std::vector<int> left;
        std::vector<int> right;
    };
    const Case cases[] = {
        {CMainFrame::kCommandView, true, true, {640}, {}},
        {CMainFrame::kCommandView, false, false, {640}, {}},
        {CMainFrame::kCommandOpen, false, true, {639}, {639}},
        {CMainFrame::kCommandOpen, true, true, {639}, {}},
        {CMainFrame::kCommandBurn, false, true, {661}, {661}},
        {CMainFrame::kCommandMount, false, true, {671}, {671}},
        {CMainFrame::kCommandDetails, false, true, {645}, {645}},
        {CMainFrame::kCommandLargeIcons, false, true, {646}, {646}},
    };
    for (const Case& c : cases) {
        CMainFrame frame;
        auto* pLeft = new RecordingPane;
        auto* pRight = new RecordingPane;
        frame.SetPanes(pLeft, pRight);
        if (c.bLeftKnows) {
            pLeft->m_known[c.nId] = true;
        }
        EXPECT_EQ(frame.OnCommand(c.nId), c.bHandled) << c.nId;
        EXPECT_EQ(pLeft->m_commands, c.left) << c.nId;
        EXPECT_EQ(pRight->m_commands, c.right) << c.nId;
    }
}

TEST_F(MainFrameTest, UpdatesAskTheActivePaneThenKnowTheFramesOwnCommands) {
    CMainFrame frame;
    auto* pLeft = new RecordingPane;
    frame.SetPanes(pLeft, new QWidget);
    pLeft->m_known[CMainFrame::kCommandBurn] = false;
    struct Case {
        int nId;
        bool bKnown;
        bool bEnabled;
    };
    const Case cases[] = {
        {CMainFrame::kCommandBurn, true, false},     {CMainFrame::kCommandOpen, true, true},
        {CMainFrame::kCommandViewMenu, true, true},  {CMainFrame::kCommandView, false, false},
        {CMainFrame::kCommandExtract, false, false},
    };
    for (const Case& c : cases) {
        CommandState state;
        EXPECT_EQ(frame.OnUpdateCommand(c.nId, state), c.bKnown) << c.nId;
        EXPECT_EQ(state.bEnabled, c.bEnabled) << c.nId;
    }
    // Without a file list the commands it would take do nothing, and nothing fails.
    EXPECT_TRUE(frame.OnCommand(CMainFrame::kCommandOpen));
}

TEST_F(MainFrameTest, ViewMenuSendsTheViewStylesToTheFileList) {
    CMainFrame frame;
    auto* pRight = new RecordingPane;
    frame.SetPanes(new QWidget, pRight);
    std::vector<int> ids;
    for (QAction* pAction : frame.ViewMenu()->actions()) {
        ids.push_back(pAction->data().toInt());
        pAction->trigger();
    }
    EXPECT_EQ(ids, (std::vector<int>{646, 643, 644, 645}));
    EXPECT_EQ(pRight->m_commands, ids);
}

} // namespace
