// A list of fixed-size binary records kept as a whole key: one REG_BINARY value per record,
// named by its index in decimal.
#pragma once

#include "RegValueIo.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <vector>

class ArrayReg {
public:
    ArrayReg() = default;
    ArrayReg(RegRoot root, const QString& key, uint32_t recordSize, CRegistry* pRegistry = nullptr);
    virtual ~ArrayReg() = default;

    void Clear() { m_vecRecords.clear(); }
    // Each of these does nothing when the data is null, its size is not the record size or
    // the index lies outside the list.
    void RemoveAt(size_t index);
    void Add(const void* pData, uint32_t size);
    void InsertAt(size_t index, const void* pData, uint32_t size);
    void SetAt(size_t index, const void* pData, uint32_t size);
    // Null past the end.
    const uint8_t* GetAt(size_t index) const;
    size_t Count() const { return m_vecRecords.size(); }

    // Replaces the whole key; a list written empty leaves an empty key.
    bool Write();
    // Own root only, in the store's order of the values; stops at the first value that is
    // larger than a record.
    bool Read();

private:
    bool Accepts(const void* pData, uint32_t size) const;

    std::vector<QByteArray> m_vecRecords;
    uint32_t m_nRecordSize = kDefaultRecordSize;
    QString m_strKey;
    RegRoot m_root = RegRoot::LocalMachine;
    CRegistry* m_pRegistry = nullptr;

    static constexpr uint32_t kDefaultRecordSize = 2048;
};
