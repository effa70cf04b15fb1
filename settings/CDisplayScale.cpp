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

double CDisplayScale::GetDpiScale(bool bForced) {
    if (m_nDpiScaleAware < 0) {
        m_nDpiScaleAware = IsDpiAwareEnabled() != 0 ? 1 : 0;
    }
    if (m_nDpiScaleAware == 0 && !bForced) {
        return 1.0;
    }
    return LogicalDpi() / kBaseDpi;
}

double CDisplayScale::GetUiScale() {
    if (m_nUiScaleAware < 0) {
        m_nUiScaleAware = IsDpiAwareEnabled() != 0 ? 1 : 0;
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
