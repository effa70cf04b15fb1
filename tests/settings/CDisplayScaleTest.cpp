#include "CDisplayScale.h"
#include "CRegistry.h"
#include "ScalarReg.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

namespace {

double g_dpi = 96.0;
double TestDpi() {
    return g_dpi;
}

constexpr int kAbsent = -1;

// EnableDPIAware 0 keeps the pixel sizes; 1, or no value at all, follows the screen.
TEST(CDisplayScale, TwoSizesOnlyAndTheSettingIsReadOnce) {
    CDisplayScale::SetDpiSource(TestDpi);
    const struct {
        int nSetting;
        double dpi;
        double dpiScale;
        double forcedScale;
        double uiScale;
    } cases[] = {
        {0, 144, 1.0, 1.5, 1.0},       {1, 96, 1.0, 1.0, 1.0},
        {1, 120, 1.25, 1.25, 1.0},     {1, 143, 143 / 96.0, 143 / 96.0, 1.0},
        {1, 144, 1.5, 1.5, 1.5},       {1, 192, 2.0, 2.0, 1.5},
        {kAbsent, 144, 1.5, 1.5, 1.5},
    };
    for (const auto& c : cases) {
        testsupport::TempDir dir;
        CRegistry registry(QString::fromStdString((dir / "u.db").string()),
                           QString::fromStdString((dir / "m.db").string()));
        if (c.nSetting != kAbsent) {
            DwordReg(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
                     QStringLiteral("EnableDPIAware"), true, &registry) = c.nSetting;
        }
        g_dpi = c.dpi;
        CDisplayScale scale(&registry);
        EXPECT_DOUBLE_EQ(scale.GetDpiScale(false), c.dpiScale) << c.dpi;
        EXPECT_DOUBLE_EQ(scale.GetDpiScale(true), c.forcedScale) << c.dpi;
        EXPECT_DOUBLE_EQ(scale.GetUiScale(), c.uiScale) << c.dpi;
        // Changing the setting takes a restart.
        DwordReg(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
                 QStringLiteral("EnableDPIAware"), true, &registry) = c.nSetting == 0 ? 1 : 0;
        EXPECT_DOUBLE_EQ(scale.GetUiScale(), c.uiScale) << c.dpi;
        EXPECT_EQ(scale.IsDpiAwareEnabled(), c.nSetting == 0 ? 1u : 0u) << c.dpi;
    }
    CDisplayScale::SetDpiSource(nullptr);
}

} // namespace
