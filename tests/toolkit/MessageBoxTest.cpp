#include "CAlphaButton.h"
#include "CAlphaStatic.h"
#include "CGStatic.h"
#include "CTvgMessageBox.h"
#include "CTvnStringTable.h"
#include "FileSystemHelpers.h"
#include "RestrictedTargets.h"
#include "ToolkitTestSupport.h"
#include "TvnText.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using BoxAction = std::function<void(CTvgMessageBox&)>;

constexpr int kLastResortMs = 2000;
const QString kShortText = u"Cancel the operation!!"_s;

class MessageBox : public ::testing::Test {
protected:
    static std::unique_ptr<CTvgMessageBox> Box(const QString& text, uint32_t nType = mb::kOk,
                                               bool bTopMost = false) {
        return std::make_unique<CTvgMessageBox>(text, nType, tvn::kBoxTitle, nullptr,
                                                QString::fromUtf16(kDefaultMessageIcon), bTopMost);
    }

    // A box the action leaves open is cancelled after a while, so that a fault fails the test
    // instead of hanging it.
    static int Run(uint32_t nType, const BoxAction& action, const QString& text = kShortText) {
        QTimer poll;
        poll.setInterval(5);
        QObject::connect(&poll, &QTimer::timeout, [&] {
            QPointer<CTvgMessageBox> pBox =
                qobject_cast<CTvgMessageBox*>(QApplication::activeModalWidget());
            if (pBox == nullptr || !pBox->isVisible()) {
                return;
            }
            poll.stop();
            QTimer::singleShot(kLastResortMs, pBox.data(), &QDialog::reject);
            action(*pBox);
        });
        poll.start();
        return ShowMessageBoxText(text, nType, tvn::kBoxTitle, nullptr,
                                  QString::fromUtf16(kDefaultMessageIcon), false);
    }

    toolkittest::CommittedSkin m_skin;
};

CAlphaButton* ButtonOf(CTvgMessageBox& box, int nId) {
    const std::vector<CAlphaButton*> buttons = box.Buttons();
    const auto it = std::ranges::find(buttons, nId, &CAlphaButton::Id);
    return nId == CTvgMessageBox::kCloseId ? box.CloseButton()
           : it != buttons.end()           ? *it
                                           : nullptr;
}

QString Lines(int nCount) {
    return QStringList(nCount, u"Line"_s).join(u'\n');
}

TEST_F(MessageBox, GrowsWithItsTextWithinItsLimits) {
    const QString sentence = u"The files could not be extracted to the folder you chose. "_s;
    constexpr int kAny = 10000;
    const struct {
        const char* name;
        QString text;
        QSize least;
        QSize most;
    } cases[] = {
        {"short", kShortText, {468, 208}, {468, 208}},
        {"empty", QString(), {468, 208}, {468, 208}},
        {"four lines fit the first 88 pixels", Lines(4), {468, 208}, {468, 208}},
        {"long", sentence.repeated(12), {469, 208}, {kAny, 768}},
        {"one very long line kept on one line",
         u"x"_s.repeated(600),
         {468 + 875, 208},
         {kAny, 208}},
        {"ten lines", Lines(10), {468, 209}, {468, 767}},
        {"very tall", Lines(80), {468, 768}, {468, 768}},
    };
    for (const auto& c : cases) {
        const auto pBox = Box(c.text);
        const QSize size = pBox->BoxSize();
        const QRect text = pBox->TextRect();
        SCOPED_TRACE(c.name);
        EXPECT_EQ(pBox->size(), size) << "one logical pixel a device pixel offscreen";
        EXPECT_EQ(text.left(), 100);
        EXPECT_EQ(size.width(), 468 + qMax(0, text.width() - 318));
        EXPECT_EQ(size.height(), 208 + qBound(0, text.height() - 88, 560));
        EXPECT_TRUE(size.width() >= c.least.width() && size.height() >= c.least.height() &&
                    size.width() <= c.most.width() && size.height() <= c.most.height())
            << size.width() << "x" << size.height();
        EXPECT_GE(text.top(), 31) << "never over the title line";
    }
}

TEST_F(MessageBox, ShortTextBoxIsShapedNamedAndStaysOnTopWhenAsked) {
    const auto pBox = Box(kShortText, mb::kOk, true);
    const QRect text = pBox->TextRect();
    ASSERT_NE(pBox->Icon(), nullptr);
    EXPECT_NEAR(pBox->Icon()->geometry().center().y(), text.center().y(), 1);
    EXPECT_FALSE(pBox->mask().contains(QPoint(0, 0))) << "rounded corner";
    EXPECT_TRUE(pBox->mask().contains(QPoint(234, 100)));
    EXPECT_NE(RefFromRgb(pBox->Body().pixel(234, 100)), kKeyBlue);
    EXPECT_EQ(RefFromRgb(pBox->Body().pixel(0, 0)), kKeyBlue);
    EXPECT_EQ(pBox->accessibleName(), u"Ovrin Viewer"_s);
    EXPECT_EQ(pBox->accessibleDescription(), kShortText);
    EXPECT_TRUE(pBox->windowFlags().testFlags(Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint));
    EXPECT_FALSE(Box(kShortText)->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

TEST_F(MessageBox, TypeChoosesButtonsRightToLeftAndIcon) {
    const struct {
        uint32_t nType;
        QStringList captions; // right to left
        const char* icon;     // file name, or empty for none
    } cases[] = {
        {mb::kOk, {u"OK"_s}, "icon_warning.png"},
        {mb::kOkCancel | mb::kIconQuestion, {u"Cancel"_s, u"OK"_s}, "icon_question.png"},
        {mb::kAbortRetryIgnore, {u"Ignore"_s, u"Retry"_s, u"Abort"_s}, ""},
        {mb::kYesNoCancel, {u"Cancel"_s, u"No"_s, u"Yes"_s}, "icon_question.png"},
        {mb::kYesNo, {u"No"_s, u"Yes"_s}, "icon_question.png"},
        {mb::kYesNo | mb::kIconWarning, {u"No"_s, u"Yes"_s}, "icon_exclamation.png"},
        {mb::kOk | mb::kIconWarning, {u"OK"_s}, "icon_warning.png"},
        {mb::kRetryCancel, {u"Cancel"_s, u"Retry"_s}, ""},
        {mb::kRetryCancel | mb::kIconError, {u"Cancel"_s, u"Retry"_s}, "icon_error.png"},
        {mb::kOkCancel | mb::kIconInformation, {u"Cancel"_s, u"OK"_s}, "icon_exclamation.png"},
        {6, {}, "icon_warning.png"},
        {6 | mb::kIconError, {u"OK"_s}, "icon_warning.png"},
        {6 | mb::kIconInformation, {u"OK"_s}, "icon_exclamation.png"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.nType);
        const auto pBox = Box(kShortText, c.nType);
        const QSize size = pBox->BoxSize();
        QStringList captions;
        int i = 1;
        for (CAlphaButton* pButton : pBox->Buttons()) {
            captions.append(pButton->accessibleName());
            EXPECT_EQ(pButton->geometry(),
                      QRect(size.width() - 146 * i++, size.height() - 34, 136, 24));
        }
        EXPECT_EQ(captions, c.captions);
        EXPECT_EQ(pBox->IconPath().section(u'\\', -1), QLatin1StringView(c.icon));
        EXPECT_EQ(pBox->Icon() != nullptr && pBox->Icon()->HasImage(), *c.icon != '\0');
        // Only a box with buttons can be closed.
        ASSERT_EQ(pBox->CloseButton() != nullptr, !c.captions.isEmpty());
        if (pBox->CloseButton() != nullptr) {
            EXPECT_EQ(pBox->CloseButton()->geometry(), QRect(size.width() - 30, 5, 20, 20));
            EXPECT_EQ(pBox->CloseButton()->accessibleName(), u"Close"_s);
        }
    }
}

TEST_F(MessageBox, EachButtonAndKeyGivesItsResult) {
    const struct {
        uint32_t nType;
        int nButton; // 0: press nKey instead
        int nKey;
        int nResult;
    } cases[] = {
        {mb::kOk, tvn::kButtonOk, 0, mb::kIdOk},
        {mb::kOk, CTvgMessageBox::kCloseId, 0, mb::kIdCancel},
        {mb::kOkCancel, tvn::kButtonCancel, 0, mb::kIdCancel},
        {mb::kAbortRetryIgnore, tvn::kButtonAbort, 0, mb::kIdAbort},
        {mb::kAbortRetryIgnore, tvn::kButtonRetry, 0, mb::kIdRetry},
        {mb::kAbortRetryIgnore, tvn::kButtonIgnore, 0, mb::kIdIgnore},
        {mb::kYesNoCancel, tvn::kButtonYes, 0, mb::kIdYes},
        {mb::kYesNoCancel, tvn::kButtonNo, 0, mb::kIdNo},
        {mb::kYesNo, 0, Qt::Key_Escape, mb::kIdCancel},
        {mb::kYesNo, 0, Qt::Key_Return, mb::kIdOk},
        {mb::kRetryCancel, 0, Qt::Key_Enter, mb::kIdOk},
        {6, 0, Qt::Key_Return, mb::kIdOk},
        {6, 0, Qt::Key_Escape, mb::kIdCancel},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.nType << " " << c.nButton << " " << c.nKey);
        const int nResult = Run(c.nType, [&](CTvgMessageBox& box) {
            EXPECT_EQ(CTvgMessageBox::OpenCount(), 1);
            if (c.nButton == 0) {
                toolkittest::Key(box, QEvent::KeyPress, c.nKey);
                return;
            }
            CAlphaButton* pButton = ButtonOf(box, c.nButton);
            ASSERT_NE(pButton, nullptr);
            toolkittest::Click(*pButton);
        });
        EXPECT_EQ(nResult, c.nResult);
        EXPECT_EQ(CTvgMessageBox::OpenCount(), 0);
    }
}

TEST_F(MessageBox, PressesOnTheBodyAndTheTitleLineStartADragAndLeaveTheBoxOpen) {
    const int nResult = Run(mb::kOkCancel, [](CTvgMessageBox& box) {
        toolkittest::ClickAt(box, QPoint(20, 100));
        toolkittest::PressAt(box, box.TitleStatic()->geometry().center());
        EXPECT_TRUE(box.isVisible());
        toolkittest::Key(box, QEvent::KeyPress, Qt::Key_Escape);
    });
    EXPECT_EQ(nResult, mb::kIdCancel);
}

TEST_F(MessageBox, MissingPicturesLeaveKeyColourAndNoIcon) {
    toolkittest::TempInstall empty;
    const auto pBox = Box(kShortText, mb::kOkCancel);
    EXPECT_EQ(pBox->BoxSize(), QSize(468, 208));
    EXPECT_EQ(RefFromRgb(pBox->Body().pixel(234, 100)), kKeyBlue);
    ASSERT_NE(pBox->Icon(), nullptr);
    EXPECT_FALSE(pBox->Icon()->HasImage());
    EXPECT_EQ(pBox->Buttons().size(), 2u);
    EXPECT_FALSE(pBox->grab().isNull());
    EXPECT_EQ(Run(mb::kOkCancel,
                  [](CTvgMessageBox& box) { toolkittest::Click(*ButtonOf(box, tvn::kButtonOk)); }),
              mb::kIdOk);
}

TEST_F(MessageBox, AnEntryThatCannotBeRemovedIsReportedInABox) {
    testsupport::TempDir dir;
    testsupport::WriteFile(dir / "stuck/a.txt", {'a'});
    std::filesystem::create_directories(dir / "data");
    std::filesystem::permissions(dir / "stuck", std::filesystem::perms::owner_read |
                                                    std::filesystem::perms::owner_exec);
    toolkittest::BoxCatcher boxes;
    {
        testsupport::NoAccessOverride asUser;
        qputenv("XDG_DATA_HOME", (dir / "data").c_str());
        EmptyFolder(QString::fromStdString((dir / "stuck").string()), false);
        qunsetenv("XDG_DATA_HOME");
    }
    std::filesystem::permissions(dir / "stuck", std::filesystem::perms::owner_all);
    EXPECT_EQ(boxes.m_lstTexts, QStringList{u"Cancel the operation!!"_s});
}

} // namespace
