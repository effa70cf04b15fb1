#include "VolumeIndex.h"

#include <algorithm>
#include <string>

namespace qmz {

void VolumeIndex::Clear() {
    entries_.clear();
    narrowNames_.clear();
    wideNames_.clear();
    times_.Clear();
    extents_.clear();
    pendingStart_ = 0;
    folders_ = 0;
    files_ = 0;
}

void VolumeIndex::AddRoot(const Extent& extent, int64_t mtime, bool timeValid) {
    Clear();
    IndexEntry root{};
    root.timeIndex = times_.Add(mtime);
    root.flags = static_cast<uint16_t>(kEntryDirectory | (timeValid ? kEntryTimeValid : 0));
    root.firstExtent = AppendExtent(extent);
    root.extentCount = 1;
    entries_.push_back(root);
    pendingStart_ = 1;
}

void VolumeIndex::AppendName(const char16_t* units, uint32_t length, IndexEntry* entry) {
    size_t offset = narrowNames_.size();
    narrowNames_.resize(offset + length);
    if (NameView::Narrow(units, length, narrowNames_.data() + offset)) {
        entry->flags = static_cast<uint16_t>(entry->flags | kEntryNarrowName);
    } else {
        narrowNames_.resize(offset);
        offset = wideNames_.size();
        wideNames_.resize(offset + length);
        std::copy_n(units, length, wideNames_.data() + offset);
        entry->flags = static_cast<uint16_t>(entry->flags & ~kEntryNarrowName);
    }
    entry->nameOffset = static_cast<uint32_t>(offset);
    entry->nameLength = static_cast<uint16_t>(length);
}

uint32_t VolumeIndex::AppendExtent(const Extent& extent) {
    extents_.push_back(extent);
    return static_cast<uint32_t>(extents_.size() - 1);
}

Extent VolumeIndex::ExtentOf(const IndexEntry& e, uint32_t i) const {
    if ((e.flags & kEntryInlineExtent) != 0) {
        return Extent{e.firstExtent, e.Size()};
    }
    return extents_[e.firstExtent + i];
}

void VolumeIndex::CompactExtents() {
    times_.FinishAdding();
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
            first.offset == 0 && first.length == e.Size() && first.lba <= UINT32_MAX) {
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

bool VolumeIndex::SortPending() {
    // Names are appended in record order, so the name offset keeps equal names in that order
    // (the first one keeps its name) without the buffer a stable sort would allocate. Equal
    // names have the same units, so they are in the same buffer.
    auto before = [this](const IndexEntry& a, const IndexEntry& b) {
        int order = NameView::Compare(Name(a), Name(b));
        return order < 0 || (order == 0 && a.nameOffset < b.nameOffset);
    };
    // ECMA-119 sorts a directory's records by identifier, which nearly always sorts the names
    // shown too: one pass finds that out, and finds clashes, without sorting.
    std::span<IndexEntry> pending = Pending();
    bool unique = true;
    for (size_t i = 1; i < pending.size(); ++i) {
        int order = NameView::Compare(Name(pending[i - 1]), Name(pending[i]));
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

bool VolumeIndex::PendingHasName(NameView name) const {
    auto pending = std::span(entries_.data(), entries_.size()).subspan(pendingStart_);
    return std::any_of(pending.begin(), pending.end(),
                       [&](const IndexEntry& e) { return Name(e) == name; });
}

std::u16string VolumeIndex::NumberedName(NameView base, uint32_t n) {
    std::u16string suffix;
    for (char c : " (" + std::to_string(n) + ")") {
        suffix.push_back(static_cast<char16_t>(c));
    }
    size_t keep = std::min(base.size(), kMaxNameUnits - suffix.size());
    if (keep > 0 && keep < base.size() && base[keep] >= 0xDC00 && base[keep] <= 0xDFFF) {
        --keep; // never split a surrogate pair
    }
    return base.ToU16String().substr(0, keep) + suffix;
}

void VolumeIndex::RenameDuplicates() {
    // Rare, so plain strings and linear look-ups are good enough here.
    std::span<IndexEntry> pending = Pending();
    size_t runStart = 0;
    for (size_t i = 1; i < pending.size(); ++i) {
        NameView base = Name(pending[runStart]);
        if (Name(pending[i]) != base) {
            runStart = i;
            continue;
        }
        for (auto n = static_cast<uint32_t>(i - runStart) + 1;; ++n) {
            std::u16string candidate = NumberedName(base, n);
            if (!PendingHasName(std::u16string_view(candidate))) {
                // AppendName may move the buffer that `base` views; it is not used after this.
                AppendName(candidate.data(), static_cast<uint32_t>(candidate.size()), &pending[i]);
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

uint32_t VolumeIndex::FindChild(const IndexEntry& folder, NameView name) const {
    auto first = entries_.begin() + folder.firstChild;
    auto last = first + folder.Children();
    auto it = std::lower_bound(first, last, name, [this](const IndexEntry& e, NameView n) {
        return NameView::Compare(Name(e), n) < 0;
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
