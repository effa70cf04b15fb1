#include "NodeText.h"

#include <gtest/gtest.h>

namespace {

// A string with room to spare, as most strings that Qt builds have.
QString Roomy(const QString& text) {
    QString roomy;
    roomy.reserve(text.size() + 40);
    roomy += text;
    return roomy;
}

TEST(NodeText, ReadsBackWhatWasGivenWhateverItsSource) {
    const QString whole = QStringView(u"whole buffer").toString();
    struct Case {
        const char* what;
        QString source;
    };
    const Case cases[] = {
        {"literal", QStringLiteral("Plain text document")},
        {"string with spare room", Roomy(QStringLiteral("folder"))},
        {"string that fills its buffer", whole},
        {"part of a longer string", QStringView(u"\\a\\b\\c.txt").left(5).toString()},
        {"non-ASCII", QStringLiteral("\u00C4rger \U0001F4C0")},
        {"empty", QString()},
    };
    for (const Case& c : cases) {
        NodeText text;
        text = c.source;
        EXPECT_TRUE(text == c.source) << c.what;
        EXPECT_EQ(text.ToString(), c.source) << c.what;
        EXPECT_EQ(text.size(), c.source.size()) << c.what;
        // Qt reads the unit after a string's last one as its terminator.
        const QString read = text;
        EXPECT_EQ(read.isEmpty() ? 0 : read.utf16()[read.size()], 0) << c.what;
        const NodeText copy = NodeText::Copy(c.source);
        EXPECT_TRUE(copy == c.source) << c.what;
    }
}

TEST(NodeText, SharesOneBufferAmongTheNodesOfOneSource) {
    const QString type = Roomy(QStringLiteral("Plain text document"));
    NodeText a;
    NodeText b;
    a = type;
    b = type;
    EXPECT_EQ(a.View().data(), b.View().data());
    // A view compares its cells by buffer first; both reads point at the same characters.
    EXPECT_EQ(QString(a).constData(), QString(b).constData());

    // A string that fills its buffer is shared as it stands.
    const QString whole = QStringView(u"exactly sized").toString();
    NodeText c;
    c = whole;
    EXPECT_EQ(c.View().data(), whole.constData());
    NodeText d = c;
    EXPECT_EQ(c.View().data(), d.View().data());
}

TEST(NodeText, CopiesAndReadsOutliveTheTextAndNeverChangeIt) {
    QString read;
    NodeText kept;
    {
        NodeText text = NodeText::Copy(u"name.txt");
        read = text;
        kept = text;
    }
    read.append(QStringLiteral("-changed"));
    EXPECT_EQ(read, QStringLiteral("name.txt-changed"));
    EXPECT_TRUE(kept == QStringLiteral("name.txt"));
}

TEST(NodeText, AMirrorFollowsItsStringAndACopyOfItStandsAlone) {
    auto* pName = new QString(QStringLiteral("first"));
    NodeText mirror;
    mirror.Mirror(pName);
    EXPECT_TRUE(mirror == QStringLiteral("first"));
    *pName = QStringLiteral("second");
    EXPECT_TRUE(mirror == QStringLiteral("second"));

    NodeText copy = mirror;
    mirror = QStringLiteral("renamed");
    delete pName;
    EXPECT_TRUE(copy == QStringLiteral("second"));
    EXPECT_TRUE(mirror == QStringLiteral("renamed"));
}

} // namespace
