// The store under the settings: what the family's programs rely on of the registry.
#include "CRegistryStore.h"
#include "QtPrinters.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace {

using namespace Qt::StringLiterals;
using testsupport::TempDir;

QString PathOf(const TempDir& dir, const char* name) {
    return QString::fromStdString((dir / name).string());
}

QStringList ValueNames(CRegistryStore& store, const QString& key) {
    QStringList names;
    QString name;
    uint32_t type = 0;
    QByteArray data;
    for (uint32_t i = 0; store.EnumValue(key, i, name, type, data) == RegStatus::Ok; ++i) {
        names << name;
    }
    return names;
}

QStringList SubKeys(CRegistryStore& store, const QString& key) {
    QStringList names;
    QString name;
    for (uint32_t i = 0; store.EnumSubKey(key, i, name) == RegStatus::Ok; ++i) {
        names << name;
    }
    return names;
}

TEST(CRegistryStore, KeysAndNamesMatchWithoutCaseAndKeepTypeAndBytes) {
    TempDir dir;
    CRegistryStore store(PathOf(dir, "r.db"));
    struct Case {
        const char16_t* writeKey;
        const char16_t* writeName;
        const char16_t* readKey;
        const char16_t* readName;
        uint32_t type;
        QByteArray data;
    };
    const Case cases[] = {
        {u"Software\\A", u"Name", u"SOFTWARE\\a", u"nAME", kRegDword, QByteArray("\x01\0\0\0", 4)},
        {u"\\Software\\A\\", u"Bin", u"Software\\A", u"bin", kRegBinary, QByteArray("\0\0\xff", 3)},
        {u"Sw\\Grüße", u"Ärger", u"SW\\GRÜßE", u"ärger", kRegSz, QByteArray("x\0", 2)},
        {u"Software\\A", u"Empty", u"software\\a", u"EMPTY", kRegBinary, QByteArray()},
        {u"", u"AtRoot", u"", u"atroot", 7, QByteArray("raw", 3)},
    };
    for (const Case& c : cases) {
        const QString what =
            QString::fromUtf16(c.writeKey) + u'/' + QString::fromUtf16(c.writeName);
        ASSERT_EQ(store.SetValue(QString::fromUtf16(c.writeKey), QString::fromUtf16(c.writeName),
                                 c.type, c.data),
                  RegStatus::Ok)
            << what.toStdString();
        uint32_t type = 0;
        QByteArray data("stale");
        ASSERT_EQ(store.QueryValue(QString::fromUtf16(c.readKey), QString::fromUtf16(c.readName),
                                   type, data),
                  RegStatus::Ok)
            << what.toStdString();
        EXPECT_EQ(type, c.type) << what.toStdString();
        EXPECT_EQ(data, c.data) << what.toStdString();
    }
}

TEST(CRegistryStore, ValuesEnumerateInFirstWriteOrderAndAnUpdateKeepsItsPlaceAndName) {
    TempDir dir;
    CRegistryStore store(PathOf(dir, "r.db"));
    for (const char16_t* name : {u"2", u"0", u"10", u"1"}) {
        ASSERT_EQ(store.SetValue(u"K"_s, QString::fromUtf16(name), kRegSz, "a"), RegStatus::Ok);
    }
    ASSERT_EQ(store.SetValue(u"k"_s, u"10"_s, kRegDword, "abcd"), RegStatus::Ok);
    ASSERT_EQ(store.SetValue(u"k"_s, u"X"_s, kRegSz, "a"), RegStatus::Ok);
    ASSERT_EQ(store.SetValue(u"k"_s, u"x"_s, kRegSz, "b"), RegStatus::Ok);
    EXPECT_EQ(ValueNames(store, u"K"_s), QStringList({"2", "0", "10", "1", "X"}));
}

TEST(CRegistryStore, DeletingAKeyTakesItsSubtreeAndLeavesNeighboursOfTheSamePrefix) {
    TempDir dir;
    CRegistryStore store(PathOf(dir, "r.db"));
    for (const char16_t* key : {u"A\\B", u"A\\B\\C\\D", u"A\\BC", u"A\\b2"}) {
        ASSERT_EQ(store.SetValue(QString::fromUtf16(key), u"v"_s, kRegSz, "x"), RegStatus::Ok);
    }
    EXPECT_EQ(SubKeys(store, u"a"_s), QStringList({"B", "b2", "BC"}));
    EXPECT_EQ(store.DeleteKey(u"a\\b"_s), RegStatus::Ok);
    EXPECT_EQ(SubKeys(store, u"A"_s), QStringList({"b2", "BC"}));
    EXPECT_EQ(store.KeyExists(u"A\\B\\C"_s), RegStatus::NotFound);
    uint32_t type = 0;
    QByteArray data;
    EXPECT_EQ(store.QueryValue(u"A\\B\\C\\D"_s, u"v"_s, type, data), RegStatus::NotFound);
    EXPECT_EQ(store.QueryValue(u"A\\BC"_s, u"v"_s, type, data), RegStatus::Ok);
    EXPECT_EQ(store.DeleteKey(u"A\\B"_s), RegStatus::NotFound);
    EXPECT_EQ(store.DeleteKey(u""_s), RegStatus::Failed);
    EXPECT_EQ(store.DeleteValue(u"A\\BC"_s, u"V"_s), RegStatus::Ok);
    EXPECT_EQ(store.DeleteValue(u"A\\BC"_s, u"v"_s), RegStatus::NotFound);
    // A key emptied of values still stands.
    EXPECT_EQ(store.KeyExists(u"A\\BC"_s), RegStatus::Ok);
}

TEST(CRegistryStore, AMissingOrUnreadableStoreReadsAsEmpty) {
    TempDir dir;
    std::filesystem::create_directories(dir / "folder.db");
    testsupport::WriteFile(dir / "garbage.db", std::vector<uint8_t>(4096, 0x5A));
    for (const char* name : {"absent/r.db", "folder.db", "garbage.db"}) {
        CRegistryStore store(PathOf(dir, name));
        uint32_t type = 0;
        QByteArray data;
        EXPECT_NE(store.QueryValue(u"K"_s, u"v"_s, type, data), RegStatus::Ok) << name;
        EXPECT_NE(store.KeyExists(u"K"_s), RegStatus::Ok) << name;
    }
    EXPECT_FALSE(std::filesystem::exists(dir / "absent")) << "a read must not create the store";
    CRegistryStore folder(PathOf(dir, "folder.db"));
    EXPECT_EQ(folder.SetValue(u"K"_s, u"v"_s, kRegSz, "x"), RegStatus::Failed);
}

} // namespace
