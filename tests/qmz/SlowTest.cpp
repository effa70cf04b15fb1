// A test that needs a large image: a file over 4 GiB.
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "TestSupport.h"

namespace qmz::test {
namespace {

// A file over 4 GiB, written by xorriso as several extents (ECMA-119 multi-extent) from a
// sparse source with marks at the extent seams. Needs room for the image.
TEST(HugeFileTest, OverFourGiBJoinsItsExtents) {
    constexpr uint64_t kSize = (uint64_t{9} << 29) + 12345; // 4.5 GiB and a bit
    constexpr uint64_t kNeeded = uint64_t{16} << 30;
    TempDir dir;
    struct statvfs st {};
    if (statvfs(dir.Path().c_str(), &st) != 0 || uint64_t{st.f_bavail} * st.f_frsize < kNeeded) {
        GTEST_SKIP() << "less than 16 GiB free";
    }
    const uint64_t marks[] = {0, (uint64_t{4} << 30) - 2049, (uint64_t{4} << 30) - 1,
                              uint64_t{4} << 30, kSize - 1};
    {
        fs::create_directories(dir / "src");
        std::ofstream f(dir / "src/huge.bin", std::ios::binary);
        for (uint64_t at : marks) {
            f.seekp(static_cast<std::streamoff>(at));
            f.put(static_cast<char>(0xA5));
        }
    }
    ASSERT_EQ(fs::file_size(dir / "src/huge.bin"), kSize);
    ASSERT_TRUE(RunCommand("xorriso -as mkisofs -quiet -iso-level 3 -R -o " +
                           Quote(dir / "huge.iso") + " " + Quote(dir / "src")));
    Session session;
    ASSERT_EQ(session.Open(dir / "huge.iso"), kOk);
    ASSERT_EQ(session.Scan(), kOk);
    Tree tree = session.Walk();
    ASSERT_EQ(tree["huge.bin"].size, kSize);

    uint64_t size = 0;
    ASSERT_EQ(session.fs->OpenFile(u"huge.bin", &size), kOk);
    std::vector<uint8_t> buffer(1 << 20);
    uint64_t position = 0;
    uint64_t marksSeen = 0;
    uint32_t got = 0;
    while (session.fs->ReadFile(buffer.data(), static_cast<uint32_t>(buffer.size()), &got, 0) ==
               kOk &&
           got > 0) {
        for (uint32_t i = 0; i < got; ++i) {
            if (buffer[i] != 0) {
                EXPECT_NE(std::find(std::begin(marks), std::end(marks), position + i),
                          std::end(marks));
                ++marksSeen;
            }
        }
        position += got;
    }
    session.fs->CloseFile();
    EXPECT_EQ(position, kSize);
    EXPECT_EQ(marksSeen, std::size(marks));
}

} // namespace
} // namespace qmz::test
