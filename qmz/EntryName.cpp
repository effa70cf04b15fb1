#include "EntryName.h"

#include <array>

namespace qmz {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char16_t kFullwidthBackslash = 0xFF3C;
constexpr char16_t kFullwidthSlash = 0xFF0F;
constexpr char16_t kFullwidthFullStop = 0xFF0E;
constexpr uint8_t kOsta8Bit = 8;
constexpr uint8_t kOsta16Bit = 16;
constexpr uint8_t kOsta8BitAlternative = 254;
constexpr uint8_t kOsta16BitAlternative = 255;

bool IsHighSurrogate(uint32_t u) {
    return u >= 0xD800 && u <= 0xDBFF;
}
bool IsLowSurrogate(uint32_t u) {
    return u >= 0xDC00 && u <= 0xDFFF;
}

// Length of the UTF-8 sequence led by `lead`, 0 for a byte that cannot lead one.
size_t Utf8SequenceLength(uint8_t lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        return 4;
    }
    return 0;
}

// Decodes one sequence already known to be valid.
char32_t DecodeUtf8(const uint8_t* p, size_t length) {
    static constexpr uint8_t kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t cp = p[0] & kLeadMask[length];
    for (size_t i = 1; i < length; ++i) {
        cp = (cp << 6) | (p[i] & 0x3F);
    }
    return cp;
}

// What AppendAscii needs to know of each byte.
enum ByteClass : uint8_t {
    kOrdinary = 0,
    kNotAscii = 1,
    kNotPlain = 2, // '\\', '/' or NUL: MakePlain replaces it
};

constexpr std::array<uint8_t, 256> MakeByteClasses() {
    std::array<uint8_t, 256> classes{};
    for (size_t b = 0x80; b < classes.size(); ++b) {
        classes[b] = kNotAscii;
    }
    classes['\\'] = classes['/'] = classes[0] = kNotPlain;
    return classes;
}

constexpr std::array<uint8_t, 256> kByteClasses = MakeByteClasses();

bool IsNotPlain(char32_t cp) {
    return cp == u'\\' || cp == u'/' || cp == 0;
}

} // namespace

void EntryName::Push(char32_t cp) {
    if (full_) {
        return;
    }
    plain_ = plain_ && !IsNotPlain(cp);
    uint32_t need = cp >= 0x10000 ? 2 : 1;
    if (length_ + need > kMaxNameUnits) {
        full_ = true; // truncate at a code-point boundary
        return;
    }
    if (need == 2) {
        cp -= 0x10000;
        units_[length_++] = static_cast<char16_t>(0xD800 + (cp >> 10));
        units_[length_++] = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    } else {
        units_[length_++] = static_cast<char16_t>(cp);
    }
}

bool EntryName::AppendAscii(const uint8_t* bytes, size_t count) {
    // Most names are ASCII: they need neither validation nor decoding. The bytes are copied
    // before it is known, and simply not counted when one turns out not to be ASCII.
    if (full_) {
        return false;
    }
    size_t n = count;
    if (n > kMaxNameUnits - length_) {
        n = kMaxNameUnits - length_; // the bytes past the cut would not show anyway
    }
    uint8_t seen = kOrdinary;
    char16_t* out = units_ + length_;
    for (size_t i = 0; i < n; ++i) {
        out[i] = bytes[i];
        seen |= kByteClasses[bytes[i]];
    }
    if ((seen & kNotAscii) != 0) {
        return false;
    }
    full_ = n < count;
    plain_ = plain_ && (seen & kNotPlain) == 0;
    length_ += static_cast<uint32_t>(n);
    return true;
}

void EntryName::AppendLatin1(const uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Push(bytes[i]);
    }
}

bool EntryName::IsValidUtf8(const uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count;) {
        size_t length = Utf8SequenceLength(bytes[i]);
        if (length == 0 || length > count - i) {
            return false;
        }
        for (size_t k = 1; k < length; ++k) {
            if ((bytes[i + k] & 0xC0) != 0x80) {
                return false;
            }
        }
        char32_t cp = DecodeUtf8(bytes + i, length);
        bool overlong = (length == 3 && cp < 0x800) || (length == 4 && cp < 0x10000);
        if (overlong || IsHighSurrogate(cp) || IsLowSurrogate(cp) || cp > 0x10FFFF) {
            return false;
        }
        i += length;
    }
    return true;
}

void EntryName::AppendUtf8OrLatin1(const uint8_t* bytes, size_t count) {
    if (AppendAscii(bytes, count)) {
        return;
    }
    if (!IsValidUtf8(bytes, count)) {
        AppendLatin1(bytes, count);
        return;
    }
    for (size_t i = 0; i < count;) {
        size_t length = Utf8SequenceLength(bytes[i]);
        Push(DecodeUtf8(bytes + i, length));
        i += length;
    }
}

void EntryName::AppendUtf16Be(const uint8_t* bytes, size_t count) {
    size_t units = count / 2;
    for (size_t i = 0; i < units; ++i) {
        uint32_t u = (uint32_t{bytes[2 * i]} << 8) | bytes[2 * i + 1];
        if (IsHighSurrogate(u) && i + 1 < units) {
            uint32_t next = (uint32_t{bytes[2 * i + 2]} << 8) | bytes[2 * i + 3];
            if (IsLowSurrogate(next)) {
                Push(0x10000 + ((u - 0xD800) << 10) + (next - 0xDC00));
                ++i;
                continue;
            }
        }
        Push(IsHighSurrogate(u) || IsLowSurrogate(u) ? kReplacement : u);
    }
}

void EntryName::StripFileVersion() {
    for (uint32_t i = length_; i > 0; --i) {
        char16_t c = units_[i - 1];
        if (c == u';') {
            length_ = i - 1;
            break;
        }
        if (c < u'0' || c > u'9') {
            break;
        }
    }
    bool onlyDots = true;
    for (uint32_t i = 0; i < length_; ++i) {
        onlyDots = onlyDots && units_[i] == u'.';
    }
    if (length_ > 1 && units_[length_ - 1] == u'.' && !onlyDots) {
        --length_;
    }
}

void EntryName::AppendOstaCompressed(const uint8_t* bytes, size_t count) {
    if (count == 0) {
        return;
    }
    if (bytes[0] == kOsta8Bit || bytes[0] == kOsta8BitAlternative) {
        AppendLatin1(bytes + 1, count - 1);
    } else if (bytes[0] == kOsta16Bit || bytes[0] == kOsta16BitAlternative) {
        AppendUtf16Be(bytes + 1, count - 1);
    }
}

void EntryName::MakePlain() {
    for (uint32_t i = 0; i < length_ && !plain_; ++i) {
        switch (units_[i]) {
        case u'\\':
            units_[i] = kFullwidthBackslash;
            break;
        case u'/':
            units_[i] = kFullwidthSlash;
            break;
        case u'\0':
            units_[i] = static_cast<char16_t>(kReplacement);
            break;
        default:
            break;
        }
    }
    bool dotName =
        (length_ == 1 || length_ == 2) && units_[0] == u'.' && units_[length_ - 1] == u'.';
    if (dotName) {
        units_[0] = kFullwidthFullStop;
        units_[length_ - 1] = kFullwidthFullStop;
    } else if (length_ == 0) {
        units_[length_++] = static_cast<char16_t>(kReplacement);
    }
}

} // namespace qmz
