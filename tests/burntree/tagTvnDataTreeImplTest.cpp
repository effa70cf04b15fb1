#include "tagTvnDataTreeImpl.h"
#include "tagTvnTreeNodeImpl.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

constexpr int kMaxShownLinks = 8;
const QString kRootDest = QStringLiteral("\\");

// A tree of a root and files named by letters, laid out as "A B C".
class TreeWithChildren {
public:
    explicit TreeWithChildren(const std::string& names) {
        tree.CreateRoot(QStringLiteral("/src/"), &kRootDest, ITvnTreeNode::KindFolder, 0, 0, 0);
        ITvnTreeNode* pLast = nullptr;
        for (char name : names) {
            if (name != ' ') {
                pLast = Insert(std::string(1, name), pLast);
            }
        }
    }

    // Under the root unless a parent is given.
    ITvnTreeNode* Insert(const std::string& name, ITvnTreeNode* pAfter, uint64_t ullSize = 0,
                         uint32_t kind = ITvnTreeNode::KindFile, ITvnTreeNode* pParent = nullptr) {
        const QString dest = QString::fromStdString(name);
        ITvnTreeNode* pNode =
            tree.InsertNode(QStringLiteral("/src/") + dest, &dest, nullptr, kind, 0,
                            static_cast<uint32_t>(ullSize), static_cast<uint32_t>(ullSize >> 32), 0,
                            pParent != nullptr ? pParent : tree.GetRoot(), pAfter, nullptr);
        nodes[name] = pNode;
        return pNode;
    }

    // The root's list from its first child, each node with its previous link: "A(-) B(A)".
    std::string Links() const {
        std::string out;
        const ITvnTreeNode* pNode = tree.GetRoot()->GetFirstChild();
        for (int i = 0; pNode != nullptr && i < kMaxShownLinks; ++i, pNode = pNode->GetNext()) {
            const ITvnTreeNode* pPrev = pNode->GetPrev();
            out += (out.empty() ? "" : " ") + pNode->GetDest().toStdString() + "(" +
                   (pPrev != nullptr ? pPrev->GetDest().toStdString() : "-") + ")";
        }
        return out;
    }

    tagTvnDataTreeImpl tree;
    std::map<std::string, ITvnTreeNode*> nodes;
};

struct InsertCase {
    const char* after; // "" for none
    const char* links;
};

TEST(TvnDataTree, InsertLinksBehindTheSiblingOrInFront) {
    const InsertCase cases[] = {
        {"", "X(-) A(X) B(A) C(B)"},
        {"A", "A(-) X(A) B(X) C(B)"},
        {"C", "A(-) B(A) C(B) X(C)"},
    };
    for (const InsertCase& c : cases) {
        TreeWithChildren t("A B C");
        ITvnTreeNode* pX = t.Insert("X", *c.after != '\0' ? t.nodes[c.after] : nullptr);
        EXPECT_EQ(t.Links(), c.links) << c.after;
        EXPECT_EQ(pX->GetParent(), t.tree.GetRoot());
        EXPECT_EQ(pX->GetAltName(), QStringLiteral("X"));
    }
}

struct RemoveCase {
    const char* removed;
    const char* links;
    const char* dropped; // siblings that fall out of the list and must be freed here
};

TEST(TvnDataTree, RemoveRepairsTheListAsIfTheNodeWereTheFirstChild) {
    const RemoveCase cases[] = {
        {"A", "B(-) C(B)", ""},
        {"B", "C(-)", "A"},
        {"C", "", "AB"},
    };
    for (const RemoveCase& c : cases) {
        TreeWithChildren t("A B C");
        EXPECT_EQ(t.tree.RemoveNode(t.nodes[c.removed]), t.tree.GetRoot());
        EXPECT_EQ(t.Links(), c.links) << c.removed;
        for (const char* p = c.dropped; *p != '\0'; ++p) {
            t.nodes[std::string(1, *p)]->Destroy();
        }
    }
}

struct SwapCase {
    const char* a;
    const char* b;
    const char* links;
};

TEST(TvnDataTree, SwapIsCorrectForAFirstChildOrNeighboursAndOneSidedOtherwise) {
    const SwapCase cases[] = {
        {"A", "B", "B(-) A(B) C(A) D(C)"},
        {"A", "C", "C(-) B(C) A(B) D(A)"},
        {"A", "D", "D(-) B(D) C(B) A(C)"},
        {"B", "C", "A(-) C(A) B(C) D(B)"},
        {"B", "D", "A(-) D(A) C(D) B(C)"},
        // The parent keeps pointing at A, which now sits behind B.
        {"C", "A", "A(B) D(A)"},
    };
    for (const SwapCase& c : cases) {
        TreeWithChildren t("A B C D");
        ITvnTreeNode* pChild = t.Insert("c", nullptr, 0, ITvnTreeNode::KindFile, t.nodes[c.b]);
        EXPECT_EQ(t.tree.SwapNodes(t.nodes[c.a], t.nodes[c.b]), qmz::kOk);
        EXPECT_EQ(t.Links(), c.links) << c.a << c.b;
        EXPECT_EQ(t.nodes[c.b]->GetFirstChild(), pChild) << "children stay with their node";
        EXPECT_EQ(pChild->GetParent(), t.nodes[c.b]);
        if (std::string(c.a) == "C") {
            // Give the list a shape that the tree can free: C B A D.
            t.tree.GetRoot()->SetFirstChild(t.nodes["C"]);
        }
    }
    TreeWithChildren t("A");
    EXPECT_EQ(t.tree.SwapNodes(nullptr, t.nodes["A"]), kTvnBadNode);
    EXPECT_EQ(t.tree.SwapNodes(t.nodes["A"], nullptr), kTvnBadNode);
}

struct AssignCase {
    const char* name;
    std::vector<uint32_t> starts; // empty: no array
    uint32_t nCount;
    qmz::Result expected;
    std::map<std::string, uint32_t> startOf;
    uint32_t nNextSector;
};

TEST(TvnDataTree, AssignSectorsGivesFilesTheNextFreeSectors) {
    const AssignCase cases[] = {
        {"no array", {}, 0, qmz::kOk, {{"f", 100}, {"g", 103}, {"h", 104}}, 105},
        {"array", {500, 900, 950}, 3, qmz::kOk, {{"f", 951}, {"g", 954}, {"h", 955}}, 956},
        {"too few starts", {500, 900}, 2, kTvnWrongSourceCount, {{"f", 500}, {"g", 900}}, 100},
        {"too many starts", {1, 2, 3, 4}, 4, kTvnWrongSourceCount, {{"h", 3}}, 100},
    };
    for (const AssignCase& c : cases) {
        SCOPED_TRACE(c.name);
        TreeWithChildren t("");
        t.Insert("f", nullptr, 4097);
        t.Insert("g", t.nodes["f"], 1);
        t.Insert("h", t.nodes["g"], 2048);
        t.tree.SetNextSector(100);
        EXPECT_EQ(t.tree.AssignSectors(c.starts.empty() ? nullptr : c.starts.data(), c.nCount),
                  c.expected);
        for (const auto& [name, nStart] : c.startOf) {
            EXPECT_EQ(t.nodes[name]->GetStartSector(), nStart) << name;
        }
        EXPECT_EQ(t.tree.GetNextSector(), c.nNextSector);
    }
}

TEST(TvnDataTree, AssignSectorsDescendsIntoFoldersAndRefusesOtherKinds) {
    TreeWithChildren t("");
    ITvnTreeNode* pFolder = t.Insert("d", nullptr, 0, ITvnTreeNode::KindFolder);
    ITvnTreeNode* pInner = t.Insert("x", nullptr, 10, ITvnTreeNode::KindFile, pFolder);
    t.Insert("odd", pFolder, 10, 7);
    t.Insert("late", t.nodes["odd"], 10);
    t.tree.SetNextSector(100);
    EXPECT_EQ(t.tree.AssignSectors(nullptr, 0), kTvnBadNode);
    EXPECT_EQ(pInner->GetStartSector(), 100u);
    EXPECT_EQ(t.nodes["late"]->GetStartSector(), 0u);
    EXPECT_EQ(t.tree.GetNextSector(), 101u);
}

// Every field that a copy must carry, node by node in tree order.
std::string Dump(const ITvnDataTree& tree, const ITvnTreeNode* pNode) {
    tagTvnStamp stamp{};
    pNode->GetStamp(stamp);
    std::string out =
        pNode->GetSource().toStdString() + "|" + pNode->GetDest().toStdString() + "|" +
        pNode->GetAltName().toStdString() + "|" + std::to_string(pNode->GetKind()) + "|" +
        std::to_string(pNode->GetUserValue()) + "|" + std::to_string(pNode->GetSize()) + "|" +
        std::to_string(pNode->GetStartSector());
    for (const uint32_t value : stamp.auValue) {
        out += "|" + std::to_string(value);
    }
    out += "\n";
    for (const ITvnTreeNode* pChild = tree.NextChild(pNode, nullptr); pChild != nullptr;
         pChild = tree.NextChild(pNode, pChild)) {
        out += Dump(tree, pChild);
    }
    return out;
}

TEST(TvnDataTree, CopyTreeCarriesEveryNodeInOrder) {
    TreeWithChildren t("A B");
    const tagTvnStamp stamp = {{1, 0xFFFFFFFF, 3, 4}};
    const QString alt = QStringLiteral("alt");
    t.tree.InsertNode(QStringLiteral("/src/A/deep"), nullptr, &alt, ITvnTreeNode::KindFile, 9, 5, 1,
                      77, t.nodes["A"], nullptr, &stamp);
    tagTvnDataTreeImpl copy;
    ASSERT_EQ(copy.CopyTree(t.tree), qmz::kOk);
    EXPECT_EQ(Dump(copy, copy.GetRoot()), Dump(t.tree, t.tree.GetRoot()));
    tagTvnDataTreeImpl empty;
    EXPECT_EQ(copy.CopyTree(empty), qmz::kOk);
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
