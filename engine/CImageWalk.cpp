#include "CImageWalk.h"

#include "COvDataItem.h"
#include "EngineFields.h"

#include <algorithm>
#include <chrono>
#include <deque>

namespace {

constexpr float kWalkPercentStart = 50.0f;
constexpr float kWalkPercentSpan = 50.0f;
constexpr int32_t kPercentMax = 100;
// Letting a window process its messages after every entry would cost more than the walk
// itself on large images; between pumps the stop flag is still polled after every entry.
constexpr auto kPumpInterval = std::chrono::milliseconds(15);
constexpr uint32_t kPumpClockStride = 64;

} // namespace

// The walk's queues and its one entry record, reused for every entry.
struct WalkState {
    WalkState(qmz::IQmzFileSystem& fs, int32_t nCount) : fileSystem(fs), nEntryCount(nCount) {}

    qmz::IQmzFileSystem& fileSystem;
    const int32_t nEntryCount;
    std::deque<COvDataItem*> nodes;
    std::deque<QString> paths;
    qmz::file_attr attr;
    int32_t nDone = 0;
    uint32_t nPumpTick = 0;
    // The first stride of entries already pumps, so a stop or a repaint never waits long.
    std::chrono::steady_clock::time_point lastPump =
        std::chrono::steady_clock::now() - kPumpInterval;
};

qmz::Result CImageWalk::Run(qmz::IQmzFileSystem& fileSystem, COvDataItem* pRoot,
                            int32_t nEntryCount) {
    WalkState state(fileSystem, nEntryCount);
    state.nodes.push_back(pRoot);
    state.paths.emplace_back();
    qmz::Result hr = qmz::kOk;
    while (!state.nodes.empty() && m_progress.bStop == 0) {
        COvDataItem* pNode = state.nodes.front();
        state.nodes.pop_front();
        const QString folderPath = std::move(state.paths.front());
        state.paths.pop_front();
        hr = fileSystem.FindFirst(enginefields::Utf16(folderPath), &state.attr);
        if (hr == qmz::kFindFolderEmpty) {
            pNode->m_anSortState[COvDataItem::SortName] = 0;
            continue;
        }
        if (hr < 0) {
            break;
        }
        pNode->m_anSortState[COvDataItem::SortName] = 1;
        hr = ListEntries(pNode, folderPath, state);
        pNode->SortChildrenByName();
        // The tree outlives the walk by far: no folder keeps room for children it never gets.
        pNode->m_vecChildren.shrink_to_fit();
        // A failing FindClose ends the walk, but the walk's result stays what it was.
        if (fileSystem.FindClose() < 0) {
            break;
        }
    }
    if (m_progress.bStop != 0) {
        hr = qmz::kStopped;
    }
    if (hr == qmz::kFindFolderEmpty || hr == qmz::kFindNoMoreEntries) {
        hr = qmz::kOk;
    }
    return hr;
}

// Adds the entries of a listing that FindFirst has begun. A failure or a stop only ends this
// folder; the code that ended it is returned, kFindNoMoreEntries when all went well.
qmz::Result CImageWalk::ListEntries(COvDataItem* pNode, const QString& folderPath,
                                    WalkState& state) {
    // One buffer for every child's path text: "\" + folder path + "\" + name.
    QString text = u'\\' + folderPath;
    if (!folderPath.isEmpty()) {
        text += u'\\';
    }
    const qsizetype nPrefix = text.size();
    qmz::Result hr = qmz::kOk;
    while (hr >= 0) {
        if (m_progress.bStop != 0) {
            return qmz::kStopped;
        }
        text.truncate(nPrefix);
        text.append(enginefields::NameOf(state.attr));
        const bool bFolder = (state.attr.uAttributes & qmz::kAttrDirectory) != 0;
        COvDataItem* pChild =
            pNode->AddChild(text, bFolder ? COvDataItem::KindFolder : COvDataItem::KindFile,
                            static_cast<uint32_t>(state.attr.ullSize),
                            static_cast<uint32_t>(state.attr.ullSize >> 32));
        if (pChild == nullptr) {
            return qmz::kUnexpected;
        }
        pChild->m_ftTime = enginefields::UtcTimeOf(state.attr);
        if (bFolder) {
            state.nodes.push_back(pChild);
            state.paths.push_back(text.mid(1));
        }
        ++state.nDone;
        const float fPercent = kWalkPercentStart + static_cast<float>(state.nDone) *
                                                       kWalkPercentSpan /
                                                       static_cast<float>(state.nEntryCount);
        m_progress.nOpenPercent =
            static_cast<int32_t>(std::min(static_cast<float>(kPercentMax), fPercent));
        hr = state.fileSystem.FindNext(&state.attr);
        PumpPaced(state);
    }
    return hr;
}

void CImageWalk::PumpPaced(WalkState& state) {
    if (++state.nPumpTick % kPumpClockStride != 0) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now - state.lastPump >= kPumpInterval) {
        state.lastPump = now;
        m_progress.Pump();
    }
}
