// One entry's name as the program is to see it, built in a fixed buffer so that the scan
// allocates nothing per name.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VolumeIndex.h"

namespace qmz {

class EntryName {
public:
    void Clear() {
        length_ = 0;
        full_ = false;
        plain_ = true;
    }
    // ECMA-119 names are ASCII; any other byte is taken as Latin-1.
    void AppendLatin1(const uint8_t* bytes, size_t count);
    // Rock Ridge names are bytes in the writer's character set: UTF-8 when they are valid
    // UTF-8, else Latin-1 byte by byte.
    void AppendUtf8OrLatin1(const uint8_t* bytes, size_t count);
    // Joliet names are UCS-2 big-endian; surrogate pairs are taken as UTF-16 and lone
    // surrogates become U+FFFD. An odd last byte is dropped.
    void AppendUtf16Be(const uint8_t* bytes, size_t count);
    // OSTA UDF 2.60 2.1.1 compressed Unicode: a compression id, then 8-bit units (Latin-1) or
    // 16-bit big-endian units. 2.50 and later also record 254 and 255 for the same two forms.
    void AppendOstaCompressed(const uint8_t* bytes, size_t count);
    // Removes the ECMA-119 version ";digits" and then a trailing '.' left by an empty extension.
    void StripFileVersion();
    // Makes the name usable as a path component: no '\', '/' or NUL, never empty, "." or "..".
    void MakePlain();

    const char16_t* Data() const { return units_; }
    uint32_t Length() const { return length_; }

private:
    void Push(char32_t codePoint);
    // Appends `bytes` if they are all ASCII; false, with nothing appended, otherwise.
    bool AppendAscii(const uint8_t* bytes, size_t count);
    static bool IsValidUtf8(const uint8_t* bytes, size_t count);

    char16_t units_[kMaxNameUnits];
    uint32_t length_ = 0;
    bool full_ = false;
    bool plain_ = true; // no '\', '/' or NUL appended: MakePlain need not look at each unit
};

} // namespace qmz
