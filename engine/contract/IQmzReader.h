#pragma once

#include "IQmzDrive.h"
#include "IQmzUnknown.h"

namespace qmz {

class IQmzReader : public IQmzUnknown {
public:
    virtual Result Attach(IQmzDrive* pDrive) = 0;                 // 3
    virtual Result Reserved4() { return kEngineNotImplemented; }  // 4
    virtual Result Load() = 0;                                    // 5
    virtual Result Reserved6() { return kEngineNotImplemented; }  // 6
    virtual Result Reserved7() { return kEngineNotImplemented; }  // 7
    virtual Result Reserved8() { return kEngineNotImplemented; }  // 8
    virtual Result Reserved9() { return kEngineNotImplemented; }  // 9
    virtual Result Reserved10() { return kEngineNotImplemented; } // 10
    // Starts the scan of the volume in the background and returns at once.
    virtual Result Start(uint32_t operation, uint32_t arg1, uint32_t arg2) = 0; // 11
    virtual Result Cancel() = 0;                                                // 12
    // kWaitStillRunning while the scan runs; fProgress is then 0.0 to 1.0.
    virtual Result Wait(uint32_t timeoutMs, uint32_t* pState, float* pProgress) = 0; // 13
    virtual Result Finish() = 0;                                                     // 14
    virtual Result Unload() = 0;                                                     // 15
    virtual Result Detach() = 0;                                                     // 16

protected:
    ~IQmzReader() = default;
};

} // namespace qmz
