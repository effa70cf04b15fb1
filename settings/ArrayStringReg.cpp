#include "ArrayStringReg.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr qsizetype kMaxValueNameChars = 255;

} // namespace

ArrayStringReg::ArrayStringReg() : m_scratch(kDefaultRecordSize, '\0') {}

ArrayStringReg::ArrayStringReg(RegRoot root, const QString& key, uint32_t recordSize,
                               CRegistry* pRegistry)
    : m_nRecordSize(recordSize), m_strKey(key), m_root(root),
      m_scratch(static_cast<qsizetype>(recordSize), '\0'), m_pRegistry(pRegistry) {}

void ArrayStringReg::RemoveAt(qsizetype index) {
    if (index >= 0 && index < m_lstStrings.size()) {
        m_lstStrings.removeAt(index);
    }
}

void ArrayStringReg::Add(const QString& text, uint32_t size) {
    if (size == m_nRecordSize) {
        m_lstStrings.append(text);
    }
}

void ArrayStringReg::InsertAt(qsizetype index, const QString& text, uint32_t size) {
    if (size == m_nRecordSize && index >= 0 && index <= m_lstStrings.size()) {
        m_lstStrings.insert(index, text);
    }
}

void ArrayStringReg::SetAt(qsizetype index, const QString& text, uint32_t size) {
    if (size == m_nRecordSize && index >= 0 && index < m_lstStrings.size()) {
        m_lstStrings[index] = text;
    }
}

bool ArrayStringReg::Write() {
    CRegistryStore& store = regio::Resolve(m_pRegistry).Root(m_root);
    store.DeleteKey(m_strKey);
    if (store.CreateKey(m_strKey) != RegStatus::Ok) {
        return false;
    }
    for (qsizetype i = 0; i < m_lstStrings.size(); ++i) {
        // The text and its terminator, cut to the record.
        const QByteArray text = regio::BytesFromText(m_lstStrings[i]) + QByteArray(2, '\0');
        const qsizetype nCopy = std::min(text.size(), m_scratch.size());
        std::memcpy(m_scratch.data(), text.constData(), static_cast<size_t>(nCopy));
        store.SetValue(m_strKey, QString::number(i), kRegSz, m_scratch);
    }
    return true;
}

bool ArrayStringReg::Read() {
    CRegistryStore& store = regio::Resolve(m_pRegistry).Root(m_root);
    if (store.KeyExists(m_strKey) != RegStatus::Ok) {
        return false;
    }
    Clear();
    QString name;
    uint32_t type = 0;
    QByteArray data;
    for (uint32_t i = 0; store.EnumValue(m_strKey, i, name, type, data) == RegStatus::Ok; ++i) {
        if (name.size() > kMaxValueNameChars || data.size() > m_scratch.size()) {
            break;
        }
        std::memcpy(m_scratch.data(), data.constData(), static_cast<size_t>(data.size()));
        m_lstStrings.append(regio::TextFromBytes(m_scratch));
    }
    return true;
}
