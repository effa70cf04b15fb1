#include "CLanguageChain.h"

#include "CTvnStringTable.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "StringReg.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

namespace {

using namespace Qt::StringLiterals;

const QString kEnglishCode = u"Enu"_s;
const QString kEnglishStored = u"ENU"_s;

QString SettingsKey() {
    return QString::fromUtf16(kSettingsKey);
}

QString FromBuffer(const char16_t* pBuffer) {
    qsizetype n = 0;
    while (n < kLyndraBufferChars && pBuffer[n] != u'\0') {
        ++n;
    }
    return QString::fromUtf16(pBuffer, n);
}

} // namespace

CLanguageChain::CLanguageChain(const QString& programFolder, CRegistry* pRegistry)
    : m_strFolder(programFolder), m_pRegistry(pRegistry) {}

CLanguageChain::~CLanguageChain() {
    UnloadTransfer();
}

bool CLanguageChain::OpenTransferLibrary(bool bSystemDefault) {
    const QString library = m_strFolder + u"/Lyndra/Lyndra.so"_s;
    if (!QFileInfo::exists(library)) {
        return false;
    }
    m_hLibrary = dlopen(QFile::encodeName(library).constData(), RTLD_NOW | RTLD_LOCAL);
    if (m_hLibrary == nullptr) {
        return false;
    }
    const auto pfnGet = reinterpret_cast<PfnGetLyndra>(dlsym(m_hLibrary, "GetLyndra"));
    const QString lyndra = m_strFolder + u"/Lyndra/"_s;
    const QString xmls[] = {lyndra + u"MUIResource.xml"_s, lyndra + u"MUIReference.xml"_s,
                            lyndra + u"MUIStartMenu.xml"_s};
    if (pfnGet != nullptr) {
        m_pLyndra =
            pfnGet(nullptr, reinterpret_cast<const char16_t*>(xmls[0].utf16()),
                   reinterpret_cast<const char16_t*>(xmls[1].utf16()),
                   reinterpret_cast<const char16_t*>(xmls[2].utf16()), bSystemDefault ? 1 : 0, 1);
    }
    if (m_pLyndra == nullptr) {
        dlclose(m_hLibrary);
        m_hLibrary = nullptr;
        return false;
    }
    return true;
}

QString CLanguageChain::ChooseCode(const QString& forcedCode, bool bSystemDefault) {
    if (!forcedCode.isEmpty()) {
        return forcedCode;
    }
    if (!bSystemDefault) {
        StringReg currentLang(RegRoot::CurrentUser, SettingsKey(), u"CurrentLang"_s, true,
                              m_pRegistry);
        return currentLang.Read() ? currentLang.Text() : kEnglishCode;
    }
    char16_t code[kLyndraBufferChars] = {};
    m_pLyndra->GetLanguage(code);
    return FromBuffer(code);
}

int32_t CLanguageChain::LoadTransfer(const QString& forcedCode) {
    BoolReg systemDefault(RegRoot::CurrentUser, SettingsKey(), u"IsSystemDefault"_s, true,
                          m_pRegistry);
    const bool bSystemDefault = systemDefault.Get();
    if (!OpenTransferLibrary(bSystemDefault)) {
        return kTransferUnavailable;
    }
    const QString code = ChooseCode(forcedCode, bSystemDefault);
    return m_pLyndra->SetLanguage(reinterpret_cast<const char16_t*>(code.utf16()));
}

void CLanguageChain::UnloadTransfer() {
    if (m_hLibrary == nullptr) {
        return;
    }
    const auto pfnRelease = reinterpret_cast<PfnReleaseLyndra>(dlsym(m_hLibrary, "ReleaseLyndra"));
    if (pfnRelease != nullptr && m_pLyndra != nullptr) {
        pfnRelease(m_pLyndra);
    }
    m_pLyndra = nullptr;
    dlclose(m_hLibrary);
    m_hLibrary = nullptr;
}

bool CLanguageChain::LoadStringTable(int32_t status, CTvnStringTable& table, QString& pathTried) {
    pathTried.clear();
    if (status == kTransferUnavailable) {
        // A table beside the program stands for the whole suite's choice.
        pathTried = m_strFolder + u"/Tvnrc.txt"_s;
        if (table.LoadFile(pathTried)) {
            return true;
        }
        // A program that no installer has set up, run from its build folder say, names no
        // language of the machine; English, the last resort, stands for it.
        StringReg installed(RegRoot::LocalMachine, SettingsKey(), u"CurrentLang"_s, false,
                            m_pRegistry);
        const QString code = installed.Read() ? installed.Text() : kEnglishCode;
        pathTried = m_strFolder + u"/Language/"_s + code + u"/Tvnrc.txt"_s;
        return table.LoadFile(pathTried);
    }
    char16_t path[kLyndraBufferChars] = {};
    if (m_pLyndra != nullptr && m_pLyndra->GetResourcePath(path) == 0) {
        return table.LoadFile(FromBuffer(path));
    }
    if (!table.LoadFile(m_strFolder + u"/Language/"_s + kEnglishCode + u"/Tvnrc.txt"_s)) {
        return false;
    }
    // The refused choice is replaced, so that the next start does not ask for it again.
    StringReg currentLang(RegRoot::CurrentUser, SettingsKey(), u"CurrentLang"_s, true, m_pRegistry);
    currentLang = kEnglishStored;
    return true;
}
