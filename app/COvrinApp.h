// The program's one application object: it brings up the language, the document, the frame
// with its panes and the one image reader in a fixed order, opens the image that the command
// line names, and takes all of it down again in a fixed order.
#pragma once

#include "CInstanceGuard.h"
#include "CTvnStringTable.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

class CImageReader;
class CInstanceChannel;
class CLanguageChain;
class CMainFrame;
class COvrinDoc;

class COvrinApp {
public:
    // Where the program finds Language/ and Image/, and the engine it loads; empty values mean
    // the executable's folder and the Qmz.so beside it.
    struct Setup {
        QString programFolder;
        QString enginePath;
    };

    // arguments are the command line, the program's name first.
    explicit COvrinApp(QStringList arguments, Setup setup = {});
    ~COvrinApp();
    COvrinApp(const COvrinApp&) = delete;
    COvrinApp& operator=(const COvrinApp&) = delete;

    // False ends the start; ExitInstance copes with every state this leaves.
    bool InitInstance();
    int ExitInstance();
    // The whole run: start, the event loop while the start went through, and the end.
    int Run();

    CMainFrame* MainFrame() const { return m_pFrame.get(); }
    COvrinDoc* Document() const { return m_pDocument.get(); }
    // Empty when the command line named no file that exists.
    const QString& FileToOpen() const { return m_strFileToOpen; }

private:
    bool LoadLanguage();
    void ParseCommandLine();
    bool PassGuards();
    void ListenForSecondStarts();
    uint8_t HandOverState() const;
    void OnSecondStart(const QString& path);
    static void BuildGlobalFont();
    void CreateImageReader();
    void CreateFrame();
    bool OpenFileOnStart();
    void QuitAfterNextPaint();

    QStringList m_lstArguments;
    Setup m_setup;
    std::unique_ptr<CLanguageChain> m_pLanguage;
    CTvnStringTable m_table;
    bool m_bTableLoaded = false;
    QString m_strFileToOpen;
    // Holds this program's instance lock from the guard until the end.
    CInstanceGuard m_guard;
    std::unique_ptr<CInstanceChannel> m_pChannel;
    std::unique_ptr<COvrinDoc> m_pDocument;
    std::unique_ptr<CImageReader> m_pReader;
    std::unique_ptr<CMainFrame> m_pFrame;
};
