// Reads the System Use Sharing Protocol (SUSP) entries of one directory record, following its
// continuation areas, and keeps what the Rock Ridge Interchange Protocol (RRIP, IEEE P1282)
// says about the entry.
#pragma once

#include <cstdint>

#include "SectorSource.h"

namespace qmz {

// Longer Rock Ridge names are cut; no name handed on is longer than 281 UTF-16 units anyway.
inline constexpr uint32_t kMaxRockRidgeNameBytes = 1024;
// zisofs block sizes as zisofs-tools and libisofs write them: 32 KiB to 128 KiB.
inline constexpr uint32_t kMinZisofsBlockLog = 15;
inline constexpr uint32_t kMaxZisofsBlockLog = 17;

struct RockRidgeAttributes {
    uint8_t name[kMaxRockRidgeNameBytes];
    uint32_t nameLength;
    bool hasName;
    bool nameComplete; // an NM without CONTINUE was seen; later NM entries are ignored
    bool hasMode;
    uint32_t mode;
    bool hasTime;
    int64_t mtime;
    bool symlink;
    bool relocated; // RE: the real place of this directory is a CL elsewhere
    bool hasChildLink;
    uint32_t childLinkLba;
    bool hasSharingProtocol; // SP, only in the root's "." record
    uint8_t skipBytes;       // SP's LEN_SKP
    bool rockRidge;          // an RRIP entry or an RRIP extension reference was seen
    bool zisofs;             // ZF: the data is zisofs-compressed
    uint32_t zisofsSize;     // ZF's uncompressed size

    void Reset();
    bool IsSymlink() const;
};

class RockRidgeParser {
public:
    explicit RockRidgeParser(SectorSource& source) : source_(source) {}

    // Parses the system use area `area` and the continuation areas it leads to into `out`.
    void Parse(const uint8_t* area, uint32_t length, RockRidgeAttributes* out);

private:
    struct Continuation {
        bool present;
        uint32_t lba;
        uint32_t offset;
        uint32_t length;
    };

    void ParseArea(const uint8_t* area, uint32_t length, RockRidgeAttributes* out,
                   Continuation* next);
    void ParseEntry(const uint8_t* e, uint32_t length, RockRidgeAttributes* out,
                    Continuation* next);
    static void ParseSp(const uint8_t* e, uint32_t length, RockRidgeAttributes* out);
    static void ParseCe(const uint8_t* e, uint32_t length, Continuation* next);
    static void ParseEr(const uint8_t* e, uint32_t length, RockRidgeAttributes* out);
    static void ParseNm(const uint8_t* e, uint32_t length, RockRidgeAttributes* out);
    static void ParsePx(const uint8_t* e, uint32_t length, RockRidgeAttributes* out);
    static void ParseTf(const uint8_t* e, uint32_t length, RockRidgeAttributes* out);
    static void ParseCl(const uint8_t* e, uint32_t length, RockRidgeAttributes* out);
    static void ParseZf(const uint8_t* e, uint32_t length, RockRidgeAttributes* out);
    static void AppendName(const uint8_t* bytes, uint32_t count, RockRidgeAttributes* out);

    SectorSource& source_;
    SectorBuffer scratch_;
};

} // namespace qmz
