// The skinned frame's band: what each point is, the caption buttons under the mouse, and the
// window states that clicks and double clicks lead to.
#include "CGXTFrameWnd.h"
#include "ToolkitTestSupport.h"

#include <QMenu>
#include <gtest/gtest.h>

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
    void DoubleClickAt(QPoint pt) {
        PressAt(m_frame, pt);
        ReleaseAt(m_frame, pt);
        Mouse(m_frame, QEvent::MouseButtonDblClick, pt, Qt::LeftButton, Qt::LeftButton);
        ReleaseAt(m_frame, pt);
        QCoreApplication::processEvents();
    }

    CommittedSkin m_skin;
    CGXTFrameWnd m_frame;
};

TEST_F(FrameTest, EachPointOfTheWindowHasItsPart) {
    struct Case {
        QPoint pt;
        Hit hit;
    };
    const Case cases[] = {
        {{400, 20}, CGXTFrameWnd::kHitCaption},
        {{400, 1}, CGXTFrameWnd::kHitTop},
        {{3, 200}, CGXTFrameWnd::kHitLeft},
        {{797, 200}, CGXTFrameWnd::kHitRight},
        {{400, 396}, CGXTFrameWnd::kHitBottom},
        {{400, 392}, CGXTFrameWnd::kHitClient},
        {{2, 2}, CGXTFrameWnd::kHitTopLeft},
        {{2, 10}, CGXTFrameWnd::kHitTopLeft},
        {{797, 2}, CGXTFrameWnd::kHitTopRight},
        {{2, 397}, CGXTFrameWnd::kHitBottomLeft},
        {{797, 390}, CGXTFrameWnd::kHitBottomRight},
        {{400, 200}, CGXTFrameWnd::kHitClient},
        {{6, 44}, CGXTFrameWnd::kHitClient},
        {{400, 43}, CGXTFrameWnd::kHitNowhere},
        {{kCloseX, kButtonY}, CGXTFrameWnd::kHitCaption},
        {{900, 20}, CGXTFrameWnd::kHitNowhere},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(m_frame.HitTest(c.pt), c.hit) << c.pt.x() << "," << c.pt.y();
    }
}

TEST_F(FrameTest, CaptionButtonsAndIconHaveClickAndHoverCodes) {
    struct Case {
        QPoint pt;
        int nClick;
        int nHover;
    };
    const Case cases[] = {
        {{kCloseX, kButtonY}, CGXTFrameWnd::kClickClose, CGXTFrameWnd::kHoverClose},
        {{kMaxX, kButtonY}, CGXTFrameWnd::kClickMaximise, CGXTFrameWnd::kHoverMaximise},
        {{kMinX, kButtonY}, CGXTFrameWnd::kClickMinimise, CGXTFrameWnd::kHoverMinimise},
        {{kUpdateX, kButtonY}, CGXTFrameWnd::kClickUpdate, CGXTFrameWnd::kHoverUpdate},
        {{20, 20}, CGXTFrameWnd::kClickIcon, CGXTFrameWnd::kHoverNone},
        {{kCloseX, 4}, CGXTFrameWnd::kClickClose, CGXTFrameWnd::kHoverClose},
        {{kCloseX, 3}, CGXTFrameWnd::kClickNone, CGXTFrameWnd::kHoverNone},
        {{kCloseX, 33}, CGXTFrameWnd::kClickNone, CGXTFrameWnd::kHoverNone},
        {{kMaxX + 15, kButtonY}, CGXTFrameWnd::kClickNone, CGXTFrameWnd::kHoverNone},
        {{400, 20}, CGXTFrameWnd::kClickNone, CGXTFrameWnd::kHoverNone},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(m_frame.ClickCode(c.pt), c.nClick) << c.pt.x() << "," << c.pt.y();
        EXPECT_EQ(m_frame.HoverCode(c.pt), c.nHover) << c.pt.x() << "," << c.pt.y();
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

TEST_F(FrameTest, ClicksOnCaptionButtonsChangeTheWindow) {
    struct Case {
        int x;
        bool bMinimised;
        bool bMaximised;
        bool bVisible;
    };
    const Case cases[] = {
        {kMinX, true, false, true},
        {kMaxX, false, true, true},
        {kCloseX, false, false, false},
        // No update agent exists: the button does nothing.
        {kUpdateX, false, false, true},
    };
    for (const Case& c : cases) {
        m_frame.showNormal();
        Show();
        PressAt(m_frame, {c.x, kButtonY});
        ReleaseAt(m_frame, {c.x, kButtonY});
        QCoreApplication::processEvents();
        EXPECT_EQ(m_frame.isMinimized(), c.bMinimised) << c.x;
        EXPECT_EQ(m_frame.isMaximized(), c.bMaximised) << c.x;
        EXPECT_EQ(m_frame.isVisible(), c.bVisible) << c.x;
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
    PressAt(m_frame, restore);
    ReleaseAt(m_frame, restore);
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_frame.isMaximized());
    EXPECT_FALSE(m_frame.mask().isEmpty());
}

TEST_F(FrameTest, DoubleClickOnTheBandMaximisesAndRestores) {
    Show();
    DoubleClickAt({400, 20});
    EXPECT_TRUE(m_frame.isMaximized());
    DoubleClickAt({400, 20});
    EXPECT_FALSE(m_frame.isMaximized());
    // The client area is no part of the band.
    DoubleClickAt({400, 200});
    EXPECT_FALSE(m_frame.isMaximized());
}

TEST_F(FrameTest, DoubleClickOnTheIconCloses) {
    Show();
    DoubleClickAt({20, 20});
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_frame.isVisible());
}

TEST_F(FrameTest, WindowMenuFollowsTheWindowState) {
    Show();
    const auto enabled = [this] {
        std::vector<bool> states;
        PressAt(m_frame, {20, 20});
        ReleaseAt(m_frame, {20, 20});
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

// Every pixel of the band inside the window's shape is painted, and none in the key colour.
TEST_F(FrameTest, BandIsPaintedWhole) {
    constexpr QRgb kUnpainted = qRgb(255, 0, 255);
    for (const QSize size : {kSize, QSize(451, 97)}) {
        m_frame.resize(size);
        QImage image(size, QImage::Format_ARGB32);
        image.fill(kUnpainted);
        m_frame.render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground);
        const QRegion band =
            m_frame.mask().subtracted(QRect(6, 44, size.width() - 12, size.height() - 51));
        int nBad = 0;
        for (const QRect& rect : band) {
            for (int y = rect.top(); y <= rect.bottom(); ++y) {
                for (int x = rect.left(); x <= rect.right(); ++x) {
                    const QRgb pixel = image.pixel(x, y) | 0xFF000000;
                    nBad += pixel == kUnpainted || pixel == qRgb(0, 0, 255) ? 1 : 0;
                }
            }
        }
        EXPECT_EQ(nBad, 0) << size.width() << "x" << size.height();
    }
}

TEST_F(FrameTest, ClientFillsTheInsideOfTheBand) {
    Show();
    EXPECT_EQ(m_frame.Client()->geometry(), QRect(6, 44, 788, 349));
    m_frame.resize(600, 300);
    EXPECT_EQ(m_frame.Client()->geometry(), QRect(6, 44, 588, 249));
}

} // namespace
