#include "SectorContainer.h"

#include <cstring>
#include <initializer_list>

namespace qmz {

namespace {

// ECMA-130 sector sizes, and the 2448 bytes of a raw sector followed by its 96 subchannel bytes.
constexpr uint32_t kMode2Sector = 2336;
constexpr uint32_t kRawSector = 2352;
constexpr uint32_t kRawSubchannelSector = 2448;

// ECMA-130 14.3: the 12-byte sync pattern, then the 4-byte header whose last byte is the mode.
constexpr uint8_t kSync[12] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                               0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr uint32_t kModeByte = 15;
constexpr uint32_t kMode1Data = 16;
constexpr uint32_t kMode2Subheader = 16;
constexpr uint32_t kMode2Form1Data = 24;
constexpr uint32_t kSubheaderBytes = 8; // before the data of a 2336-byte sector
// The submode byte of the Mode 2 subheader: data, and Form 2 (2324 bytes) rather than Form 1.
constexpr uint8_t kSubmodeData = 0x08;
constexpr uint8_t kSubmodeForm2 = 0x20;

// Both ECMA-119 and ECMA-167 begin their descriptors at sector 16: the sector whose layout is
// checked, and the least count of sectors a volume has.
constexpr uint64_t kProbeSector = 16;

} // namespace

class SectorContainer::List {
public:
    explicit List(SectorLayout (&out)[kMaxLayouts]) : out_(out) {}
    void Add(const SectorLayout& layout) {
        if (count_ < kMaxLayouts) {
            out_[count_++] = layout;
        }
    }
    uint32_t Count() const { return count_; }

private:
    SectorLayout (&out_)[kMaxLayouts];
    uint32_t count_ = 0;
};

SectorLayout SectorContainer::Layout(const NeroTrack& region, uint32_t stride,
                                     uint32_t dataOffset) {
    return {region.start, stride, dataOffset, (region.end - region.start) / stride};
}

bool SectorContainer::IsForm1Subheader(const uint8_t* subheader) {
    // The subheader is recorded twice (file, channel, submode, coding information).
    return std::memcmp(subheader, subheader + 4, 4) == 0 &&
           (subheader[2] & (kSubmodeData | kSubmodeForm2)) == kSubmodeData;
}

bool SectorContainer::RawLayout(const ImageFile& file, const NeroTrack& region, uint32_t stride,
                                SectorLayout* layout) {
    *layout = Layout(region, stride, 0);
    uint8_t head[kMode2Form1Data];
    if (layout->count <= kProbeSector ||
        file.Read(region.start + kProbeSector * stride, head, sizeof(head)) != kOk ||
        std::memcmp(head, kSync, sizeof(kSync)) != 0) {
        return false;
    }
    if (head[kModeByte] == 1) {
        layout->dataOffset = kMode1Data;
        return true;
    }
    if (head[kModeByte] == 2 && IsForm1Subheader(head + kMode2Subheader)) {
        layout->dataOffset = kMode2Form1Data;
        return true;
    }
    return false;
}

bool SectorContainer::Mode2Layout(const ImageFile& file, const NeroTrack& region,
                                  SectorLayout* layout) {
    *layout = Layout(region, kMode2Sector, kSubheaderBytes);
    uint8_t subheader[kSubheaderBytes];
    return layout->count > kProbeSector &&
           file.Read(region.start + kProbeSector * kMode2Sector, subheader, kSubheaderBytes) ==
               kOk &&
           IsForm1Subheader(subheader);
}

void SectorContainer::AddTrack(const ImageFile& file, const NeroTrack& track, List& list) {
    SectorLayout layout{};
    for (uint32_t stride : {kRawSector, kRawSubchannelSector}) {
        if ((track.sectorSize == 0 || track.sectorSize == stride) &&
            RawLayout(file, track, stride, &layout)) {
            list.Add(layout);
        }
    }
    if (track.sectorSize == 0 || track.sectorSize == kSectorSize) {
        layout = Layout(track, kSectorSize, 0);
        if (layout.count > kProbeSector) {
            list.Add(layout);
        }
    }
    if ((track.sectorSize == 0 || track.sectorSize == kMode2Sector) &&
        Mode2Layout(file, track, &layout)) {
        list.Add(layout);
    }
}

uint32_t SectorContainer::Candidates(const ImageFile& file, SectorLayout (&out)[kMaxLayouts]) {
    List list(out);
    NeroTrack tracks[NeroImage::kMaxTracks];
    uint32_t count = 0;
    if (NeroImage::ReadTracks(file, tracks, &count)) {
        for (uint32_t i = 0; i < count; ++i) {
            AddTrack(file, tracks[i], list);
        }
    }
    AddTrack(file, NeroTrack{0, file.Size(), 0}, list);
    return list.Count();
}

} // namespace qmz
