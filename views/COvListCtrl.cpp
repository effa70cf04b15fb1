#include "COvListCtrl.h"

#include "COvDataItem.h"
#include "Formatting.h"
#include "ViewPalette.h"

#include <QDateTime>
#include <QFontMetrics>
#include <QHeaderView>
#include <QHelpEvent>
#include <QListView>
#include <QStackedLayout>
#include <QToolTip>
#include <QTreeView>
#include <algorithm>

namespace {

constexpr int kColumnWidths[COvListModel::ColumnCount] = {200, 100, 120, 120};
constexpr int kSmallIcon = 16;
constexpr int kLargeIcon = 32;
// Room around a large icon's label, so that neighbouring names do not touch.
constexpr int kLargeIconCellWidth = 96;
constexpr int kLargeIconCellHeight = 64;
constexpr int kListCellPadding = 4;
// Room beside a cell's text for the style's margins.
constexpr int kCellTextMargin = 12;
constexpr int kMonths = 12;

// The widest date of the user's format, on two-digit days and hours, with each month's name.
int WidestDateWidth(const QFontMetrics& metrics) {
    int nWidest = 0;
    for (int nMonth = 1; nMonth <= kMonths; ++nMonth) {
        const QDateTime sample(QDate(2000, nMonth, 28), QTime(20, 58, 58));
        nWidest = std::max(nWidest, metrics.horizontalAdvance(FormatDateTime(sample)));
    }
    return nWidest;
}

} // namespace

COvListCtrl::COvListCtrl(QWidget* pParent) : QWidget(pParent) {
    m_pStack = new QStackedLayout(this);
    m_pStack->setContentsMargins(0, 0, 0, 0);
    MakeReport();
    MakeIcons();
    SetViewMode(ModeReport);
}

void COvListCtrl::MakeReport() {
    m_pReport = new QTreeView(this);
    m_pReport->setModel(&m_model);
    // One height for all rows: the view never measures rows it does not draw.
    m_pReport->setUniformRowHeights(true);
    m_pReport->setRootIsDecorated(false);
    m_pReport->setItemsExpandable(false);
    m_pReport->setAllColumnsShowFocus(true);
    m_pReport->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pReport->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pReport->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pReport->setIconSize(QSize(kSmallIcon, kSmallIcon));
    m_pReport->setTextElideMode(Qt::ElideRight);
    QHeaderView* pHeader = m_pReport->header();
    pHeader->setStretchLastSection(false);
    pHeader->setSectionsClickable(true);
    pHeader->setSectionsMovable(false);
    pHeader->setSortIndicatorShown(true);
    pHeader->setSortIndicator(-1, Qt::AscendingOrder);
    for (int i = 0; i < COvListModel::ColumnCount; ++i) {
        pHeader->resizeSection(i, kColumnWidths[i]);
    }
    // Long date formats of some languages do not fit the date column's usual width.
    const int nDateWidth = WidestDateWidth(m_pReport->fontMetrics()) + kCellTextMargin;
    if (nDateWidth > kColumnWidths[COvListModel::ColumnDate]) {
        pHeader->resizeSection(COvListModel::ColumnDate, nDateWidth);
    }
    connect(pHeader, &QHeaderView::sectionClicked, this, &COvListCtrl::columnClicked);
    connect(m_pReport, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& index) { emit rowDoubleClicked(index.row()); });
    ApplyViewPalette(m_pReport);
    m_pReport->viewport()->installEventFilter(this);
    m_pStack->addWidget(m_pReport);
}

void COvListCtrl::MakeIcons() {
    m_pIcons = new QListView(this);
    m_pIcons->setModel(&m_model);
    m_pIcons->setSelectionModel(m_pReport->selectionModel());
    m_pIcons->setUniformItemSizes(true);
    m_pIcons->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pIcons->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pIcons->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pIcons->setResizeMode(QListView::Adjust);
    m_pIcons->setMovement(QListView::Static);
    // Large rows of icons are laid out in batches, so a big folder shows before it is placed.
    m_pIcons->setLayoutMode(QListView::Batched);
    connect(m_pIcons, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& index) { emit rowDoubleClicked(index.row()); });
    ApplyViewPalette(m_pIcons);
    m_pStack->addWidget(m_pIcons);
}

QAbstractItemView* COvListCtrl::ActiveView() const {
    if (m_nMode == ModeReport) {
        return m_pReport;
    }
    return m_pIcons;
}

void COvListCtrl::SetViewMode(int nMode) {
    switch (nMode) {
    case ModeLargeIcons:
        m_pIcons->setViewMode(QListView::IconMode);
        m_pIcons->setIconSize(QSize(kLargeIcon, kLargeIcon));
        m_model.SetCellSize(QSize());
        m_pIcons->setGridSize(QSize(kLargeIconCellWidth, kLargeIconCellHeight));
        // Every cell is as big as the first, so that a big folder is laid out without
        // measuring each name; a long name keeps its start and its extension.
        m_pIcons->setTextElideMode(Qt::ElideMiddle);
        break;
    case ModeSmallIcons:
    case ModeList:
        m_pIcons->setViewMode(QListView::ListMode);
        m_pIcons->setIconSize(QSize(kSmallIcon, kSmallIcon));
        // Cells as wide as the report's name column: measuring every name of a big folder
        // for the widest would cost what the virtual list saves.
        m_model.SetCellSize(
            QSize(kColumnWidths[COvListModel::ColumnName],
                  std::max(kSmallIcon, m_pIcons->fontMetrics().height()) + kListCellPadding));
        m_pIcons->setGridSize(QSize());
        m_pIcons->setTextElideMode(Qt::ElideMiddle);
        m_pIcons->setFlow(nMode == ModeList ? QListView::TopToBottom : QListView::LeftToRight);
        m_pIcons->setWrapping(true);
        break;
    case ModeReport:
        m_model.SetCellSize(QSize());
        break;
    default:
        return;
    }
    m_nMode = nMode;
    m_pStack->setCurrentWidget(ActiveView());
}

void COvListCtrl::SetSortArrow(int nColumn, int nState) {
    QHeaderView* pHeader = m_pReport->header();
    if (nState == 0) {
        pHeader->setSortIndicator(-1, Qt::AscendingOrder);
        return;
    }
    // Qt draws its ascending mark pointing down; the list's ascending arrow points up, as the
    // smallest entry stands on top.
    pHeader->setSortIndicator(nColumn, nState > 0 ? Qt::DescendingOrder : Qt::AscendingOrder);
}

QString COvListCtrl::CutCellTextAt(QPoint pt) const {
    const QModelIndex index = m_pReport->indexAt(pt);
    const COvDataItem* pNode = m_model.NodeAt(index.row());
    if (pNode == nullptr) {
        return QString();
    }
    const QString text = COvListModel::CellText(*pNode, index.column());
    int nRoom = m_pReport->visualRect(index).width();
    if (index.column() == COvListModel::ColumnName) {
        nRoom -= m_pReport->iconSize().width();
    }
    // The delegate keeps a margin on each side of the text, one more pixel than the focus frame.
    nRoom -=
        2 * (m_pReport->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, m_pReport) + 1);
    return m_pReport->fontMetrics().horizontalAdvance(text) > nRoom ? text : QString();
}

bool COvListCtrl::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == m_pReport->viewport() && pEvent->type() == QEvent::ToolTip) {
        const auto* pHelp = static_cast<QHelpEvent*>(pEvent);
        const QString text = CutCellTextAt(pHelp->pos());
        if (text.isEmpty()) {
            QToolTip::hideText();
        } else {
            QToolTip::showText(pHelp->globalPos(), text, m_pReport->viewport(),
                               m_pReport->visualRect(m_pReport->indexAt(pHelp->pos())));
        }
        return true;
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

int COvListCtrl::SelectedRowCount() const {
    // Counted by ranges: after a select-all of a big folder there is one range, not a row list.
    int nRows = 0;
    for (const QItemSelectionRange& range : m_pReport->selectionModel()->selection()) {
        if (range.left() == 0) {
            nRows += range.height();
        }
    }
    return nRows;
}

std::vector<int> COvListCtrl::SelectedRows() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : m_pReport->selectionModel()->selection()) {
        if (range.left() == 0) {
            for (int nRow = range.top(); nRow <= range.bottom(); ++nRow) {
                rows.push_back(nRow);
            }
        }
    }
    std::ranges::sort(rows);
    return rows;
}

void COvListCtrl::SelectAll() {
    ActiveView()->selectAll();
    ActiveView()->setFocus(Qt::ShortcutFocusReason);
}
