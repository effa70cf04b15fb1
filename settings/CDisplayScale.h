// How much the interface is scaled: by the display's DPI, and in two steps only (1.0 or 1.5),
// unless the machine-wide EnableDPIAware is 0. The setting is read once per process, so
// turning it on takes a restart.
#pragma once

class CRegistry;

class CDisplayScale {
public:
    // The screen's logical DPI; the toolkit supplies it, as the core has no screen.
    using DpiSource = double (*)();
    static constexpr double kBaseDpi = 96.0;

    explicit CDisplayScale(CRegistry* pRegistry = nullptr) : m_pRegistry(pRegistry) {}

    // DPI / 96 unless EnableDPIAware is 0 and not bForced; else 1.0.
    double GetDpiScale(bool bForced);
    // 1.5 at a DPI scale of 1.5 or more unless EnableDPIAware is 0; 1.0 otherwise.
    double GetUiScale();
    // EnableDPIAware, 0 if absent; read anew on every call.
    unsigned IsDpiAwareEnabled() const;

    static void SetDpiSource(DpiSource pfnSource);
    // The program's instance.
    static CDisplayScale& Instance();

private:
    bool FollowsScreen() const;

    CRegistry* m_pRegistry;
    // Each user of the setting reads it once, on its own first call.
    int m_nDpiScaleAware = -1;
    int m_nUiScaleAware = -1;
};

double GetDpiScale(bool bForced);
double GetUiScale();
unsigned IsDpiAwareEnabled();
