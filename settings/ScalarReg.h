// Six of the nine value objects: each names one registry value of a fixed size and holds a
// local copy of it. They are made at the point of use and thrown away; nothing caches them.
#pragma once

#include "RegValueIo.h"

#include <QByteArray>
#include <QString>
#include <cstdint>

template <typename T, uint32_t kType, T kEmpty> class TScalarReg {
public:
    TScalarReg() = default;
    // pRegistry null: the program's own pair of stores.
    TScalarReg(RegRoot root, const QString& key, const QString& name, bool bWriteThrough,
               CRegistry* pRegistry = nullptr)
        : m_bWriteThrough(bWriteThrough ? 1 : 0), m_strKey(key), m_strName(name), m_root(root),
          m_pRegistry(pRegistry) {}
    virtual ~TScalarReg() = default;

    // True if a value was read; the local copy changes only then.
    bool Read() {
        T value = m_value;
        if (!regio::ReadFixed(regio::Resolve(m_pRegistry), m_root, m_strKey, m_strName, &value,
                              sizeof(T))) {
            return false;
        }
        m_value = value;
        return true;
    }
    bool Write() {
        const QByteArray data(reinterpret_cast<const char*>(&m_value), sizeof(T));
        return regio::Write(regio::Resolve(m_pRegistry), m_root, m_strKey, m_strName, kType, data);
    }
    T Get() const { return m_value; }
    // With write-through the value is stored at once; a failed write is not reported, as
    // callers of an assignment have no way to act on it.
    TScalarReg& operator=(T value) {
        m_value = value;
        if (m_bWriteThrough != 0) {
            Write();
        }
        return *this;
    }

protected:
    uint32_t m_bWriteThrough = 0;
    QString m_strKey;
    QString m_strName;
    RegRoot m_root = RegRoot::LocalMachine;
    T m_value = kEmpty;
    CRegistry* m_pRegistry = nullptr;
};

// Stored as 4 bytes of REG_BINARY, not REG_DWORD, so that the family's programs read it.
class BoolReg final : public TScalarReg<uint32_t, kRegBinary, 0u> {
public:
    using TScalarReg::TScalarReg;
    BoolReg& operator=(bool bValue) {
        TScalarReg::operator=(bValue ? 1u : 0u);
        return *this;
    }
    // With write-through the stored value wins over the local copy, as another program may
    // have changed it.
    bool Get() {
        if (m_bWriteThrough != 0) {
            Read();
        }
        return m_value != 0;
    }
};

class DoubleReg final : public TScalarReg<double, kRegBinary, 0.0> {
public:
    using TScalarReg::TScalarReg;
    using TScalarReg::operator=;
};

class DwordReg final : public TScalarReg<uint32_t, kRegDword, 0u> {
public:
    using TScalarReg::TScalarReg;
    using TScalarReg::operator=;
};

// Like DwordReg, but its 0xFFFFFFFF before a read tells "never read" from a stored 0.
class DwordReg2 final : public TScalarReg<uint32_t, kRegDword, 0xFFFFFFFFu> {
public:
    using TScalarReg::TScalarReg;
    using TScalarReg::operator=;
};

class IntReg final : public TScalarReg<int32_t, kRegBinary, 0> {
public:
    using TScalarReg::TScalarReg;
    using TScalarReg::operator=;
};

class LongLongReg final : public TScalarReg<int64_t, kRegBinary, int64_t{0}> {
public:
    using TScalarReg::TScalarReg;
    using TScalarReg::operator=;
};
