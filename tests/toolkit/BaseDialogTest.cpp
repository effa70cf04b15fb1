#include "CAlphaButton.h"
#include "CRegistry.h"
#include "CTvgBaseDialog.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "ToolkitTestSupport.h"

#include <QApplication>
#include <gtest/gtest.h>
#include <optional>

namespace {

using namespace Qt::StringLiterals;
using namespace toolkittest;

constexpr char16_t kBackdrop[] = u"Image\\Dialogs\\ConfirmDialog\\bg_confirm.png";
constexpr QSize kBackdropSize(620, 301);
constexpr int kOk = 8016;
constexpr int kCancel = 6084;
constexpr uint32_t kAllBits[] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80};

class TestDialog : public CTvgBaseDialog {
public:
    int m_nCancels = 0;
    std::vector<int> m_commands;

protected:
    bool OnCommand(int nId) override {
        m_commands.push_back(nId);
        return CTvgBaseDialog::OnCommand(nId);
    }
    void OnCancel() override {
        ++m_nCancels;
        CTvgBaseDialog::OnCancel();
    }
};

QWidget* Control(const CTvgBaseDialog& dialog, uint32_t nBit) {
    QWidget* pControl = nullptr;
    dialog.GetControl(nBit, &pControl);
    return pControl;
}

int32_t Make(CTvgBaseDialog& dialog, uint32_t nStyle, int x = 0, int y = 0) {
    return dialog.CreateControls(uint32_t{tvn::kConfirmTitle}, QString::fromUtf16(kBackdrop),
                                 uint32_t{kOk}, kOk, uint32_t{kCancel}, kCancel, x, y, nStyle);
}

TEST(CTvgBaseDialog, StyleZeroMakesNoControlAndStillPaintsItsPicture) {
    CommittedSkin skin;
    CTvgBaseDialog dialog;
    ASSERT_EQ(Make(dialog, 0), kStatusOk);
    EXPECT_TRUE(dialog.findChildren<QWidget*>().isEmpty());
    EXPECT_EQ(dialog.size(), kBackdropSize);
    const QImage backdrop = LoadInstallImage(QString::fromUtf16(kBackdrop), false);
    const QImage shown = dialog.grab().toImage();
    for (const QPoint pt : {QPoint(310, 150), QPoint(100, 20), QPoint(600, 290)}) {
        EXPECT_EQ(shown.pixel(pt), backdrop.pixel(pt)) << pt.x() << "," << pt.y();
    }
}

TEST(CTvgBaseDialog, ThePushButtonsEndSixteenPixelsFromTheRightEdge) {
    CommittedSkin skin;
    const int w = kBackdropSize.width();
    const int h = kBackdropSize.height();
    const struct {
        uint32_t nStyle;
        std::optional<QRect> first;
        std::optional<QRect> second;
    } cases[] = {
        {0x04, QRect(w - 159, h - 36, 136, 24), std::nullopt},
        {0x0C, QRect(w - 16 - 7 - 2 * 136, h - 36, 136, 24), QRect(w - 16 - 136, h - 36, 136, 24)},
        {0x08, std::nullopt, QRect(w - 16 - 136, h - 36, 136, 24)},
    };
    for (const auto& c : cases) {
        CTvgBaseDialog dialog;
        Make(dialog, c.nStyle);
        const QWidget* pFirst = Control(dialog, CTvgBaseDialog::kFirstButton);
        const QWidget* pSecond = Control(dialog, CTvgBaseDialog::kSecondButton);
        ASSERT_EQ(pFirst != nullptr, c.first.has_value()) << c.nStyle;
        ASSERT_EQ(pSecond != nullptr, c.second.has_value()) << c.nStyle;
        if (pFirst != nullptr) {
            EXPECT_EQ(pFirst->geometry(), *c.first) << c.nStyle;
            EXPECT_EQ(static_cast<const CAlphaButton*>(pFirst)->Caption(), u"OK"_s);
        }
        if (pSecond != nullptr) {
            EXPECT_EQ(pSecond->geometry(), *c.second) << c.nStyle;
        }
    }
}

TEST(CTvgBaseDialog, ARaisedCaptionMovesTitleAndCaptionButtonsUpButNotTheIcon) {
    CommittedSkin skin;
    const int w = kBackdropSize.width();
    for (const bool bRaised : {false, true}) {
        for (const QPoint offset : {QPoint(0, 0), QPoint(-4, 3)}) {
            CTvgBaseDialog dialog;
            dialog.SetCaptionRaised(bRaised);
            Make(dialog, 0xF3, offset.x(), offset.y());
            const int y = 11 + offset.y() - (bRaised ? 5 : 0);
            const struct {
                uint32_t nBit;
                QPoint at;
            } places[] = {
                {CTvgBaseDialog::kTitle, QPoint((w - 400) / 2 + offset.x(), y)},
                {CTvgBaseDialog::kExtra, QPoint(w - 81 + offset.x(), y)},
                {CTvgBaseDialog::kMinimise, QPoint(w - 54 + offset.x(), y)},
                {CTvgBaseDialog::kClose, QPoint(w - 27 + offset.x(), y)},
                {CTvgBaseDialog::kLogo, QPoint(42, 14 - (bRaised ? 5 : 0))},
                {CTvgBaseDialog::kIcon, QPoint(5, 5)},
            };
            for (const auto& place : places) {
                const QWidget* pControl = Control(dialog, place.nBit);
                ASSERT_NE(pControl, nullptr) << place.nBit;
                EXPECT_EQ(pControl->pos(), place.at)
                    << "bit " << place.nBit << " raised " << bRaised << " offset " << offset.x();
            }
        }
    }
}

TEST(CTvgBaseDialog, TheUpdateButtonFollowsTheTwoSettings) {
    CommittedSkin skin;
    const struct {
        std::optional<uint32_t> checkUpdate;
        std::optional<uint32_t> disableUpgrade;
        bool bEnabled;
    } cases[] = {
        {std::nullopt, std::nullopt, true},
        {0u, std::nullopt, false},
        {1u, std::nullopt, true},
        {std::nullopt, 1u, false},
        {1u, 1u, false},
        {1u, 0u, true},
        {0u, 0u, false},
    };
    for (const auto& c : cases) {
        testsupport::TempDir stores;
        CRegistry registry(QString::fromStdString((stores / "u.db").string()),
                           QString::fromStdString((stores / "m.db").string()));
        const QString key = QString::fromUtf16(kSettingsKey);
        if (c.checkUpdate) {
            DwordReg(RegRoot::CurrentUser, key, u"CheckUpdate"_s, true, &registry) = *c.checkUpdate;
        }
        if (c.disableUpgrade) {
            DwordReg(RegRoot::CurrentUser, key, u"DisableUpgradeBtn"_s, true, &registry) =
                *c.disableUpgrade;
        }
        CTvgBaseDialog dialog;
        dialog.SetRegistry(&registry);
        Make(dialog, CTvgBaseDialog::kExtra);
        EXPECT_EQ(Control(dialog, CTvgBaseDialog::kExtra)->isEnabled(), c.bEnabled)
            << c.checkUpdate.value_or(99) << " " << c.disableUpgrade.value_or(99);
    }
}

TEST(CTvgBaseDialog, EnterPressesNothingEscapeCancelsTabAndSpaceWorkTheButtons) {
    CommittedSkin skin;
    TestDialog dialog;
    Make(dialog, 0xFF);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    auto* pFirst = static_cast<CAlphaButton*>(Control(dialog, CTvgBaseDialog::kFirstButton));
    pFirst->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), pFirst);

    Key(*pFirst, QEvent::KeyPress, Qt::Key_Return);
    QCoreApplication::sendPostedEvents(&dialog);
    EXPECT_TRUE(dialog.m_commands.empty());
    EXPECT_EQ(dialog.m_nCancels, 0);
    EXPECT_TRUE(dialog.isVisible());

    Key(*pFirst, QEvent::KeyPress, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), Control(dialog, CTvgBaseDialog::kSecondButton));
    QWidget* pFocused = QApplication::focusWidget();
    Key(*pFocused, QEvent::KeyPress, Qt::Key_Space);
    Key(*pFocused, QEvent::KeyRelease, Qt::Key_Space);
    QCoreApplication::sendPostedEvents(&dialog);
    EXPECT_EQ(dialog.m_commands, std::vector<int>{kCancel});

    Key(*pFocused, QEvent::KeyPress, Qt::Key_Escape);
    EXPECT_EQ(dialog.m_nCancels, 1);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

TEST(CTvgBaseDialog, MissingPicturesLeaveTheControlsWorking) {
    TempInstall install;
    TestDialog dialog;
    dialog.resize(300, 200);
    EXPECT_EQ(Make(dialog, 0xFF), kStatusFailed);
    EXPECT_EQ(dialog.size(), QSize(300, 200)) << "the window keeps its size";
    for (uint32_t nBit : kAllBits) {
        EXPECT_NE(Control(dialog, nBit), nullptr) << nBit;
    }
    dialog.show();
    EXPECT_FALSE(dialog.grab().isNull());
    Click(*Control(dialog, CTvgBaseDialog::kClose));
    QCoreApplication::sendPostedEvents(&dialog);
    EXPECT_EQ(dialog.m_nCancels, 1);
}

} // namespace
