#include "NameView.h"

#include <algorithm>
#include <cstring>

namespace qmz {

namespace {

// Four units a step in one 64-bit word, as most names are converted once in the scan and once
// for each listing. The shifts move whole 16-bit lanes, so they hold on either byte order.
constexpr size_t kUnitsPerWord = 4;
constexpr uint64_t kLowBytes = 0x00FF00FF00FF00FFULL;
constexpr uint64_t kLowPairs = 0x0000FFFF0000FFFFULL;

void WidenStep(const uint8_t* bytes, char16_t* out) {
    uint32_t four = 0;
    std::memcpy(&four, bytes, sizeof four);
    uint64_t x = four;
    x = (x | x << 16) & kLowPairs;
    x = (x | x << 8) & kLowBytes;
    std::memcpy(out, &x, sizeof x);
}

bool NarrowStep(const char16_t* units, uint8_t* out) {
    uint64_t x = 0;
    std::memcpy(&x, units, sizeof x);
    if ((x & ~kLowBytes) != 0) {
        return false;
    }
    x = (x | x >> 8) & kLowPairs;
    auto four = static_cast<uint32_t>(x | x >> 16);
    std::memcpy(out, &four, sizeof four);
    return true;
}

void Widen(const uint8_t* bytes, size_t length, char16_t* out) {
    if (length < kUnitsPerWord) {
        std::copy_n(bytes, length, out);
        return;
    }
    for (size_t i = 0; i + kUnitsPerWord < length; i += kUnitsPerWord) {
        WidenStep(bytes + i, out + i);
    }
    // The last step ends at the end, overlapping the one before: no unit by unit tail.
    WidenStep(bytes + length - kUnitsPerWord, out + length - kUnitsPerWord);
}

} // namespace

bool NameView::Narrow(const char16_t* units, size_t length, uint8_t* out) {
    if (length < kUnitsPerWord) {
        for (size_t i = 0; i < length; ++i) {
            if (units[i] >= 0x100) {
                return false;
            }
            out[i] = static_cast<uint8_t>(units[i]);
        }
        return true;
    }
    for (size_t i = 0; i + kUnitsPerWord < length; i += kUnitsPerWord) {
        if (!NarrowStep(units + i, out + i)) {
            return false;
        }
    }
    return NarrowStep(units + length - kUnitsPerWord, out + length - kUnitsPerWord);
}

void NameView::CopyTo(char16_t* out) const {
    if (isNarrow_) {
        Widen(Narrow(), size_, out);
    } else {
        std::copy_n(Wide(), size_, out);
    }
}

std::u16string NameView::ToU16String() const {
    std::u16string s(size_, u'\0');
    CopyTo(s.data());
    return s;
}

bool operator==(NameView a, NameView b) {
    if (a.size_ != b.size_) {
        return false;
    }
    if (a.isNarrow_ == b.isNarrow_) {
        size_t unit = a.isNarrow_ ? 1 : sizeof(char16_t);
        return a.size_ == 0 || std::memcmp(a.data_, b.data_, a.size_ * unit) == 0;
    }
    return NameView::Compare(a, b) == 0;
}

} // namespace qmz
