// Fixed-size blocks carved from 2 MiB slabs. A tree of a million nodes then costs a few hundred
// slab allocations instead of a million heap allocations, and the slabs are advised to use huge
// pages, which spares the kernel one page fault per 4 KiB of a fresh tree. When the last block
// is freed, the slabs go back to the system. Not thread-safe: nodes live on one thread.
#pragma once

#include <cstddef>
#include <vector>

class FixedBlockPool {
public:
    explicit FixedBlockPool(size_t blockSize);
    ~FixedBlockPool();
    FixedBlockPool(const FixedBlockPool&) = delete;
    FixedBlockPool& operator=(const FixedBlockPool&) = delete;

    // Null when no memory is left.
    void* Allocate() noexcept;
    void Free(void* pBlock) noexcept;
    size_t LiveBlocks() const { return m_nLive; }
    size_t SlabCount() const { return m_slabs.size(); }

    static constexpr size_t kSlabBytes = size_t{2} << 20;

private:
    struct FreeBlock {
        FreeBlock* pNext;
    };

    bool AddSlab() noexcept;
    void ReleaseSlabs() noexcept;

    size_t m_nBlockSize;
    FreeBlock* m_pFree = nullptr;
    char* m_pNext = nullptr;
    char* m_pEnd = nullptr;
    size_t m_nLive = 0;
    std::vector<void*> m_slabs;
};
