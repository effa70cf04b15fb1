#include "CEngineModule.h"

#include "IClassFactory.h"

#include <QFile>
#include <dlfcn.h>

CEngineModule::~CEngineModule() {
    if (m_hrStatus >= 0 && m_pfnDllCanUnloadNow() == qmz::kOk) {
        dlclose(m_hModule);
    }
}

qmz::Result CEngineModule::Load(const QString& path) {
    m_hrStatus = qmz::kFail;
    m_hModule = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
    if (m_hModule != nullptr) {
        m_pfnDllGetClassObject = reinterpret_cast<qmz::PfnDllGetClassObject>(
            dlsym(m_hModule, qmz::kExportGetClassObject));
        m_pfnDllCanUnloadNow =
            reinterpret_cast<qmz::PfnDllCanUnloadNow>(dlsym(m_hModule, qmz::kExportCanUnloadNow));
    }
    if (m_hModule != nullptr && m_pfnDllGetClassObject != nullptr &&
        m_pfnDllCanUnloadNow != nullptr) {
        m_hrStatus = qmz::kOk;
    } else {
        Unload();
    }
    return m_hrStatus;
}

void CEngineModule::Unload() {
    if (m_hModule != nullptr) {
        dlclose(m_hModule);
    }
    m_hModule = nullptr;
    m_pfnDllGetClassObject = nullptr;
    m_pfnDllCanUnloadNow = nullptr;
}

qmz::Result CEngineModule::CreateObject(const qmz::Guid& clsid, qmz::IQmzUnknown* pOuter,
                                        const qmz::Guid& iid, void** ppv) {
    if (m_hrStatus < 0) {
        return qmz::kFail;
    }
    qmz::IClassFactory* pClassFactory = nullptr;
    // Only the pointer tells: some engines return success codes with no factory.
    m_pfnDllGetClassObject(&clsid, &qmz::kIidClassFactory,
                           reinterpret_cast<void**>(&pClassFactory));
    if (pClassFactory == nullptr) {
        return qmz::kFail;
    }
    const qmz::Result hr = pClassFactory->CreateInstance(pOuter, iid, ppv);
    pClassFactory->Release();
    return hr;
}
