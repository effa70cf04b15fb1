// Measures the file list on a folder of many files built in memory: the time from selecting
// the folder in the tree to the list's first painted rows, a click on each column's heading to
// the re-sorted rows on screen, and how many cells a scroll formats against the cells visible.
// Usage: ovrin-view-bench [FILES]   (default 100,000 in one folder)
#include "CFileListView.h"
#include "CFileTypeCache.h"
#include "CFolderTreeView.h"
#include "COvDataItem.h"
#include "CTvnStringTable.h"
#include "IOvDocument.h"
#include "Locations.h"
#include "TvnText.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>
#include <QTreeView>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

using namespace Qt::StringLiterals;

constexpr int kDefaultFiles = 100'000;
constexpr QSize kListSize{700, 400};
constexpr int kTreeWidth = 230;
// Names, sizes, types and times in an order unlike any column's, so that each sort moves rows.
constexpr int kScatter = 7919;
constexpr const char16_t* kExtensions[] = {u"txt", u"bin", u"png", u"html", u"zip"};
constexpr uint32_t kTimeStep = 10'000'000;
constexpr uint32_t kBaseTimeHigh = 30'000'000;
constexpr double kShowTargetMs = 100.0;
constexpr double kSortTargetMs = 200.0;

class BenchDocument : public IOvDocument {
public:
    COvDataItem* GetRootItem() const override { return m_pRoot.get(); }
    void DeleteRootItem() override { m_pRoot.reset(); }
    void CreateRootItem() override {
        m_pRoot = std::make_unique<COvDataItem>(u"BENCH"_s, COvDataItem::KindRoot, 0, 0);
    }
    COvDataItem* GetCurrentFolder() const override { return m_pCurrent; }
    void SetCurrentFolder(COvDataItem* pFolder) override { m_pCurrent = pFolder; }

private:
    std::unique_ptr<COvDataItem> m_pRoot;
    COvDataItem* m_pCurrent = nullptr;
};

// The tree as the walk leaves it: children sorted by name, and marked so.
COvDataItem* BuildFolder(BenchDocument& doc, int nFiles) {
    doc.CreateRootItem();
    COvDataItem* pRoot = doc.GetRootItem();
    COvDataItem* pFolder = pRoot->AddChild(u"\\many"_s, COvDataItem::KindFolder, 0, 0);
    pRoot->AddChild(u"\\other"_s, COvDataItem::KindFolder, 0, 0);
    const int nExtensions = static_cast<int>(std::size(kExtensions));
    for (int i = 0; i < nFiles; ++i) {
        const int nKey = static_cast<int>((static_cast<int64_t>(i) * kScatter) % nFiles);
        const QString name =
            u"\\many\\file-%1.%2"_s.arg(nKey).arg(QString::fromUtf16(kExtensions[i % nExtensions]));
        COvDataItem* pFile =
            pFolder->AddChild(name, COvDataItem::KindFile, static_cast<uint32_t>(nFiles - nKey), 0);
        pFile->m_ftTime = {static_cast<uint32_t>(i) * kTimeStep, kBaseTimeHigh};
    }
    for (COvDataItem* pNode : {pRoot, pFolder}) {
        pNode->SortChildrenByName();
        pNode->m_anSortState[COvDataItem::SortName] = 1;
    }
    return pFolder;
}

double Ms(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

const char* Verdict(double ms, double targetMs) {
    return ms <= targetMs ? "met" : "MISSED";
}

void ClickHeading(CFileListView& list, int nColumn) {
    QHeaderView* pHeader = list.ListCtrl().ReportView()->header();
    const QPoint at(pHeader->sectionViewportPosition(nColumn) + 5, pHeader->height() / 2);
    QTest::mouseClick(pHeader->viewport(), Qt::LeftButton, Qt::NoModifier, at);
}

// The rows on screen are the ones a paint formats; a paint forced at once ends each timing.
void PaintNow(CFileListView& list) {
    list.ListCtrl().ReportView()->viewport()->repaint();
}

int VisibleCells(CFileListView& list) {
    QTreeView* pView = list.ListCtrl().ReportView();
    const int nRowHeight = std::max(1, pView->sizeHintForRow(0));
    const int nRows = pView->viewport()->height() / nRowHeight + 1;
    return nRows * COvListModel::ColumnCount;
}

void ReportSelect(CFolderTreeView& tree, CFileListView& list, COvDataItem* pFolder, int nFiles) {
    COvListModel& model = list.ListCtrl().Model();
    const int nBefore = model.FormattedCellCount();
    QElapsedTimer timer;
    timer.start();
    tree.TreeCtrl().setCurrentItem(tree.FindItemByNode(pFolder));
    PaintNow(list);
    const double ms = Ms(timer);
    std::printf("%-30s %10.2f ms  (target %.0f ms: %s; %d rows, %d cells formatted)\n",
                "select folder to first rows", ms, kShowTargetMs, Verdict(ms, kShowTargetMs),
                model.rowCount(), model.FormattedCellCount() - nBefore);
    if (model.rowCount() != nFiles) {
        std::printf("  the list shows %d rows of %d\n", model.rowCount(), nFiles);
    }
}

void ReportSorts(CFileListView& list) {
    for (int nColumn = 0; nColumn < COvListModel::ColumnCount; ++nColumn) {
        const QString heading =
            list.ListCtrl().Model().headerData(nColumn, Qt::Horizontal, Qt::DisplayRole).toString();
        QElapsedTimer timer;
        timer.start();
        ClickHeading(list, nColumn);
        PaintNow(list);
        const double ms = Ms(timer);
        const QByteArray label = ("sort by " + heading).toUtf8();
        std::printf("%-30s %10.2f ms  (target %.0f ms: %s)\n", label.constData(), ms, kSortTargetMs,
                    Verdict(ms, kSortTargetMs));
    }
}

void ReportScroll(CFileListView& list) {
    QScrollBar* pBar = list.ListCtrl().ReportView()->verticalScrollBar();
    const COvListModel& model = list.ListCtrl().Model();
    const int nBefore = model.FormattedCellCount();
    QElapsedTimer timer;
    timer.start();
    for (int nValue : {pBar->maximum() / 2, pBar->maximum()}) {
        pBar->setValue(nValue);
        PaintNow(list);
    }
    const double ms = Ms(timer);
    std::printf("%-30s %10.2f ms  (%d cells formatted for 2 screens of %d visible cells)\n",
                "scroll to middle and end", ms, model.FormattedCellCount() - nBefore,
                VisibleCells(list));
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    // The offscreen platform warns about its windows; the figures are the output here.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    CTvnStringTable texts;
    texts.LoadFile(QDir(ProgramFolder()).filePath(QStringLiteral("Language/Enu/Tvnrc.txt")));
    SetCurrentStringTable(&texts);
    CFileTypeCache::InstallForDataItems();
    const int nFiles = argc > 1 ? std::max(1, std::atoi(argv[1])) : kDefaultFiles;

    BenchDocument doc;
    COvDataItem* pFolder = BuildFolder(doc, nFiles);
    CFolderTreeView tree(&doc);
    CFileListView list(&doc);
    list.SetTreeView(&tree);
    tree.resize(kTreeWidth, kListSize.height());
    list.resize(kListSize);
    tree.OnInitialUpdate();
    tree.show();
    list.show();
    QCoreApplication::processEvents();

    std::printf("A folder of %d files in the file list (report view, %dx%d)\n", nFiles,
                kListSize.width(), kListSize.height());
    ReportSelect(tree, list, pFolder, nFiles);
    ReportSorts(list);
    ReportScroll(list);
    SetCurrentStringTable(nullptr);
    return 0;
}
