// Chooses the language table at start-up: the transfer library decides if it is there and
// works; otherwise a table beside the program, or the one the installer named, is taken; and
// English is the last resort.
#pragma once

#include "ILyndra.h"

#include <QString>
#include <cstdint>

class CRegistry;
class CTvnStringTable;

class CLanguageChain {
public:
    // The transfer library said no, or could not be used.
    static constexpr int32_t kTransferUnavailable = static_cast<int32_t>(0x80004005u);

    // programFolder is the executable's folder; pRegistry null means the program's stores.
    explicit CLanguageChain(const QString& programFolder, CRegistry* pRegistry = nullptr);
    ~CLanguageChain();
    CLanguageChain(const CLanguageChain&) = delete;
    CLanguageChain& operator=(const CLanguageChain&) = delete;

    // Loads the transfer library and sets its language: a forced code if not empty, else the
    // user's choice or the system's. The status of set language, or kTransferUnavailable.
    int32_t LoadTransfer(const QString& forcedCode = QString());
    // Releases the object and frees the library.
    void UnloadTransfer();
    ILyndra* Transfer() const { return m_pLyndra; }

    // Loads the table that status (LoadTransfer's) points to. On failure pathTried names what
    // was tried last; it is empty when the transfer library was in play.
    bool LoadStringTable(int32_t status, CTvnStringTable& table, QString& pathTried);

private:
    bool OpenTransferLibrary(bool bSystemDefault);
    QString ChooseCode(const QString& forcedCode, bool bSystemDefault);

    QString m_strFolder;
    CRegistry* m_pRegistry;
    void* m_hLibrary = nullptr;
    ILyndra* m_pLyndra = nullptr;
};
