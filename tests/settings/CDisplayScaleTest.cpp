// The two interface sizes, and the DPI setting that is read once.
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

TEST(CDisplayScale, TwoSizesOnlyAndTheSettingIsReadOnce) {
    CDisplayScale::SetDpiSource(TestDpi);
    const struct {
        bool bAware;
        double dpi;
        double dpiScale;
        double forcedScale;
        double uiScale;
    } cases[] = {
        {false, 144, 1.0, 1.5, 1.0},  {true, 96, 1.0, 1.0, 1.0},
        {true, 120, 1.25, 1.25, 1.0}, {true, 143, 143 / 96.0, 143 / 96.0, 1.0},
        {true, 144, 1.5, 1.5, 1.5},   {true, 192, 2.0, 2.0, 1.5},
    };
    for (const auto& c : cases) {
        testsupport::TempDir dir;
        CRegistry registry(QString::fromStdString((dir / "u.db").string()),
                           QString::fromStdString((dir / "m.db").string()));
        DwordReg(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
                 QStringLiteral("EnableDPIAware"), true, &registry) = c.bAware ? 1 : 0;
        g_dpi = c.dpi;
        CDisplayScale scale(&registry);
        EXPECT_DOUBLE_EQ(scale.GetDpiScale(false), c.dpiScale) << c.dpi;
        EXPECT_DOUBLE_EQ(scale.GetDpiScale(true), c.forcedScale) << c.dpi;
        EXPECT_DOUBLE_EQ(scale.GetUiScale(), c.uiScale) << c.dpi;
        // Changing the setting takes a restart.
        DwordReg(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
                 QStringLiteral("EnableDPIAware"), true, &registry) = c.bAware ? 0 : 1;
        EXPECT_DOUBLE_EQ(scale.GetUiScale(), c.uiScale) << c.dpi;
        EXPECT_EQ(scale.IsDpiAwareEnabled(), c.bAware ? 0u : 1u) << c.dpi;
    }
    CDisplayScale::SetDpiSource(nullptr);
}

} // namespace
