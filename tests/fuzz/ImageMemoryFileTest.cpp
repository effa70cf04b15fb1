#include <gtest/gtest.h>

#include <iterator>
#include <vector>

#include "ImageMemoryFile.h"
#include "SparseImage.h"
#include "TestFiles.h"

using ovrin::fuzz::ImageMemoryFile;
using ovrin::fuzz::SparseImage;
using Bytes = std::vector<uint8_t>;

namespace {

// Each input must find the file as if it were the first: bytes an earlier, larger or denser
// input left behind would make a crash depend on the inputs before it.
TEST(ImageMemoryFileTest, HoldsExactlyEachInputInTurn) {
    Bytes dense = testsupport::PatternBytes(1 << 20, 5);
    Bytes sparseAt = Bytes(600000);
    sparseAt[524288] = 0xA5;
    const Bytes inputs[] = {
        dense,
        SparseImage::Compact(sparseAt),
        testsupport::PatternBytes(100, 9),
        SparseImage::Compact(Bytes(SparseImage::kMaxImageBytes)),
        {},
        dense,
    };
    ImageMemoryFile file;
    ASSERT_TRUE(file.Valid());
    for (size_t i = 0; i < std::size(inputs); ++i) {
        SCOPED_TRACE(i);
        const SparseImage image = SparseImage::Parse(inputs[i].data(), inputs[i].size());
        ASSERT_TRUE(file.Write(image));
        EXPECT_EQ(testsupport::ReadWholeFile(file.Path()), image.Expand());
    }
}

} // namespace
