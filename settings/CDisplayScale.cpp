#include "CDisplayScale.h"

#include "RegTypes.h"
#include "ScalarReg.h"

namespace {

constexpr double kHighScale = 1.5;

CDisplayScale::DpiSource g_pfnDpiSource = nullptr;

double LogicalDpi() {
    return g_pfnDpiSource != nullptr ? g_pfnDpiSource() : CDisplayScale::kBaseDpi;
}

} // namespace

unsigned CDisplayScale::IsDpiAwareEnabled() const {
    DwordReg value(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
                   QStringLiteral("EnableDPIAware"), false, m_pRegistry);
    value.Read();
    return value.Get();
}

// A Linux desktop scales programs only when they scale themselves: there is no system
// stretching of a program that does not. A scale the user gave the desktop is the wish to
// see everything larger, so without the setting the interface follows the screen; an
// explicit 0 keeps it at its pixel sizes.
bool CDisplayScale::FollowsScreen() const {
    DwordReg value(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
                   QStringLiteral("EnableDPIAware"), false, m_pRegistry);
    return !value.Read() || value.Get() != 0;
}

double CDisplayScale::GetDpiScale(bool bForced) {
    if (m_nDpiScaleAware < 0) {
        m_nDpiScaleAware = FollowsScreen() ? 1 : 0;
    }
    if (m_nDpiScaleAware == 0 && !bForced) {
        return 1.0;
    }
    return LogicalDpi() / kBaseDpi;
}

double CDisplayScale::GetUiScale() {
    if (m_nUiScaleAware < 0) {
        m_nUiScaleAware = FollowsScreen() ? 1 : 0;
    }
    if (m_nUiScaleAware == 0) {
        return 1.0;
    }
    return GetDpiScale(false) < kHighScale ? 1.0 : kHighScale;
}

void CDisplayScale::SetDpiSource(DpiSource pfnSource) {
    g_pfnDpiSource = pfnSource;
}

CDisplayScale& CDisplayScale::Instance() {
    static CDisplayScale scale;
    return scale;
}

double GetDpiScale(bool bForced) {
    return CDisplayScale::Instance().GetDpiScale(bForced);
}

double GetUiScale() {
    return CDisplayScale::Instance().GetUiScale();
}

unsigned IsDpiAwareEnabled() {
    return CDisplayScale::Instance().IsDpiAwareEnabled();
}
