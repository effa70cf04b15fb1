#include "MountTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace {

// File systems that are mounted read-only by nature: nothing can be extracted onto them.
constexpr std::array<const char16_t*, 5> kReadOnlyTypes = {u"iso9660", u"udf", u"squashfs",
                                                           u"erofs", u"cramfs"};
constexpr std::array<const char16_t*, 2> kOpticalTypes = {u"iso9660", u"udf"};

// Mount points are written with spaces, tabs, newlines and backslashes as three octal digits.
QString Unescape(const QByteArray& field) {
    QByteArray out;
    out.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        const bool bOctal = field[i] == '\\' && i + 3 < field.size() &&
                            std::all_of(field.begin() + i + 1, field.begin() + i + 4,
                                        [](char c) { return c >= '0' && c <= '7'; });
        if (bOctal) {
            out += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                     (field[i + 3] - '0'));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return QFile::decodeName(out);
}

// One line: "ID PARENT MAJ:MIN ROOT MOUNTPOINT OPTIONS [OPTIONAL...] - TYPE SOURCE SUPER".
bool ParseLine(const QByteArray& line, MountTable::Mount& mount) {
    const QList<QByteArray> fields = line.split(' ');
    const auto dash = std::find(fields.begin(), fields.end(), QByteArray("-"));
    if (fields.size() < 5 || dash == fields.end() || dash - fields.begin() < 6 ||
        fields.end() - dash < 3) {
        return false;
    }
    mount.mountPoint = Unescape(fields[4]);
    mount.type = QString::fromUtf8(dash[1]);
    mount.source = Unescape(dash[2]);
    return mount.mountPoint.startsWith(u'/');
}

bool IsUnder(const QString& path, const QString& mountPoint) {
    if (mountPoint == u"/") {
        return true;
    }
    return path.startsWith(mountPoint) &&
           (path.size() == mountPoint.size() || path[mountPoint.size()] == u'/');
}

// The path with its links resolved as far as it exists; the part that doesn't exist yet is
// kept as written.
QString ResolvedPath(const QString& path) {
    const QString cleaned = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    const QString existing = MountTable::ExistingAncestor(cleaned);
    const QString resolved = QFileInfo(existing).canonicalFilePath();
    return QDir::cleanPath((resolved.isEmpty() ? existing : resolved) +
                           cleaned.mid(existing.size()));
}

template <size_t N> bool IsOneOf(const QString& type, const std::array<const char16_t*, N>& types) {
    return std::any_of(types.begin(), types.end(),
                       [&type](const char16_t* t) { return type == QStringView(t); });
}

} // namespace

QString MountTable::ExistingAncestor(const QString& path) {
    QString probe = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    while (!QFileInfo::exists(probe) && probe != u"/") {
        probe = QFileInfo(probe).path();
    }
    return probe;
}

QString MountTable::SystemTablePath() {
    return QStringLiteral("/proc/self/mountinfo");
}

MountTable::MountTable(const QString& tablePath) {
    QFile file(tablePath);
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    // /proc files report no size, so they are read to their end rather than by length.
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        Mount mount;
        if (ParseLine(line.trimmed(), mount)) {
            m_mounts.push_back(std::move(mount));
        }
    }
}

const MountTable::Mount* MountTable::Find(const QString& path) const {
    const QString resolved = ResolvedPath(path);
    const Mount* pBest = nullptr;
    for (const Mount& mount : m_mounts) {
        if (IsUnder(resolved, mount.mountPoint) &&
            (pBest == nullptr || mount.mountPoint.size() >= pBest->mountPoint.size())) {
            pBest = &mount;
        }
    }
    return pBest;
}

MountTable::Capacity MountTable::CapacityOf(const QString& path) const {
    const Mount* pMount = Find(path);
    return pMount != nullptr ? CapacityOfType(pMount->type) : Capacity::None;
}

int MountTable::DriveTypeOf(const QString& path) const {
    const Mount* pMount = Find(path);
    if (pMount == nullptr) {
        return kDriveUnknown;
    }
    const bool bOptical =
        IsOneOf(pMount->type, kOpticalTypes) || pMount->source.startsWith(u"/dev/sr");
    return bOptical ? kDriveOptical : kDriveFixed;
}

MountTable::Capacity MountTable::CapacityOfType(const QString& type) {
    if (type == u"msdos") {
        return Capacity::Fat;
    }
    if (type == u"vfat") {
        return Capacity::Fat32;
    }
    return IsOneOf(type, kReadOnlyTypes) ? Capacity::None : Capacity::Unlimited;
}

bool MountTable::CanHold(Capacity capacity, uint64_t fileSize) {
    switch (capacity) {
    case Capacity::Fat:
        return fileSize <= kFatMaxFile;
    case Capacity::Fat32:
        return fileSize <= kFat32MaxFile;
    case Capacity::Unlimited:
        return true;
    case Capacity::None:
        break;
    }
    return false;
}
