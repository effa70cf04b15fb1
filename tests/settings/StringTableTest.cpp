#include "CTvnStringTable.h"
#include "Locations.h"
#include "QtPrinters.h"
#include "TestFiles.h"
#include "TvnStringIds.h"
#include "TvnText.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>
#include <set>

namespace {

using namespace Qt::StringLiterals;

void WriteText(const std::filesystem::path& path, const std::string& text) {
    testsupport::WriteFile(path, std::vector<uint8_t>(text.begin(), text.end()));
}

TEST(CTvnStringTable, ReadsNumberedLinesAndRefusesAFileWithABadOne) {
    struct Case {
        const char* what;
        std::string content;
        int nBadLine; // 0: loads
    };
    const Case cases[] = {
        {"escapes, comments, CRLF", "# c\r\n\r\n7\ta\\nb\\tc\\\\d\r\n8\t\n9\tGrüße %1\n", 0},
        {"no tab", "7\tok\n8 text\n", 2},
        {"not a number", "x7\ttext\n", 1},
        {"a number twice", "7\ta\n7\tb\n", 2},
        {"unknown escape", "7\ta\\qb\n", 1},
        {"escape at the end", "7\tab\\\n", 1},
    };
    for (const Case& c : cases) {
        testsupport::TempDir dir;
        WriteText(dir / "Tvnrc.txt", c.content);
        CTvnStringTable table;
        int nBadLine = -1;
        EXPECT_EQ(table.LoadFile(QString::fromStdString((dir / "Tvnrc.txt").string()), &nBadLine),
                  c.nBadLine == 0)
            << c.what;
        if (c.nBadLine == 0) {
            EXPECT_EQ(table.Text(7), u"a\nb\tc\\d"_s) << c.what;
            EXPECT_TRUE(table.Contains(8) && table.Text(8).isEmpty()) << c.what;
            EXPECT_EQ(table.Text(9), u"Grüße %1"_s) << c.what;
        } else {
            EXPECT_EQ(nBadLine, c.nBadLine) << c.what;
            EXPECT_EQ(table.Count(), 0) << c.what;
        }
    }
}

// The placeholders %1..%9 that a text holds.
std::set<uint32_t> Placeholders(const QString& text) {
    std::set<uint32_t> found;
    static const QRegularExpression kPlaceholder(u"%(\\d+)"_s);
    for (const QRegularExpressionMatch& match : kPlaceholder.globalMatch(text)) {
        found.insert(match.captured(1).toUInt());
    }
    return found;
}

TEST(EnglishTable, HasEveryTextTheProgramUsesWithThePlaceholdersItsCallersFill) {
    CTvnStringTable table;
    int nBadLine = -1;
    ASSERT_TRUE(table.LoadFile(OVRIN_LANGUAGE_DIR "/Enu/Tvnrc.txt"_L1, &nBadLine))
        << "line " << nBadLine;
    std::set<uint32_t> used;
    for (const tvn::TextUse& use : tvn::AllTextUses()) {
        used.insert(use.id);
        ASSERT_TRUE(table.Contains(use.id)) << "no text " << use.id;
        const QString text = table.Text(use.id);
        EXPECT_FALSE(text.trimmed().isEmpty()) << use.id;
        std::set<uint32_t> expected;
        for (uint32_t i = 1; i <= use.nArgs; ++i) {
            expected.insert(i);
        }
        EXPECT_EQ(Placeholders(text), expected) << use.id << ": " << text.toStdString();
    }
    EXPECT_EQ(used.size(), tvn::AllTextUses().size()) << "a number is used for two texts";
    // A number in the file that no caller uses is most often a caller's typo.
    EXPECT_EQ(static_cast<size_t>(table.Count()), used.size());
}

TEST(EnglishTable, IsCopiedBesideTheProgramsOfTheBuild) {
    const QString beside = QDir(ProgramFolder()).filePath(u"Language/Enu/Tvnrc.txt"_s);
    CTvnStringTable copy;
    CTvnStringTable source;
    ASSERT_TRUE(copy.LoadFile(beside)) << beside.toStdString();
    ASSERT_TRUE(source.LoadFile(OVRIN_LANGUAGE_DIR "/Enu/Tvnrc.txt"_L1));
    EXPECT_EQ(copy.Count(), source.Count());
}

uint32_t g_nMissing = 0;

TEST(TvnText, AMissingNumberIsReportedAndShowsItsNumber) {
    testsupport::TempDir dir;
    WriteText(dir / "Tvnrc.txt", "651\tExtracting \"%1\"...\n");
    CTvnStringTable table;
    ASSERT_TRUE(table.LoadFile(QString::fromStdString((dir / "Tvnrc.txt").string())));
    SetCurrentStringTable(&table);
    SetMissingTextHandler([](uint32_t id) { g_nMissing = id; });
    EXPECT_EQ(TvnFormat(tvn::kExtracting, u"100%2.txt"_s), u"Extracting \"100%2.txt\"..."_s);
    EXPECT_EQ(g_nMissing, 0u);
    EXPECT_EQ(TvnText(tvn::kStopping), u"[text 5109]"_s);
    EXPECT_EQ(g_nMissing, 5109u);
    SetCurrentStringTable(nullptr);
    SetMissingTextHandler(nullptr);
}

} // namespace
