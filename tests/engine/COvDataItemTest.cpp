#include "COvDataItem.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr uint64_t kFiveGiB = 5ull << 30;

COvDataItem* Add(COvDataItem& parent, const QString& text, uint32_t kind, uint64_t size = 0) {
    return parent.AddChild(text, kind, static_cast<uint32_t>(size),
                           static_cast<uint32_t>(size >> 32));
}

TEST(COvDataItem, SplitsItsPathAndRollsSizesUpToEveryAncestor) {
    COvDataItem root(QStringLiteral("VOL"), COvDataItem::KindRoot, 0, 0);
    COvDataItem* a = Add(root, QStringLiteral("\\a"), COvDataItem::KindFolder);
    COvDataItem* b = Add(*a, QStringLiteral("\\a\\b"), COvDataItem::KindFolder);
    COvDataItem* c = Add(*b, QStringLiteral("\\a\\b\\c"), COvDataItem::KindFolder);
    COvDataItem* big =
        Add(*c, QStringLiteral("\\a\\b\\c\\big.bin"), COvDataItem::KindFile, kFiveGiB);
    Add(*c, QStringLiteral("\\a\\b\\c\\empty"), COvDataItem::KindFile, 0);
    COvDataItem* top = Add(root, QStringLiteral("\\top.txt"), COvDataItem::KindFile, 7);

    EXPECT_EQ(big->m_strName, QStringLiteral("big.bin"));
    EXPECT_EQ(big->m_strPath, QStringLiteral("\\a\\b\\c\\"));
    EXPECT_EQ(top->m_strPath, QStringLiteral("\\"));
    for (COvDataItem* pFolder : {c, b, a}) {
        EXPECT_EQ(pFolder->m_ullSize, kFiveGiB) << pFolder->m_strName.ToString().toStdString();
    }
    EXPECT_EQ(root.m_ullSize, kFiveGiB + 7);
    EXPECT_EQ(c->m_nFiles, 2);
    EXPECT_EQ(c->m_nFolders, 0);
    EXPECT_EQ(root.m_nFolders, 1);
    EXPECT_EQ(root.m_nFiles, 1);
    EXPECT_FALSE(root.IsFolder());
    EXPECT_EQ(big->GetParent(), c);
}

TEST(COvDataItem, SortsFoldersFirstThenNamesExactlyAsQtIgnoringCase) {
    // The sort has its own fast path for ASCII; every pair must still agree with Qt,
    // including characters that fold onto ASCII (the Kelvin sign, the long s).
    const QStringList names = {
        QStringLiteral("abc"),      QStringLiteral("ABD"),        QStringLiteral("ab"),
        QStringLiteral("a_b"),      QStringLiteral("a[b"),        QStringLiteral("Zeta"),
        QStringLiteral("\u212Aey"), QStringLiteral("key"),        QStringLiteral("kez"),
        QStringLiteral("\u017Fun"), QStringLiteral("Sun"),        QStringLiteral("\u00C4rger"),
        QStringLiteral("arger"),    QStringLiteral("\u00E4rger"), QStringLiteral(""),
        QStringLiteral("file10"),   QStringLiteral("FILE1"),      QStringLiteral("\U0001F4C0")};
    COvDataItem root(QString(), COvDataItem::KindRoot, 0, 0);
    std::vector<COvDataItem*> items;
    for (const QString& name : names) {
        items.push_back(Add(root, u'\\' + name, COvDataItem::KindFile));
    }
    for (const COvDataItem* a : items) {
        for (const COvDataItem* b : items) {
            const bool bQtLess =
                a->m_strName.ToString().compare(b->m_strName, Qt::CaseInsensitive) < 0;
            EXPECT_EQ(COvDataItem::LessByNameAscending(a, b), bQtLess)
                << a->m_strName.ToString().toStdString() << " < "
                << b->m_strName.ToString().toStdString();
        }
    }
    // Folders come before files whatever their names; a null pointer sorts first.
    COvDataItem* folder = Add(root, QStringLiteral("\\zzz"), COvDataItem::KindFolder);
    EXPECT_TRUE(COvDataItem::LessByNameAscending(folder, items.front()));
    EXPECT_TRUE(COvDataItem::LessByNameAscending(nullptr, folder));
    EXPECT_FALSE(COvDataItem::LessByNameAscending(folder, nullptr));
    root.SortChildrenByName();
    EXPECT_EQ(root.m_vecChildren.front(), folder);
}

TEST(COvDataItem, DestroysADeepChainWithoutRecursion) {
    auto* pRoot = new COvDataItem(QString(), COvDataItem::KindRoot, 0, 0);
    COvDataItem* pItem = pRoot;
    // Linked by hand: AddChild's size roll-up would make a chain this deep quadratic.
    for (int i = 0; i < 200000; ++i) {
        auto* pChild = new COvDataItem(QStringLiteral("\\d"), COvDataItem::KindFolder, 0, 0);
        pChild->SetParent(pItem);
        pItem->m_vecChildren.push_back(pChild);
        pItem = pChild;
    }
    delete pRoot; // a recursive destructor would overflow the stack here
    SUCCEED();
}

} // namespace

TEST(COvDataItem, NamesSharingABlockStayApartAndOutliveTheirTree) {
    auto* pRoot = new COvDataItem(QString(), COvDataItem::KindRoot, 0, 0);
    COvDataItem* a = Add(*pRoot, QStringLiteral("\\alpha"), COvDataItem::KindFile);
    COvDataItem* b = Add(*pRoot, QStringLiteral("\\beta"), COvDataItem::KindFile);
    // Qt reads the unit after a string's last one as its terminator.
    QString kept = a->m_strName;
    EXPECT_EQ(kept.utf16()[kept.size()], 0);
    kept.append(QStringLiteral("-changed"));
    EXPECT_EQ(b->m_strName, QStringLiteral("beta"));
    EXPECT_EQ(a->m_strDisplayName, QStringLiteral("alpha"));

    QString survivor = b->m_strName;
    delete pRoot;
    EXPECT_EQ(survivor, QStringLiteral("beta"));
    // The last holder of a block may grow in place; nothing else reads the block any more.
    survivor.append(QStringLiteral(" and more"));
    EXPECT_EQ(survivor, QStringLiteral("beta and more"));
    EXPECT_EQ(kept, QStringLiteral("alpha-changed"));
}
