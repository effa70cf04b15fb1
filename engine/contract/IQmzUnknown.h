// The first three positions of every engine interface, in the COM manner.
#pragma once

#include "QmzTypes.h"

namespace qmz {

class IQmzUnknown {
public:
    virtual Result QueryInterface(const Guid& iid, void** ppv) = 0; // 0
    virtual uint32_t AddRef() = 0;                                  // 1
    virtual uint32_t Release() = 0;                                 // 2

protected:
    // Objects are freed by Release, never through an interface pointer.
    ~IQmzUnknown() = default;
};

} // namespace qmz
