// A text value (REG_SZ, UTF-16LE, stored without its terminator).
#pragma once

#include "RegValueIo.h"

#include <QString>
#include <cstdint>

class StringReg {
public:
    StringReg() = default;
    StringReg(RegRoot root, const QString& key, const QString& name, bool bWriteThrough,
              CRegistry* pRegistry = nullptr);
    virtual ~StringReg() = default;

    // Fails for a text of 1023 characters or more, which the family's read buffer cannot
    // hold; the local copy then stays as it was.
    bool Read();
    bool Write();
    const QString& Get() const { return m_strValue; }
    const QString& Text() const { return m_strValue; }
    bool IsEmpty() const { return m_strValue.isEmpty(); }
    qsizetype Length() const { return m_strValue.size(); }
    StringReg& operator=(const QString& value);
    // Exact comparison: case counts.
    bool operator==(const QString& other) const { return m_strValue == other; }
    bool DeleteValue();

private:
    uint32_t m_bWriteThrough = 0;
    QString m_strKey;
    QString m_strName;
    RegRoot m_root = RegRoot::LocalMachine;
    QString m_strValue;
    CRegistry* m_pRegistry = nullptr;
};
