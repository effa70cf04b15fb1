#include "NodeText.h"

#include <gtest/gtest.h>

#include <vector>

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

TEST(NodeText, NamesInBlocksReadBackAcrossManyBlocksAndOutliveThem) {
    // Enough names to fill several blocks, of every length up to past the block limit.
    std::vector<QString> sources;
    for (int i = 0; i < 3000; ++i) {
        QString name = QStringLiteral("n%1-").arg(i) + QString(i % 600, QChar(u'a' + i % 26));
        if (i % 7 == 0) {
            name += QStringLiteral("\u00E9\U0001F4C0");
        }
        sources.push_back(name);
    }
    std::vector<NodeText> names;
    for (const QString& source : sources) {
        names.push_back(NodeText::InBlock(source));
    }
    std::vector<QString> reads;
    for (size_t i = 0; i < names.size(); ++i) {
        ASSERT_TRUE(names[i] == sources[i]) << i;
        const QString read = names[i];
        ASSERT_EQ(read.utf16()[read.size()], 0) << i;
        if (i % 500 == 0) {
            reads.push_back(read);
        }
    }
    // A name kept one byte a character equals the same name kept as UTF-16.
    EXPECT_TRUE(names[1] == NodeText::Copy(sources[1]));
    EXPECT_TRUE(NodeText::Copy(sources[1]) == names[1]);
    NodeText copy = names[1];
    names.clear();
    EXPECT_TRUE(copy == sources[1]);
    for (size_t i = 0; i < reads.size(); ++i) {
        reads[i].append(u'!');
        EXPECT_EQ(reads[i], sources[i * 500] + u'!');
    }
}

} // namespace
