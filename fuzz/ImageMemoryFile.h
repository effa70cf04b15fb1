// The file the engine opens for each fuzz input. The engine opens images by path; a memory
// file gives the input one without a disk. One file, mapped once at the largest image size,
// serves every input: only the bytes the previous input wrote are cleared, so a small input
// after a large one costs no more than its own chunks.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "SparseImage.h"

namespace ovrin::fuzz {

class ImageMemoryFile {
public:
    ImageMemoryFile();
    ~ImageMemoryFile();
    ImageMemoryFile(const ImageMemoryFile&) = delete;
    ImageMemoryFile& operator=(const ImageMemoryFile&) = delete;

    bool Valid() const { return mapping_ != nullptr; }
    // The file's name under /proc, which the engine can open.
    std::string Path() const;
    // Makes the file hold exactly `image`: its size, its chunks and zeros everywhere else.
    bool Write(const SparseImage& image);

private:
    bool Resize(uint32_t size);

    int fd_ = -1;
    uint8_t* mapping_ = nullptr;
    uint32_t size_ = 0;
    // Offset and length of every chunk written since the file was last cleared.
    std::vector<std::pair<uint32_t, uint32_t>> written_;
};

} // namespace ovrin::fuzz
