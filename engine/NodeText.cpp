#include "NodeText.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using Data = QTypedArrayData<char16_t>;

// Texts in a block lie in a window of the block's buffer that is aligned to its own size. The
// window starts with the address of the buffer's header, then holds one record per text: its
// length in one unit, then either its units and a terminating 0 (Qt reads a string's next unit
// as one), or, with kNarrowBit in the length, its ASCII characters one byte each, padded to a
// whole unit. A text finds its header from its own address alone, and a pointer is all a node
// keeps of it.
constexpr uintptr_t kWindowBytes = 64 * 1024;
constexpr qsizetype kWindowUnits = kWindowBytes / sizeof(char16_t);
constexpr qsizetype kHeaderUnits = sizeof(Data*) / sizeof(char16_t);
// Longer texts get a buffer of their own, so that blocks are not left half empty.
constexpr qsizetype kMaxInBlockUnits = 512;
constexpr char16_t kNarrowBit = 0x8000;
static_assert(kMaxInBlockUnits < kNarrowBit);

bool IsAscii(QStringView text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

// The units a record takes after its length unit.
qsizetype RecordUnits(qsizetype nChars, bool bNarrow) {
    return bNarrow ? (nChars + 1) / 2 : nChars + 1;
}

char16_t* Characters(Data* pData) {
    return Data::dataStart(pData, alignof(Data::AlignmentDummy));
}

// The buffer under a string; data_ptr() of a non-const string hands it over without a copy.
Data* HeaderOf(const QString& text) {
    return const_cast<QString&>(text).data_ptr().d_ptr();
}

// A string whose characters start its buffer and fill all of it, a form a NodeText holds.
bool IsWhole(const QString& text) {
    Data* pData = HeaderOf(text);
    return pData != nullptr && text.constData() == reinterpret_cast<QChar*>(Characters(pData)) &&
           text.size() == pData->allocatedCapacity();
}

// The block that new texts go to, with the reference that keeps it while it fills.
class CurrentBlock {
public:
    CurrentBlock() = default;
    CurrentBlock(const CurrentBlock&) = delete;
    CurrentBlock& operator=(const CurrentBlock&) = delete;
    ~CurrentBlock() { Release(); }

    // Room for a record whose text takes nUnits units after its length; null when no block can
    // be had.
    char16_t* Reserve(qsizetype nUnits) {
        const qsizetype nRecord = nUnits + 1;
        if (m_pData == nullptr || m_nUsed + nRecord > kWindowUnits) {
            if (!Start()) {
                return nullptr;
            }
        }
        char16_t* pRecord = m_pWindow + m_nUsed;
        m_nUsed += nRecord;
        return pRecord;
    }
    Data* Header() const { return m_pData; }

private:
    bool Start() {
        Release();
        // Twice the window, so that an aligned window fits whatever address the buffer gets;
        // the pages outside it are never touched and cost no memory.
        Data* pData = Data::allocate(2 * kWindowUnits).first;
        if (pData == nullptr) {
            return false;
        }
        const auto start = reinterpret_cast<uintptr_t>(Characters(pData));
        const uintptr_t window = (start + kWindowBytes - 1) & ~(kWindowBytes - 1);
        m_pData = pData;
        m_pWindow = reinterpret_cast<char16_t*>(window);
        std::memcpy(m_pWindow, &pData, sizeof(pData));
        m_nUsed = kHeaderUnits;
        return true;
    }
    void Release() {
        if (m_pData != nullptr && !m_pData->deref()) {
            Data::deallocate(m_pData);
        }
        m_pData = nullptr;
    }

    Data* m_pData = nullptr;
    char16_t* m_pWindow = nullptr;
    qsizetype m_nUsed = 0;
};

// The last few texts handed to nodes and the whole copies made of them. A type service answers
// with one string per type; without this, every node would get a copy of its own.
struct RecentTexts {
    static constexpr size_t kSlots = 16;
    std::array<QString, kSlots> sources;
    std::array<NodeText, kSlots> copies;
    size_t nNext = 0;

    const NodeText* Find(const QString& text) const {
        for (size_t i = 0; i < kSlots; ++i) {
            if (sources[i].constData() == text.constData() && sources[i].size() == text.size() &&
                !sources[i].isNull()) {
                return &copies[i];
            }
        }
        return nullptr;
    }
    const NodeText& Add(const QString& text) {
        const size_t i = nNext;
        nNext = (nNext + 1) % kSlots;
        sources[i] = text;
        copies[i] = NodeText::Copy(text);
        return copies[i];
    }
};

} // namespace

NodeText::NodeText(const NodeText& other) {
    *this = other;
}

NodeText& NodeText::operator=(const NodeText& other) {
    if (this != &other) {
        if (other.m_uBits != 0) {
            other.Header()->ref();
        }
        Clear();
        m_uBits = other.m_uBits;
    }
    return *this;
}

NodeText& NodeText::operator=(const QString& text) {
    if (text.isEmpty()) {
        Clear();
    } else if (IsWhole(text)) {
        HeaderOf(text)->ref();
        Adopt(HeaderOf(text));
    } else {
        thread_local RecentTexts tRecent;
        const NodeText* pCopy = tRecent.Find(text);
        *this = pCopy != nullptr ? *pCopy : tRecent.Add(text);
    }
    return *this;
}

NodeText NodeText::Copy(QStringView text) {
    NodeText copy;
    if (text.isEmpty()) {
        return copy;
    }
    // The characters are written through the header: the allocator is declared like malloc,
    // so the compiler may drop stores through the data pointer it returns when that pointer
    // itself is never kept.
    Data* pData = Data::allocate(text.size()).first;
    if (pData != nullptr) {
        char16_t* pUnits = Characters(pData);
        std::copy(text.utf16(), text.utf16() + text.size(), pUnits);
        pUnits[text.size()] = u'\0';
        // The buffer may be larger than asked for; the text is as long as it says.
        pData->alloc = text.size();
        copy.Adopt(pData);
    }
    return copy;
}

NodeText NodeText::InBlock(QStringView text) {
    if (text.isEmpty() || text.size() > kMaxInBlockUnits) {
        return Copy(text);
    }
    thread_local CurrentBlock tBlock;
    const bool bNarrow = IsAscii(text);
    char16_t* pRecord = tBlock.Reserve(RecordUnits(text.size(), bNarrow));
    if (pRecord == nullptr) {
        return NodeText();
    }
    const auto nLength = static_cast<char16_t>(text.size());
    if (bNarrow) {
        pRecord[0] = nLength | kNarrowBit;
        auto* pBytes = reinterpret_cast<char*>(pRecord + 1);
        std::transform(text.begin(), text.end(), pBytes,
                       [](QChar c) { return static_cast<char>(c.unicode()); });
    } else {
        pRecord[0] = nLength;
        std::copy(text.utf16(), text.utf16() + text.size(), pRecord + 1);
        pRecord[text.size() + 1] = u'\0';
    }
    tBlock.Header()->ref();
    NodeText inBlock;
    inBlock.m_uBits = reinterpret_cast<uintptr_t>(pRecord + 1) | kInBlockBit;
    return inBlock;
}

NodeText::Data* NodeText::Header() const {
    if (!IsInBlock()) {
        return reinterpret_cast<Data*>(m_uBits);
    }
    Data* pData = nullptr;
    std::memcpy(&pData, reinterpret_cast<const void*>(m_uBits & ~(kWindowBytes - 1)),
                sizeof(pData));
    return pData;
}

const char16_t* NodeText::Units() const {
    return reinterpret_cast<const char16_t*>(m_uBits & ~kInBlockBit);
}

QString NodeText::ToString() const {
    if (m_uBits == 0) {
        return QString();
    }
    const QAnyStringView view = View();
    if (IsNarrow()) {
        return view.toString();
    }
    Data* pData = Header();
    pData->ref();
    auto* pUnits = static_cast<char16_t*>(const_cast<void*>(view.data()));
    return QString(QString::DataPointer(pData, pUnits, view.size()));
}

bool NodeText::IsNarrow() const {
    return IsInBlock() && (Units()[-1] & kNarrowBit) != 0;
}

QAnyStringView NodeText::View() const {
    if (m_uBits == 0) {
        return QStringView();
    }
    if (IsInBlock()) {
        const char16_t nLength = Units()[-1];
        if ((nLength & kNarrowBit) != 0) {
            return QLatin1StringView(reinterpret_cast<const char*>(Units()), nLength & ~kNarrowBit);
        }
        return QStringView(Units(), nLength);
    }
    Data* pData = Header();
    return QStringView(Characters(pData), pData->allocatedCapacity());
}

void NodeText::Adopt(Data* pData) {
    Clear();
    m_uBits = reinterpret_cast<uintptr_t>(pData);
}

void NodeText::Clear() {
    if (m_uBits != 0) {
        Data* pData = Header();
        if (!pData->deref()) {
            Data::deallocate(pData);
        }
    }
    m_uBits = 0;
}
