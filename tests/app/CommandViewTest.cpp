// The command bar: its row of buttons, whose state the target's route decides, whose clicks go
// to the target, and which are drawn faded when disabled; the large pictures at a scale of 1.5.
#include "AppTestSupport.h"
#include "CDisplayScale.h"
#include "CGXTButton.h"
#include "CMainFrame.h"
#include "COvCommandView.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "ToolkitTestSupport.h"

#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>
#include <span>

namespace {

using apptest::RecordingPane;
using namespace toolkittest;

constexpr int kRow[] = {639, 640, 641, 642, 661, 671};

class CommandViewTest : public ::testing::Test {
protected:
    CommittedSkin m_skin;
    RecordingPane m_target;
    COvCommandView m_view;
};

std::vector<bool> Enabled(const COvCommandView& view) {
    std::vector<bool> states;
    for (const int nId : kRow) {
        states.push_back(view.Button(nId)->isEnabled());
    }
    return states;
}

TEST_F(CommandViewTest, ButtonsStandInARowAsWideAsTheirPictures) {
    m_view.CreateButtons(kRow);
    QList<QRect> rects;
    for (const int nId : kRow) {
        ASSERT_NE(m_view.Button(nId), nullptr) << nId;
        rects << m_view.Button(nId)->geometry();
        EXPECT_EQ(m_view.Button(nId)->toolTip(), TvnText(static_cast<uint32_t>(nId)));
    }
    EXPECT_EQ(rects, (QList<QRect>{{5, 7, 70, 23},
                                   {85, 7, 68, 23},
                                   {163, 7, 82, 23},
                                   {255, 7, 84, 23},
                                   {349, 7, 68, 23},
                                   {427, 7, 76, 23}}));
}

TEST_F(CommandViewTest, AZeroKeepsAnEmptySlotAndASecondCallReplacesTheRow) {
    const int ids[] = {639, 0, 640};
    EXPECT_EQ(m_view.CreateButtons(ids), 0);
    EXPECT_EQ(m_view.Button(640)->x(), 5 + 70 + 10);
    const int others[] = {661};
    m_view.CreateButtons(others);
    EXPECT_EQ(m_view.Button(639), nullptr);
    EXPECT_EQ(m_view.Button(661)->x(), 5);
    EXPECT_EQ(m_view.findChildren<CGXTButton*>().size(), 1);
    // Without a target a click goes nowhere.
    m_view.show();
    Click(*m_view.Button(661));
}

TEST_F(CommandViewTest, TheRouteEnablesAndAnUnknownCommandStaysDisabled) {
    m_target.m_known = {{639, true}, {640, false}};
    m_view.SetCommandTarget(&m_target);
    m_view.CreateButtons(kRow);
    EXPECT_EQ(Enabled(m_view), (std::vector<bool>{true, false, false, false, false, false}));
    m_target.m_known[641] = true;
    QTest::qWait(COvCommandView::kUpdateIntervalMs * 2);
    EXPECT_EQ(Enabled(m_view), (std::vector<bool>{true, false, true, false, false, false}));
}

TEST_F(CommandViewTest, AClickSendsTheCommandAndUpdatesAtOnce) {
    m_target.m_known = {{639, true}};
    m_view.SetCommandTarget(&m_target);
    m_view.CreateButtons(kRow);
    m_view.show();
    m_target.m_known[640] = true;
    Click(*m_view.Button(639));
    EXPECT_EQ(m_target.m_commands, std::vector<int>{639});
    EXPECT_TRUE(m_view.Button(640)->isEnabled());
}

// The strips have no disabled picture: a disabled button draws its normal one faded.
TEST_F(CommandViewTest, ADisabledButtonIsItsNormalPictureFaded) {
    m_view.CreateButtons(kRow);
    CGXTButton* pButton = m_view.Button(639);
    const auto render = [pButton](bool bEnabled) {
        pButton->setEnabled(bEnabled);
        QImage image(pButton->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        pButton->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        return image;
    };
    const auto strongest = [](const QImage& image) {
        const std::span pixels(reinterpret_cast<const QRgb*>(image.constBits()),
                               static_cast<size_t>(image.width() * image.height()));
        return qAlpha(std::ranges::max(pixels, {}, [](QRgb p) { return qAlpha(p); }));
    };
    EXPECT_EQ(strongest(render(true)), 255);
    const int nFaded = strongest(render(false));
    EXPECT_GT(nFaded, 60);
    EXPECT_LT(nFaded, 160);
}

// Run by CTest in a process of its own at a scale factor of 1.5.
TEST(HighScale, TheLargePicturesAndSizesAreUsed) {
    if (qgetenv("QT_SCALE_FACTOR") != "1.5") {
        GTEST_SKIP() << "runs only at a scale factor of 1.5";
    }
    DwordReg(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
             QStringLiteral("EnableDPIAware"), true) = 1;
    ASSERT_EQ(GetUiScale(), 1.5);
    CommittedSkin skin;
    const std::pair<int, const char*> cases[] = {
        {639, "btn_open_150"},     {640, "btn_view_150"}, {641, "btn_extract_150"},
        {642, "btn_viewmode_150"}, {661, "btn_burn_150"}, {671, "btn_mount_150"},
        {12345, "btn_view_150"}};
    for (const auto& [nId, pName] : cases) {
        EXPECT_EQ(COvCommandView::PictureName(nId), QString::fromLatin1(pName)) << nId;
    }
    CMainFrame frame;
    EXPECT_EQ(frame.minimumWidth(), 450);
    EXPECT_EQ(frame.CommandView()->height(), 37);
    EXPECT_EQ(frame.CommandView()->Button(639)->IconSize(), QSize(105, 35));

    // The band grows with the rest: in Qt's pixels it lies where it lies at 1.0, and its close
    // button is where the picture shows it.
    frame.resize(800, 400);
    frame.show();
    QCoreApplication::processEvents();
    EXPECT_EQ(frame.Client()->geometry(), QRect(6, 44, 788, 349));
    toolkittest::ClickAt(frame, QPoint(779, 20));
    QCoreApplication::processEvents();
    EXPECT_FALSE(frame.isVisible());
}

} // namespace
