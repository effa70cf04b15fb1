#include "MappedArray.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <sys/mman.h>
#include <utility>

namespace qmz {
namespace {

// A few pages to start with: most volumes, and every fuzzer input, hold a few hundred entries,
// and a first huge page would cost the zeroing of two megabytes per array.
constexpr size_t kFirstCapacity = size_t{16} << 10;
// From one huge page on, the mapping is aligned to it and advised to use huge pages.
constexpr size_t kHugePage = size_t{2} << 20;

void* MapPlain(size_t bytes) {
    return mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
}

// A mapping aligned to its size, so that the kernel can back it with huge pages.
void* MapAligned(size_t bytes) {
    const size_t reserve = 2 * bytes;
    void* p = MapPlain(reserve);
    if (p == MAP_FAILED) {
        return p;
    }
    const auto start = reinterpret_cast<uintptr_t>(p);
    const uintptr_t aligned = (start + bytes - 1) / bytes * bytes;
    if (aligned > start) {
        munmap(p, aligned - start);
    }
    munmap(reinterpret_cast<void*>(aligned + bytes), start + reserve - (aligned + bytes));
    return reinterpret_cast<void*>(aligned);
}

} // namespace

MappedBlock::~MappedBlock() {
    Release();
}

void MappedBlock::Reserve(size_t bytes) {
    size_t capacity = capacity_ == 0 ? kFirstCapacity : capacity_;
    while (capacity < bytes) {
        capacity *= 2;
    }
    void* p = MAP_FAILED;
    if (capacity < kHugePage) {
        p = data_ == nullptr ? MapPlain(capacity)
                             : mremap(data_, capacity_, capacity, MREMAP_MAYMOVE);
    } else if (capacity_ < kHugePage) {
        // Into an aligned mapping once; the small one is copied, which is cheap at its size.
        p = MapAligned(capacity);
        if (p != MAP_FAILED && data_ != nullptr) {
            std::memcpy(p, data_, capacity_);
            munmap(data_, capacity_);
        }
    } else {
        p = mremap(data_, capacity_, capacity, MREMAP_MAYMOVE);
    }
    if (p == MAP_FAILED) {
        throw std::bad_alloc();
    }
    if (capacity >= kHugePage) {
        madvise(p, capacity, MADV_HUGEPAGE);
    }
    data_ = p;
    capacity_ = capacity;
}

void MappedBlock::Swap(MappedBlock& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(capacity_, other.capacity_);
}

void MappedBlock::Release() {
    if (data_ != nullptr) {
        munmap(data_, capacity_);
    }
    data_ = nullptr;
    capacity_ = 0;
}

} // namespace qmz
