// Measures what the skinned dialogs cost a person waiting for them: the time from constructing a
// message box or the progress dialog to its first painted frame, cold and warm, and the cost of
// the progress dialog's set position when it is called far more often than the percentage
// changes, as an extraction does.
// Usage: ovrin-dialog-bench [RUNS]   (default 30 warm runs; offscreen unless a display is named)
#include "CProgressDlg.h"
#include "CTvgMessageBox.h"
#include "CTvnStringTable.h"
#include "Locations.h"
#include "ToolkitHooks.h"
#include "TvnText.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

namespace {

constexpr int kDefaultRuns = 30;
constexpr int kPositionCalls = 10'000;
constexpr uint32_t kTitleId = 100;
constexpr uint32_t kOpenFailedTextId = 656;
constexpr uint32_t kProgressTitleId = 5023;

// Milliseconds from construction to the first frame, which the window paints when shown.
double ShowOnce(const std::function<QWidget*()>& make) {
    QElapsedTimer timer;
    timer.start();
    std::unique_ptr<QWidget> pWindow(make());
    pWindow->show();
    pWindow->repaint();
    QCoreApplication::processEvents();
    const double ms = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    pWindow->hide();
    return ms;
}

void ReportShow(const char* name, const std::function<QWidget*()>& make, int nRuns) {
    const double cold = ShowOnce(make);
    std::vector<double> warm;
    for (int i = 0; i < nRuns; ++i) {
        warm.push_back(ShowOnce(make));
    }
    std::sort(warm.begin(), warm.end());
    std::printf("%-28s cold %7.2f ms   warm median %6.2f ms   max %6.2f ms\n", name, cold,
                warm[warm.size() / 2], warm.back());
}

// An extraction reports every chunk; the percentage moves a hundred times in all.
void ReportPositions() {
    CProgressDlg dialog(nullptr, TvnText(kProgressTitleId), nullptr);
    dialog.SetRange(0, kPositionCalls, 1);
    dialog.show();
    QCoreApplication::processEvents();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i <= kPositionCalls; ++i) {
        dialog.SetPos(i);
    }
    const double ms = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    std::printf("%-28s %d calls, 100 repaints: %.2f ms (%.2f us a call)\n", "progress set position",
                kPositionCalls, ms, ms * 1000.0 / kPositionCalls);
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    // The offscreen platform warns at every shaped window; the figures are the output here.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    InstallToolkitHooks();
    CTvnStringTable texts;
    texts.LoadFile(QDir(ProgramFolder()).filePath(QStringLiteral("Language/Enu/Tvnrc.txt")));
    SetCurrentStringTable(&texts);
    const int nRuns = argc > 1 ? std::max(1, std::atoi(argv[1])) : kDefaultRuns;
    ReportShow(
        "message box",
        [] {
            return new CTvgMessageBox(kOpenFailedTextId, mb::kOk, kTitleId, nullptr,
                                      QString::fromUtf16(kDefaultMessageIcon), false);
        },
        nRuns);
    ReportShow(
        "progress dialog",
        [] { return new CProgressDlg(nullptr, TvnText(kProgressTitleId), nullptr); }, nRuns);
    ReportPositions();
    return 0;
}
