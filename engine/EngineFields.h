// The engine's forms of text and time, read into and out of the program's own.
#pragma once

#include "FileTimeConversion.h"
#include "QmzTypes.h"

#include <QString>
#include <QStringView>
#include <algorithm>
#include <cstdint>

namespace enginefields {

// The engine takes paths as null-terminated UTF-16, which a QString holds already.
inline const char16_t* Utf16(const QString& text) {
    return reinterpret_cast<const char16_t*>(text.utf16());
}

inline QStringView NameOf(const qmz::file_attr& attr) {
    const char16_t* pName = attr.strName;
    const char16_t* pEnd = std::find(pName, pName + qmz::kNameChars, u'\0');
    return QStringView(pName, pEnd - pName);
}

inline uint64_t TicksOf(const qmz::FileTime& ft) {
    return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

// The engine gives an entry's time as local time; the tree and the targets take UTC.
inline qmz::FileTime UtcTimeOf(const qmz::file_attr& attr) {
    const uint64_t ticks = filetime::LocalToUtc(TicksOf(attr.ftLocalTime));
    return {static_cast<uint32_t>(ticks), static_cast<uint32_t>(ticks >> 32)};
}

} // namespace enginefields
