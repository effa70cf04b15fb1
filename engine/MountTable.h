// The mounted volumes, read from a table in the kernel's /proc/self/mountinfo format, and what
// extraction asks of them: which volume a path lies on, whether its file system can hold a file
// of a given size, and whether it is an optical drive.
#pragma once

#include <QString>
#include <cstdint>
#include <vector>

class MountTable {
public:
    struct Mount {
        QString mountPoint;
        QString type;
        QString source;
    };

    // How large a file a volume's file system can hold.
    enum class Capacity { None, Fat, Fat32, Unlimited };
    static constexpr uint64_t kFatMaxFile = 0x80000000ull;
    static constexpr uint64_t kFat32MaxFile = 0x100000000ull;

    // Drive types, by the numbers the family's programs use.
    static constexpr int kDriveUnknown = 0;
    static constexpr int kDriveFixed = 3;
    static constexpr int kDriveOptical = 5;

    static QString SystemTablePath();
    // The path itself if it exists, else its nearest existing folder.
    static QString ExistingAncestor(const QString& path);
    explicit MountTable(const QString& tablePath = SystemTablePath());

    // The mount that holds path: the deepest mount point above it, the last one mounted there
    // when several are. A path that doesn't exist yet is looked up by its nearest existing folder.
    const Mount* Find(const QString& path) const;
    Capacity CapacityOf(const QString& path) const;
    int DriveTypeOf(const QString& path) const;

    static Capacity CapacityOfType(const QString& type);
    static bool CanHold(Capacity capacity, uint64_t fileSize);

private:
    std::vector<Mount> m_mounts;
};
