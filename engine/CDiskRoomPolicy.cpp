#include "CDiskRoomPolicy.h"

#include <QFile>

#include <sys/statvfs.h>

namespace {

constexpr auto kCapacityLifetime = std::chrono::seconds(1);
// One percent of the free room is held back when a job's size is checked against it.
constexpr double kRoomMargin = 1.01;

} // namespace

int CDiskRoomPolicy::CheckDiskRoom(const QString& path, uint64_t ullBytes) {
    uint64_t ullFree = 0;
    GetFreeBytes(path, &ullFree);
    return FitsInFreeBytes(ullBytes, ullFree) ? 1 : 0;
}

bool CDiskRoomPolicy::FitsInFreeBytes(uint64_t ullBytes, uint64_t ullFreeBytes) {
    return !(static_cast<double>(ullBytes) * kRoomMargin > static_cast<double>(ullFreeBytes));
}

qmz::Result CDiskRoomPolicy::GetFreeBytes(const QString& path, uint64_t* pFreeBytes) {
    if (pFreeBytes == nullptr || path.isEmpty()) {
        return qmz::kFail;
    }
    struct statvfs info {};
    if (::statvfs(QFile::encodeName(MountTable::ExistingAncestor(path)).constData(), &info) != 0) {
        return qmz::kEngineCallFailed;
    }
    *pFreeBytes = static_cast<uint64_t>(info.f_bavail) * info.f_frsize;
    return qmz::kOk;
}

int CDiskRoomPolicy::FileSystemCanHold(const QString& folder, uint64_t ullSize) {
    // The files of one folder come one after another; a folder's answer is kept for a moment,
    // long enough to serve them all, too short for a volume to be swapped under it meanwhile.
    const auto now = std::chrono::steady_clock::now();
    if (folder != m_strCapacityFolder || now - m_capacityTime > kCapacityLifetime) {
        m_capacity = MountTable(m_mountTablePath).CapacityOf(folder);
        m_strCapacityFolder = folder;
        m_capacityTime = now;
    }
    return MountTable::CanHold(m_capacity, ullSize) ? 1 : 0;
}

void CDiskRoomPolicy::SetMountTable(const QString& tablePath) {
    m_mountTablePath = tablePath;
    m_strCapacityFolder.clear();
}
