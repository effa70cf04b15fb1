#pragma once

#include "IQmzUnknown.h"

namespace qmz {

class IBwRegPath : public IQmzUnknown {
public:
    virtual Result Reserved3() { return kEngineNotImplemented; } // 3
    // Tells the engine where the family's settings lie.
    virtual Result SetRegPath(const uint32_t* phKeyRoot, const char16_t* keyPath,
                              uint32_t keyPathChars, uint32_t flags) = 0; // 4

protected:
    ~IBwRegPath() = default;
};

} // namespace qmz
