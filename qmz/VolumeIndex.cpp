#include "VolumeIndex.h"

#include <algorithm>
#include <string>

namespace qmz {

void VolumeIndex::Clear() {
    entries_.clear();
    names_.clear();
    extents_.clear();
    pending_.clear();
    folders_ = 0;
    files_ = 0;
}

void VolumeIndex::AddRoot(const Extent& extent, int64_t mtime, bool timeValid) {
    Clear();
    IndexEntry root{};
    root.mtime = mtime;
    root.flags = static_cast<uint16_t>(kEntryDirectory | (timeValid ? kEntryTimeValid : 0));
    root.firstExtent = AppendExtent(extent);
    root.extentCount = 1;
    entries_.push_back(root);
}

uint32_t VolumeIndex::AppendName(const char16_t* units, uint32_t length) {
    auto offset = static_cast<uint32_t>(names_.size());
    names_.insert(names_.end(), units, units + length);
    return offset;
}

uint32_t VolumeIndex::AppendExtent(const Extent& extent) {
    extents_.push_back(extent);
    return static_cast<uint32_t>(extents_.size() - 1);
}

void VolumeIndex::SortPending() {
    // Names are appended in record order, so the name offset keeps equal names in that order
    // (the first one keeps its name) without the buffer a stable sort would allocate.
    auto before = [this](const IndexEntry& a, const IndexEntry& b) {
        int order = Name(a).compare(Name(b));
        return order < 0 || (order == 0 && a.nameOffset < b.nameOffset);
    };
    if (!std::is_sorted(pending_.begin(), pending_.end(), before)) {
        std::sort(pending_.begin(), pending_.end(), before);
    }
}

bool VolumeIndex::PendingHasName(std::u16string_view name) const {
    return std::any_of(pending_.begin(), pending_.end(),
                       [&](const IndexEntry& e) { return Name(e) == name; });
}

std::u16string VolumeIndex::NumberedName(std::u16string_view base, uint32_t n) {
    std::u16string suffix;
    for (char c : " (" + std::to_string(n) + ")") {
        suffix.push_back(static_cast<char16_t>(c));
    }
    size_t keep = std::min(base.size(), kMaxNameUnits - suffix.size());
    if (keep > 0 && keep < base.size() && base[keep] >= 0xDC00 && base[keep] <= 0xDFFF) {
        --keep; // never split a surrogate pair
    }
    return std::u16string(base.substr(0, keep)) + suffix;
}

void VolumeIndex::RenameDuplicates() {
    // Rare, so plain strings and linear look-ups are good enough here.
    size_t runStart = 0;
    for (size_t i = 1; i < pending_.size(); ++i) {
        std::u16string_view base = Name(pending_[runStart]);
        if (Name(pending_[i]) != base) {
            runStart = i;
            continue;
        }
        for (auto n = static_cast<uint32_t>(i - runStart) + 1;; ++n) {
            std::u16string candidate = NumberedName(base, n);
            if (!PendingHasName(candidate)) {
                // AppendName may move the buffer that `base` views; it is not used after this.
                pending_[i].nameOffset =
                    AppendName(candidate.data(), static_cast<uint32_t>(candidate.size()));
                pending_[i].nameLength = static_cast<uint16_t>(candidate.size());
                break;
            }
        }
    }
    SortPending();
}

void VolumeIndex::CommitChildren(uint32_t parent) {
    SortPending();
    for (size_t i = 1; i < pending_.size(); ++i) {
        if (Name(pending_[i]) == Name(pending_[i - 1])) {
            RenameDuplicates();
            break;
        }
    }
    entries_[parent].firstChild = static_cast<uint32_t>(entries_.size());
    entries_[parent].childCount = static_cast<uint32_t>(pending_.size());
    for (const IndexEntry& e : pending_) {
        if (e.IsDirectory()) {
            ++folders_;
        } else {
            ++files_;
        }
    }
    entries_.insert(entries_.end(), pending_.begin(), pending_.end());
    pending_.clear();
}

uint32_t VolumeIndex::FindChild(const IndexEntry& folder, std::u16string_view name) const {
    auto first = entries_.begin() + folder.firstChild;
    auto last = first + folder.childCount;
    auto it =
        std::lower_bound(first, last, name, [this](const IndexEntry& e, std::u16string_view n) {
            return Name(e) < n;
        });
    if (it == last || Name(*it) != name) {
        return kNotFound;
    }
    return static_cast<uint32_t>(it - entries_.begin());
}

uint32_t VolumeIndex::Resolve(std::u16string_view path) const {
    if (entries_.empty()) {
        return kNotFound;
    }
    uint32_t current = kRoot;
    if (path.empty()) {
        return current;
    }
    for (size_t start = 0;;) {
        size_t cut = path.find(u'\\', start);
        if (!entries_[current].IsDirectory()) {
            return kNotFound;
        }
        current = FindChild(entries_[current], path.substr(start, cut - start));
        if (current == kNotFound || cut == std::u16string_view::npos) {
            return current;
        }
        start = cut + 1;
    }
}

} // namespace qmz
