// The skinned frame's band: what each point is, the caption buttons under the mouse, and the
// window states that clicks and double clicks lead to.
#include "CGXTFrameWnd.h"
#include "ToolkitTestSupport.h"

#include <QMenu>
#include <gtest/gtest.h>
#include <tuple>

namespace {

using namespace toolkittest;
using Hit = CGXTFrameWnd::Hit;

constexpr QSize kSize(800, 400);
// From the right: close, maximise, minimise, update; each 22 wide with gaps of 7, 10 from the
// edge, taking clicks from y 4 to 32.
constexpr int kCloseX = 779;
constexpr int kMaxX = 750;
constexpr int kMinX = 721;
constexpr int kUpdateX = 692;
constexpr int kButtonY = 20;
constexpr QPoint kBand(400, 20);
constexpr QPoint kIcon(20, 20);

class FrameTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_frame.resize(kSize);
        m_frame.SetClient(new QWidget);
    }
    void Show() {
        m_frame.show();
        QCoreApplication::processEvents();
    }

    CommittedSkin m_skin;
    CGXTFrameWnd m_frame;
};

TEST_F(FrameTest, EachPointOfTheWindowHasItsPartAndButton) {
    using enum CGXTFrameWnd::Hit;
    using enum CGXTFrameWnd::Click;
    using enum CGXTFrameWnd::Hover;
    struct Case {
        QPoint pt;
        Hit hit;
        int nClick = kClickNone;
        int nHover = kHoverNone;
    };
    const Case cases[] = {{kBand, kHitCaption},
                          {{400, 1}, kHitTop},
                          {{3, 200}, kHitLeft},
                          {{797, 200}, kHitRight},
                          {{400, 396}, kHitBottom},
                          {{400, 392}, kHitClient},
                          {{2, 2}, kHitTopLeft},
                          {{2, 10}, kHitTopLeft},
                          {{797, 2}, kHitTopRight},
                          {{2, 397}, kHitBottomLeft},
                          {{797, 390}, kHitBottomRight},
                          {{400, 200}, kHitClient},
                          {{6, 44}, kHitClient},
                          {{400, 43}, kHitNowhere},
                          {{900, 20}, kHitNowhere},
                          {{kCloseX, kButtonY}, kHitCaption, kClickClose, kHoverClose},
                          {{kMaxX, kButtonY}, kHitCaption, kClickMaximise, kHoverMaximise},
                          {{kMinX, kButtonY}, kHitCaption, kClickMinimise, kHoverMinimise},
                          {{kUpdateX, kButtonY}, kHitCaption, kClickUpdate, kHoverUpdate},
                          {kIcon, kHitCaption, kClickIcon},
                          {{kCloseX, 4}, kHitCaption, kClickClose, kHoverClose},
                          {{kCloseX, 3}, kHitTop},
                          {{kCloseX, 33}, kHitCaption},
                          {{kMaxX + 15, kButtonY}, kHitCaption}};
    for (const Case& c : cases) {
        EXPECT_EQ(
            (std::tuple{m_frame.HitTest(c.pt), m_frame.ClickCode(c.pt), m_frame.HoverCode(c.pt)}),
            (std::tuple{c.hit, c.nClick, c.nHover}))
            << c.pt.x() << "," << c.pt.y();
    }
}

TEST_F(FrameTest, HoverAndPressLightTheButtonUnderTheMouse) {
    Show();
    MoveTo(m_frame, {kCloseX, kButtonY});
    EXPECT_EQ(m_frame.HotState(), CGXTFrameWnd::kHoverClose);
    MoveTo(m_frame, {kMinX, kButtonY});
    EXPECT_EQ(m_frame.HotState(), CGXTFrameWnd::kHoverMinimise);
    PressAt(m_frame, {kMinX, kButtonY});
    EXPECT_EQ(m_frame.HotState(), CGXTFrameWnd::kClickMinimise);
    // Slipping off a held button lets it go; releasing there does nothing.
    MoveTo(m_frame, {400, 20}, Qt::LeftButton);
    EXPECT_EQ(m_frame.HotState(), CGXTFrameWnd::kHoverNone);
    ReleaseAt(m_frame, {400, 20});
    EXPECT_FALSE(m_frame.isMinimized());
    MoveTo(m_frame, {kCloseX, kButtonY});
    Leave(m_frame);
    EXPECT_EQ(m_frame.HotState(), CGXTFrameWnd::kHoverNone);
}

TEST_F(FrameTest, ClicksAndDoubleClicksChangeTheWindow) {
    struct Case {
        QPoint pt;
        bool bDouble = false;
        bool bFromMaximised = false;
        // Minimised, maximised, visible.
        std::vector<bool> after;
    };
    const Case cases[] = {
        {.pt = {kMinX, kButtonY}, .after = {true, false, true}},
        {.pt = {kMaxX, kButtonY}, .after = {false, true, true}},
        {.pt = {kCloseX, kButtonY}, .after = {false, false, false}},
        // No update agent exists: the button does nothing.
        {.pt = {kUpdateX, kButtonY}, .after = {false, false, true}},
        {.pt = kBand, .bDouble = true, .after = {false, true, true}},
        {.pt = kBand, .bDouble = true, .bFromMaximised = true, .after = {false, false, true}},
        {.pt = {400, 200}, .bDouble = true, .after = {false, false, true}},
        {.pt = kIcon, .bDouble = true, .after = {false, false, false}},
    };
    for (const Case& c : cases) {
        m_frame.showNormal();
        Show();
        if (c.bFromMaximised) {
            m_frame.showMaximized();
            QCoreApplication::processEvents();
        }
        ClickAt(m_frame, c.pt);
        if (c.bDouble) {
            Mouse(m_frame, QEvent::MouseButtonDblClick, c.pt, Qt::LeftButton, Qt::LeftButton);
            ReleaseAt(m_frame, c.pt);
        }
        QCoreApplication::processEvents();
        EXPECT_EQ(
            (std::vector<bool>{m_frame.isMinimized(), m_frame.isMaximized(), m_frame.isVisible()}),
            c.after)
            << c.pt.x() << "," << c.pt.y() << (c.bDouble ? " double" : "");
    }
}

TEST_F(FrameTest, MaximisedTheSecondButtonRestoresAndTheEdgesDoNotSize) {
    Show();
    m_frame.showMaximized();
    QCoreApplication::processEvents();
    const QPoint restore = m_frame.ButtonRect(1).center();
    EXPECT_EQ(m_frame.ClickCode(restore), CGXTFrameWnd::kClickRestore);
    EXPECT_EQ(m_frame.HoverCode(restore), CGXTFrameWnd::kHoverRestore);
    EXPECT_EQ(m_frame.HitTest({2, 200}), CGXTFrameWnd::kHitNowhere);
    EXPECT_TRUE(m_frame.mask().isEmpty());
    ClickAt(m_frame, restore);
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_frame.isMaximized());
    EXPECT_FALSE(m_frame.mask().isEmpty());
}

TEST_F(FrameTest, WindowMenuFollowsTheWindowState) {
    Show();
    const auto enabled = [this] {
        std::vector<bool> states;
        ClickAt(m_frame, {20, 20});
        for (QAction* pAction : m_frame.SystemMenu()->actions()) {
            if (!pAction->isSeparator()) {
                states.push_back(pAction->isEnabled());
            }
        }
        m_frame.SystemMenu()->hide();
        return states;
    };
    // Restore, move, size, minimise, maximise, close.
    EXPECT_EQ(enabled(), (std::vector<bool>{false, true, true, true, true, true}));
    m_frame.showMaximized();
    QCoreApplication::processEvents();
    EXPECT_EQ(enabled(), (std::vector<bool>{true, false, false, true, false, true}));
}

// The band is painted at its edges and in its caption, never in the key colour.
TEST_F(FrameTest, BandIsPaintedWhole) {
    constexpr QRgb kUnpainted = qRgb(255, 0, 255);
    for (const QSize size : {kSize, QSize(451, 97)}) {
        m_frame.resize(size);
        QImage image(size, QImage::Format_ARGB32);
        image.fill(kUnpainted);
        m_frame.render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground);
        const int nMidX = size.width() / 2;
        const int nMidY = size.height() / 2;
        for (const QPoint pt : {QPoint(nMidX, 1), QPoint(nMidX, 20), QPoint(2, nMidY),
                                QPoint(size.width() - 3, nMidY), QPoint(nMidX, size.height() - 3),
                                QPoint(kIcon), QPoint(size.width() - 21, kButtonY)}) {
            const QRgb pixel = image.pixel(pt) | 0xFF000000;
            EXPECT_TRUE(pixel != kUnpainted && pixel != qRgb(0, 0, 255))
                << size.width() << "x" << size.height() << " at " << pt.x() << "," << pt.y();
        }
    }
}

TEST_F(FrameTest, ClientFillsTheInsideOfTheBand) {
    Show();
    EXPECT_EQ(m_frame.Client()->geometry(), QRect(6, 44, 788, 349));
    m_frame.resize(600, 300);
    EXPECT_EQ(m_frame.Client()->geometry(), QRect(6, 44, 588, 249));
}

} // namespace
