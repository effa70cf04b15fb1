#pragma once

#include "IQmzUnknown.h"

namespace qmz {

class IClassFactory : public IQmzUnknown {
public:
    virtual Result CreateInstance(IQmzUnknown* pOuter, const Guid& iid, void** ppv) = 0; // 3
    virtual Result LockServer(int32_t lock) = 0;                                         // 4

protected:
    ~IClassFactory() = default;
};

} // namespace qmz
