// The scanned tree of one volume, whatever its file system: entries in breadth-first order, each
// folder's children contiguous and sorted by name, names in two buffers (one byte a unit for
// names whose units all fit one, UTF-16 for the rest), times in a table of distinct times, and
// all file extents in one array. A path resolves by a binary search per component.
#pragma once

#include "MappedArray.h"
#include "NameView.h"
#include "TimeTable.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qmz {

// The longest name handed to the program, in UTF-16 code units.
inline constexpr uint32_t kMaxNameUnits = 281;

struct Extent {
    uint64_t lba;
    uint64_t length; // bytes
    // Bytes before the data in sector `lba`: a UDF file's data embedded in its ICB.
    uint32_t offset = 0;
    // Nothing recorded: the bytes read as zeros (a UDF extent allocated but not written, or a
    // hole in a sparse file).
    bool zeros = false;
};

enum EntryFlags : uint16_t {
    kEntryDirectory = 1,
    kEntryHidden = 2,
    kEntryTimeValid = 4,
    kEntryZisofs = 8, // the extents hold zisofs-compressed data; size is the uncompressed size
    // The file's one extent is firstExtent's sector and `size` bytes from its start; the
    // extents array holds nothing for it (see CompactExtents).
    kEntryInlineExtent = 16,
    // A folder whose children CommitChildren has set; until then it has none.
    kEntryListed = 32,
    // The name is in the one-byte buffer; otherwise in the UTF-16 one.
    kEntryNarrowName = 64,
};

// 28 bytes and 4-aligned: the size is kept as two halves so that no 8-byte field pads the
// entry, which spares a million entries four megabytes.
struct IndexEntry {
    uint32_t sizeLow; // bytes, with sizeHigh; 0 for folders
    uint32_t sizeHigh;
    // Into the index's time table (see VolumeIndex::Time); meaningful with kEntryTimeValid.
    uint32_t timeIndex;
    uint32_t nameOffset; // in the buffer kEntryNarrowName chooses
    uint16_t nameLength;
    uint16_t flags;
    // A folder's one extent is its directory data, which only its scan reads, before its
    // children take the same place; a file never has children. So one pair of fields holds
    // either, which spares a million entries eight megabytes.
    union {
        uint32_t firstExtent; // see kEntryInlineExtent
        uint32_t firstChild;
    };
    union {
        uint32_t extentCount;
        uint32_t childCount;
    };

    uint64_t Size() const { return uint64_t{sizeHigh} << 32 | sizeLow; }
    void SetSize(uint64_t bytes) {
        sizeLow = static_cast<uint32_t>(bytes);
        sizeHigh = static_cast<uint32_t>(bytes >> 32);
    }
    bool IsDirectory() const { return (flags & kEntryDirectory) != 0; }
    uint32_t Children() const { return (flags & kEntryListed) != 0 ? childCount : 0; }
};

static_assert(sizeof(IndexEntry) == 28 && alignof(IndexEntry) == 4);

class VolumeIndex {
public:
    static constexpr uint32_t kRoot = 0;
    static constexpr uint32_t kNotFound = UINT32_MAX;

    void Clear();
    // The root folder, whose directory data is `extent`.
    void AddRoot(const Extent& extent, int64_t mtime, bool timeValid);

    // Building a folder's children: names and extents go in first, then the entries that refer
    // to them, appended after all others, then CommitChildren makes them the children of
    // `parent`.
    // Stores the name in the buffer its units fit and points `entry` at it.
    void AppendName(const char16_t* units, uint32_t length, IndexEntry* entry);
    uint32_t AppendExtent(const Extent& extent);
    size_t NameUnits() const { return narrowNames_.size() + wideNames_.size(); }
    size_t ExtentCount() const { return extents_.size(); }
    void AddPending(IndexEntry entry, int64_t mtime) {
        entry.timeIndex = times_.Add(mtime);
        entries_.push_back(entry);
    }
    IndexEntry& LastPending() { return entries_.back(); }
    // Sorts the pending entries by name, renames later duplicates "name (2)", "name (3)" so
    // every entry stays reachable by path, and makes them the children of `parent`.
    void CommitChildren(uint32_t parent);

    uint32_t EntryCount() const { return static_cast<uint32_t>(entries_.size()); }
    const IndexEntry& Entry(uint32_t index) const { return entries_[index]; }
    // An extent of the extents array, as the scanners add them.
    const Extent& ExtentAt(uint32_t index) const { return extents_[index]; }
    // The i-th extent of a file, inline or in the array.
    Extent ExtentOf(const IndexEntry& e, uint32_t i) const;
    // Once the scan is over: folders drop the extent of their directory data, which only the
    // scan reads, and a file of one plain extent keeps it in its entry. Most files of a volume
    // are such files, so the array then holds little beyond fragmented and compressed files.
    // The time table also drops what only adding to it needs.
    void CompactExtents();
    NameView Name(const IndexEntry& e) const {
        if ((e.flags & kEntryNarrowName) != 0) {
            return {narrowNames_.data() + e.nameOffset, e.nameLength};
        }
        return std::u16string_view(wideNames_.data() + e.nameOffset, e.nameLength);
    }
    // Seconds since 1970-01-01 UTC; meaningful with kEntryTimeValid.
    int64_t Time(const IndexEntry& e) const { return times_.At(e.timeIndex); }
    uint32_t FolderCount() const { return folders_; }
    uint32_t FileCount() const { return files_; }

    // Finds the entry at `path` ('\'-separated, relative to the root, "" for the root).
    uint32_t Resolve(std::u16string_view path) const;

private:
    // Sorts the pending entries; false when two of them have the same name.
    bool SortPending();
    void RenameDuplicates();
    static std::u16string NumberedName(NameView base, uint32_t n);
    bool PendingHasName(NameView name) const;
    std::span<IndexEntry> Pending() { return entries_.span().subspan(pendingStart_); }
    uint32_t FindChild(const IndexEntry& folder, NameView name) const;

    MappedArray<IndexEntry> entries_;
    MappedArray<uint8_t> narrowNames_;
    MappedArray<char16_t> wideNames_;
    TimeTable times_;
    MappedArray<Extent> extents_;
    uint32_t pendingStart_ = 0; // the entries from here on have no parent yet
    uint32_t folders_ = 0;
    uint32_t files_ = 0;
};

} // namespace qmz
