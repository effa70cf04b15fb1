// Whether the target disk has room for what is to be written: the free bytes of a volume, and
// the largest file that a folder's file system can hold.
#pragma once

#include "MountTable.h"
#include "QmzTypes.h"

#include <QString>
#include <chrono>
#include <cstdint>

class CDiskRoomPolicy {
public:
    CDiskRoomPolicy() : m_mountTablePath(MountTable::SystemTablePath()) {}

    // 1 if the bytes fit on the volume of path with one percent to spare, else 0.
    static int CheckDiskRoom(const QString& path, uint64_t ullBytes);
    static bool FitsInFreeBytes(uint64_t ullBytes, uint64_t ullFreeBytes);
    static qmz::Result GetFreeBytes(const QString& path, uint64_t* pFreeBytes);
    // 1 if the file system of folder (ending in a separator) can hold a file of that size.
    int FileSystemCanHold(const QString& folder, uint64_t ullSize);
    // The table of mounts that FileSystemCanHold reads; tests give one of their own.
    void SetMountTable(const QString& tablePath);

private:
    QString m_mountTablePath;
    // The last target folder that FileSystemCanHold was asked about, with its answer.
    QString m_strCapacityFolder;
    std::chrono::steady_clock::time_point m_capacityTime;
    MountTable::Capacity m_capacity = MountTable::Capacity::None;
};
