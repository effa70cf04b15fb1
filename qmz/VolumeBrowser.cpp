#include "VolumeBrowser.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace qmz {

namespace {

constexpr uint32_t kAttrHidden = 0x02;
constexpr uint32_t kAttrNormal = 0x80; // a file with no other attribute

} // namespace

uint32_t VolumeBrowser::Resolve(const char16_t* path) const {
    return index_.Resolve(path != nullptr ? std::u16string_view(path) : std::u16string_view());
}

void VolumeBrowser::Fill(uint32_t entry, file_attr* attr) {
    const IndexEntry& e = index_.Entry(entry);
    // The name's buffer needs no clearing past its terminator: that is most of the structure.
    std::memset(attr, 0, offsetof(file_attr, strName));
    bool hidden = (e.flags & kEntryHidden) != 0;
    if (e.IsDirectory()) {
        attr->uAttributes = kAttrDirectory | (hidden ? kAttrHidden : 0);
    } else {
        attr->uAttributes = hidden ? kAttrHidden : kAttrNormal;
        attr->ullSize = e.Size();
    }
    if ((e.flags & kEntryTimeValid) != 0) {
        attr->ftLocalTime = localTime_.ToLocalFileTime(index_.Time(e));
    }
    NameView name = index_.Name(e);
    name.CopyTo(attr->strName);
    attr->strName[name.size()] = 0;
}

Result VolumeBrowser::FindFirst(const char16_t* folderPath, file_attr* attr) {
    listing_ = false;
    if (attr == nullptr) {
        return kEngineBadParameter;
    }
    uint32_t folder = Resolve(folderPath);
    if (folder == VolumeIndex::kNotFound || !index_.Entry(folder).IsDirectory()) {
        return kEngineFileNotFound;
    }
    const IndexEntry& e = index_.Entry(folder);
    if (e.Children() == 0) {
        return kFindFolderEmpty;
    }
    listing_ = true;
    localTime_.Clear();
    nextChild_ = e.firstChild + 1;
    endChild_ = e.firstChild + e.childCount;
    Fill(e.firstChild, attr);
    return kOk;
}

Result VolumeBrowser::FindNext(file_attr* attr) {
    if (!listing_ || attr == nullptr) {
        return kUnexpected;
    }
    if (nextChild_ == endChild_) {
        return kFindNoMoreEntries;
    }
    Fill(nextChild_++, attr);
    return kOk;
}

Result VolumeBrowser::FindClose() {
    listing_ = false;
    return kOk;
}

Result VolumeBrowser::OpenFile(const char16_t* filePath, uint64_t* size) {
    fileOpen_ = false;
    zisofs_.Close();
    uint32_t entry = Resolve(filePath);
    if (entry == VolumeIndex::kNotFound || index_.Entry(entry).IsDirectory()) {
        return kEngineFileNotFound;
    }
    fileOpen_ = true;
    file_ = entry;
    position_ = 0;
    extent_ = 0;
    extentOffset_ = 0;
    if ((index_.Entry(entry).flags & kEntryZisofs) != 0) {
        zisofs_.Open(index_, entry, source_);
    }
    if (size != nullptr) {
        *size = index_.Entry(entry).Size();
    }
    return kOk;
}

Result VolumeBrowser::ReadExtents(uint8_t* out, uint32_t length, uint32_t* done) {
    const IndexEntry& e = index_.Entry(file_);
    while (*done < length && position_ < e.Size() && extent_ < e.extentCount) {
        const Extent extent = index_.ExtentOf(e, extent_);
        if (extentOffset_ >= extent.length) {
            ++extent_;
            extentOffset_ = 0;
            continue;
        }
        uint64_t n = std::min<uint64_t>(
            {length - *done, extent.length - extentOffset_, e.Size() - position_});
        if (extent.zeros) {
            std::memset(out + *done, 0, n);
        } else if (source_.CopyBytes(extent.lba, extent.offset + extentOffset_, out + *done, n) !=
                   kOk) {
            return kEngineReadFailed;
        }
        *done += static_cast<uint32_t>(n);
        extentOffset_ += n;
        position_ += n;
    }
    return kOk;
}

Result VolumeBrowser::ReadFile(void* buffer, uint32_t length, uint32_t* read) {
    if (read != nullptr) {
        *read = 0;
    }
    if (!fileOpen_) {
        return kUnexpected;
    }
    if (buffer == nullptr && length > 0) {
        return kEngineBadParameter;
    }
    const IndexEntry& e = index_.Entry(file_);
    auto* out = static_cast<uint8_t*>(buffer);
    uint32_t done = 0;
    if ((e.flags & kEntryZisofs) != 0) {
        done = static_cast<uint32_t>(std::min<uint64_t>(length, e.Size() - position_));
        if (done > 0 && zisofs_.Read(position_, out, done) != kOk) {
            return kEngineReadFailed;
        }
        position_ += done;
    } else if (ReadExtents(out, length, &done) != kOk) {
        return kEngineReadFailed;
    }
    if (read != nullptr) {
        *read = done;
    }
    return kOk;
}

Result VolumeBrowser::CloseFile() {
    fileOpen_ = false;
    zisofs_.Close();
    return kOk;
}

} // namespace qmz
