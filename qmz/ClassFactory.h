// Creates engine objects, as DllGetClassObject hands it out.
#pragma once

#include "ComSupport.h"
#include "IClassFactory.h"

namespace qmz {

class ClassFactory final : public IClassFactory {
public:
    ClassFactory() = default;

    Result QueryInterface(const Guid& iid, void** ppv) override;
    uint32_t AddRef() override { return refs_.Add(); }
    uint32_t Release() override;

    Result CreateInstance(IQmzUnknown* pOuter, const Guid& iid, void** ppv) override;
    Result LockServer(int32_t lock) override;

private:
    ~ClassFactory() = default;

    RefCount refs_;
};

} // namespace qmz
