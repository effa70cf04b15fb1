#include "StringReg.h"

namespace {

// The family reads text into a buffer of 2048 bytes and keeps room in it for a terminator
// of its own besides the stored one, so 1022 characters is the longest text that reads.
constexpr size_t kReadBufferBytes = 2048;
constexpr size_t kReservedTerminatorBytes = 4;

} // namespace

StringReg::StringReg(RegRoot root, const QString& key, const QString& name, bool bWriteThrough,
                     CRegistry* pRegistry)
    : m_bWriteThrough(bWriteThrough ? 1 : 0), m_strKey(key), m_strName(name), m_root(root),
      m_pRegistry(pRegistry) {}

bool StringReg::Read() {
    QByteArray data;
    if (!regio::ReadBytes(regio::Resolve(m_pRegistry), m_root, m_strKey, m_strName,
                          kReadBufferBytes - kReservedTerminatorBytes, data)) {
        return false;
    }
    m_strValue = regio::TextFromBytes(data);
    return true;
}

bool StringReg::Write() {
    return regio::Write(regio::Resolve(m_pRegistry), m_root, m_strKey, m_strName, kRegSz,
                        regio::BytesFromText(m_strValue));
}

StringReg& StringReg::operator=(const QString& value) {
    m_strValue = value;
    if (m_bWriteThrough != 0) {
        Write();
    }
    return *this;
}

bool StringReg::DeleteValue() {
    return regio::Resolve(m_pRegistry).Root(m_root).DeleteValue(m_strKey, m_strName) ==
           RegStatus::Ok;
}
