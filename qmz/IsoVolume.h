// The ECMA-119 volume descriptor set of an image and the directory tree chosen from it: Rock
// Ridge (the primary tree carrying SUSP/RRIP), else Joliet, else the ISO 9660:1999 tree of the
// enhanced volume descriptor, else plain ISO 9660.
#pragma once

#include <cstdint>

#include "QmzTypes.h"
#include "SectorSource.h"
#include "VolumeIndex.h"

namespace qmz {

// Which tree was chosen; GetFsInfo reports it in fsInfo::uFileSystem.
enum class TreeKind : uint32_t {
    kIso9660 = kFsIso9660,
    kJoliet = kFsJoliet,
    kRockRidge = kFsRockRidge,
    kIso9660_1999 = kFsIso9660_1999,
};

struct IsoTree {
    TreeKind kind;
    Extent root;
    int64_t rootTime;
    bool rootTimeValid;
    uint32_t pathTableLba;
    uint32_t pathTableBytes;
    uint8_t suspSkipBytes; // LEN_SKP of the root's SP entry
    char16_t volumeId[kVolIdChars];
};

class IsoVolume {
public:
    // True when sector 16 holds an ECMA-119 volume descriptor.
    static bool Probe(SectorSource& source);
    // Reads the descriptor set and chooses the tree. kEngineBadImage when there is no usable
    // primary, Joliet or enhanced descriptor.
    static Result Open(SectorSource& source, IsoTree* tree);

private:
    struct Descriptors {
        const uint8_t* primary;
        const uint8_t* joliet;
        const uint8_t* enhanced;
    };
    static Result ReadDescriptors(SectorSource& source, SectorBuffer (&buffers)[3],
                                  Descriptors* found);
    static bool IsJoliet(const uint8_t* descriptor);
    static bool IsEnhanced(const uint8_t* descriptor);
    static Result DescribeTree(const uint8_t* descriptor, TreeKind kind, IsoTree* tree);
    static void DetectRockRidge(SectorSource& source, IsoTree* tree);
};

} // namespace qmz
