// The entries of one folder on disk, read once and sorted by name without regard to case, as
// a Windows listing of an NTFS folder comes. Only files and folders are listed: a link to a
// folder is left out so that a walk cannot run in a circle, and devices, pipes and sockets
// cannot go on a disc.
#pragma once

#include "QmzTypes.h"

#include <QString>
#include <cstdint>
#include <vector>

class CFolderListing {
public:
    struct Entry {
        QString name;
        bool bFolder = false;
        uint64_t ullSize = 0;
    };

    // Fails with the family's "find file failed" when the folder cannot be read to its end.
    qmz::Result Read(const QString& folderPath);

    const std::vector<Entry>& Entries() const { return m_vecEntries; }
    // The file whose name equals name without regard to case, as Windows finds it; null if none.
    const Entry* FindFile(const QString& name) const;

private:
    std::vector<Entry> m_vecEntries;
};
