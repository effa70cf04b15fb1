#include "RockRidgeParser.h"
#include "ByteOrder.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "DirectoryRecord.h"
#include "IsoDate.h"

namespace qmz {

namespace {

// A chain of continuation areas is cut after this many hops or bytes, which also ends
// chains that loop back on themselves.
constexpr int kMaxContinuationHops = 32;
constexpr uint32_t kMaxSuspBytesPerRecord = 64 * 1024;
constexpr uint32_t kEntryHeader = 4; // signature, length, version

// RRIP entry flags.
constexpr uint8_t kNmContinue = 0x01;
constexpr uint8_t kNmCurrent = 0x02;
constexpr uint8_t kNmParent = 0x04;
constexpr uint8_t kTfCreation = 0x01;
constexpr uint8_t kTfModify = 0x02;
constexpr uint8_t kTfLongForm = 0x80;
constexpr uint32_t kModeTypeMask = 0170000;
constexpr uint32_t kModeSymlink = 0120000;
// ZF (zisofs-tools): algorithm "pz", header size / 4, log2 block size, uncompressed size
// both-endian. A header is at least 16 bytes.
constexpr uint32_t kZfLength = 16;
constexpr uint8_t kZfMinHeaderWords = 4;

constexpr uint16_t Signature(char a, char b) {
    return static_cast<uint16_t>(static_cast<uint8_t>(a) << 8 | static_cast<uint8_t>(b));
}

bool IsRripIdentifier(const uint8_t* id, uint32_t length) {
    static constexpr const char* kIds[] = {"RRIP_1991A", "IEEE_P1282", "IEEE_1282"};
    return std::any_of(std::begin(kIds), std::end(kIds), [&](const char* known) {
        return std::strlen(known) == length && std::memcmp(known, id, length) == 0;
    });
}

} // namespace

void RockRidgeAttributes::Reset() {
    nameLength = 0;
    hasName = nameComplete = hasMode = hasTime = symlink = relocated = false;
    hasChildLink = hasSharingProtocol = rockRidge = zisofs = false;
    mode = childLinkLba = zisofsSize = 0;
    mtime = 0;
    skipBytes = 0;
}

bool RockRidgeAttributes::IsSymlink() const {
    return symlink || (hasMode && (mode & kModeTypeMask) == kModeSymlink);
}

void RockRidgeParser::Parse(const uint8_t* area, uint32_t length, RockRidgeAttributes* out) {
    out->Reset();
    uint32_t budget = kMaxSuspBytesPerRecord;
    for (int hop = 0;; ++hop) {
        Continuation next{};
        ParseArea(area, length, out, &next);
        if (!next.present || hop == kMaxContinuationHops || next.offset >= kSectorSize ||
            next.length > kSectorSize - next.offset || next.length > budget) {
            return;
        }
        budget -= next.length;
        const uint8_t* sector = nullptr;
        if (source_.ViewSector(next.lba, scratch_, &sector) != kOk) {
            return;
        }
        area = sector + next.offset;
        length = next.length;
    }
}

void RockRidgeParser::ParseArea(const uint8_t* area, uint32_t length, RockRidgeAttributes* out,
                                Continuation* next) {
    for (uint32_t pos = 0; length - pos >= kEntryHeader;) {
        uint32_t entryLength = area[pos + 2];
        if (entryLength < kEntryHeader || entryLength > length - pos) {
            return;
        }
        if (area[pos] == 'S' && area[pos + 1] == 'T') {
            return;
        }
        ParseEntry(area + pos, entryLength, out, next);
        pos += entryLength;
    }
}

void RockRidgeParser::ParseEntry(const uint8_t* e, uint32_t length, RockRidgeAttributes* out,
                                 Continuation* next) {
    switch (Signature(static_cast<char>(e[0]), static_cast<char>(e[1]))) {
    case Signature('S', 'P'):
        ParseSp(e, length, out);
        break;
    case Signature('C', 'E'):
        ParseCe(e, length, next);
        break;
    case Signature('E', 'R'):
        ParseEr(e, length, out);
        break;
    case Signature('N', 'M'):
        ParseNm(e, length, out);
        break;
    case Signature('P', 'X'):
        ParsePx(e, length, out);
        break;
    case Signature('T', 'F'):
        ParseTf(e, length, out);
        break;
    case Signature('C', 'L'):
        ParseCl(e, length, out);
        break;
    case Signature('Z', 'F'):
        ParseZf(e, length, out);
        break;
    case Signature('S', 'L'):
        out->symlink = true;
        out->rockRidge = true;
        break;
    case Signature('R', 'E'):
        out->relocated = true;
        out->rockRidge = true;
        break;
    case Signature('R', 'R'): // the 1.09 summary of which RRIP entries follow
        out->rockRidge = true;
        break;
    default:
        break;
    }
}

void RockRidgeParser::ParseSp(const uint8_t* e, uint32_t length, RockRidgeAttributes* out) {
    if (length >= 7 && e[4] == 0xBE && e[5] == 0xEF) {
        out->hasSharingProtocol = true;
        out->skipBytes = e[6];
    }
}

void RockRidgeParser::ParseCe(const uint8_t* e, uint32_t length, Continuation* next) {
    if (length >= 28) {
        *next = {true, Le32(e + 4), Le32(e + 12), Le32(e + 20)};
    }
}

void RockRidgeParser::ParseEr(const uint8_t* e, uint32_t length, RockRidgeAttributes* out) {
    uint32_t idLength = length >= 8 ? e[4] : 0;
    if (idLength > 0 && 8 + idLength <= length && IsRripIdentifier(e + 8, idLength)) {
        out->rockRidge = true;
    }
}

void RockRidgeParser::AppendName(const uint8_t* bytes, uint32_t count, RockRidgeAttributes* out) {
    uint32_t room = kMaxRockRidgeNameBytes - out->nameLength;
    uint32_t n = std::min(count, room);
    std::memcpy(out->name + out->nameLength, bytes, n);
    out->nameLength += n;
}

void RockRidgeParser::ParseNm(const uint8_t* e, uint32_t length, RockRidgeAttributes* out) {
    out->rockRidge = true;
    if (length < 5 || out->nameComplete) {
        return;
    }
    uint8_t flags = e[4];
    out->hasName = true;
    if ((flags & (kNmCurrent | kNmParent)) != 0) {
        out->nameLength = 0;
        AppendName(reinterpret_cast<const uint8_t*>(".."), (flags & kNmParent) != 0 ? 2 : 1, out);
        out->nameComplete = true;
        return;
    }
    AppendName(e + 5, length - 5, out);
    out->nameComplete = (flags & kNmContinue) == 0;
}

void RockRidgeParser::ParsePx(const uint8_t* e, uint32_t length, RockRidgeAttributes* out) {
    out->rockRidge = true;
    if (length >= 8) {
        out->hasMode = true;
        out->mode = Le32(e + 4);
    }
}

void RockRidgeParser::ParseTf(const uint8_t* e, uint32_t length, RockRidgeAttributes* out) {
    out->rockRidge = true;
    if (length < 5) {
        return;
    }
    uint8_t flags = e[4];
    uint32_t stampLength = (flags & kTfLongForm) != 0 ? 17 : 7;
    uint32_t pos = 5 + ((flags & kTfCreation) != 0 ? stampLength : 0);
    if ((flags & kTfModify) == 0 || pos + stampLength > length) {
        return;
    }
    bool valid = (flags & kTfLongForm) != 0 ? IsoDate::DecodeLong(e + pos, &out->mtime)
                                            : IsoDate::DecodeShort(e + pos, &out->mtime);
    out->hasTime = valid;
}

void RockRidgeParser::ParseCl(const uint8_t* e, uint32_t length, RockRidgeAttributes* out) {
    out->rockRidge = true;
    if (length >= 12) {
        out->hasChildLink = true;
        out->childLinkLba = Le32(e + 4);
    }
}

void RockRidgeParser::ParseZf(const uint8_t* e, uint32_t length, RockRidgeAttributes* out) {
    // Other algorithms (zisofs2 and later) are not read: such a file shows as stored.
    if (length >= kZfLength && e[4] == 'p' && e[5] == 'z' && e[6] >= kZfMinHeaderWords &&
        e[7] >= kMinZisofsBlockLog && e[7] <= kMaxZisofsBlockLog) {
        out->zisofs = true;
        out->zisofsSize = Le32(e + 8);
    }
}

} // namespace qmz
