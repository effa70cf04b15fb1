#include "CDvdStructure.h"

#include "CDiscFolderWalk.h"
#include "CFolderListing.h"
#include "ITvnDataTree.h"

#include <QFile>

namespace {

// A DVD-Video disc numbers its title sets with two digits.
constexpr uint32_t kMaxTitleSets = 99;
constexpr uint32_t kMaxTitleVobs = 9;

constexpr uint64_t kTitleSetCountOffset = 0x3E;
constexpr uint64_t kMenuCellTableOffset = 0xD8;
constexpr uint64_t kTitleCellTableOffset = 0xE0;
constexpr unsigned kSectorShift = 11;

// A cell address table: VOB id count, two reserved bytes, the offset of its last byte, then
// twelve bytes a cell.
constexpr uint64_t kCellTableEndOffset = 4;
constexpr uint32_t kCellTableHeaderLast = 7;
constexpr uint32_t kCellEntryBytes = 12;

const QString kVideoTsIfo = QStringLiteral("VIDEO_TS.IFO");
const QString kVideoTsVob = QStringLiteral("VIDEO_TS.VOB");
const QString kVideoTsBup = QStringLiteral("VIDEO_TS.BUP");

QString TitleSetFile(uint32_t nTitleSet, const char* pSuffix) {
    return QString::asprintf("VTS_%02u", nTitleSet) + QLatin1String(pSuffix);
}

QString TitleVob(uint32_t nTitleSet, uint32_t nVob) {
    return QString::asprintf("VTS_%02u_%u.VOB", nTitleSet, nVob);
}

// Reads a big-endian number of nBytes at offset; a field past the end of the file means the
// IFO file is cut short or lies about its tables.
qmz::Result ReadBigEndian(QFile& file, uint64_t offset, int nBytes, uint32_t& value) {
    const auto fileSize = static_cast<uint64_t>(file.size());
    if (offset > fileSize || fileSize - offset < static_cast<uint64_t>(nBytes)) {
        return kTvnBadDvdFolder;
    }
    uint8_t abField[4] = {};
    if (!file.seek(static_cast<qint64>(offset)) ||
        file.read(reinterpret_cast<char*>(abField), nBytes) != nBytes) {
        return qmz::kEngineReadFailed;
    }
    value = 0;
    for (int i = 0; i < nBytes; ++i) {
        value = (value << 8) | abField[i];
    }
    return qmz::kOk;
}

qmz::Result OpenIfo(const CFolderListing& listing, const QString& folder, const QString& name,
                    QFile& file) {
    const CFolderListing::Entry* pEntry = listing.FindFile(name);
    if (pEntry == nullptr) {
        return qmz::kEngineFileNotFound;
    }
    file.setFileName(folder + pEntry->name);
    return file.open(QIODevice::ReadOnly) ? qmz::kOk : qmz::kEngineOpenFailed;
}

qmz::Result TitleSetsIn(const CFolderListing& listing, const QString& folder,
                        uint32_t& nTitleSets) {
    QFile ifo;
    if (const qmz::Result hr = OpenIfo(listing, folder, kVideoTsIfo, ifo); hr < 0) {
        return hr;
    }
    uint32_t nCount = 0;
    if (const qmz::Result hr = ReadBigEndian(ifo, kTitleSetCountOffset, 2, nCount); hr < 0) {
        return hr;
    }
    if (nCount > kMaxTitleSets) {
        return kTvnBadDvdFolder;
    }
    nTitleSets = nCount;
    return qmz::kOk;
}

// Adds the cells and VOB ids of the cell address table that the IFO file points to at
// pointerOffset; a pointer of 0 means the file has no such table.
qmz::Result AddCellTable(const CFolderListing& listing, const QString& folder,
                         const QString& ifoName, uint64_t pointerOffset, uint32_t& nCells,
                         uint32_t& nVobs) {
    QFile ifo;
    qmz::Result hr = OpenIfo(listing, folder, ifoName, ifo);
    uint32_t nSector = 0;
    if (hr >= 0) {
        hr = ReadBigEndian(ifo, pointerOffset, 4, nSector);
    }
    if (hr < 0 || nSector == 0) {
        return hr;
    }
    const uint64_t tableOffset = static_cast<uint64_t>(nSector) << kSectorShift;
    uint32_t nTableVobs = 0;
    uint32_t nLastByte = 0;
    hr = ReadBigEndian(ifo, tableOffset, 2, nTableVobs);
    if (hr >= 0) {
        hr = ReadBigEndian(ifo, tableOffset + kCellTableEndOffset, 4, nLastByte);
    }
    if (hr < 0) {
        return hr;
    }
    if (nLastByte < kCellTableHeaderLast ||
        tableOffset + nLastByte >= static_cast<uint64_t>(ifo.size())) {
        return kTvnBadDvdFolder;
    }
    nCells += (nLastByte - kCellTableHeaderLast) / kCellEntryBytes;
    nVobs += nTableVobs;
    return qmz::kOk;
}

// Appends one file of the table; a missing file is a failure only when it is required.
qmz::Result AddDiscFile(const CFolderListing& listing, const QString& folder, const QString& name,
                        bool bRequired, std::vector<CDvdStructure::DiscFile>& files) {
    const CFolderListing::Entry* pEntry = listing.FindFile(name);
    if (pEntry == nullptr) {
        return bRequired ? qmz::kEngineFileNotFound : qmz::kFalse;
    }
    files.push_back({name, folder + pEntry->name, pEntry->ullSize});
    return qmz::kOk;
}

qmz::Result AddTitleSetFiles(const CFolderListing& listing, const QString& folder,
                             uint32_t nTitleSet, std::vector<CDvdStructure::DiscFile>& files) {
    qmz::Result hr = AddDiscFile(listing, folder, TitleSetFile(nTitleSet, "_0.IFO"), true, files);
    if (hr >= 0) {
        hr = AddDiscFile(listing, folder, TitleSetFile(nTitleSet, "_0.VOB"), false, files);
    }
    for (uint32_t nVob = 1; nVob <= kMaxTitleVobs && hr >= 0; ++nVob) {
        if (AddDiscFile(listing, folder, TitleVob(nTitleSet, nVob), false, files) != qmz::kOk) {
            break;
        }
    }
    if (hr >= 0) {
        hr = AddDiscFile(listing, folder, TitleSetFile(nTitleSet, "_0.BUP"), true, files);
    }
    return hr < 0 ? hr : qmz::kOk;
}

} // namespace

qmz::Result CDvdStructure::CheckDvdVideoFiles(const QString& folderPath) {
    std::vector<DiscFile> files;
    return ListDvdVideoFiles(folderPath, files);
}

qmz::Result CDvdStructure::ListDvdVideoFiles(const QString& folderPath,
                                             std::vector<DiscFile>& files) {
    const QString folder = CDiscFolderWalk::WithSlash(folderPath);
    CFolderListing listing;
    qmz::Result hr = listing.Read(folder);
    if (hr >= 0) {
        hr = AddDiscFile(listing, folder, kVideoTsIfo, true, files);
    }
    if (hr >= 0) {
        hr = AddDiscFile(listing, folder, kVideoTsVob, false, files);
    }
    if (hr >= 0) {
        hr = AddDiscFile(listing, folder, kVideoTsBup, true, files);
    }
    uint32_t nTitleSets = 0;
    if (hr >= 0) {
        hr = TitleSetsIn(listing, folder, nTitleSets);
    }
    for (uint32_t n = 1; n <= nTitleSets && hr >= 0; ++n) {
        hr = AddTitleSetFiles(listing, folder, n, files);
    }
    return hr < 0 ? hr : qmz::kOk;
}

qmz::Result CDvdStructure::CountTitleSets(const QString& folderPath, uint32_t& nTitleSets) {
    const QString folder = CDiscFolderWalk::WithSlash(folderPath);
    CFolderListing listing;
    const qmz::Result hr = listing.Read(folder);
    return hr < 0 ? hr : TitleSetsIn(listing, folder, nTitleSets);
}

qmz::Result CDvdStructure::CountMenuFiles(const QString& folderPath, uint32_t& nMenuFiles) {
    nMenuFiles = 0;
    const QString folder = CDiscFolderWalk::WithSlash(folderPath);
    CFolderListing listing;
    uint32_t nTitleSets = 0;
    qmz::Result hr = listing.Read(folder);
    if (hr >= 0) {
        hr = TitleSetsIn(listing, folder, nTitleSets);
    }
    if (hr < 0) {
        return hr;
    }
    for (uint32_t n = 1; n <= nTitleSets; ++n) {
        nMenuFiles += listing.FindFile(TitleSetFile(n, "_0.VOB")) != nullptr ? 1 : 0;
    }
    nMenuFiles += listing.FindFile(kVideoTsVob) != nullptr ? 1 : 0;
    return qmz::kOk;
}

qmz::Result CDvdStructure::CountStructure(const QString& folderPath, uint32_t& nCells,
                                          uint32_t& nVobs) {
    nCells = 0;
    nVobs = 0;
    const QString folder = CDiscFolderWalk::WithSlash(folderPath);
    CFolderListing listing;
    qmz::Result hr = listing.Read(folder);
    if (hr >= 0 && listing.FindFile(kVideoTsVob) != nullptr) {
        hr = AddCellTable(listing, folder, kVideoTsIfo, kMenuCellTableOffset, nCells, nVobs);
    }
    uint32_t nTitleSets = 0;
    if (hr >= 0) {
        hr = TitleSetsIn(listing, folder, nTitleSets);
    }
    for (uint32_t n = 1; n <= nTitleSets && hr >= 0; ++n) {
        const QString ifoName = TitleSetFile(n, "_0.IFO");
        if (listing.FindFile(TitleSetFile(n, "_0.VOB")) != nullptr) {
            hr = AddCellTable(listing, folder, ifoName, kMenuCellTableOffset, nCells, nVobs);
        }
        if (hr >= 0) {
            hr = AddCellTable(listing, folder, ifoName, kTitleCellTableOffset, nCells, nVobs);
        }
    }
    return hr < 0 ? hr : qmz::kOk;
}
