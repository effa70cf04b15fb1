#include "CAlphaButton.h"
#include "CGButton.h"
#include "CGXTButton.h"
#include "ToolkitTestSupport.h"

#include <QApplication>
#include <QTimerEvent>
#include <gtest/gtest.h>
#include <string>

namespace {

using namespace Qt::StringLiterals;
using namespace toolkittest;

constexpr int kId = 8016;
const QPoint kInside(10, 10);
const QPoint kOutside(300, 200);

using Step = void (*)(QWidget&);
const Step MoveIn = [](QWidget& b) { MoveTo(b, kInside); };
const Step Press = [](QWidget& b) { PressAt(b, kInside); };
const Step ReleaseIn = [](QWidget& b) { ReleaseAt(b, kInside); };
const Step MoveOutHeld = [](QWidget& b) { MoveTo(b, kOutside, Qt::LeftButton); };
const Step MoveInHeld = [](QWidget& b) { MoveTo(b, kInside, Qt::LeftButton); };
const Step ReleaseOut = [](QWidget& b) { ReleaseAt(b, kOutside); };
const Step LeaveWindow = [](QWidget& b) { Leave(b); };
const Step Unpress = [](QWidget& b) {
    static_cast<CAlphaButton&>(b).SetState(CAlphaButton::kNormal);
};
const Step Disable = [](QWidget& b) { static_cast<CAlphaButton&>(b).Enable(false); };

void Perform(QWidget& button, const std::vector<Step>& steps) {
    for (Step step : steps) {
        step(button);
    }
}

struct StateCase {
    const char* name;
    bool bKeepPressed;
    std::vector<Step> steps;
    int nState;
    int nCommands;
};

TEST(CAlphaButton, MouseAndOwnerMoveItThroughItsStatesAndAReleaseInsideCommands) {
    const StateCase cases[] = {
        {"hover", false, {MoveIn}, CAlphaButton::kHover, 0},
        {"leave", false, {MoveIn, LeaveWindow}, CAlphaButton::kNormal, 0},
        {"press", false, {MoveIn, Press}, CAlphaButton::kPressed, 0},
        {"click", false, {MoveIn, Press, ReleaseIn}, CAlphaButton::kNormal, 1},
        {"release outside", false, {Press, MoveOutHeld, ReleaseOut}, CAlphaButton::kNormal, 0},
        {"keep pressed", true, {Press, ReleaseIn, LeaveWindow, MoveIn}, CAlphaButton::kPressed, 1},
        {"kept until set", true, {Press, ReleaseIn, Unpress}, CAlphaButton::kNormal, 1},
        {"disabled", true, {Press, ReleaseIn, Disable, LeaveWindow}, CAlphaButton::kDisabled, 1},
    };
    for (const auto& c : cases) {
        RecordingParent parent;
        CAlphaButton button;
        button.Create(u"OK"_s, kWsVisible, QRect(0, 0, 80, 24), &parent, kId);
        button.LoadStrip(QString(), true, false, c.bKeepPressed);
        Perform(button, c.steps);
        EXPECT_EQ(button.State(), c.nState) << c.name;
        EXPECT_EQ(parent.Count(kWmCommand), c.nCommands) << c.name;
        if (c.nCommands > 0) {
            EXPECT_EQ(parent.Delivered()[0].wParam, static_cast<uintptr_t>(kId)) << c.name;
        }
    }
}

TEST(CGButton, MouseMovesItThroughItsStatesAndAClickPostsCommandAndNotice) {
    const StateCase cases[] = {
        {"hover", false, {MoveIn}, CGButton::kHover, 0},
        {"click", false, {MoveIn, Press, ReleaseIn}, CGButton::kNormal, 1},
        // Held down outside: the press waits and comes back with the mouse.
        {"out and back", false, {Press, MoveOutHeld, MoveInHeld}, CGButton::kPressed, 0},
        {"back and release",
         false,
         {Press, MoveOutHeld, MoveInHeld, ReleaseIn},
         CGButton::kNormal,
         1},
        {"release outside", false, {Press, MoveOutHeld, ReleaseOut}, CGButton::kNormal, 0},
    };
    for (const auto& c : cases) {
        RecordingParent parent;
        CGButton button;
        button.CreateWindow(&parent, u"Go"_s, 0, kId, false);
        button.SetImage(0, 0, Strip({0xFF202020, 0xFF404040, 0xFF606060, 0xFF808080}, 40, 20), 40,
                        20, CGButton::kNormal, 20, 0, false, true, QImage());
        Perform(button, c.steps);
        EXPECT_EQ(button.State(), c.nState) << c.name;
        EXPECT_EQ(parent.Count(kWmCommand), c.nCommands) << c.name;
        EXPECT_EQ(parent.Count(kWmButtonClicked), c.nCommands) << c.name;
        for (const Message& message : parent.Delivered()) {
            EXPECT_EQ(message.wParam & 0xFFFF, static_cast<uintptr_t>(kId)) << c.name;
            EXPECT_EQ(message.lParam, reinterpret_cast<intptr_t>(&button)) << c.name;
        }
    }
}

void Tick(CGButton& button) {
    QTimerEvent tick(button.RepeatTimerId());
    QCoreApplication::sendEvent(&button, &tick);
}

TEST(CGButton, AHeldPressRepeatsAfter500MsThenEvery100Ms) {
    RecordingParent parent;
    CGButton button;
    button.CreateWindow(&parent, QString(), 0, kId, true);
    button.SetImage(0, 0, Strip({0xFF202020, 0xFF404040, 0xFF606060, 0xFF808080}, 20, 20), 20, 20,
                    CGButton::kNormal, 20, 0, false, true, QImage());
    PressAt(button, kInside);
    EXPECT_EQ(button.RepeatInterval(), CGButton::kFirstRepeatMs);
    EXPECT_EQ(parent.Count(kWmCommand), 0);
    Tick(button);
    EXPECT_EQ(button.RepeatInterval(), CGButton::kRepeatMs);
    Tick(button);
    EXPECT_EQ(button.RepeatInterval(), CGButton::kRepeatMs);
    EXPECT_EQ(parent.Count(kWmCommand), 2);
    ReleaseAt(button, kInside);
    EXPECT_EQ(button.RepeatInterval(), 0);
    EXPECT_EQ(parent.Count(kWmCommand), 3);
    EXPECT_EQ(parent.Count(kWmButtonClicked), 1);

    // Dragged outside, the press stops repeating.
    PressAt(button, kInside);
    MoveTo(button, kOutside, Qt::LeftButton);
    Tick(button);
    EXPECT_EQ(button.RepeatInterval(), 0);
    EXPECT_EQ(parent.Count(kWmCommand), 3);
}

TEST(SkinnedButtons, TabMovesTheFocusAndItsFrameAndSpacePressesTheFocusedOne) {
    RecordingParent parent;
    auto* pFirst = new CAlphaButton;
    pFirst->Create(u"Yes"_s, kWsVisible, QRect(0, 0, 60, 24), &parent, 11323);
    auto* pSecond = new CGButton;
    pSecond->CreateWindow(&parent, u"No"_s, 0, 11320, false);
    pSecond->SetImage(70, 0, QImage(), 60, 24, CGButton::kNormal, 24, 0, false, true, QImage());
    parent.show();
    QApplication::setActiveWindow(&parent);
    const QImage plain = pFirst->grab().toImage();
    pFirst->setFocus(Qt::MouseFocusReason);
    ASSERT_TRUE(pFirst->hasFocus());
    EXPECT_EQ(pFirst->grab().toImage(), plain) << "no focus frame before the keyboard is used";
    Key(*pFirst, QEvent::KeyPress, Qt::Key_Tab);
    EXPECT_TRUE(pSecond->hasFocus());
    Key(*pSecond, QEvent::KeyPress, Qt::Key_Space);
    EXPECT_EQ(pSecond->State(), CGButton::kPressed);
    Key(*pSecond, QEvent::KeyRelease, Qt::Key_Space);
    Key(*pSecond, QEvent::KeyPress, Qt::Key_Backtab);
    ASSERT_TRUE(pFirst->hasFocus());
    EXPECT_NE(pFirst->grab().toImage(), plain);
    Key(*pFirst, QEvent::KeyPress, Qt::Key_Space);
    Key(*pFirst, QEvent::KeyRelease, Qt::Key_Space);
    const std::vector<Message>& messages = parent.Delivered();
    ASSERT_EQ(parent.Count(kWmCommand), 2);
    EXPECT_EQ(messages[0].wParam, 11320u);
    EXPECT_EQ(messages.back().wParam, 11323u);
}

// A captioned button's name is checked with the message box's buttons.
TEST(SkinnedButtons, PictureButtonsHaveAnAccessibleNameFromTheirTip) {
    QWidget parent;
    CGButton tipped;
    tipped.CreateWindow(&parent, QString(), 0, 5, false);
    tipped.SetTipText(u"Scroll up"_s, true);
    EXPECT_EQ(tipped.accessibleName(), u"Scroll up"_s);
    CGXTButton caption(&parent);
    caption.setToolTip(u"Close"_s);
    EXPECT_EQ(caption.accessibleName(), u"Close"_s);
}

TEST(CGXTButton, ShowsTheIconOfHoverAndPressAndDropsTheMaskColour) {
    QWidget parent;
    CGXTButton button(&parent);
    QImage strip = Strip({0xFF101010, 0xFF202020, 0xFF303030}, 4, 4);
    strip.setPixel(0, 0, 0xFFFF00FF);
    ASSERT_TRUE(button.Setup(strip, 3, kKeyMagenta));
    button.resize(button.sizeHint());
    EXPECT_EQ(button.IconSize(), QSize(4, 4));
    MoveTo(button, QPoint(1, 1));
    EXPECT_EQ(button.CurrentIcon(), CGXTButton::kIconHover);
    PressAt(button, QPoint(1, 1));
    EXPECT_EQ(button.CurrentIcon(), CGXTButton::kIconPressed);
    ReleaseAt(button, QPoint(1, 1));
    Leave(button);
    EXPECT_EQ(button.CurrentIcon(), CGXTButton::kIconNormal);
    QImage shown(button.size(), QImage::Format_ARGB32);
    shown.fill(Qt::green);
    button.render(&shown, QPoint(), QRegion(), QWidget::RenderFlags());
    EXPECT_EQ(shown.pixel(0, 0), QColor(Qt::green).rgba());
    EXPECT_EQ(shown.pixel(1, 0), 0xFF101010u);
    EXPECT_FALSE(button.Setup(QImage(), 3, kKeyMagenta));
}

} // namespace
