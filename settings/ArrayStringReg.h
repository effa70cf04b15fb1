// A list of strings kept as a whole key: one REG_SZ value of exactly the record size per
// string, named by its index in decimal.
#pragma once

#include "RegValueIo.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstdint>

class ArrayStringReg {
public:
    ArrayStringReg();
    ArrayStringReg(RegRoot root, const QString& key, uint32_t recordSize,
                   CRegistry* pRegistry = nullptr);
    virtual ~ArrayStringReg() = default;

    void Clear() { m_lstStrings.clear(); }
    // Each of these does nothing when the size given is not the record size or the index
    // lies outside the list.
    void RemoveAt(qsizetype index);
    void Add(const QString& text, uint32_t size);
    void InsertAt(qsizetype index, const QString& text, uint32_t size);
    void SetAt(qsizetype index, const QString& text, uint32_t size);
    QString GetAt(qsizetype index) const { return m_lstStrings.value(index); }
    qsizetype Count() const { return m_lstStrings.size(); }

    // Each string goes out through one scratch buffer of the record size, so a short string
    // carries what a longer one before it left behind its terminator.
    bool Write();
    bool Read();

private:
    QStringList m_lstStrings;
    uint32_t m_nRecordSize = kDefaultRecordSize;
    QString m_strKey;
    RegRoot m_root = RegRoot::LocalMachine;
    QByteArray m_scratch;
    CRegistry* m_pRegistry = nullptr;

    static constexpr uint32_t kDefaultRecordSize = 128;
};
