// The children of a tree node: a pointer and two 32-bit counts, where a std::vector takes three
// pointers. Most nodes of a disc are files, which never have children, so a million-node tree
// spares eight megabytes; the engine numbers entries in 32 bits, so no folder holds more.
#pragma once

#include <cstddef>
#include <cstdint>

class COvDataItem;

class NodeChildren {
public:
    using value_type = COvDataItem*;
    using iterator = COvDataItem**;
    using const_iterator = COvDataItem* const*;

    NodeChildren() = default;
    NodeChildren(const NodeChildren&) = delete;
    NodeChildren& operator=(const NodeChildren&) = delete;
    ~NodeChildren();

    size_t size() const { return m_nSize; }
    size_t capacity() const { return m_nCapacity; }
    bool empty() const { return m_nSize == 0; }
    COvDataItem* operator[](size_t i) const { return m_ppItems[i]; }
    COvDataItem*& operator[](size_t i) { return m_ppItems[i]; }
    COvDataItem* front() const { return m_ppItems[0]; }
    COvDataItem* back() const { return m_ppItems[m_nSize - 1]; }
    iterator begin() { return m_ppItems; }
    iterator end() { return m_ppItems + m_nSize; }
    const_iterator begin() const { return m_ppItems; }
    const_iterator end() const { return m_ppItems + m_nSize; }

    // False, with nothing changed, when memory runs out or the count would pass 32 bits.
    bool push_back(COvDataItem* pItem);
    bool reserve(size_t nCapacity);
    void shrink_to_fit();
    // Forgets the children without freeing them; their owner frees them.
    void clear();

private:
    bool Resize(uint32_t nCapacity);

    COvDataItem** m_ppItems = nullptr;
    uint32_t m_nSize = 0;
    uint32_t m_nCapacity = 0;
};

static_assert(sizeof(NodeChildren) == 16);
