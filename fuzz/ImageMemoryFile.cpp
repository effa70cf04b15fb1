#include "ImageMemoryFile.h"

#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace ovrin::fuzz {

ImageMemoryFile::ImageMemoryFile() : fd_(memfd_create("image", MFD_CLOEXEC)) {
    if (fd_ < 0 || !Resize(SparseImage::kMaxImageBytes)) {
        return;
    }
    void* p =
        mmap(nullptr, SparseImage::kMaxImageBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
    if (p != MAP_FAILED) {
        mapping_ = static_cast<uint8_t*>(p);
    }
}

ImageMemoryFile::~ImageMemoryFile() {
    if (mapping_ != nullptr) {
        munmap(mapping_, SparseImage::kMaxImageBytes);
    }
    if (fd_ >= 0) {
        close(fd_);
    }
}

std::string ImageMemoryFile::Path() const {
    return "/proc/self/fd/" + std::to_string(fd_);
}

bool ImageMemoryFile::Resize(uint32_t size) {
    if (size == size_) {
        return true;
    }
    if (ftruncate(fd_, static_cast<off_t>(size)) != 0) {
        return false;
    }
    size_ = size;
    return true;
}

// The file grows to the mapping's full size while it is written, since touching the mapping
// past the file's end faults; shrinking it to the image's size afterwards drops whatever lay
// beyond, so only the earlier chunks below that size need clearing.
bool ImageMemoryFile::Write(const SparseImage& image) {
    if (!Valid() || !Resize(SparseImage::kMaxImageBytes)) {
        return false;
    }
    for (const auto& [offset, length] : written_) {
        std::memset(mapping_ + offset, 0, length);
    }
    written_.clear();
    for (const SparseChunk& chunk : image.Chunks()) {
        std::memcpy(mapping_ + chunk.offset, chunk.bytes, chunk.length);
        written_.emplace_back(chunk.offset, chunk.length);
    }
    return Resize(image.Size());
}

} // namespace ovrin::fuzz
