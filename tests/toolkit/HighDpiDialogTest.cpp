// The skinned controls on a 1.5 screen. With EnableDPIAware each dialog is its 1.0 layout made
// larger as a whole, so that no button falls outside its window; without it nothing moves.
#include "CAlphaButton.h"
#include "CDisplayScale.h"
#include "CProgressDlg.h"
#include "CTvgBaseDialog.h"
#include "CTvgMessageBox.h"
#include "DevicePixels.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "SkinFonts.h"
#include "ToolkitHooks.h"
#include "ToolkitTestSupport.h"

#include <QWidget>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace {

using namespace Qt::StringLiterals;
using namespace toolkittest;

constexpr int kOk = 8016;
constexpr int kCancel = 6084;

struct Layout {
    QSize window;
    std::vector<QRect> children;
};

Layout LayoutOf(const std::function<std::unique_ptr<QWidget>()>& make) {
    const std::unique_ptr<QWidget> pWindow = make();
    Layout layout{pWindow->size(), {}};
    for (const QWidget* pChild : pWindow->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        layout.children.push_back(pChild->geometry());
    }
    return layout;
}

// Each edge within one pixel of the layout at 1.0, which has grown with it: Qt's logical
// pixels round the layout at 1.0 before it is scaled.
bool Near(const QRect& actual, const QRectF& expected, double scale) {
    const auto near = [scale](qreal a, qreal b) { return qAbs(a - b) <= scale; };
    return near(actual.left(), expected.left()) && near(actual.top(), expected.top()) &&
           near(actual.right() + 1, expected.right()) &&
           near(actual.bottom() + 1, expected.bottom());
}

// Run twice by CTest on a 1.5 screen (QT_SCALE_FACTOR), with EnableDPIAware set and unset in a
// machine store of its own, as the setting is read once a process.
TEST(HighDpi, TheSettingScalesButtonsFontsAndEveryDialogAsAWhole) {
    const QByteArray aware = qgetenv("OVRIN_TEST_DPI_AWARE");
    if (aware.isEmpty()) {
        GTEST_SKIP() << "runs only with a scale factor and a store of its own";
    }
    const bool bAware = aware == "1";
    DwordReg(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey), u"EnableDPIAware"_s, true) =
        bAware ? 1 : 0;
    const double scale = bAware ? 1.5 : 1.0;
    EXPECT_DOUBLE_EQ(ScreenDeviceDpi(), 144.0);
    EXPECT_DOUBLE_EQ(GetUiScale(), scale);

    // A button of 100 by 30: 150 by 45 screen pixels when aware, which Qt's ratio of 1.5
    // places as 100 by 30; unaware it keeps 100 by 30 screen pixels, 67 by 20 for Qt.
    QWidget parent;
    CAlphaButton button;
    button.Create(u"OK"_s, kWsVisible, QRect(0, 0, 100, 30), &parent, 1);
    EXPECT_EQ(button.size(), bAware ? QSize(100, 30) : QSize(67, 20));
    // The label font: 12 screen pixels, 18 when aware; Qt's ratio is undone when painting.
    EXPECT_EQ(MakeLabelFont().pixelSize(), bAware ? 18 : 12);

    CommittedSkin skin;
    const struct {
        const char* name;
        QSize deviceSizeAtOne;
        std::function<std::unique_ptr<QWidget>()> make;
    } cases[] = {
        {"message box",
         {468, 208},
         [] {
             return std::make_unique<CTvgMessageBox>(u"Cancel the operation?"_s,
                                                     mb::kOkCancel | mb::kIconQuestion,
                                                     tvn::kBoxTitle, nullptr, QString(), false);
         }},
        {"progress",
         {468, 164},
         [] { return std::make_unique<CProgressDlg>(nullptr, u"Progress"_s, nullptr); }},
        {"base dialog",
         {620, 301},
         [] {
             auto pDialog = std::make_unique<CTvgBaseDialog>();
             pDialog->CreateControls(uint32_t{tvn::kConfirmTitle},
                                     u"Image\\Dialogs\\ConfirmDialog\\bg_confirm.png"_s,
                                     uint32_t{kOk}, kOk, uint32_t{kCancel}, kCancel, 0, 0, 0xFF);
             return pDialog;
         }},
    };
    for (const auto& c : cases) {
        // The same dialog laid out at 1.0 on this screen: the scale follows a 96 DPI screen.
        CDisplayScale::SetDpiSource([] { return CDisplayScale::kBaseDpi; });
        const Layout atOne = LayoutOf(c.make);
        CDisplayScale::SetDpiSource(ScreenDeviceDpi);
        const Layout scaled = LayoutOf(c.make);

        const qreal dpr = DevicePixelRatioOf(nullptr);
        const QSize device = c.deviceSizeAtOne;
        EXPECT_EQ(atOne.window, ToLogical(device, dpr)) << c.name;
        const QSize scaledDevice(static_cast<int>(device.width() * scale),
                                 static_cast<int>(device.height() * scale));
        EXPECT_EQ(scaled.window, ToLogical(scaledDevice, dpr)) << c.name;
        ASSERT_EQ(scaled.children.size(), atOne.children.size()) << c.name;
        for (size_t i = 0; i < scaled.children.size(); ++i) {
            const QRect& child = scaled.children[i];
            const QRectF& one = QRectF(atOne.children[i]);
            const QRectF expected(one.topLeft() * scale, one.size() * scale);
            EXPECT_TRUE(QRect(QPoint(0, 0), scaled.window).contains(child)) << c.name << " " << i;
            EXPECT_TRUE(Near(child, expected, scale)) << c.name << " child " << i;
        }
    }
}

} // namespace
