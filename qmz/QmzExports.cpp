// The two functions the program looks up by name in Qmz.so.
#include "QmzExports.h"

#include "ClassFactory.h"
#include "ComSupport.h"

namespace {

// COM's CLASS_E_CLASSNOTAVAILABLE: the library serves only the engine class.
constexpr qmz::Result kClassNotAvailable = qmz::MakeResult(0x80040111);

} // namespace

extern "C" __attribute__((visibility("default"))) qmz::Result
DllGetClassObject(const qmz::Guid* clsid, const qmz::Guid* iid, void** ppv) {
    if (clsid == nullptr || iid == nullptr || ppv == nullptr) {
        return qmz::kEngineBadParameter;
    }
    *ppv = nullptr;
    if (*clsid != qmz::kClsidQmzEngine) {
        return kClassNotAvailable;
    }
    return qmz::ComSupport::Guarded([&] {
        auto* factory = new qmz::ClassFactory();
        qmz::Result r = factory->QueryInterface(*iid, ppv);
        factory->Release();
        return r;
    });
}

extern "C" __attribute__((visibility("default"))) qmz::Result DllCanUnloadNow() {
    return qmz::ComSupport::CanUnload() ? qmz::kOk : qmz::kFalse;
}
