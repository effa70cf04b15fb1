#include "ArrayReg.h"
#include "ArrayStringReg.h"
#include "CRegistry.h"
#include "QtPrinters.h"
#include "ScalarReg.h"
#include "StringReg.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <cstring>
#include <typeinfo>

namespace {

using namespace Qt::StringLiterals;

const QString kKey = u"Software\\Brindleway\\Torvane10\\10.0"_s;

class RegValue : public ::testing::Test {
protected:
    QString File(const char* name) const { return QString::fromStdString((m_dir / name).string()); }
    QByteArray Raw(RegRoot root, const QString& key, const QString& name,
                   uint32_t* pType = nullptr) {
        uint32_t type = 0;
        QByteArray data;
        m_registry.Root(root).QueryValue(key, name, type, data);
        if (pType != nullptr) {
            *pType = type;
        }
        return data;
    }

    testsupport::TempDir m_dir;
    CRegistry m_registry{File("user.db"), File("machine.db")};
};

// Assigns through a write-through object of class Reg; the store must hold the type and bytes,
// and a fresh object of an absent value must start from `empty`.
template <class Reg, class T>
void ExpectStored(CRegistry* pRegistry, T value, uint32_t type, const QByteArray& bytes,
                  T empty = T{}) {
    Reg(RegRoot::CurrentUser, kKey, u"v"_s, true, pRegistry) = value;
    uint32_t stored = 0;
    QByteArray data;
    pRegistry->Root(RegRoot::CurrentUser).QueryValue(kKey, u"V"_s, stored, data);
    EXPECT_EQ(data, bytes) << typeid(Reg).name();
    EXPECT_EQ(stored, type) << typeid(Reg).name();
    EXPECT_EQ(Reg(RegRoot::CurrentUser, kKey, u"none"_s, true, pRegistry).Get(), empty)
        << typeid(Reg).name();
}

TEST_F(RegValue, EachClassStoresItsTypeAndSizeAndStartsFromItsEmptyValue) {
    ExpectStored<BoolReg>(&m_registry, true, kRegBinary, QByteArray("\x01\0\0\0", 4));
    ExpectStored<DoubleReg>(&m_registry, 1.5, kRegBinary, QByteArray("\0\0\0\0\0\0\xf8\x3f", 8));
    ExpectStored<DwordReg>(&m_registry, 0x01020304u, kRegDword, QByteArray("\x04\x03\x02\x01", 4));
    ExpectStored<DwordReg2>(&m_registry, 0u, kRegDword, QByteArray("\0\0\0\0", 4), 0xFFFFFFFFu);
    ExpectStored<IntReg>(&m_registry, -2, kRegBinary, QByteArray("\xfe\xff\xff\xff", 4));
    ExpectStored<LongLongReg>(&m_registry, int64_t{-1}, kRegBinary, QByteArray(8, '\xff'));
    ExpectStored<StringReg>(&m_registry, u"Ab"_s, kRegSz, QByteArray("A\0b\0", 4));
    // Without write-through an assignment stays local.
    DwordReg local(RegRoot::CurrentUser, kKey, u"local"_s, false, &m_registry);
    local = 7;
    EXPECT_TRUE(Raw(RegRoot::CurrentUser, kKey, u"local"_s).isEmpty());
}

TEST_F(RegValue, AMachineValueIsTheUsersUntilTheUserWritesTheirOwn) {
    DwordReg machine(RegRoot::LocalMachine, kKey, u"Shared"_s, true, &m_registry);
    machine = 5;
    DwordReg user(RegRoot::CurrentUser, kKey, u"Shared"_s, true, &m_registry);
    ASSERT_TRUE(user.Read());
    EXPECT_EQ(user.Get(), 5u);
    user = 9;
    EXPECT_EQ(Raw(RegRoot::LocalMachine, kKey, u"Shared"_s), QByteArray("\x05\0\0\0", 4));
    DwordReg again(RegRoot::CurrentUser, kKey, u"shared"_s, false, &m_registry);
    ASSERT_TRUE(again.Read());
    EXPECT_EQ(again.Get(), 9u);
}

TEST_F(RegValue, AReadTakesAnyValueThatFitsAndRefusesOneThatDoesNot) {
    CRegistryStore& user = m_registry.Root(RegRoot::CurrentUser);
    user.SetValue(kKey, u"Short"_s, kRegSz, QByteArray("\x11\x22", 2));
    user.SetValue(kKey, u"Long"_s, kRegBinary, QByteArray(5, '\x33'));
    DwordReg value(RegRoot::CurrentUser, kKey, u"Short"_s, false, &m_registry);
    value = 0xAABBCCDDu;
    // Bytes of another type go over the start of the local copy as they stand.
    ASSERT_TRUE(value.Read());
    EXPECT_EQ(value.Get(), 0xAABB2211u);
    DwordReg tooLong(RegRoot::CurrentUser, kKey, u"Long"_s, false, &m_registry);
    tooLong = 4;
    EXPECT_FALSE(tooLong.Read());
    EXPECT_EQ(tooLong.Get(), 4u);
}

TEST_F(RegValue, AStringOf1023CharactersOrMoreDoesNotRead) {
    for (const qsizetype nChars : {1022, 1023, 4000}) {
        StringReg writer(RegRoot::CurrentUser, kKey, u"Text"_s, true, &m_registry);
        writer = QString(nChars, u'x');
        StringReg reader(RegRoot::CurrentUser, kKey, u"Text"_s, false, &m_registry);
        reader = u"before"_s;
        EXPECT_EQ(reader.Read(), nChars < 1023) << nChars;
        EXPECT_EQ(reader.Length(), nChars < 1023 ? nChars : 6) << nChars;
    }
    StringReg text(RegRoot::CurrentUser, kKey, u"Text"_s, false, &m_registry);
    EXPECT_TRUE(text.DeleteValue());
    EXPECT_FALSE(text.DeleteValue());
    EXPECT_FALSE(text.Read());
}

TEST_F(RegValue, AnArrayIsAWholeKeyOfRecordsOfOneSize) {
    const QString key = kKey + u"\\Recent"_s;
    ArrayReg array(RegRoot::CurrentUser, key, 4, &m_registry);
    const char records[][5] = {"aaaa", "bbbb", "cccc", "dddd"};
    array.Add(records[0], 4);
    array.Add(records[1], 3);
    array.Add(nullptr, 4);
    array.Add(records[2], 4);
    array.InsertAt(0, records[3], 4);
    array.SetAt(9, records[1], 4);
    array.RemoveAt(7);
    ASSERT_EQ(array.Count(), 3u);
    ASSERT_TRUE(array.Write());

    ArrayReg read(RegRoot::CurrentUser, key, 4, &m_registry);
    ASSERT_TRUE(read.Read());
    ASSERT_EQ(read.Count(), 3u);
    EXPECT_EQ(std::memcmp(read.GetAt(0), "dddd", 4), 0);
    EXPECT_EQ(std::memcmp(read.GetAt(2), "cccc", 4), 0);
    EXPECT_EQ(read.GetAt(3), nullptr);

    // Written empty, the key stays; the machine root is not a fallback for arrays.
    ArrayReg empty(RegRoot::CurrentUser, key, 4, &m_registry);
    ASSERT_TRUE(empty.Write());
    EXPECT_EQ(m_registry.Root(RegRoot::CurrentUser).KeyExists(key), RegStatus::Ok);
    ASSERT_TRUE(read.Read());
    EXPECT_EQ(read.Count(), 0u);
    ArrayReg(RegRoot::LocalMachine, kKey + u"\\Other"_s, 4, &m_registry).Write();
    EXPECT_FALSE(ArrayReg(RegRoot::CurrentUser, kKey + u"\\Other"_s, 4, &m_registry).Read());
}

TEST_F(RegValue, AnArrayReadStopsAtARecordTooLargeAndPadsShortOnesWithThePrevious) {
    const QString key = kKey + u"\\Mixed"_s;
    CRegistryStore& user = m_registry.Root(RegRoot::CurrentUser);
    user.SetValue(key, u"0"_s, kRegBinary, "wxyz");
    user.SetValue(key, u"1"_s, kRegBinary, "ab");
    user.SetValue(key, u"2"_s, kRegBinary, "12345");
    user.SetValue(key, u"3"_s, kRegBinary, "zzzz");
    ArrayReg array(RegRoot::CurrentUser, key, 4, &m_registry);
    ASSERT_TRUE(array.Read());
    ASSERT_EQ(array.Count(), 2u);
    EXPECT_EQ(std::memcmp(array.GetAt(1), "abyz", 4), 0);
}

TEST_F(RegValue, AStringArrayStoresWholeRecordsWithWhatAnEarlierStringLeftBehind) {
    const QString key = kKey + u"\\Names"_s;
    ArrayStringReg array(RegRoot::CurrentUser, key, 8, &m_registry);
    array.Add(u"abc"_s, 8);
    array.Add(u"d"_s, 8);
    array.Add(u"wrong size"_s, 6);
    array.Add(u"longer than four"_s, 8);
    ASSERT_EQ(array.Count(), 3);
    ASSERT_TRUE(array.Write());
    uint32_t type = 0;
    EXPECT_EQ(Raw(RegRoot::CurrentUser, key, u"1"_s, &type), QByteArray("d\0\0\0c\0\0\0", 8));
    EXPECT_EQ(type, kRegSz);

    ArrayStringReg read(RegRoot::CurrentUser, key, 8, &m_registry);
    ASSERT_TRUE(read.Read());
    EXPECT_EQ(read.Count(), 3);
    EXPECT_EQ(read.GetAt(0), u"abc"_s);
    EXPECT_EQ(read.GetAt(1), u"d"_s);
    EXPECT_EQ(read.GetAt(2), u"long"_s);
}

} // namespace
