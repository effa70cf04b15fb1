// The read and write rules that every value object shares: a read tries the object's own
// root and then the machine-wide one; a write goes to the object's own root only.
#pragma once

#include "CRegistry.h"
#include "RegTypes.h"

#include <QByteArray>
#include <QString>
#include <cstddef>

namespace regio {

// The program's pair when pRegistry is null.
CRegistry& Resolve(CRegistry* pRegistry);

// Copies the stored bytes over the start of pBuffer if they fit in nCapacity; the type is
// not tested, as the family's programs never did. True if a value was taken.
bool ReadFixed(CRegistry& registry, RegRoot root, const QString& key, const QString& name,
               void* pBuffer, size_t nCapacity);
// As above, for a value of any size up to nCapacity bytes.
bool ReadBytes(CRegistry& registry, RegRoot root, const QString& key, const QString& name,
               size_t nCapacity, QByteArray& data);
bool Write(CRegistry& registry, RegRoot root, const QString& key, const QString& name,
           uint32_t type, const QByteArray& data);

// UTF-16LE text up to its first terminator, as REG_SZ holds it.
QString TextFromBytes(const QByteArray& data);
QByteArray BytesFromText(const QString& text);

} // namespace regio
