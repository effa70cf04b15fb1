// A disc-image file opened read-only: mapped into memory where the system allows it, read
// with pread otherwise.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "QmzTypes.h"

namespace qmz {

class ImageFile {
public:
    ImageFile() = default;
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;
    ~ImageFile();

    // Opens `path` (UTF-8). `allowMapping` false forces the pread path, which tests use.
    Result Open(const char* path, bool allowMapping = true);

    uint64_t Size() const { return size_; }
    // The whole file in memory, or nullptr when it is read with pread.
    const uint8_t* Mapping() const { return mapping_; }
    // A pointer into the mapping for `length` bytes at `offset`, which the caller has checked.
    // A scan looks at many scattered sectors once; their mapped pages count against the
    // process although the page cache keeps them anyway, so every kDropAfterBytes of views the
    // mapping lets them go. Pointers stay valid: a page is mapped again when it is touched.
    const uint8_t* View(uint64_t offset, size_t length) const;
    // Lets every page that views mapped in go; the pointers stay valid.
    void DropViews() const;
    // Copies exactly `length` bytes from `offset`; a range past the end is kEngineReadFailed.
    Result Read(uint64_t offset, void* dst, size_t length) const;
    bool Contains(uint64_t offset, uint64_t length) const {
        return offset <= size_ && length <= size_ - offset;
    }

private:
    int fd_ = -1;
    uint64_t size_ = 0;
    const uint8_t* mapping_ = nullptr;
    mutable std::atomic<uint64_t> viewedBytes_{0};
};

} // namespace qmz
