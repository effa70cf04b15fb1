// Type texts and icon numbers of image entries, and the rules for keeping them.
#include "CFileTypeCache.h"
#include "COvDataItem.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

TEST(CFileTypeCache, KeepsOneAnswerPerUpperCaseExtensionExceptForIconCarriers) {
    const struct {
        const char* what;
        QString first;
        QString second;
        bool bFolder;
        int nQuestions;
    } cases[] = {
        {"case of the extension", u"\\a.txt"_s, u"\\d\\B.TXT"_s, false, 1},
        {"no extension", u"\\README"_s, u"\\x\\Makefile"_s, false, 1},
        {"programs", u"\\setup.exe"_s, u"\\SETUP.EXE"_s, false, 2},
        {"icons", u"\\a.ico"_s, u"\\b.ICO"_s, false, 2},
        {"links", u"\\c.lnk"_s, u"\\d.lnk"_s, false, 2},
        {"folders", u"\\docs"_s, u"\\docs\\x.y"_s, true, 2},
        {"dots in folders", u"\\v1.2\\notes"_s, u"\\other"_s, false, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CIconTable icons;
        CFileTypeCache cache(icons);
        FileTypeRecord first;
        FileTypeRecord second;
        EXPECT_EQ(cache.GetFileType(c.first, c.bFolder, &first), 1);
        EXPECT_EQ(cache.GetFileType(c.second, c.bFolder, &second), 1);
        EXPECT_EQ(cache.QuestionCount(), c.nQuestions);
        EXPECT_EQ(std::pair(first.strTypeName, first.nIcon),
                  std::pair(second.strTypeName, second.nIcon));
    }
}

TEST(CFileTypeCache, AnswersAreTheMimeDatabasesCommentAndIconNames) {
    CIconTable icons;
    CFileTypeCache cache(icons);
    const struct {
        QString path;
        bool bFolder;
        QStringList answer; // type, icon, open icon
    } cases[] = {
        {u"\\notes\\a.txt"_s, false, {u"plain text document"_s, u"text-plain"_s, u"text-plain"_s}},
        {u"\\Pictures\\B.PNG"_s, false, {u"PNG image"_s, u"image-png"_s, u"image-png"_s}},
        {u"\\Pictures"_s, true, {u"folder"_s, u"folder"_s, u"folder-open"_s}}};
    for (const auto& c : cases) {
        FileTypeRecord record;
        ASSERT_EQ(cache.GetFileType(c.path, c.bFolder, &record), 1);
        EXPECT_EQ((QStringList{record.strTypeName, icons.At(record.nIcon).strName,
                               icons.At(record.nOpenIcon).strName}),
                  c.answer);
        EXPECT_NE(record.nIcon, 0) << "0 is kept for entries without an answer";
    }
    EXPECT_EQ(cache.GetFileType(u"\\a.txt"_s, false, nullptr), 0);
}

TEST(CFileTypeCache, NewDataItemsCarryTheirTypeOnceInstalled) {
    CFileTypeCache::InstallForDataItems();
    COvDataItem root(u"DISC"_s, COvDataItem::KindRoot, 0, 0);
    COvDataItem* pFolder = root.AddChild(u"\\Docs"_s, COvDataItem::KindFolder, 0, 0);
    COvDataItem* pFile = pFolder->AddChild(u"\\Docs\\read me.txt"_s, COvDataItem::KindFile, 5, 0);
    ASSERT_NE(pFile, nullptr);
    EXPECT_EQ(pFolder->m_strTypeName, u"folder"_s);
    EXPECT_EQ(pFile->m_strTypeName, u"plain text document"_s);
    EXPECT_EQ(CIconTable::Instance().At(pFile->m_nIcon).strName, u"text-plain"_s);
    EXPECT_TRUE(root.m_strTypeName.isEmpty());
    COvDataItem::SetFileTypeLookup(nullptr);
}

} // namespace
