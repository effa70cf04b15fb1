// How an image file records its sectors, decided by its content and never by its name: a
// Nero image's track table, raw CD sectors (ECMA-130) of 2352 bytes or of 2448 with the
// subchannel after them, Mode 2 sectors of 2336 bytes without sync and header, or plain
// 2048-byte sectors.
#pragma once

#include <cstdint>

#include "ImageFile.h"
#include "NeroImage.h"
#include "RawSectorSource.h"

namespace qmz {

class SectorContainer {
public:
    static constexpr uint32_t kMaxLayouts = 8;

    // The layouts that the file's content allows, most telling first; the file-system probe
    // chooses among them. Each lies inside the file and holds the volume descriptors' sector.
    static uint32_t Candidates(const ImageFile& file, SectorLayout (&out)[kMaxLayouts]);

private:
    class List;

    static void AddTrack(const ImageFile& file, const NeroTrack& track, List& list);
    static bool RawLayout(const ImageFile& file, const NeroTrack& region, uint32_t stride,
                          SectorLayout* layout);
    static bool Mode2Layout(const ImageFile& file, const NeroTrack& region, SectorLayout* layout);
    static SectorLayout Layout(const NeroTrack& region, uint32_t stride, uint32_t dataOffset);
    static bool IsForm1Subheader(const uint8_t* subheader);
};

} // namespace qmz
