#include "ArrayReg.h"

#include <cstring>

namespace {

// The family enumerates with a name buffer of 256 characters, terminator included.
constexpr qsizetype kMaxValueNameChars = 255;

} // namespace

ArrayReg::ArrayReg(RegRoot root, const QString& key, uint32_t recordSize, CRegistry* pRegistry)
    : m_nRecordSize(recordSize), m_strKey(key), m_root(root), m_pRegistry(pRegistry) {}

bool ArrayReg::Accepts(const void* pData, uint32_t size) const {
    return pData != nullptr && size == m_nRecordSize;
}

void ArrayReg::RemoveAt(size_t index) {
    if (index < m_vecRecords.size()) {
        m_vecRecords.erase(m_vecRecords.begin() + static_cast<ptrdiff_t>(index));
    }
}

void ArrayReg::Add(const void* pData, uint32_t size) {
    if (Accepts(pData, size)) {
        m_vecRecords.emplace_back(static_cast<const char*>(pData), size);
    }
}

void ArrayReg::InsertAt(size_t index, const void* pData, uint32_t size) {
    if (Accepts(pData, size) && index <= m_vecRecords.size()) {
        m_vecRecords.emplace(m_vecRecords.begin() + static_cast<ptrdiff_t>(index),
                             static_cast<const char*>(pData), size);
    }
}

void ArrayReg::SetAt(size_t index, const void* pData, uint32_t size) {
    if (Accepts(pData, size) && index < m_vecRecords.size()) {
        m_vecRecords[index] = QByteArray(static_cast<const char*>(pData), size);
    }
}

const uint8_t* ArrayReg::GetAt(size_t index) const {
    if (index >= m_vecRecords.size()) {
        return nullptr;
    }
    return reinterpret_cast<const uint8_t*>(m_vecRecords[index].constData());
}

bool ArrayReg::Write() {
    CRegistryStore& store = regio::Resolve(m_pRegistry).Root(m_root);
    store.DeleteKey(m_strKey);
    if (store.CreateKey(m_strKey) != RegStatus::Ok) {
        return false;
    }
    // A record that fails to write is not reported, as the family's programs never did; the
    // next read sees the list up to it.
    for (size_t i = 0; i < m_vecRecords.size(); ++i) {
        store.SetValue(m_strKey, QString::number(i), kRegBinary, m_vecRecords[i]);
    }
    return true;
}

bool ArrayReg::Read() {
    CRegistryStore& store = regio::Resolve(m_pRegistry).Root(m_root);
    if (store.KeyExists(m_strKey) != RegStatus::Ok) {
        return false;
    }
    Clear();
    // A shorter value leaves the rest of the previous record in the scratch, as the family's
    // programs read it.
    QByteArray scratch(static_cast<qsizetype>(m_nRecordSize), '\0');
    QString name;
    uint32_t type = 0;
    QByteArray data;
    for (uint32_t i = 0; store.EnumValue(m_strKey, i, name, type, data) == RegStatus::Ok; ++i) {
        if (name.size() > kMaxValueNameChars || data.size() > scratch.size()) {
            break;
        }
        std::memcpy(scratch.data(), data.constData(), static_cast<size_t>(data.size()));
        m_vecRecords.push_back(scratch);
    }
    return true;
}
