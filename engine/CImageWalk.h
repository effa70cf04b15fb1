// The walk of an open image into a tree of COvDataItem nodes, folder by folder, with the open's
// percent value carried from the scan's half to the end.
#pragma once

#include "IQmzFileSystem.h"
#include "ReaderProgress.h"

#include <QString>
#include <cstdint>

class COvDataItem;
struct WalkState;

class CImageWalk {
public:
    explicit CImageWalk(ReaderProgress& progress) : m_progress(progress) {}

    // Adds every entry below pRoot; nEntryCount is the engine's count of them, for the percent.
    qmz::Result Run(qmz::IQmzFileSystem& fileSystem, COvDataItem* pRoot, int32_t nEntryCount);

private:
    qmz::Result ListEntries(COvDataItem* pNode, const QString& folderPath, WalkState& state);
    void PumpPaced(WalkState& state);

    ReaderProgress& m_progress;
};
