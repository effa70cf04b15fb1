// A name of the volume index as the UTF-16 units it stands for, held either one byte a unit,
// when every unit is below 0x100 (most names are ASCII, so most names take half the room), or
// as UTF-16. Both forms compare, order and convert exactly as the UTF-16 units would.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qmz {

class NameView {
public:
    NameView() = default;
    NameView(const uint8_t* narrow, size_t length)
        : data_(narrow), size_(length), isNarrow_(true) {}
    // Implicit, so that a path's components compare with the index's names as they are.
    NameView(std::u16string_view wide) : data_(wide.data()), size_(wide.size()) {}

    // Writes the low byte of each unit to `out`; false, with `out` partly written, when a unit
    // does not fit one byte.
    static bool Narrow(const char16_t* units, size_t length, uint8_t* out);

    size_t size() const { return size_; }
    bool IsNarrow() const { return isNarrow_; }
    char16_t operator[](size_t i) const { return isNarrow_ ? Narrow()[i] : Wide()[i]; }
    // Writes the size() units to `out`.
    void CopyTo(char16_t* out) const;
    std::u16string ToU16String() const;

    // Negative, zero or positive as std::u16string_view::compare gives on the units.
    static int Compare(NameView a, NameView b) {
        return a.isNarrow_ && b.isNarrow_ ? CompareNarrow(a, b) : CompareMixed(a, b);
    }
    friend bool operator==(NameView a, NameView b);

private:
    // Inline, as sorting a folder's children compares mostly one-byte names, which mostly
    // differ within a few bytes. Bytes order as the units they stand for.
    static int CompareNarrow(NameView a, NameView b) {
        const size_t n = std::min(a.size_, b.size_);
        const uint8_t* p = a.Narrow();
        const uint8_t* q = b.Narrow();
        for (size_t i = 0; i < n; ++i) {
            if (p[i] != q[i]) {
                return p[i] < q[i] ? -1 : 1;
            }
        }
        return a.size_ < b.size_ ? -1 : (a.size_ > b.size_ ? 1 : 0);
    }
    // Either name, or both, in UTF-16.
    static int CompareMixed(NameView a, NameView b);
    const uint8_t* Narrow() const { return static_cast<const uint8_t*>(data_); }
    const char16_t* Wide() const { return static_cast<const char16_t*>(data_); }

    const void* data_ = nullptr;
    size_t size_ = 0;
    bool isNarrow_ = false;
};

} // namespace qmz
