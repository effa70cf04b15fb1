// Which volume a path lies on and what its file system can hold, from a table of the test's own.
#include "MountTable.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

TEST(MountTableTest, APathBelongsToTheDeepestAndLastMountAboveIt) {
    const testsupport::TempDir dir;
    const std::string root = dir.Path().string();
    const std::string table = root + "/mountinfo";
    std::ofstream(table) << "22 1 8:1 / / rw,relatime - ext4 /dev/vda rw\n"
                         << "30 22 8:2 / " << root << "/fat rw shared:1 - vfat /dev/sdb1 rw\n"
                         << "31 22 8:3 / " << root << "/old\\040fat rw - msdos /dev/sdc1 rw\n"
                         << "32 22 11:0 / " << root << "/cd ro - iso9660 /dev/sr0 ro\n"
                         << "33 22 7:0 / " << root << "/loop ro - udf /dev/loop0 ro\n"
                         << "34 22 8:4 / " << root << "/stick rw - ntfs3 /dev/sdd1 rw\n"
                         << "35 22 8:5 / " << root << "/stick rw - squashfs /dev/sde1 ro\n"
                         << "not a mount line\n";
    const MountTable mounts{QString::fromStdString(table)};

    using Cap = MountTable::Capacity;
    struct Case {
        std::string path;
        Cap capacity;
        int driveType;
    };
    const Case cases[] = {
        {root + "/somewhere/new", Cap::Unlimited, MountTable::kDriveFixed},
        {root + "/fat/a/b.txt", Cap::Fat32, MountTable::kDriveFixed},
        {root + "/fatter", Cap::Unlimited, MountTable::kDriveFixed},
        {root + "/old fat/x", Cap::Fat, MountTable::kDriveFixed},
        {root + "/cd/", Cap::None, MountTable::kDriveOptical},
        {root + "/loop", Cap::None, MountTable::kDriveOptical},
        {root + "/stick/x", Cap::None, MountTable::kDriveFixed},
    };
    for (const Case& c : cases) {
        const QString p = QString::fromStdString(c.path);
        EXPECT_EQ(mounts.CapacityOf(p), c.capacity) << c.path;
        EXPECT_EQ(mounts.DriveTypeOf(p), c.driveType) << c.path;
    }
    const MountTable none{QString::fromStdString(root + "/missing")};
    EXPECT_EQ(none.CapacityOf(QString::fromStdString(root)), Cap::None);
    EXPECT_EQ(none.DriveTypeOf(QString::fromStdString(root)), MountTable::kDriveUnknown);
}

TEST(MountTableTest, FatLimitsAreInclusive) {
    using Cap = MountTable::Capacity;
    struct Case {
        Cap capacity;
        uint64_t size;
        bool bHolds;
    };
    const Case cases[] = {
        {Cap::Fat, 0x80000000ull, true},    {Cap::Fat, 0x80000001ull, false},
        {Cap::Fat32, 0x100000000ull, true}, {Cap::Fat32, 0x100000001ull, false},
        {Cap::Unlimited, 5ull << 40, true}, {Cap::None, 0, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(MountTable::CanHold(c.capacity, c.size), c.bHolds) << c.size;
    }
    EXPECT_EQ(MountTable::CapacityOfType(QStringLiteral("erofs")), Cap::None);
    EXPECT_EQ(MountTable::CapacityOfType(QStringLiteral("tmpfs")), Cap::Unlimited);
}

} // namespace
