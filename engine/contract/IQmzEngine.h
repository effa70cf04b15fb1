#pragma once

#include "IQmzDrive.h"
#include "IQmzUnknown.h"

namespace qmz {

class IQmzReader;

class IQmzEngine : public IQmzUnknown {
public:
    virtual Result Reserved3() { return kEngineNotImplemented; } // 3
    virtual Result Reserved4() { return kEngineNotImplemented; } // 4
    virtual Result Reserved5() { return kEngineNotImplemented; } // 5
    virtual Result Reserved6() { return kEngineNotImplemented; } // 6
    // Opens an image file as a read-only drive; the caller owns the returned reference.
    virtual Result OpenDrive(uint32_t reserved, uint32_t access, const char16_t* imagePath,
                             IQmzDrive** ppDrive) = 0; // 7
    // Creates a reader object; the caller owns the returned reference.
    virtual Result CreateReader(const Guid& iid, IQmzReader** ppReader) = 0; // 8

protected:
    ~IQmzEngine() = default;
};

} // namespace qmz
