// The walk of one file system's tree into a VolumeIndex, as the reader runs it on its thread.
#pragma once

#include "QmzTypes.h"
#include "VolumeIndex.h"

namespace qmz {

class VolumeScanner {
public:
    virtual ~VolumeScanner() = default;

    // Fills `index`. kOk also for a damaged image that gave a partial tree; kStopped when
    // cancelled; kEngineDiscCorrupt when not even the root folder can be read.
    virtual Result Run(VolumeIndex& index) = 0;
    // Folders walked against folders known so far, below 1 while the walk runs.
    virtual float Progress() const = 0;
};

} // namespace qmz
