#include "RegValueIo.h"

#include <cstring>

namespace regio {
namespace {

bool QueryOne(CRegistryStore& store, const QString& key, const QString& name, size_t nCapacity,
              QByteArray& data) {
    uint32_t type = 0;
    QByteArray stored;
    if (store.QueryValue(key, name, type, stored) != RegStatus::Ok ||
        static_cast<size_t>(stored.size()) > nCapacity) {
        return false;
    }
    data = stored;
    return true;
}

} // namespace

CRegistry& Resolve(CRegistry* pRegistry) {
    return pRegistry != nullptr ? *pRegistry : CRegistry::Default();
}

bool ReadBytes(CRegistry& registry, RegRoot root, const QString& key, const QString& name,
               size_t nCapacity, QByteArray& data) {
    // The machine-wide root is asked even when it is the object's own: that is how the
    // installer's defaults reach every user.
    return QueryOne(registry.Root(root), key, name, nCapacity, data) ||
           QueryOne(registry.Root(RegRoot::LocalMachine), key, name, nCapacity, data);
}

bool ReadFixed(CRegistry& registry, RegRoot root, const QString& key, const QString& name,
               void* pBuffer, size_t nCapacity) {
    QByteArray data;
    if (!ReadBytes(registry, root, key, name, nCapacity, data)) {
        return false;
    }
    std::memcpy(pBuffer, data.constData(), static_cast<size_t>(data.size()));
    return true;
}

bool Write(CRegistry& registry, RegRoot root, const QString& key, const QString& name,
           uint32_t type, const QByteArray& data) {
    return registry.Root(root).SetValue(key, name, type, data) == RegStatus::Ok;
}

QString TextFromBytes(const QByteArray& data) {
    const qsizetype nChars = data.size() / 2;
    QString text(nChars, Qt::Uninitialized);
    std::memcpy(text.data(), data.constData(), static_cast<size_t>(nChars) * 2);
    const qsizetype nEnd = text.indexOf(QChar(u'\0'));
    if (nEnd >= 0) {
        text.truncate(nEnd);
    }
    return text;
}

QByteArray BytesFromText(const QString& text) {
    return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

} // namespace regio
