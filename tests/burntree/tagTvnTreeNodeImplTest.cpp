#include "tagTvnTreeNodeImpl.h"
#include "tagTvnDataTreeImpl.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

// Under the Itanium C++ ABI a pointer to a virtual member holds 1 + the byte offset of its
// slot; a virtual destructor takes the first two slots.
template <class Pmf> ptrdiff_t SlotOf(Pmf pmf) {
    ptrdiff_t words[2];
    std::memcpy(words, &pmf, sizeof words);
    return (words[0] - 1) / static_cast<ptrdiff_t>(sizeof(void*)) - 1;
}

TEST(TvnTreeNode, OperationsSitAtTheFamilysTablePositions) {
    EXPECT_EQ(SlotOf(&ITvnTreeNode::Init), 1);
    EXPECT_EQ(SlotOf(&ITvnTreeNode::Destroy), 3);
    EXPECT_EQ(SlotOf(&ITvnTreeNode::SetNext), 12);
    EXPECT_EQ(SlotOf(&ITvnTreeNode::GetSource), 13);
    EXPECT_EQ(SlotOf(&ITvnTreeNode::GetNext), 23);
    EXPECT_EQ(SlotOf(&ITvnTreeNode::GetStamp), 29);
    EXPECT_EQ(SlotOf(&ITvnDataTree::SetNextSector), 1);
    EXPECT_EQ(SlotOf(&ITvnDataTree::AddFolder), 7);
    EXPECT_EQ(SlotOf(&ITvnDataTree::Reserved11), 11);
    EXPECT_EQ(SlotOf(&ITvnDataTree::NextChild), 14);
    EXPECT_EQ(SlotOf(&ITvnDataTree::AddFolderPlain), 16);
}

struct InitCase {
    const char* source;
    const QString* pDest;
    const char* expectedDest;
};

TEST(TvnTreeNode, InitTakesTheSourcesFileNameWithoutADestinationAndTheWholeSize) {
    const QString dest = QStringLiteral("\\DATA\\x.bin");
    const InitCase cases[] = {
        {"/home/me/movie.final.mpg", nullptr, "movie.final.mpg"},
        {"/home/me/folder/", nullptr, ""},
        {"plain", nullptr, "plain"},
        {"/home/me/x.bin", &dest, "\\DATA\\x.bin"},
    };
    for (const InitCase& c : cases) {
        tagTvnTreeNodeImpl node;
        // A low half with its top bit set must not spill into the high half.
        node.Init(QString::fromUtf8(c.source), c.pDest, ITvnTreeNode::KindFile, 0xFFFFFFFF, 0x12,
                  3);
        EXPECT_EQ(node.GetDest(), QString::fromUtf8(c.expectedDest)) << c.source;
        EXPECT_EQ(node.GetSize(), 0x12FFFFFFFFull);
    }
}

} // namespace
