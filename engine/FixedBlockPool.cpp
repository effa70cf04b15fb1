#include "FixedBlockPool.h"

#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace {

constexpr size_t kBlockAlignment = alignof(std::max_align_t);

size_t RoundUp(size_t value, size_t unit) {
    return (value + unit - 1) / unit * unit;
}

// A slab aligned to its own size, so that the kernel can back it with one huge page.
void* MapAlignedSlab() {
    const size_t reserve = 2 * FixedBlockPool::kSlabBytes;
    void* p = mmap(nullptr, reserve, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) {
        return nullptr;
    }
    const auto start = reinterpret_cast<uintptr_t>(p);
    const uintptr_t aligned = RoundUp(start, FixedBlockPool::kSlabBytes);
    if (aligned > start) {
        munmap(p, aligned - start);
    }
    const uintptr_t tail = aligned + FixedBlockPool::kSlabBytes;
    munmap(reinterpret_cast<void*>(tail), start + reserve - tail);
    void* pSlab = reinterpret_cast<void*>(aligned);
    madvise(pSlab, FixedBlockPool::kSlabBytes, MADV_HUGEPAGE);
    return pSlab;
}

} // namespace

FixedBlockPool::FixedBlockPool(size_t blockSize)
    : m_nBlockSize(RoundUp(blockSize < sizeof(FreeBlock) ? sizeof(FreeBlock) : blockSize,
                           kBlockAlignment)) {}

FixedBlockPool::~FixedBlockPool() {
    ReleaseSlabs();
}

void* FixedBlockPool::Allocate() noexcept {
    void* pBlock = nullptr;
    if (m_pFree != nullptr) {
        pBlock = m_pFree;
        m_pFree = m_pFree->pNext;
    } else {
        if (m_pNext == nullptr || static_cast<size_t>(m_pEnd - m_pNext) < m_nBlockSize) {
            if (!AddSlab()) {
                return nullptr;
            }
        }
        pBlock = m_pNext;
        m_pNext += m_nBlockSize;
    }
    ++m_nLive;
    return pBlock;
}

void FixedBlockPool::Free(void* pBlock) noexcept {
    if (pBlock == nullptr) {
        return;
    }
    auto* pFree = static_cast<FreeBlock*>(pBlock);
    pFree->pNext = m_pFree;
    m_pFree = pFree;
    if (--m_nLive == 0) {
        ReleaseSlabs();
    }
}

bool FixedBlockPool::AddSlab() noexcept {
    void* pSlab = MapAlignedSlab();
    if (pSlab == nullptr) {
        return false;
    }
    try {
        m_slabs.push_back(pSlab);
    } catch (const std::bad_alloc&) {
        munmap(pSlab, kSlabBytes);
        return false;
    }
    m_pNext = static_cast<char*>(pSlab);
    m_pEnd = m_pNext + kSlabBytes;
    return true;
}

void FixedBlockPool::ReleaseSlabs() noexcept {
    for (void* pSlab : m_slabs) {
        munmap(pSlab, kSlabBytes);
    }
    m_slabs.clear();
    m_pFree = nullptr;
    m_pNext = nullptr;
    m_pEnd = nullptr;
}
