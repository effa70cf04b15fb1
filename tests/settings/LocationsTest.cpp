#include "Locations.h"
#include "CRegistry.h"
#include "QtPrinters.h"
#include "ScalarReg.h"
#include "StringReg.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

const QString kKey = QString::fromUtf16(kSettingsKey);
const QString kInstall = QString::fromUtf16(kInstallKey);

class Locations : public ::testing::Test {
protected:
    void SetUp() override {
        // The user's own folders stay out of reach of every test.
        qputenv("HOME", m_home.Path().c_str());
        qputenv("XDG_CACHE_HOME", (m_home / ".cache").c_str());
        qputenv("XDG_CONFIG_HOME", (m_home / ".config").c_str());
    }
    QString Home(const char* rest) const {
        return QString::fromStdString((m_home / rest).string());
    }
    QString Stored(const QString& name) {
        StringReg value(RegRoot::CurrentUser, kKey, name, false, &m_registry);
        return value.Read() ? value.Text() : u"<absent>"_s;
    }
    void SetVersion(const QString& version) {
        StringReg(RegRoot::LocalMachine, kKey, u"Version"_s, true, &m_registry) = version;
    }

    testsupport::TempDir m_home;
    testsupport::TempDir m_stores;
    CRegistry m_registry{QString::fromStdString((m_stores / "u.db").string()),
                         QString::fromStdString((m_stores / "m.db").string())};
};

TEST_F(Locations, TheTempFolderCarriesTheVersionAndFallsBackWhenItDoesNotFit) {
    const QString base = Home(".cache") + u"/Brindleway/Torvane10/"_s;
    // base + version + "/Temp" + terminator must fit the buffer.
    const size_t nFits = static_cast<size_t>(base.size()) + 4 + 5 + 1;
    struct Case {
        const char* what;
        QString version;
        size_t nBufferChars;
        bool bResult;
        QString folder;
    };
    const Case cases[] = {
        {"version", u"10.0"_s, std::max(nFits, kMaxPathChars), true, base + u"10.0/Temp/"_s},
        {"no version", QString(), kMaxPathChars, true, base + u"/Temp/"_s},
        {"one short of the path", u"10.0"_s, std::max(nFits - 1, kMaxPathChars),
         nFits <= kMaxPathChars, nFits <= kMaxPathChars ? base + u"10.0/Temp/"_s : u"/tmp/"_s},
        {"version too long for the path", QString(250, u'v'), kMaxPathChars, true, u"/tmp/"_s},
        {"version too long to read", QString(300, u'v'), kMaxPathChars, true, base + u"/Temp/"_s},
        {"buffer under 260", u"10.0"_s, kMaxPathChars - 1, false, u"unchanged"_s},
    };
    for (const Case& c : cases) {
        SetVersion(c.version);
        QString folder = u"unchanged"_s;
        EXPECT_EQ(GetTempFolder(c.nBufferChars, folder, &m_registry), c.bResult) << c.what;
        EXPECT_EQ(folder, c.folder) << c.what;
        EXPECT_TRUE(!c.bResult || QFileInfo(folder).isDir()) << c.what;
    }
}

TEST_F(Locations, TheFirstUseOfAFolderSettingStoresDocuments) {
    const QString documents = Home("Documents");
    EXPECT_EQ(Stored(u"ImagePath"_s), u"<absent>"_s);
    EXPECT_EQ(GetImageFolder(&m_registry), documents);
    EXPECT_EQ(Stored(u"ImagePath"_s), documents);
    EXPECT_TRUE(QFileInfo(documents).isDir());
}

TEST_F(Locations, SiblingsAreFoundInTheFirstSubkeyWithAnInstallPath) {
    QString path = u"unchanged"_s;
    EXPECT_FALSE(GetBurningProgramPath(&path, &m_registry));
    EXPECT_EQ(path, u"unchanged"_s);

    const QString folder = Home("opt");
    DwordReg(RegRoot::LocalMachine, kInstall + u"\\A-NoPath"_s, u"Other"_s, true, &m_registry) = 1;
    StringReg(RegRoot::LocalMachine, kInstall + u"\\B"_s, u"InstallPath"_s, true, &m_registry) =
        folder;
    StringReg(RegRoot::LocalMachine, kInstall + u"\\C"_s, u"InstallPath"_s, true, &m_registry) =
        u"/elsewhere"_s;
    // A per-user value does not count: install places are the machine's.
    StringReg(RegRoot::CurrentUser, kInstall + u"\\A-NoPath"_s, u"InstallPath"_s, true,
              &m_registry) = u"/user"_s;
    EXPECT_EQ(FindInstallPath(kInstall, &m_registry), folder);

    EXPECT_FALSE(GetBurningProgramPath(&path, &m_registry));
    EXPECT_EQ(path, folder + u"/torvane10"_s);
    testsupport::WriteFile(m_home / "opt/torvane10", {'#', '!'});
    testsupport::WriteFile(m_home / "opt/marlowe10", {'#', '!'});
    fs::permissions(m_home / "opt/torvane10", fs::perms::owner_exec, fs::perm_options::add);
    EXPECT_TRUE(GetBurningProgramPath(nullptr, &m_registry));
    EXPECT_FALSE(GetMountingProgramPath(&path, &m_registry)) << "not executable";
    EXPECT_EQ(path, folder + u"/marlowe10"_s);
}

} // namespace
