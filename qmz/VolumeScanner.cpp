#include "VolumeScanner.h"

#include <algorithm>

namespace qmz {
namespace {

// Deeper than any real disc; it bounds the paths that a hostile image can make.
constexpr uint32_t kMaxDepth = 1000;
// The walk says "done" only through Wait, never through its progress.
constexpr float kMaxRunningProgress = 0.99f;

} // namespace

float VolumeScanner::Progress() const {
    float done = static_cast<float>(foldersDone_.load(std::memory_order_relaxed));
    float known = static_cast<float>(foldersKnown_.load(std::memory_order_relaxed));
    return std::min(done / std::max(known, 1.0f), kMaxRunningProgress);
}

Result VolumeScanner::WalkFolders(VolumeIndex& index) {
    uint32_t levelEnd = 1;
    uint32_t depth = 0;
    for (uint32_t i = 0; i < index.EntryCount() && !full_; ++i) {
        if (i == levelEnd) {
            ++depth;
            levelEnd = index.EntryCount();
        }
        if (!index.Entry(i).IsDirectory()) {
            continue;
        }
        if (cancel_.load(std::memory_order_relaxed)) {
            return kStopped;
        }
        if (depth >= kMaxDepth) {
            damaged_ = true;
            continue;
        }
        Result r = ScanFolder(index, i);
        if (r == kStopped) {
            return r;
        }
        if (r != kOk && i == VolumeIndex::kRoot) {
            return kEngineDiscCorrupt;
        }
        foldersDone_.fetch_add(1, std::memory_order_relaxed);
        uint32_t known =
            std::max(foldersKnown_.load(std::memory_order_relaxed), index.FolderCount() + 1);
        foldersKnown_.store(known, std::memory_order_relaxed);
    }
    return kOk;
}

} // namespace qmz
