#include "ImageFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qmz {

ImageFile::~ImageFile() {
    if (mapping_ != nullptr) {
        munmap(const_cast<uint8_t*>(mapping_), size_);
    }
    if (fd_ >= 0) {
        close(fd_);
    }
}

Result ImageFile::Open(const char* path, bool allowMapping) {
    if (fd_ >= 0) {
        return kUnexpected;
    }
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return kEngineOpenFailed;
    }
    struct stat st {};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        return kEngineOpenFailed;
    }
    fd_ = fd;
    size_ = static_cast<uint64_t>(st.st_size);
    if (allowMapping && size_ > 0 && size_ <= SIZE_MAX) {
        void* p = mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, fd_, 0);
        if (p != MAP_FAILED) {
            mapping_ = static_cast<const uint8_t*>(p);
        }
    }
    return kOk;
}

const uint8_t* ImageFile::View(uint64_t offset, size_t length) const {
    constexpr uint64_t kDropAfterBytes = uint64_t{32} << 20;
    // Every view maps at least a page in, however few bytes it asks for.
    constexpr uint64_t kPageBytes = 4096;
    const uint64_t touched = length + kPageBytes;
    if (viewedBytes_.fetch_add(touched, std::memory_order_relaxed) + touched >= kDropAfterBytes) {
        DropViews();
    }
    return mapping_ + offset;
}

void ImageFile::DropViews() const {
    viewedBytes_.store(0, std::memory_order_relaxed);
    if (mapping_ != nullptr) {
        madvise(const_cast<uint8_t*>(mapping_), size_, MADV_DONTNEED);
    }
}

Result ImageFile::Read(uint64_t offset, void* dst, size_t length) const {
    if (!Contains(offset, length)) {
        return kEngineReadFailed;
    }
    // Large copies go through the kernel: as fast as copying from the mapping, and they don't
    // pile the file's pages up in this process's resident memory while an image is extracted.
    constexpr size_t kPreadFromBytes = 16384;
    if (mapping_ != nullptr && length < kPreadFromBytes) {
        std::memcpy(dst, View(offset, length), length);
        return kOk;
    }
    auto* out = static_cast<uint8_t*>(dst);
    while (length > 0) {
        ssize_t n = pread(fd_, out, length, static_cast<off_t>(offset));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return kEngineReadFailed;
        }
        out += n;
        offset += static_cast<uint64_t>(n);
        length -= static_cast<size_t>(n);
    }
    return kOk;
}

} // namespace qmz
