#include "COvDataItem.h"

#include "FixedBlockPool.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <type_traits>
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

QAnyStringView Tail(const char* p, qsizetype n) {
    return QLatin1StringView(p, n);
}
QAnyStringView Tail(const char16_t* p, qsizetype n) {
    return QStringView(p, n);
}

// Case-insensitive order of QString::compare, with a fast path for ASCII, which most names
// on discs are. Outside ASCII, case folding can map a character onto an ASCII one (the Kelvin
// sign onto 'k'), so the rest of the names goes to Qt from the first such character on.
template <typename CharA, typename CharB>
int CompareNoCase(const CharA* pa, qsizetype na, const CharB* pb, qsizetype nb) {
    const qsizetype n = std::min(na, nb);
    for (qsizetype i = 0; i < n; ++i) {
        char16_t ca = static_cast<std::make_unsigned_t<CharA>>(pa[i]);
        char16_t cb = static_cast<std::make_unsigned_t<CharB>>(pb[i]);
        if (ca == cb) {
            continue;
        }
        if (ca >= 0x80 || cb >= 0x80) {
            return QAnyStringView::compare(Tail(pa + i, na - i), Tail(pb + i, nb - i),
                                           Qt::CaseInsensitive);
        }
        ca = (ca >= u'A' && ca <= u'Z') ? static_cast<char16_t>(ca + 32) : ca;
        cb = (cb >= u'A' && cb <= u'Z') ? static_cast<char16_t>(cb + 32) : cb;
        if (ca != cb) {
            return ca < cb ? -1 : 1;
        }
    }
    return na == nb ? 0 : (na < nb ? -1 : 1);
}

const char16_t* Chars(QStringView view) {
    return view.utf16();
}
const char* Chars(QLatin1StringView view) {
    return view.data();
}

template <typename View>
concept HasChars = std::is_same_v<View, QStringView> || std::is_same_v<View, QLatin1StringView>;

template <typename ViewA, typename ViewB> int CompareViews(ViewA a, ViewB b) {
    if constexpr (HasChars<ViewA> && HasChars<ViewB>) {
        return CompareNoCase(Chars(a), a.size(), Chars(b), b.size());
    } else {
        return QAnyStringView::compare(a, b, Qt::CaseInsensitive);
    }
}

// Names are UTF-16 or one byte a character (see NodeText); either pairing takes the fast path.
int CompareNoCase(QAnyStringView a, QAnyStringView b) {
    return a.visit([b](auto viewA) {
        return b.visit([viewA](auto viewB) { return CompareViews(viewA, viewB); });
    });
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
