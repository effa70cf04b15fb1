#include "NodeText.h"

#include <algorithm>
#include <array>

namespace {

char16_t* Characters(QTypedArrayData<char16_t>* pData) {
    return QTypedArrayData<char16_t>::dataStart(pData,
                                                alignof(QTypedArrayData<char16_t>::AlignmentDummy));
}

// The buffer under a string; data_ptr() of a non-const string hands it over without a copy.
QTypedArrayData<char16_t>* HeaderOf(const QString& text) {
    return const_cast<QString&>(text).data_ptr().d_ptr();
}

// A string whose characters start its buffer and fill all of it, the form a NodeText holds.
bool IsWhole(const QString& text) {
    QTypedArrayData<char16_t>* pData = HeaderOf(text);
    return pData != nullptr && text.constData() == reinterpret_cast<QChar*>(Characters(pData)) &&
           text.size() == pData->allocatedCapacity();
}

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
    if (this == &other) {
        return *this;
    }
    if (other.IsMirror()) {
        // A mirror belongs to its owner's field; a copy takes the characters instead.
        *this = *other.Mirrored();
        return *this;
    }
    Data* pData = other.Header();
    if (pData != nullptr) {
        pData->ref();
    }
    Clear();
    m_uBits = reinterpret_cast<uintptr_t>(pData);
    return *this;
}

NodeText& NodeText::operator=(const QString& text) {
    if (text.isEmpty()) {
        Clear();
    } else if (IsWhole(text)) {
        Share(HeaderOf(text));
    } else {
        thread_local RecentTexts tRecent;
        const NodeText* pCopy = tRecent.Find(text);
        *this = pCopy != nullptr ? *pCopy : tRecent.Add(text);
    }
    return *this;
}

NodeText NodeText::Copy(QStringView text) {
    NodeText copy;
    if (!text.isEmpty()) {
        // The characters are written through the header: the allocator is declared like
        // malloc, so the compiler may drop stores through the data pointer it returns when
        // that pointer itself is never kept.
        Data* pData = Data::allocate(text.size()).first;
        if (pData != nullptr) {
            char16_t* pUnits = Characters(pData);
            std::copy(text.utf16(), text.utf16() + text.size(), pUnits);
            pUnits[text.size()] = u'\0';
            // The buffer may be larger than asked for; the text is as long as it says.
            pData->alloc = text.size();
            copy.m_uBits = reinterpret_cast<uintptr_t>(pData);
        }
    }
    return copy;
}

void NodeText::Mirror(const QString* pText) {
    Clear();
    m_uBits = reinterpret_cast<uintptr_t>(pText) | kMirrorBit;
}

QString NodeText::ToString() const {
    if (IsMirror()) {
        return *Mirrored();
    }
    Data* pData = Header();
    if (pData == nullptr) {
        return QString();
    }
    pData->ref();
    return QString(QString::DataPointer(pData, Characters(pData), pData->allocatedCapacity()));
}

QStringView NodeText::View() const {
    if (IsMirror()) {
        return *Mirrored();
    }
    Data* pData = Header();
    if (pData == nullptr) {
        return QStringView();
    }
    return QStringView(Characters(pData), pData->allocatedCapacity());
}

void NodeText::Share(Data* pData) {
    pData->ref();
    Clear();
    m_uBits = reinterpret_cast<uintptr_t>(pData);
}

void NodeText::Clear() {
    if (!IsMirror() && m_uBits != 0 && !Header()->deref()) {
        Data::deallocate(Header());
    }
    m_uBits = 0;
}
