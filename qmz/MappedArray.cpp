#include "MappedArray.h"

#include <new>
#include <sys/mman.h>

namespace qmz {
namespace {

constexpr size_t kFirstCapacity = size_t{64} << 10;

} // namespace

MappedBlock::~MappedBlock() {
    Release();
}

void MappedBlock::Reserve(size_t bytes) {
    size_t capacity = capacity_ == 0 ? kFirstCapacity : capacity_;
    while (capacity < bytes) {
        capacity *= 2;
    }
    void* p = data_ == nullptr ? mmap(nullptr, capacity, PROT_READ | PROT_WRITE,
                                      MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
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
