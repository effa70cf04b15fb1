// The walk of one file system's tree into a VolumeIndex, as the reader runs it on its thread.
// The breadth-first order, the depth bound, cancelling and progress are the same for every
// file system; each one only says how to list one folder.
#pragma once

#include "QmzTypes.h"
#include "VolumeIndex.h"

#include <atomic>

namespace qmz {

class VolumeScanner {
public:
    explicit VolumeScanner(const std::atomic<bool>& cancel) : cancel_(cancel) {}
    virtual ~VolumeScanner() = default;

    // Fills `index`. kOk also for a damaged image that gave a partial tree; kStopped when
    // cancelled; kEngineDiscCorrupt when not even the root folder can be read.
    virtual Result Run(VolumeIndex& index) = 0;
    // Folders walked against folders known so far, below 1 while the walk runs.
    float Progress() const;
    // Parts of the image were unreadable or inconsistent and left out of the tree.
    bool Damaged() const { return damaged_; }

protected:
    // Lists every folder of `index`, breadth first from the root that Run has added.
    Result WalkFolders(VolumeIndex& index);
    // Adds the children of `folder` to the index; kOk, or a failure that only this folder
    // suffers, or kStopped.
    virtual Result ScanFolder(VolumeIndex& index, uint32_t folder) = 0;

    const std::atomic<bool>& cancel_;
    bool full_ = false;    // a budget tied to the image's size is spent
    bool damaged_ = false; // something was left out
    std::atomic<uint32_t> foldersKnown_{1};

private:
    std::atomic<uint32_t> foldersDone_{0};
};

} // namespace qmz
