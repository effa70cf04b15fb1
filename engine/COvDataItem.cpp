#include "COvDataItem.h"

#include "FixedBlockPool.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <vector>

namespace {

COvDataItem::FileTypeLookup g_pfnFileTypeLookup = nullptr;

#if defined(__SANITIZE_ADDRESS__)
// AddressSanitizer must see every node on its own to find its misuse.
void* AllocateNode(size_t size) noexcept {
    return std::malloc(size);
}
void FreeNode(void* p) noexcept {
    std::free(p);
}
#else
FixedBlockPool& NodePool() {
    static FixedBlockPool pool(sizeof(COvDataItem));
    return pool;
}
void* AllocateNode(size_t) noexcept {
    return NodePool().Allocate();
}
void FreeNode(void* p) noexcept {
    NodePool().Free(p);
}
#endif

// Case-insensitive order of QString::compare, with a fast path for ASCII, which most names
// on discs are. Outside ASCII, case folding can map a character onto an ASCII one (the Kelvin
// sign onto 'k'), so the rest of the names goes to Qt from the first such character on.
int CompareNoCase(QStringView a, QStringView b) {
    const char16_t* pa = a.utf16();
    const char16_t* pb = b.utf16();
    const qsizetype n = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < n; ++i) {
        char16_t ca = pa[i];
        char16_t cb = pb[i];
        if (ca == cb) {
            continue;
        }
        if (ca >= 0x80 || cb >= 0x80) {
            return a.mid(i).compare(b.mid(i), Qt::CaseInsensitive);
        }
        ca = (ca >= u'A' && ca <= u'Z') ? static_cast<char16_t>(ca + 32) : ca;
        cb = (cb >= u'A' && cb <= u'Z') ? static_cast<char16_t>(cb + 32) : cb;
        if (ca != cb) {
            return ca < cb ? -1 : 1;
        }
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

uint64_t JoinSize(uint32_t sizeLow, uint32_t sizeHigh) {
    return (static_cast<uint64_t>(sizeHigh) << 32) | sizeLow;
}

} // namespace

void* COvDataItem::operator new(size_t size) {
    void* p = AllocateNode(size);
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    return p;
}

void* COvDataItem::operator new(size_t size, const std::nothrow_t&) noexcept {
    return AllocateNode(size);
}

void COvDataItem::operator delete(void* p) noexcept {
    FreeNode(p);
}

COvDataItem::COvDataItem(const QString& text, uint32_t kind, uint32_t sizeLow, uint32_t sizeHigh)
    : m_uKind(kind), m_ullSize(JoinSize(sizeLow, sizeHigh)) {
    if (kind == KindRoot) {
        m_strName = text;
        m_strDisplayName = m_strName;
        return;
    }
    InitFromPath(text, nullptr);
}

void COvDataItem::InitFromPath(const QString& text, const NodeText* pSiblingPath) {
    const qsizetype nNameStart = text.lastIndexOf(u'\\') + 1;
    m_strName = NodeText::InBlock(QStringView(text).mid(nNameStart));
    const QStringView pathPart = QStringView(text).left(nNameStart);
    if (pSiblingPath != nullptr && *pSiblingPath == pathPart) {
        m_strPath = *pSiblingPath;
    } else {
        m_strPath = NodeText::Copy(pathPart);
    }
    m_strDisplayName = m_strName;
    FillTypeInfo(text);
}

void COvDataItem::FillTypeInfo(const QString& text) {
    if (g_pfnFileTypeLookup == nullptr) {
        return;
    }
    FileTypeRecord record;
    if (g_pfnFileTypeLookup(text, IsFolder(), record)) {
        m_nIcon = record.nIcon;
        m_nOpenIcon = record.nOpenIcon;
        m_strTypeName = record.strTypeName;
    }
}

void COvDataItem::SetFileTypeLookup(FileTypeLookup pfnLookup) {
    g_pfnFileTypeLookup = pfnLookup;
}

COvDataItem::~COvDataItem() {
    // Frees the subtree without recursion: an image decides how deep a tree is.
    std::vector<COvDataItem*> pending(m_vecChildren.begin(), m_vecChildren.end());
    m_vecChildren.clear();
    while (!pending.empty()) {
        COvDataItem* pItem = pending.back();
        pending.pop_back();
        if (pItem == nullptr) {
            continue;
        }
        pending.insert(pending.end(), pItem->m_vecChildren.begin(), pItem->m_vecChildren.end());
        pItem->m_vecChildren.clear();
        delete pItem;
    }
}

COvDataItem* COvDataItem::AddChild(const QString& text, uint32_t kind, uint32_t sizeLow,
                                   uint32_t sizeHigh) {
    COvDataItem* pChild = new (std::nothrow) COvDataItem();
    if (pChild == nullptr) {
        return nullptr;
    }
    pChild->m_uKind = kind;
    pChild->m_ullSize = JoinSize(sizeLow, sizeHigh);
    const NodeText* pSiblingPath =
        m_vecChildren.empty() ? nullptr : &m_vecChildren.back()->m_strPath;
    pChild->InitFromPath(text, pSiblingPath);
    if (!AppendChild(pChild)) {
        delete pChild;
        return nullptr;
    }

    if (pChild->IsFolder()) {
        ++m_nFolders;
    } else if (pChild->IsFile()) {
        ++m_nFiles;
    }
    for (COvDataItem* pItem = this; pItem != nullptr; pItem = pItem->m_pParent) {
        pItem->m_ullSize += pChild->m_ullSize;
    }
    return pChild;
}

bool COvDataItem::AppendChild(COvDataItem* pChild) {
    pChild->m_pParent = this;
    return m_vecChildren.push_back(pChild);
}

COvDataItem* COvDataItem::GetNextChild(size_t& pos) const {
    if (pos >= m_vecChildren.size()) {
        return nullptr;
    }
    return m_vecChildren[pos++];
}

bool COvDataItem::LessByNameAscending(const COvDataItem* a, const COvDataItem* b) {
    if (a == nullptr || b == nullptr) {
        return a == nullptr && b != nullptr;
    }
    if (a->m_uKind != b->m_uKind) {
        return a->m_uKind < b->m_uKind;
    }
    return CompareNoCase(a->m_strName.View(), b->m_strName.View()) < 0;
}

void COvDataItem::SortChildrenByName() {
    // Engines often list a folder in this order already: checking costs one comparison per
    // child, sorting a dozen.
    if (!std::is_sorted(m_vecChildren.begin(), m_vecChildren.end(), LessByNameAscending)) {
        std::sort(m_vecChildren.begin(), m_vecChildren.end(), LessByNameAscending);
    }
}
