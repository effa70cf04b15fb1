#include "VolumeIndex.h"

#include <algorithm>
#include <string>

namespace qmz {

void VolumeIndex::Clear() {
    entries_.clear();
    names_.clear();
    extents_.clear();
    pendingStart_ = 0;
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
    pendingStart_ = 1;
}

uint32_t VolumeIndex::AppendName(const char16_t* units, uint32_t length) {
    size_t offset = names_.size();
    names_.resize(offset + length);
    std::copy_n(units, length, names_.data() + offset);
    return static_cast<uint32_t>(offset);
}

uint32_t VolumeIndex::AppendExtent(const Extent& extent) {
    extents_.push_back(extent);
    return static_cast<uint32_t>(extents_.size() - 1);
}

Extent VolumeIndex::ExtentOf(const IndexEntry& e, uint32_t i) const {
    if ((e.flags & kEntryInlineExtent) != 0) {
        return Extent{e.firstExtent, e.size};
    }
    return extents_[e.firstExtent + i];
}

void VolumeIndex::CompactExtents() {
    MappedArray<Extent> kept;
    for (IndexEntry& e : entries_) {
        if (e.IsDirectory()) {
            if ((e.flags & kEntryListed) == 0) {
                e.firstChild = 0;
                e.childCount = 0;
            }
            continue;
        }
        if (e.extentCount == 0) {
            continue;
        }
        if ((e.flags & kEntryInlineExtent) != 0) {
            continue;
        }
        const Extent& first = extents_[e.firstExtent];
        if (e.extentCount == 1 && (e.flags & kEntryZisofs) == 0 && !first.zeros &&
            first.offset == 0 && first.length == e.size && first.lba <= UINT32_MAX) {
            e.firstExtent = static_cast<uint32_t>(first.lba);
            e.flags = static_cast<uint16_t>(e.flags | kEntryInlineExtent);
            continue;
        }
        const auto nFirst = static_cast<uint32_t>(kept.size());
        for (uint32_t i = 0; i < e.extentCount; ++i) {
            kept.push_back(extents_[e.firstExtent + i]);
        }
        e.firstExtent = nFirst;
    }
    extents_.swap(kept);
}

int VolumeIndex::CompareNames(std::u16string_view a, std::u16string_view b) {
    // As std::u16string_view::compare, which looks at each unit twice.
    size_t n = std::min(a.size(), b.size());
    size_t i = 0;
    while (i < n && a[i] == b[i]) {
        ++i;
    }
    if (i < n) {
        return a[i] < b[i] ? -1 : 1;
    }
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

bool VolumeIndex::SortPending() {
    // Names are appended in record order, so the name offset keeps equal names in that order
    // (the first one keeps its name) without the buffer a stable sort would allocate.
    auto before = [this](const IndexEntry& a, const IndexEntry& b) {
        int order = CompareNames(Name(a), Name(b));
        return order < 0 || (order == 0 && a.nameOffset < b.nameOffset);
    };
    // ECMA-119 sorts a directory's records by identifier, which nearly always sorts the names
    // shown too: one pass finds that out, and finds clashes, without sorting.
    std::span<IndexEntry> pending = Pending();
    bool unique = true;
    for (size_t i = 1; i < pending.size(); ++i) {
        int order = CompareNames(Name(pending[i - 1]), Name(pending[i]));
        if (order > 0) {
            std::sort(pending.begin(), pending.end(), before);
            return std::adjacent_find(pending.begin(), pending.end(),
                                      [this](const IndexEntry& a, const IndexEntry& b) {
                                          return Name(a) == Name(b);
                                      }) == pending.end();
        }
        unique = unique && order != 0;
    }
    return unique;
}

bool VolumeIndex::PendingHasName(std::u16string_view name) const {
    auto pending = std::span(entries_.data(), entries_.size()).subspan(pendingStart_);
    return std::any_of(pending.begin(), pending.end(),
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
    std::span<IndexEntry> pending = Pending();
    size_t runStart = 0;
    for (size_t i = 1; i < pending.size(); ++i) {
        std::u16string_view base = Name(pending[runStart]);
        if (Name(pending[i]) != base) {
            runStart = i;
            continue;
        }
        for (auto n = static_cast<uint32_t>(i - runStart) + 1;; ++n) {
            std::u16string candidate = NumberedName(base, n);
            if (!PendingHasName(candidate)) {
                // AppendName may move the buffer that `base` views; it is not used after this.
                pending[i].nameOffset =
                    AppendName(candidate.data(), static_cast<uint32_t>(candidate.size()));
                pending[i].nameLength = static_cast<uint16_t>(candidate.size());
                break;
            }
        }
    }
    SortPending();
}

void VolumeIndex::CommitChildren(uint32_t parent) {
    if (!SortPending()) {
        RenameDuplicates();
    }
    std::span<IndexEntry> pending = Pending();
    entries_[parent].firstChild = pendingStart_;
    entries_[parent].childCount = static_cast<uint32_t>(pending.size());
    entries_[parent].flags = static_cast<uint16_t>(entries_[parent].flags | kEntryListed);
    auto folders = static_cast<uint32_t>(std::count_if(
        pending.begin(), pending.end(), [](const IndexEntry& e) { return e.IsDirectory(); }));
    folders_ += folders;
    files_ += static_cast<uint32_t>(pending.size()) - folders;
    pendingStart_ = static_cast<uint32_t>(entries_.size());
}

uint32_t VolumeIndex::FindChild(const IndexEntry& folder, std::u16string_view name) const {
    auto first = entries_.begin() + folder.firstChild;
    auto last = first + folder.Children();
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
