// The rules of a DVD-Video folder: which files it must hold and in which order they go on a
// disc, and the counts of title sets, menu VOB files, cells and VOB ids read from its IFO files
// (the DVD-Video IFO layout, numbers big-endian). IFO files are never trusted: a short file or
// a table pointer past its end gives a failure code.
#pragma once

#include "QmzTypes.h"

#include <QString>
#include <cstdint>
#include <vector>

class CDvdStructure {
public:
    // One file of a VIDEO_TS folder: its name on the disc, its path on disk and its size.
    struct DiscFile {
        QString name;
        QString source;
        uint64_t ullSize = 0;
    };

    static qmz::Result CheckDvdVideoFiles(const QString& folderPath);
    // The files in the DVD's order, after the same checks as CheckDvdVideoFiles.
    static qmz::Result ListDvdVideoFiles(const QString& folderPath, std::vector<DiscFile>& files);
    static qmz::Result CountTitleSets(const QString& folderPath, uint32_t& nTitleSets);
    static qmz::Result CountMenuFiles(const QString& folderPath, uint32_t& nMenuFiles);
    static qmz::Result CountStructure(const QString& folderPath, uint32_t& nCells, uint32_t& nVobs);
};
