// Type texts and icon numbers of image entries, and the rules for keeping them.
#include "CFileTypeCache.h"
#include "COvDataItem.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

struct Lookup {
    QString path;
    bool bFolder;
};

TEST(CFileTypeCache, KeepsOneAnswerPerUpperCaseExtensionExceptForIconCarriers) {
    const struct {
        const char* what;
        std::vector<Lookup> lookups;
        int nQuestions;
    } cases[] = {
        {"case of the extension", {{u"\\a.txt"_s, false}, {u"\\d\\B.TXT"_s, false}}, 1},
        {"no extension", {{u"\\README"_s, false}, {u"\\x\\Makefile"_s, false}}, 1},
        {"programs", {{u"\\setup.exe"_s, false}, {u"\\SETUP.EXE"_s, false}}, 2},
        {"icons", {{u"\\a.ico"_s, false}, {u"\\b.ICO"_s, false}}, 2},
        {"links", {{u"\\c.lnk"_s, false}, {u"\\d.lnk"_s, false}}, 2},
        {"folders", {{u"\\docs"_s, true}, {u"\\docs\\x.y"_s, true}}, 2},
        {"dots in folders", {{u"\\v1.2\\notes"_s, false}, {u"\\other"_s, false}}, 1},
    };
    for (const auto& c : cases) {
        CIconTable icons;
        CFileTypeCache cache(icons);
        std::vector<FileTypeRecord> records;
        for (const Lookup& lookup : c.lookups) {
            FileTypeRecord record;
            EXPECT_EQ(cache.GetFileType(lookup.path, lookup.bFolder, &record), 1) << c.what;
            records.push_back(record);
        }
        EXPECT_EQ(cache.QuestionCount(), c.nQuestions) << c.what;
        for (const FileTypeRecord& record : records) {
            EXPECT_EQ(record.strTypeName, records.front().strTypeName) << c.what;
            EXPECT_EQ(record.nIcon, records.front().nIcon) << c.what;
        }
    }
}

TEST(CFileTypeCache, AnswersAreTheMimeDatabasesCommentAndIconNames) {
    CIconTable icons;
    CFileTypeCache cache(icons);
    const struct {
        QString path;
        bool bFolder;
        QString typeName;
        QString iconName;
        QString openIconName;
    } cases[] = {
        {u"\\notes\\a.txt"_s, false, u"plain text document"_s, u"text-plain"_s, u"text-plain"_s},
        {u"\\Pictures\\B.PNG"_s, false, u"PNG image"_s, u"image-png"_s, u"image-png"_s},
        {u"\\Pictures"_s, true, u"folder"_s, u"folder"_s, u"folder-open"_s},
    };
    for (const auto& c : cases) {
        FileTypeRecord record;
        ASSERT_EQ(cache.GetFileType(c.path, c.bFolder, &record), 1);
        EXPECT_EQ(record.strTypeName, c.typeName) << c.path.toStdString();
        EXPECT_EQ(icons.At(record.nIcon).strName, c.iconName) << c.path.toStdString();
        EXPECT_EQ(icons.At(record.nOpenIcon).strName, c.openIconName) << c.path.toStdString();
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
