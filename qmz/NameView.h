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

    // Negative, zero or positive as std::u16string_view::compare gives on the units. Inline, as
    // sorting a folder's children and resolving paths compare names far more than anything else
    // does, and names mostly differ within a few units.
    static int Compare(NameView a, NameView b) {
        if (a.isNarrow_) {
            return b.isNarrow_ ? CompareUnits(a.Narrow(), a.size_, b.Narrow(), b.size_)
                               : CompareUnits(a.Narrow(), a.size_, b.Wide(), b.size_);
        }
        return b.isNarrow_ ? CompareUnits(a.Wide(), a.size_, b.Narrow(), b.size_)
                           : CompareUnits(a.Wide(), a.size_, b.Wide(), b.size_);
    }
    friend bool operator==(NameView a, NameView b);

private:
    // A byte orders as the unit it stands for.
    template <class A, class B>
    static int CompareUnits(const A* a, size_t na, const B* b, size_t nb) {
        const size_t n = std::min(na, nb);
        for (size_t i = 0; i < n; ++i) {
            if (char16_t{a[i]} != char16_t{b[i]}) {
                return char16_t{a[i]} < char16_t{b[i]} ? -1 : 1;
            }
        }
        return na < nb ? -1 : (na > nb ? 1 : 0);
    }
    const uint8_t* Narrow() const { return static_cast<const uint8_t*>(data_); }
    const char16_t* Wide() const { return static_cast<const char16_t*>(data_); }

    const void* data_ = nullptr;
    size_t size_ = 0;
    bool isNarrow_ = false;
};

} // namespace qmz
