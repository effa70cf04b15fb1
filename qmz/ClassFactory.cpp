#include "ClassFactory.h"

#include "Engine.h"

namespace qmz {

namespace {

// COM's CLASS_E_NOAGGREGATION: engine objects cannot be parts of another object.
constexpr Result kNoAggregation = MakeResult(0x80040110);

} // namespace

Result ClassFactory::QueryInterface(const Guid& iid, void** ppv) {
    if (ppv == nullptr) {
        return kEngineBadParameter;
    }
    *ppv = nullptr;
    if (iid != kIidUnknown && iid != kIidClassFactory) {
        return kNoInterface;
    }
    *ppv = static_cast<IClassFactory*>(this);
    AddRef();
    return kOk;
}

uint32_t ClassFactory::Release() {
    uint32_t left = refs_.Drop();
    if (left == 0) {
        delete this;
    }
    return left;
}

Result ClassFactory::CreateInstance(IQmzUnknown* pOuter, const Guid& iid, void** ppv) {
    if (ppv == nullptr) {
        return kEngineBadParameter;
    }
    *ppv = nullptr;
    if (pOuter != nullptr) {
        return kNoAggregation;
    }
    return ComSupport::Guarded([&] {
        auto* engine = new Engine();
        Result r = engine->QueryInterface(iid, ppv);
        engine->Release();
        return r;
    });
}

Result ClassFactory::LockServer(int32_t lock) {
    ComSupport::Lock(lock != 0);
    return kOk;
}

} // namespace qmz
