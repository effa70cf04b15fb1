// Loads the engine library and creates its objects through its class factory.
#pragma once

#include "IQmzUnknown.h"
#include "QmzExports.h"
#include "QmzTypes.h"

#include <QString>

class CEngineModule {
public:
    CEngineModule() = default;
    // Releases the library only if it says it can be unloaded.
    ~CEngineModule();
    CEngineModule(const CEngineModule&) = delete;
    CEngineModule& operator=(const CEngineModule&) = delete;

    qmz::Result Load(const QString& path);
    qmz::Result CreateObject(const qmz::Guid& clsid, qmz::IQmzUnknown* pOuter, const qmz::Guid& iid,
                             void** ppv);

    qmz::Result m_hrStatus = qmz::kFail;

private:
    void Unload();

    void* m_hModule = nullptr;
    qmz::PfnDllGetClassObject m_pfnDllGetClassObject = nullptr;
    qmz::PfnDllCanUnloadNow m_pfnDllCanUnloadNow = nullptr;
};
