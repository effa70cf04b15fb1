// Runs the window's extraction (command 641 of the file list, in the main frame with its
// progress dialog) on a real image, as a person would with every row of the image's root
// selected, and prints how long the command took.
// Usage: ovrin-extract-command-bench IMAGE TARGET [--stop-after MS]
//   TARGET       the folder answered in the browser; existing targets are answered "Replace
//                All" at the first question, once
//   --stop-after the progress dialog's stop is pressed MS milliseconds into the command; the
//                time from then until the command returned is printed as the stop's answer
#include "CConfirmFile.h"
#include "CFileListView.h"
#include "CFolderTreeView.h"
#include "CGButton.h"
#include "CImageReader.h"
#include "CMainFrame.h"
#include "COvrinDoc.h"
#include "CTvgMessageBox.h"
#include "CTvnStringTable.h"
#include "Locations.h"
#include "SkinImages.h"
#include "TvnText.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <memory>

namespace {

using namespace Qt::StringLiterals;

constexpr int kPollMs = 5;

// Clicks "Replace All" on each overwrite question and counts them; any message box is a
// failure of the run.
class Answerer {
public:
    Answerer() {
        QObject::connect(&m_poll, &QTimer::timeout, [this] { Poll(); });
        m_poll.start(kPollMs);
    }
    int m_nQuestions = 0;
    int m_nBoxes = 0;

private:
    void Poll() {
        QWidget* pModal = QApplication::activeModalWidget();
        if (auto* pDialog = qobject_cast<CConfirmFile*>(pModal);
            pDialog != nullptr && pDialog->isVisible() && pDialog != m_pLast) {
            m_pLast = pDialog;
            ++m_nQuestions;
            CGButton* pButton = pDialog->Button(CConfirmFile::kIdReplaceAll);
            QTest::mouseClick(pButton, Qt::LeftButton, Qt::NoModifier, pButton->rect().center());
        } else if (auto* pBox = qobject_cast<CTvgMessageBox*>(pModal);
                   pBox != nullptr && pBox->isVisible()) {
            std::fprintf(stderr, "message: %s\n", qPrintable(pBox->accessibleDescription()));
            ++m_nBoxes;
            pBox->reject();
        }
    }

    QTimer m_poll;
    QWidget* m_pLast = nullptr;
};

} // namespace

int main(int argc, char** argv) {
    // On a display the window shows, so that it can be looked at while it works.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !qEnvironmentVariableIsSet("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() != 3 && !(args.size() == 5 && args[3] == u"--stop-after"_s)) {
        std::fprintf(stderr, "usage: ovrin-extract-command-bench IMAGE TARGET [--stop-after MS]\n");
        return 2;
    }
    const int nStopAfterMs = args.size() == 5 ? args[4].toInt() : -1;
    // The skin's pictures and the texts lie beside the program, as in the installed layout.
    SetInstallFolder(ProgramFolder());
    CTvnStringTable table;
    table.LoadFile(ProgramFolder() + u"/Language/Enu/Tvnrc.txt"_s);
    SetCurrentStringTable(&table);
    CImageReader reader;
    g_pImageReader = &reader;
    reader.SetPump([](void*) { QCoreApplication::processEvents(); }, nullptr);

    COvrinDoc doc;
    // The frame takes the reader's notices: its progress dialog runs as in the program.
    auto pFrame = std::make_unique<CMainFrame>();
    auto* pList = new CFileListView(&doc);
    pFrame->SetPanes(new CFolderTreeView(&doc), pList);
    CFileListView& list = *pList;
    pFrame->resize(CMainFrame::kDefaultSize);
    pFrame->show();
    if (list.OpenImageFile(args[1]) < 0) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(args[1]));
        return 1;
    }
    list.SetFolderChooser([&](QWidget*, const QString&, const QString&) { return args[2]; });
    list.ListCtrl().SelectAll();

    Answerer answerer;
    QElapsedTimer clock;
    double stoppedAt = 0;
    if (nStopAfterMs >= 0) {
        // What the progress dialog's stop button does through the frame.
        QTimer::singleShot(nStopAfterMs, Qt::PreciseTimer, [&] {
            stoppedAt = static_cast<double>(clock.nsecsElapsed()) / 1e9;
            reader.SetStop(1);
        });
    }
    clock.start();
    list.OnCommand(kCmdExtract);
    const double seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    std::printf("command %.3f s, %d question(s)\n", seconds, answerer.m_nQuestions);
    if (stoppedAt > 0) {
        std::printf("stop at %.3f s answered in %.3f s\n", stoppedAt, seconds - stoppedAt);
    }
    pFrame.reset();
    g_pImageReader = nullptr;
    SetCurrentStringTable(nullptr);
    return answerer.m_nBoxes == 0 ? 0 : 1;
}
