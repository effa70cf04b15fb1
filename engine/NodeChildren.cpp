#include "NodeChildren.h"

#include <cstdlib>
#include <limits>

NodeChildren::~NodeChildren() {
    std::free(m_ppItems);
}

bool NodeChildren::push_back(COvDataItem* pItem) {
    if (m_nSize == m_nCapacity) {
        // Grows by half of the capacity, which wastes less than doubling in trees of many
        // folders; the walk trims every folder once its listing ends.
        const size_t nGrown = m_nCapacity < 4 ? 4 : size_t{m_nCapacity} + m_nCapacity / 2;
        if (!reserve(nGrown) && !reserve(size_t{m_nSize} + 1)) {
            return false;
        }
    }
    m_ppItems[m_nSize++] = pItem;
    return true;
}

bool NodeChildren::reserve(size_t nCapacity) {
    if (nCapacity <= m_nCapacity) {
        return true;
    }
    if (nCapacity > std::numeric_limits<uint32_t>::max()) {
        return false;
    }
    return Resize(static_cast<uint32_t>(nCapacity));
}

void NodeChildren::shrink_to_fit() {
    if (m_nSize == 0) {
        clear();
    } else if (m_nSize < m_nCapacity) {
        Resize(m_nSize);
    }
}

void NodeChildren::clear() {
    std::free(m_ppItems);
    m_ppItems = nullptr;
    m_nSize = 0;
    m_nCapacity = 0;
}

bool NodeChildren::Resize(uint32_t nCapacity) {
    void* p = std::realloc(m_ppItems, size_t{nCapacity} * sizeof(COvDataItem*));
    if (p == nullptr) {
        return false;
    }
    m_ppItems = static_cast<COvDataItem**>(p);
    m_nCapacity = nCapacity;
    return true;
}
