#include "TreePrinter.h"
#include "COvDataItem.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

constexpr uint64_t kTicks2024 = 133'485'408'000'000'000ull; // 2024-01-01T00:00:00Z

std::string PrintToString(const COvDataItem& root) {
    char* pData = nullptr;
    size_t nSize = 0;
    FILE* pOut = open_memstream(&pData, &nSize);
    EXPECT_TRUE(TreePrinter(pOut).PrintList(root));
    std::fclose(pOut);
    std::string text(pData, nSize);
    std::free(pData);
    return text;
}

COvDataItem* Add(COvDataItem& parent, const QString& path, uint32_t kind, uint32_t size,
                 uint64_t ticks) {
    COvDataItem* p = parent.AddChild(path, kind, size, 0);
    p->m_ftTime = {static_cast<uint32_t>(ticks), static_cast<uint32_t>(ticks >> 32)};
    return p;
}

TEST(TreePrinter, WritesBreadthFirstLinesWithSummedFolderSizes) {
    COvDataItem root(QStringLiteral("VOL"), COvDataItem::KindRoot, 0, 0);
    COvDataItem* docs = Add(root, QStringLiteral("\\Docs"), COvDataItem::KindFolder, 0, kTicks2024);
    COvDataItem* deep = Add(*docs, QStringLiteral("\\Docs\\Deep"), COvDataItem::KindFolder, 0, 0);
    Add(*deep, QStringLiteral("\\Docs\\Deep\\x.bin"), COvDataItem::KindFile, 7,
        kTicks2024 + 15'000'000);
    Add(*docs, QStringLiteral("\\Docs\\a.txt"), COvDataItem::KindFile, 5, kTicks2024);
    Add(root, QStringLiteral("\\top.txt"), COvDataItem::KindFile, 1, kTicks2024);
    EXPECT_EQ(PrintToString(root), "d 12 2024-01-01T00:00:00Z Docs\n"
                                   "- 1 2024-01-01T00:00:00Z top.txt\n"
                                   "d 7 1601-01-01T00:00:00Z Docs/Deep\n"
                                   "- 5 2024-01-01T00:00:00Z Docs/a.txt\n"
                                   "- 7 2024-01-01T00:00:01Z Docs/Deep/x.bin\n");
}

struct NameCase {
    const char* name;
    std::u16string utf16;
    std::string utf8;
};

TEST(TreePrinter, EncodesNamesAsUtf8WithNewlinesEscaped) {
    const NameCase cases[] = {
        {"two-byte and three-byte", u"Gr\u00FC\u00DFe \u65E5\u672C",
         "Gr\xC3\xBC\xC3\x9F"
         "e \xE6\x97\xA5\xE6\x9C\xAC"},
        {"surrogate pair", u"disc \U0001F4C0", "disc \xF0\x9F\x93\x80"},
        {"lone high surrogate", std::u16string(u"a") + char16_t(0xD800) + u"b",
         "a\xEF\xBF\xBD"
         "b"},
        {"lone low surrogate at the end", std::u16string(u"a") + char16_t(0xDC00), "a\xEF\xBF\xBD"},
        {"newline", u"two\nlines", "two\\nlines"},
        {"plain ASCII", u"README.TXT;1", "README.TXT;1"},
    };
    // Through a node's name, which keeps ASCII one byte a character and the rest as UTF-16.
    for (const NameCase& c : cases) {
        std::string out;
        const NodeText name = NodeText::InBlock(QStringView(c.utf16.data(), c.utf16.size()));
        TreePrinter::AppendName(out, name.View());
        EXPECT_EQ(out, c.utf8) << c.name;
    }
    std::string latin1;
    TreePrinter::AppendName(latin1, QLatin1StringView("caf\xE9\n"));
    EXPECT_EQ(latin1, "caf\xC3\xA9\\n");
}

} // namespace
