#include "MappedArray.h"

#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace qmz {
namespace {

// One huge page: smaller mappings cannot use one, and untouched parts cost nothing.
constexpr size_t kFirstCapacity = size_t{2} << 20;

// A first mapping aligned to its size, so that the kernel can back it with a huge page.
void* MapAligned(size_t bytes) {
    const size_t reserve = 2 * bytes;
    void* p = mmap(nullptr, reserve, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
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
    void* p = data_ == nullptr ? MapAligned(capacity)
                               : mremap(data_, capacity_, capacity, MREMAP_MAYMOVE);
    if (p == MAP_FAILED) {
        throw std::bad_alloc();
    }
    madvise(p, capacity, MADV_HUGEPAGE);
    data_ = p;
    capacity_ = capacity;
}

void MappedBlock::Release() {
    if (data_ != nullptr) {
        munmap(data_, capacity_);
    }
    data_ = nullptr;
    capacity_ = 0;
}

} // namespace qmz
