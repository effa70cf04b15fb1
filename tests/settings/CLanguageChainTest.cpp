#include "CLanguageChain.h"
#include "CRegistry.h"
#include "CTvnStringTable.h"
#include "QtPrinters.h"
#include "ScalarReg.h"
#include "StringReg.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

const QString kKey = QString::fromUtf16(kSettingsKey);

struct Case {
    const char* what;
    const char* lyndraMode; // null: no transfer library
    bool bTableBeside;
    std::optional<QString> machineLang;
    std::optional<QString> userLang;
    bool bSystemDefault;
    QString forcedCode;
    QString expectedText; // what text 100 of the loaded table says; empty: nothing loaded
    QString expectedUserLang;
};

void MakeTable(const fs::path& file, const char* text) {
    const std::string line = std::string("100\t") + text + "\n";
    testsupport::WriteFile(file, std::vector<uint8_t>(line.begin(), line.end()));
}

TEST(CLanguageChain, ChoosesTheTableByTransferLibraryBesideTableInstallerAndEnglish) {
    const Case cases[] = {
        {"beside wins without Lyndra", nullptr, true, u"Fra"_s, {}, false, {}, u"beside"_s, u"-"_s},
        {"installer's choice", nullptr, false, u"Fra"_s, u"Deu"_s, false, {}, u"fra"_s, u"Deu"_s},
        {"nothing named is English", nullptr, false, {}, {}, false, {}, u"enu"_s, u"-"_s},
        {"installer's table missing", nullptr, false, u"Ita"_s, {}, false, {}, QString(), u"-"_s},
        {"Lyndra gives no object", "no-object", false, u"Deu"_s, {}, false, {}, u"deu"_s, u"-"_s},
        {"user's choice", "accept", true, {}, u"Fra"_s, false, {}, u"fra"_s, u"Fra"_s},
        {"no choice is English", "accept", false, {}, {}, false, {}, u"enu"_s, u"-"_s},
        {"system's language", "accept", false, {}, u"Fra"_s, true, {}, u"deu"_s, u"Fra"_s},
        {"forced code wins", "accept", false, {}, u"Deu"_s, true, u"Fra"_s, u"fra"_s, u"Deu"_s},
        {"refusal stores ENU", "refuse", true, u"Fra"_s, u"Deu"_s, false, {}, u"enu"_s, u"ENU"_s},
    };
    for (const Case& c : cases) {
        testsupport::TempDir program;
        for (const char* code : {"Enu", "Deu", "Fra"}) {
            MakeTable(program / "Language" / code / "Tvnrc.txt",
                      QString::fromLatin1(code).toLower().toLatin1());
        }
        if (c.bTableBeside) {
            MakeTable(program / "Tvnrc.txt", "beside");
        }
        if (c.lyndraMode != nullptr) {
            fs::create_directories(program / "Lyndra");
            fs::copy_file(FAKE_LYNDRA_PATH, program / "Lyndra/Lyndra.so");
            qputenv("FAKE_LYNDRA", c.lyndraMode);
        }
        CRegistry registry(QString::fromStdString((program / "u.db").string()),
                           QString::fromStdString((program / "m.db").string()));
        if (c.machineLang) {
            StringReg(RegRoot::LocalMachine, kKey, u"CurrentLang"_s, true, &registry) =
                *c.machineLang;
        }
        if (c.userLang) {
            StringReg(RegRoot::CurrentUser, kKey, u"CurrentLang"_s, true, &registry) = *c.userLang;
        }
        BoolReg(RegRoot::CurrentUser, kKey, u"IsSystemDefault"_s, true, &registry) =
            c.bSystemDefault;

        const QString folder = QString::fromStdString(program.Path().string());
        CLanguageChain chain(folder, &registry);
        const int32_t status = chain.LoadTransfer(c.forcedCode);
        EXPECT_EQ(status == CLanguageChain::kTransferUnavailable,
                  c.lyndraMode == nullptr || std::string(c.lyndraMode) == "no-object")
            << c.what;
        CTvnStringTable table;
        QString tried;
        EXPECT_EQ(chain.LoadStringTable(status, table, tried), !c.expectedText.isEmpty()) << c.what;
        EXPECT_EQ(table.Text(100), c.expectedText) << c.what;
        if (c.expectedText.isEmpty()) {
            EXPECT_EQ(tried, folder + u"/Language/Ita/Tvnrc.txt"_s) << c.what;
        }
        uint32_t type = 0;
        QByteArray stored;
        EXPECT_EQ(
            registry.Root(RegRoot::CurrentUser).QueryValue(kKey, u"CurrentLang"_s, type, stored) ==
                    RegStatus::Ok
                ? regio::TextFromBytes(stored)
                : u"-"_s,
            c.expectedUserLang)
            << c.what;
        chain.UnloadTransfer();
        EXPECT_EQ(chain.Transfer(), nullptr) << c.what;
    }
}

} // namespace
